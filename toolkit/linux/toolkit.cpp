#include "toolkit/toolkit.h"

#include "vstgui/lib/vstguiinit.h"

namespace toolkit {

/// Nothing that would have to be given back.
class Toolkit::System {};

Toolkit::Toolkit() {
    // Once for the process: fonts and bitmaps may outlive every editor. With a handle of the library it would
    // guess at resource folders from its path, which it has no need for here.
    static const bool ready = [] {
        VSTGUI::init(nullptr);
        return true;
    }();
    (void)ready;
}

Toolkit::~Toolkit() = default;

} // namespace toolkit
