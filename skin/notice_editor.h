// What an editor shows in place of a window whose skin cannot be read: a text on a plain page.
#pragma once

#include "skin/aeff_gui_editor.h"

#include <string>

namespace skin {

class NoticeEditor final : public AEffGUIEditor {
  public:
    explicit NoticeEditor(interfaces::EditorHost* effect);
    ~NoticeEditor() override;

    /// Says in UTF-8 what is wrong with the skin, from the next opening on.
    void setFault(const std::string& fault);

    /// False if the display does not know the host's window `ptr`. Throws std::bad_alloc.
    bool open(void* ptr) override;
    void close() override;

  private:
    std::string text_;
};

} // namespace skin
