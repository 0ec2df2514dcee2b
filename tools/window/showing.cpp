#include "tools/window/showing.h"

#include "desk/message_watch.h"
#include "desk/private_folder.h"
#include "desk/virtual_display.h"
#include "host/editor_window.h"
#include "platform/clock.h"
#include "platform/path_text.h"
#include "tools/common/effect_library.h"
#include "tools/common/interrupt.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/skin_check/skin_check.h"
#include "tools/skin_check/skin_folder.h"
#include "tools/window/folder_watch.h"
#include "tools/window/outlines.h"
#include "tools/window/png_file.h"
#include "tools/window/stage.h"

#include <memory>
#include <optional>
#include <vector>

namespace tools::window {

namespace files = std::filesystem;

namespace {

constexpr float kSampleRate = 44100.0f; // Hz
constexpr std::int32_t kBlockSize = 512;

/// The editor's turns: often enough for a hand on a knob.
constexpr int kTurnMilliseconds = 20;
/// Looks at the skin's folder: seldom enough for a disk.
constexpr std::uint32_t kLookMilliseconds = 150;
/// An editor that goes on moving is taken as it is after this.
constexpr int kSettlingMilliseconds = 10000;

/// Room for any editor that fits a screen of today.
constexpr int kVirtualWidth = 4096, kVirtualHeight = 2304;

void say(const std::string& line) {
    std::fputs((line + "\n").c_str(), stderr);
}

host::HostBehaviour behaviour() {
    host::HostBehaviour behaviour;
    behaviour.sampleRate = kSampleRate;
    behaviour.blockSize = kBlockSize;
    behaviour.product = "quillon-window";
    behaviour.record = false;
    return behaviour;
}

/// Everything that a musician has done to an instance.
struct EffectState {
    std::vector<std::uint8_t> bank;
    std::int32_t program = 0;
};

/// One instance after the other in one window.
class Showing {
  public:
    /// `skin` is the folder that the person knows, empty for none; then `stage` is null too.
    Showing(const Options& options, const files::path& library, const files::path& skin, Stage* stage)
        : options_(options), library_(library), skin_(skin), stage_(stage) {}

    void run() {
        FolderWatch folder(skin_);
        tryToOpen();
        std::uint32_t lastLook = platform::milliseconds();
        while (isStaying() && !(window_ && window_->isClosed())) {
            stopIfAsked();
            if (window_)
                window_->serve(kTurnMilliseconds);
            else
                platform::sleepMilliseconds(kTurnMilliseconds);
            if (!options_.watch || platform::milliseconds() - lastLook < kLookMilliseconds)
                continue;
            lastLook = platform::milliseconds();
            if (folder.hasChanged())
                tryToOpen();
        }
    }

  private:
    bool isStaying() const { return options_.watch || options_.screenshot.empty(); }

    static void stopIfAsked() {
        if (isInterrupted())
            throw Interrupted("stopped");
    }

    /// Whoever draws a skin saves it half done as well: then a word must do, and the next try may succeed.
    void tryToOpen() {
        try {
            open();
        } catch (const ToolError& error) {
            takeTrouble(error);
        } catch (const host::HostError& error) {
            takeTrouble(error);
        }
    }

    /// From where the error is caught.
    void takeTrouble(const std::exception& error) {
        const bool mayPass = wasOpen_ || isSkinAtFault_;
        if (!options_.watch || !mayPass)
            throw;
        say(printable(error.what()));
    }

    void open() {
        closeInstance();
        isSkinAtFault_ = false;
        std::optional<SkinText> text;
        if (!skin_.empty()) {
            isSkinAtFault_ = true;
            text.emplace(skin_);
            if (!canBeShown(*text))
                return;
            isSkinAtFault_ = false;
        }
        if (stage_)
            stage_->bringUpToDate();
        const auto findings = options_.watch ? text->findingsBuiltIn(stage_->skin()) : std::vector<Finding>();
        if (options_.outlines)
            outlines_ = text->outlinesBuiltIn(stage_->skin());
        makeInstance();
        if (!window_)
            window_ = std::make_unique<host::EditorWindow>(title());
        isSkinAtFault_ = !skin_.empty();
        window_->open(*plugin_);
        wasOpen_ = true;
        // Only now: whoever reads them may save the skin again at once, which the plug-in has read by now.
        if (options_.watch)
            tellFaults(findings);
        stopIfAsked();
        if (!options_.screenshot.empty())
            writePicture();
    }

    /// What the plug-in would not survive it must not see; what it refuses without a word gets one here.
    /// False if the skin's author goes on working at it.
    bool canBeShown(const SkinText& text) const {
        const Finding* const obstacle = text.obstacle();
        if (!obstacle)
            return true;
        if (options_.watch) {
            tellFaults(text.findings());
            return false;
        }
        std::string line = lineFor(skinFile(skin_), *obstacle);
        line.pop_back();
        throw ToolError(line);
    }

