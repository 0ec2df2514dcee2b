// Reads the tags of one object in the order in which the builder asks for them. That order is part of the
// language: a tag may define a constant that a later one uses.
#pragma once

#include "platform/message_box.h"
#include "skin/skin_context.h"
#include "skin/skin_object.h"
#include "skin/xml_gui_editor.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/crect.h"

#include <cstdint>
#include <optional>
#include <string>

namespace skin {

/// After the first fault in a tag that must be there, which has then been shown, the object is lost: nothing
/// more is read, and what is asked for is 0 or empty.
class xmlGuiEditor::ObjectReader {
  public:
    /// `kind` names the object in messages.
    ObjectReader(const char* kind, const SkinObject* object, SkinContext* context)
        : kind_(kind), object_(object), context_(context) {}

    bool isLost() const { return isLost_; }
    const SkinObject* object() const { return object_; }
    SkinContext* context() const { return context_; }
    /// Names the object differently in the messages from here on.
    void callIt(const char* kind) { kind_ = kind; }

    /// A number that must be there.
    double number(const char* tag);
    /// A number that may be missing or faulty.
    double number(const char* tag, double fallback);
    /// The same, cut to an integer.
    std::int32_t integer(const char* tag);
    std::int32_t integer(const char* tag, std::int32_t fallback);
    /// The place that "x", "y", "w" and "h" tell, which must be there.
    VSTGUI::CRect box();
    /// A text that must be there.
    std::string text(const char* tag);
    /// A yes or no that may be missing.
    std::optional<bool> flag(const char* tag);

    /// The picture that a tag must name. Without memory for it, the object is lost with a box titled
    /// `caption`.
    VSTGUI::CBitmap* picture(const char* tag, const char* caption = "Bitmap not found");
    /// The picture that a tag may name.
    VSTGUI::CBitmap* picture(const char* tag, VSTGUI::CBitmap* fallback);
    bool has(const char* tag) const { return findTag(*object_, tag) != nullptr; }

    /// The object is lost for a reason of the builder's.
    void lose(const std::string& text, const char* caption,
              platform::MessageIcon icon = platform::MessageIcon::none);

  private:
    const char* kind_;
    const SkinObject* object_;
    SkinContext* context_;
    bool isLost_ = false;
};

/// The place of a control. Each side is cut to a whole pixel after the addition.
VSTGUI::CRect placeOf(double x, double y, double width, double height);

} // namespace skin
