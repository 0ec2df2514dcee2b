// The pictures of a skin as the toolkit's bitmaps. A skin is a folder that somebody has put together:
// pictures in several formats, spelt in its file as on a system that does not care for letter case, and some
// of them missing. Every name gives a bitmap.
#pragma once

#include "vstgui/lib/cbitmap.h"

#include <memory>
#include <string>

namespace toolkit {
class DisplayMemory;
struct PictureAllowance;
} // namespace toolkit

namespace skin {

/// Loads the picture that a skin names: `name` below `folder`, in any letter case, with either slash between
/// its parts, in PNG, BMP, JPEG, GIF, TIFF or ICO. Never null. A picture that is missing, cannot be decoded
/// or costs more than is left of `allowance` or of memory gives a MissingImage. Nothing is kept: each call
/// decodes anew. What the picture keeps on the display comes out of `memory`, which may be null: then it
/// keeps nothing there. A toolkit::Toolkit must live. On the window thread.
VSTGUI::SharedPointer<VSTGUI::CBitmap>
loadImage(const std::string& folder, const std::string& name, toolkit::PictureAllowance& allowance,
          const std::shared_ptr<toolkit::DisplayMemory>& memory = nullptr);

/// A picture by itself.
VSTGUI::SharedPointer<VSTGUI::CBitmap> loadImage(const std::string& folder, const std::string& name);

/// A picture that is not there: 0 wide, 0 high, and any control may be given it and draw it. The toolkit's
/// own way to make a bitmap of nothing is one that ends the process when drawn.
class MissingImage final : public VSTGUI::CBitmap {
  public:
    MissingImage() = default;
    void draw(VSTGUI::CDrawContext* context, const VSTGUI::CRect& rect, const VSTGUI::CPoint& offset,
              float alpha) override;
};

} // namespace skin
