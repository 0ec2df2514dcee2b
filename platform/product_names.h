// What the plug-in's settings are filed under. Only the platform room sees it.
#pragma once

#include <string_view>

namespace platform {

inline constexpr std::string_view vendorName = "Quillon Software";
inline constexpr std::string_view productName = "Quillon Multitap Delay";

} // namespace platform
