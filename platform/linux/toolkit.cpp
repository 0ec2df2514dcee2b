#include "platform/toolkit.h"

#include "vstgui/lib/vstguiinit.h"

#include <dlfcn.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <initializer_list>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

namespace platform {

namespace {

/// Keeps the library that holds a function in memory until the process ends.
void keepLibraryOf(GType (*function)()) {
    Dl_info library = {};
    if (dladdr(reinterpret_cast<void*>(function), &library))
        dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

/// These libraries enter their types into a register that outlives them. Unloaded with a plug-in and loaded
/// again with the next, they would find themselves in it already, and wait for themselves for ever.
void keepLibrariesWithTypes() {
    for (auto* function : {pango_font_map_get_type, pango_cairo_font_map_get_type, pango_fc_font_map_get_type,
                           gdk_pixbuf_get_type})
        keepLibraryOf(function);
}

} // namespace

Toolkit::Toolkit() {
    // Once for the process: fonts and bitmaps may outlive every editor. With a handle of the library it would
    // guess at resource folders from its path, which it has no need for here.
    static const bool ready = [] {
        keepLibrariesWithTypes();
        VSTGUI::init(nullptr);
        return true;
    }();
    (void)ready;
}

Toolkit::~Toolkit() = default;

} // namespace platform
