#include "bench/window.h"

#include "bench/contest.h"
#include "bench/player.h"
#include "host/editor_window.h"

#include <chrono>
#include <thread>

namespace bench {

namespace {

/// A host that draws at 50 frames a second.
constexpr int kFrameMilliseconds = 20;
constexpr std::int64_t kRunsOfOneRound = 10;
constexpr int kRestMilliseconds = 5000;

class OpenEditor {
  public:
    explicit OpenEditor(const std::string& library)
        : plugin_(loadedLibrary(library), quietHost()), window_("Quillon Multitap Delay") {
        plugin_.start(48000.0f, 64);
        window_.open(plugin_);
        window_.settledPicture(kRestMilliseconds);
    }
    ~OpenEditor() { window_.close(); }
    OpenEditor(const OpenEditor&) = delete;
    OpenEditor& operator=(const OpenEditor&) = delete;

    Contestant automated() {
        return {[this] {
                    moved_ = !moved_;
                    for (std::int32_t id = 0; id < plugin_.numParams(); ++id)
                        plugin_.setParameter(id, moved_ ? 0.75f : 0.25f);
                    return secondsOfFrame();
                },
                1.0, 0.0, kRunsOfOneRound};
    }
    Contestant atRest() {
        return {[this] { return secondsOfFrame(); }, 1.0, 0.0, kRunsOfOneRound};
    }

  private:
    /// The first call draws, the second one waits until the display has done it.
    double secondsOfFrame() {
        using Clock = std::chrono::steady_clock;
        std::this_thread::sleep_for(std::chrono::milliseconds(kFrameMilliseconds));
        const Clock::time_point start = Clock::now();
        plugin_.dispatch(vst2::effEditIdle);
        plugin_.dispatch(vst2::effEditIdle);
        return std::chrono::duration<double>(Clock::now() - start).count();
    }

    host::Plugin plugin_;
    host::EditorWindow window_;
    bool moved_ = false;
};

} // namespace

Result timeWindow(const std::string& library) {
    OpenEditor editor(library);
    const std::vector<double> medians = medianNanoseconds({editor.automated(), editor.atRest()});
    return {section::kWindow, kWindowSituation, "itself at rest", medians[0], medians[1]};
}

} // namespace bench