    /// What --check would say of the skin.
    void tellFaults(const std::vector<Finding>& findings) const {
        for (const Finding& finding : findings)
            std::fputs(lineFor(skinFile(skin_), finding).c_str(), stderr);
        if (findings.empty())
            say("no faults");
    }

    void closeInstance() {
        if (window_)
            window_->close();
        if (!plugin_)
            return;
        state_ = EffectState{plugin_->getChunk(false), plugin_->getProgram()};
        plugin_.reset();
    }

    /// A fresh one each time: an instance asks only once how large its window is.
    void makeInstance() {
        auto plugin = std::make_unique<host::Plugin>(loadForGood(library_), behaviour());
        plugin->start(kSampleRate, kBlockSize);
        if (!state_)
            bringToStart(*plugin);
        else
            bringBack(*plugin);
        plugin_ = std::move(plugin);
    }

    void bringToStart(host::Plugin& plugin) {
        if (!options_.program.empty())
            plugin.setProgram(programFor(plugin, options_.program));
        applySettings(plugin, options_.settings);
    }

    void bringBack(host::Plugin& plugin) {
        if (!state_->bank.empty())
            plugin.setChunk(state_->bank, false);
        plugin.setProgram(state_->program);
    }

    std::string title() {
        std::string name = library_.stem().string();
        for (const std::string& given : {plugin_->effectName(), plugin_->product()})
            if (!given.empty())
                name = given;
        return printable(skin_.empty() ? name : name + " \u2013 " + skin_.filename().string());
    }

    void writePicture() {
        const auto picture = window_->settledPicture(kSettlingMilliseconds);
        stopIfInterrupted();
        if (!picture)
            throw ToolError("cannot take a picture of the window; is it larger than the screen, or is "
                            "nothing drawn in it?");
        if (options_.outlines)
            writeOutlined(*picture, outlines_, options_.screenshot);
        else
            writePng(*picture, options_.screenshot);
    }

    const Options& options_;
    files::path library_;
    files::path skin_;
    Stage* stage_;
    std::unique_ptr<host::Plugin> plugin_;
    std::unique_ptr<host::EditorWindow> window_;
    std::optional<EffectState> state_; ///< of the instance before
    std::vector<ObjectOutline> outlines_;
    bool wasOpen_ = false;
    bool isSkinAtFault_ = false;
};

/// A picture is taken where nothing lies over the window and nobody is disturbed, if that can be had.
std::unique_ptr<desk::VirtualDisplay> displayFor(const Options& options) {
    if (options.screenshot.empty()) {
        if (!desk::hasDisplay())
            throw ToolError("there is no display to open a window on; --screenshot needs none");
        return nullptr;
    }
    try {
        return std::make_unique<desk::VirtualDisplay>(kVirtualWidth, kVirtualHeight);
    } catch (const std::runtime_error&) {
        if (!desk::hasDisplay())
            throw;
        return nullptr;
    }
}

/// A picture in the folder that is watched would be a change, and the next picture too.
void checkPlaces(const Options& options, const files::path& skin) {
    if (!options.watch || options.screenshot.empty())
        return;
    const files::path inside = options.screenshot.lexically_relative(skin);
    if (!inside.empty() && *inside.begin() != "..")
        throw ToolError(options.screenshot.string() + " is in the watched skin; choose another folder");
}

/// As a library finds it, which looks around in the code page of the machine.
files::path placeForStage(const desk::PrivateFolder& folder) {
    if (folder.path().empty())
        throw ToolError("the path of the temporary folder has letters that plug-ins cannot use; "
                        "set TMP to another folder");
    return platform::pathFromText(folder.path());
}

} // namespace

void openEditor(const Options& options) {
    const files::path asked = libraryPath(options.library);
    const files::path skin = options.skin.empty() ? files::path() : skinFolderFor(options.skin, asked);
    checkPlaces(options, skin);
    const desk::PrivateFolder folder;
    std::optional<Stage> stage;
    if (!skin.empty())
        stage.emplace(placeForStage(folder), asked, skin);
    const auto display = displayFor(options);
    const bool isUnattended = !options.screenshot.empty();
    const desk::MessageWatch messages(
        [](const desk::ShownMessage& message) {
            say(printable(message.caption) + ": " + printable(message.text));
        },
        [isUnattended] { return isUnattended || isInterrupted(); });
    Showing(options, stage ? stage->library() : asked, skin, stage ? &*stage : nullptr).run();
}

bool checkSkinFor(const Options& options, std::FILE* output) {
    const files::path library = libraryPath(options.library);
    const files::path skin = skinFolderFor(options.skin, library);
    const files::path file = skinFile(skin);
    const desk::PrivateFolder folder;
    const Stage stage(placeForStage(folder), library, skin);
    const auto findings = checkSkin(stage.skin());
    for (const Finding& finding : findings)
        if (std::fputs(lineFor(file, finding).c_str(), output) < 0)
            throw ToolError("standard output cannot be written");
    if (std::fflush(output) != 0)
        throw ToolError("standard output cannot be written");
    return findings.empty();
}

} // namespace tools::window
