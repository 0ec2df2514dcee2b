// How colours and places of the toolkit are shown when a test's expectation of them fails.
#pragma once

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cpoint.h"
#include "vstgui/lib/crect.h"

#include <ostream>

namespace VSTGUI {

inline void PrintTo(const CColor& colour, std::ostream* out) {
    *out << "red " << +colour.red << " green " << +colour.green << " blue " << +colour.blue << " alpha "
         << +colour.alpha;
}

inline void PrintTo(const CRect& rect, std::ostream* out) {
    *out << "left " << rect.left << " top " << rect.top << " right " << rect.right << " bottom "
         << rect.bottom;
}

inline void PrintTo(const CPoint& point, std::ostream* out) {
    *out << "x " << point.x << " y " << point.y;
}

} // namespace VSTGUI
