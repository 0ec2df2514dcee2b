// The picture of the echoes: one bar for each tap, as high as the tap is loud, with the number of taps and a
// length in milliseconds beside the last bar and a banner above. It is a drawing and no plot: the bars stand
// on a curve of their own, in pixels, that is only like the spacing of the taps. A right click turns the
// picture into the first of two pages of help, a left click turns it back.
#pragma once

#include "parameters/pattern_laws.h"

#include "base/shared.h"
#include "vstgui/lib/controls/ccontrol.h"

#include <array>
#include <cstdint>
#include <string>

namespace controls {

/// Shows no parameter: no listener, tag -1. All of it runs on the window thread but showPattern().
class ViewTaps final : public VSTGUI::CControl {
  public:
    static constexpr std::int32_t kMaxTaps = parameters::kMaxTaps;

    explicit ViewTaps(const VSTGUI::CRect& size);
    ViewTaps(const ViewTaps& other) = default;

    /// Takes a new pattern over and marks the view for redrawing. `gains` are kMaxTaps linear levels, 0..1,
    /// of which the first `taps` count (brought into 1..kMaxTaps). `milliseconds` is the number to print; a
    /// negative one warns, at the next drawing only, that the memory is used up. `stretch` bends the spacing:
    /// 0 to 1, even at 0.5. Any thread, also while the window draws: a picture of which one half is old is
    /// drawn anew by the next update.
    void showPattern(const float* gains, std::int32_t milliseconds, std::int32_t taps, float stretch);

    /// What is on show: 0 the picture, 1 and 2 the pages of help.
    std::int32_t shownPage() const { return helpPage; }

    void draw(VSTGUI::CDrawContext* context) override;

    /// A press, a release or a move with `buttons` held: left alone shows the picture, right alone turns the
    /// page. Every other combination leaves the page as it is.
    virtual void mouse(VSTGUI::CPoint& where, const VSTGUI::CButtonState& buttons);

    VSTGUI::CMouseEventResult onMouseDown(VSTGUI::CPoint& where,
                                          const VSTGUI::CButtonState& buttons) override;
    VSTGUI::CMouseEventResult onMouseUp(VSTGUI::CPoint& where, const VSTGUI::CButtonState& buttons) override;
    VSTGUI::CMouseEventResult onMouseMoved(VSTGUI::CPoint& where,
                                           const VSTGUI::CButtonState& buttons) override;
    void dispatchEvent(VSTGUI::Event& event) override;

    /// Whether this is a "ViewTaps".
    bool isTypeOf(const char* name) const;
    VSTGUI::CBaseObject* newCopy() const override;

  private:
    void drawPicture(VSTGUI::CDrawContext& context);
    std::int64_t drawBars(VSTGUI::CDrawContext& context);
    void drawText(VSTGUI::CDrawContext& context, std::int64_t end);
    void drawHelp(VSTGUI::CDrawContext& context) const;
    void drawMeasured(VSTGUI::CDrawContext& context, std::size_t place, const char* text,
                      const VSTGUI::CRect& area);
    bool takeWarning();

    // Written by the thread that changes parameters.
    base::Shared<std::int32_t> numTaps = kMaxTaps;
    base::Shared<float> bend = 0.5f;
    std::array<base::Shared<float>, kMaxTaps> tapGain = {};
    base::Shared<std::int32_t> shownMs;
    base::Shared<std::int32_t> stretched = 1; ///< not 0: bars wide apart
    // The window's own.
    struct MeasuredText {
        std::string text;
        VSTGUI::CCoord width = 0;
    };
    std::array<MeasuredText, 4> measuredTexts_; ///< what stood at each place of the picture last
    std::int32_t helpPage = 0;
};

} // namespace controls
