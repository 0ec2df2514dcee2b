// Any bytes as a skin.xml: whoever opens a window of it gets one or is told that there is none, it can be
// drawn, turned and closed, and the second opening builds what the first one did.
#include "promise.h"
#include "skin_bench.h"
#include "skin_pictures.h"

#include "base/ascii.h"
#include "editor/my_editor.h"
#include "skin_language/xml_reader.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Names from 60 bytes on, with the blanks before them, and lines of constants from 256 bytes on end the
/// process, as they should. A text that may hold one is not tried.
bool mayEndTheProcess(std::string_view text) {
    std::size_t nameLength = 0, lineLength = 0;
    for (char byte : text) {
        const bool isBlank = byte == ' ' || byte == '\t';
        const bool endsLine = byte == '<' || byte == '\n' || byte == '\r' || byte == ',';
        nameLength = base::isNameByte(byte) || isBlank ? nameLength + 1 : 0;
        lineLength = endsLine ? 0 : lineLength + 1;
        if (nameLength >= 60 || lineLength >= 256)
            return true;
    }
    return false;
}

/// What all inputs have in common: a folder of pictures, an effect and its taps.
class Room {
  public:
    Room() {
        bench.drawPicture("a.png", 60, 40, {VSTGUI::kRedCColor, VSTGUI::kGreenCColor});
        bench.drawPicture("b.png", 7, 30, {VSTGUI::kBlueCColor, VSTGUI::kWhiteCColor, VSTGUI::kBlackCColor});
    }

    test::SkinBench bench;
    std::array<base::Shared<float>, parameters::kMaxTaps> gains;
};

class Editor final : public test::ExposedEditor<editor::myEditor> {
  public:
    explicit Editor(Room& room) : ExposedEditor(&room.bench.effect(), editor::TapGains(room.gains)) {}
};

/// Whether the file is a skin at all, and of how many objects.
bool isSkin(const std::string& path, std::size_t& objects) {
    XmlNode* const root = xmlParseFile(path.c_str());
    if (!root)
        return false;
    for (const XmlNode* child = root->child; child; child = child->next)
        ++objects;
    const bool named = base::equalIgnoringCase(root->name, "GUI");
    xmlFreeNode(root);
    return named;
}

struct View {
    std::int32_t tag;
    VSTGUI::CRect place;
    bool operator==(const View& other) const { return tag == other.tag && place == other.place; }
};

std::vector<View> viewsOf(const Editor& editor) {
    std::vector<View> views;
    for (VSTGUI::CControl* control : editor.controls())
        views.push_back({control->getTag(), control->getViewSize()});
    return views;
}

void use(Editor& editor, test::RecordingEffect& effect) {
    for (std::int32_t id = 0; id < editor.numParams(); ++id)
        editor.setParameter(id, 0.3f);
    editor.setParameter(-1, 0.0f);
    editor.setParameter(skin::kRefreshAll, static_cast<float>(skin::kRefreshAll));
    effect.values.fill(1.0f);
    editor.setParameter(-1, 0.0f);
    for (VSTGUI::CControl* control : editor.controls())
        editor.valueChanged(control);
    editor.idle();
    if (editor.frame && editor.frame->getWidth() > 0 && editor.frame->getHeight() > 0)
        test::DrawnFrame picture(*editor.frame);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Room room;
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (mayEndTheProcess(text))
        return 0;
    room.bench.writeFile("Quillon Skin/skin.xml", text);
    room.bench.messages.clear();
    room.bench.settings.texts.clear();
    room.bench.effect().values.fill(0.0f);

    std::size_t objects = 0;
    const bool expected = isSkin(room.bench.folder() + "Quillon Skin/skin.xml", objects);
    const auto editor = std::make_unique<Editor>(room);
    promise(editor->open(nullptr) == expected, "a window for what is a skin, and for nothing else");
    const std::vector<View> first = viewsOf(*editor);
    promise(expected || (!editor->frame && first.empty()), "nothing for what is no skin");
    promise(editor->frame || first.empty(), "no control without a window");
    promise(first.size() <= 2 * objects, "a control and its overlay for each object at most");
    promise(static_cast<std::size_t>(editor->updateLinks.count) <= objects, "a link for each object at most");
    promise(editor->skinNames.count == 1, "one skin");
    use(*editor, room.bench.effect());
    editor->close();
    promise(!editor->frame, "no window after the closing");

    editor->open(nullptr);
    promise(viewsOf(*editor) == first, "the second opening builds what the first one did");
    for (const test::Message& message : room.bench.messages)
        promise(!message.text.empty(), "no message without a text");
    return 0;
}
