#include "tools/render/settings_line.h"

#include "tools/common/text.h"

#include <algorithm>

namespace tools::render {

namespace {

/// Puts the settings one behind the other that have anything to show.
class Line {
  public:
    void add(const std::string& before, const std::string& shown, const std::string& after) {
        if (shown.empty())
            return;
        if (!text_.empty())
            text_ += "   \u00b7   ";
        text_.append(before).append(shown).append(after);
    }
    const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// How a setting of the delay is told.
struct Item {
    const char* name;
    const char* before;
    const char* after;
    const char* afterOne; ///< where 1 is shown
};

constexpr Item kDelayItems[] = {
    {"Taps #", "", " echoes", " echo"},
    {"Bs Lgh 1", "base length ", " ms", " ms"},
    {"Stretch", "stretch ", "", ""},
    {"Feedback", "feedback ", "", ""},
    {"LFO Rt", "sweep rate ", " Hz", " Hz"},
    {"LFO Dp", "sweep depth ", "", ""},
    {"Dry Wet", "mix ", "", ""},
    {"Set", "", "", ""},
};

std::string shownBy(const ParameterState& parameter) {
    return printable(trimmed(parameter.display));
}

} // namespace

std::string settingsLine(const EffectState& state) {
    Line line;
    for (const Item& item : kDelayItems)
        for (const ParameterState& parameter : state.parameters)
            if (sameName(parameter.name, item.name)) {
                const std::string shown = shownBy(parameter);
                line.add(item.before, shown, shown == "1" ? item.afterOne : item.after);
            }
    if (!line.text().empty())
        return line.text();
    constexpr std::size_t most = 6;
    for (std::size_t i = 0; i < std::min(state.parameters.size(), most); ++i) {
        const ParameterState& parameter = state.parameters[i];
        const std::string label = printable(trimmed(parameter.label));
        line.add(printable(trimmed(parameter.name)) + ' ', shownBy(parameter),
                 label.empty() ? label : ' ' + label);
    }
    return line.text();
}

} // namespace tools::render
