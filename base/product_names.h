// What the product is called, wherever a system or a host asks.
#pragma once

#include <string_view>

namespace base {

inline constexpr std::string_view kVendorName = "Quillon Software";
inline constexpr std::string_view kProductName = "Quillon Multitap Delay";
inline constexpr std::string_view kVendorAndProduct = "Quillon Software Quillon Multitap Delay";

} // namespace base
