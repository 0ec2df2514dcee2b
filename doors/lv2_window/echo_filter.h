// Which of the values that a host sends for a parameter are to be shown. Hosts send back what the window has
// written, later and not all of it, among values of their own such as automation. A control in the hand must
// not jump to any of them, and a control that was just let go must not jump back to where it was on the way.
//
// While a control is held, every value waits. When it is let go the last one counts, unless that is an echo.
// From then on echoes wait for a few idle rounds more, and at their end the last word of the host counts,
// whatever it was. Everything else is shown at once. A host that sends nothing back is never waited for.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

namespace lv2_window {

/// For one parameter. Values are normalised and no NaN. On the window thread.
class EchoFilter {
  public:
    /// Idle rounds in which echoes still come: 0.3 s and more in the hosts that there are.
    static constexpr int kIdlesToSettle = 10;

    /// The hand takes the control, which shows `value`. May be called again before endEdit().
    void beginEdit(float value);
    /// The window writes a value to the host, within a gesture or without one.
    void written(float value);
    /// The hand lets the control go. Gives what is to be shown now, if anything.
    std::optional<float> endEdit();
    bool isHeld() const { return gestures_ > 0; }

    /// The host sends a value. Gives it if it is to be shown now.
    std::optional<float> received(float value);
    /// An idle round. Gives what is to be shown now, if anything.
    std::optional<float> idle();

  private:
    /// More than a hand writes in the time that an echo takes.
    static constexpr std::size_t kMostRecent = 256;

    bool isRecent(float value) const;
    void remember(float value);

    std::array<float, kMostRecent> recent_ = {}; ///< a ring: what the control has stood at
    std::size_t numRecent_ = 0;                  ///< entries written so far
    std::optional<float> waiting_;               ///< the host's last word, not shown yet
    int gestures_ = 0;                           ///< begun and not ended
    int idlesLeft_ = 0;
};

} // namespace lv2_window
