// What an editor shows in place of a window whose skin cannot be read: a text on a plain page.
#pragma once

#include "skin/aeff_gui_editor.h"

#include <string>

namespace skin {

class NoticeEditor final : public AEffGUIEditor {
  public:
    /// `fault` says in UTF-8 what is wrong with the skin.
    NoticeEditor(interfaces::EditorHost* effect, const std::string& fault);
    ~NoticeEditor() override;

    /// False if the display does not know the host's window `ptr`. Throws std::bad_alloc.
    bool open(void* ptr) override;
    void close() override;

  private:
    std::string text_;
};

} // namespace skin
