// The toolkit's own objects (fonts, drawing, decoders of pictures), made with the first who needs them and
// given back with the last: they belong to libraries that the system takes away together with COM. Only the
// toolkit room sees it.
#pragma once

namespace toolkit {

/// As long as one of these lives, so do the toolkit's objects.
class ToolkitUse {
  public:
    ToolkitUse();
    ~ToolkitUse();
    ToolkitUse(const ToolkitUse&) = delete;
    ToolkitUse& operator=(const ToolkitUse&) = delete;
};

} // namespace toolkit
