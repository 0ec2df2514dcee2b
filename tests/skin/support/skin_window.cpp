#include "skin_window.h"

#include <utility>

namespace test {

SkinWindow::SkinWindow() {
    bench.drawPicture("ground.png", 200, 100, {VSTGUI::CColor(40, 50, 60)});
    bench.drawPicture("plate.png", 31, 17, {VSTGUI::CColor(90, 80, 70)});
    bench.drawPicture("handle.png", 12, 8, {VSTGUI::kGreenCColor});
    bench.drawPicture("film.png", 20, 105,
                      {VSTGUI::kRedCColor, VSTGUI::kGreenCColor, VSTGUI::kBlueCColor, VSTGUI::kYellowCColor,
                       VSTGUI::kWhiteCColor});
    bench.drawPicture("lamp.png", 14, 22, {VSTGUI::kRedCColor, VSTGUI::kGreenCColor});
    bench.drawPicture("popped.png", 101, 51, {VSTGUI::kMagentaCColor});
    bench.drawPicture("off.png", 10, 41, {VSTGUI::kRedCColor});
    bench.drawPicture("on.png", 11, 40, {VSTGUI::kGreenCColor});
}

SkinWindow::Editor& SkinWindow::openAlone(const std::string& objects) {
    bench.writeSkin(objects);
    editor = &bench.makeEditor();
    editor->open(nullptr);
    return *editor;
}

SkinWindow::Editor& SkinWindow::open(const std::string& objects) {
    return openAlone("<background filename=\"ground.png\"/>\n" + objects);
}

std::vector<Message> SkinWindow::takeMessages() {
    return std::exchange(bench.messages, {});
}

} // namespace test
