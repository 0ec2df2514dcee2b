#include "tools/common/display_search.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

namespace tools {

namespace {

constexpr int kScanSteps = 1024;
constexpr int kHalvings = 40; // more than a float between 0 and 1 has places

struct Sample {
    float value = 0.0f;
    std::string display;
};

/// The number that a display begins with; minus infinity for a gain of nothing.
std::optional<double> shownNumber(const std::string& display) {
    if (const auto number = leadingNumber(display))
        return number->value;
    if (beginsLike(display, "-oo") || beginsLike(display, "-inf") || beginsLike(display, "-\u221e"))
        return -std::numeric_limits<double>::infinity();
    return std::nullopt;
}

/// Half of the display's last digit, as the distance that rounding may explain.
double tolerance(const std::string& display) {
    const auto number = leadingNumber(display);
    return number ? 0.5 * std::pow(10.0, -number->decimals) * (1.0 + 1e-9) : 0.0;
}

class Search {
  public:
    Search(host::Plugin& plugin, std::int32_t id)
        : plugin_(plugin), id_(id), before_{plugin.getParameter(id), plugin.parameterDisplay(id)} {
        for (int step = 0; step <= kScanSteps; ++step)
            scan_.push_back(sampleAt(static_cast<float>(step) / kScanSteps));
    }
    ~Search() { plugin_.setParameter(id_, before_.value); }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    float valueOfNumber(double number, const std::string& asWritten) {
        const Sample best = nearestTo(number);
        const auto shown = shownNumber(best.display);
        if (!shown || std::abs(*shown - number) > tolerance(best.display))
            fail(asWritten);
        if (before_.display == best.display)
            return before_.value;
        const auto [first, last] = stretchShowing(best);
        return first == 0.0f ? 0.0f : last == 1.0f ? 1.0f : middle(first, last);
    }

    float valueOfText(const std::string& text) {
        if (sameName(before_.display, text))
            return before_.value;
        for (const Sample& sample : scan_) {
            if (sameName(sample.display, text)) {
                const auto [first, last] = stretchShowing(sample);
                return middle(first, last);
            }
        }
        fail(text);
    }

  private:
    static float middle(float a, float b) { return a + (b - a) * 0.5f; }

    Sample sampleAt(float value) {
        plugin_.setParameter(id_, value);
        return {value, plugin_.parameterDisplay(id_)};
    }

    Sample nearestTo(double number) {
        Sample best;
        double distance = std::numeric_limits<double>::infinity();
        const auto consider = [&](const Sample& sample) {
            const auto shown = shownNumber(sample.display);
            if (shown && std::abs(*shown - number) < distance) {
                distance = std::abs(*shown - number);
                best = sample;
            }
        };
        for (const Sample& sample : scan_)
            consider(sample);
        for (std::size_t i = 0; i + 1 < scan_.size() && distance > 0.0; ++i)
            halveBetween(scan_[i], scan_[i + 1], number, consider);
        return best;
    }

    void halveBetween(Sample low, Sample high, double number,
                      const std::function<void(const Sample&)>& consider) {
        const auto isAbove = [&](const Sample& sample) {
            const auto shown = shownNumber(sample.display);
            return shown ? std::optional(*shown > number) : std::nullopt;
        };
        const auto lowSide = isAbove(low);
        const auto highSide = isAbove(high);
        if (!lowSide || !highSide || *lowSide == *highSide)
            return;
        for (int i = 0; i < kHalvings; ++i) {
            const float value = middle(low.value, high.value);
            if (value == low.value || value == high.value)
                return;
            const Sample sample = sampleAt(value);
            consider(sample);
            (isAbove(sample) == lowSide ? low : high) = sample;
        }
    }

    struct Stretch {
        float first;
        float last;
    };

    /// How far the same display reaches around a sample.
    Stretch stretchShowing(const Sample& sample) {
        const auto shows = [&](const Sample& other) { return other.display == sample.display; };
        Stretch stretch{sample.value, sample.value};
        const auto firstBehind =
            std::find_if(scan_.begin(), scan_.end(), [&](const Sample& s) { return s.value > sample.value; });
        auto after = firstBehind;
        for (; after != scan_.end() && shows(*after); ++after)
            stretch.last = after->value;
        if (after != scan_.end())
            stretch.last = lastShowing(stretch.last, after->value, sample.display);
        auto before = firstBehind;
        while (before != scan_.begin() && ((before - 1)->value >= sample.value || shows(*(before - 1))))
            stretch.first = std::min(stretch.first, (--before)->value);
        if (before != scan_.begin())
            stretch.first = lastShowing(stretch.first, (before - 1)->value, sample.display);
        return stretch;
    }

    /// The last value on the way from one that shows `display` to one that does not.
    float lastShowing(float inside, float outside, const std::string& display) {
        for (int i = 0; i < kHalvings; ++i) {
            const float value = middle(inside, outside);
            if (value == inside || value == outside)
                break;
            (sampleAt(value).display == display ? inside : outside) = value;
        }
        return inside;
    }

    [[noreturn]] void fail(const std::string& wanted) {
        const std::string name = inQuotes(trimmed(plugin_.parameterName(id_)));
        const std::string first = printable(trimmed(scan_.front().display));
        const std::string last = printable(trimmed(scan_.back().display));
        if (first.empty() && last.empty())
            throw ToolError(name + " shows nothing that could be set");
        throw ToolError(name + " never shows " + inQuotes(wanted) + "; it goes from " + inQuotes(first) +
                        " to " + inQuotes(last));
    }

    host::Plugin& plugin_;
    std::int32_t id_;
    Sample before_;
    std::vector<Sample> scan_;
};

/// The wanted number in the unit that the effect shows. An effect that names no unit shows ms, Hz, dB or %.
double inShownUnit(const WantedValue& wanted, const std::string& label) {
    const Unit given = unitNamed(wanted.unit);
    const Unit shown = unitNamed(label);
    if (given.kind == Unit::Kind::none)
        return wanted.number;
    if (shown.kind == Unit::Kind::none)
        return wanted.number * given.factor;
    if (shown.kind != given.kind)
        throw ToolError("the effect shows it in " + inQuotes(trimmed(label)) + ", not in " +
                        inQuotes(wanted.unit));
    return wanted.number * given.factor / shown.factor;
}

} // namespace

float valueShowing(host::Plugin& plugin, std::int32_t id, const WantedValue& wanted) {
    switch (wanted.kind) {
    case WantedValue::Kind::normalised:
        return static_cast<float>(wanted.number);
    case WantedValue::Kind::shownNumber:
        return Search(plugin, id).valueOfNumber(inShownUnit(wanted, plugin.parameterLabel(id)), wanted.text);
    case WantedValue::Kind::shownText:
        break;
    }
    return Search(plugin, id).valueOfText(wanted.text);
}

} // namespace tools
