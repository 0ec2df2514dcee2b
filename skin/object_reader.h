// Reads the tags of one object in the order in which the builder asks for them. That order is part of the
// language: a tag may define a constant that a later one uses. Which tags must be there is told by the table
// of the language.
#pragma once

#include "platform/message_box.h"
#include "skin/skin_context.h"
#include "skin/skin_object.h"
#include "skin/skin_table.h"
#include "skin/xml_gui_editor.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/crect.h"

#include <cstdint>
#include <optional>
#include <string>

namespace skin {

/// After the first missing or faulty tag that is required, a message has been shown and the reader has
/// failed: it reads nothing more and gives 0 or empty for every tag. The object is not built then.
class xmlGuiEditor::ObjectReader {
  public:
    ObjectReader(const KindRule& kind, const SkinObject* object, SkinContext* context)
        : kind_(kind), name_(kind.name), object_(object), context_(context) {}

    bool hasFailed() const { return hasFailed_; }
    const KindRule& kind() const { return kind_; }
    const SkinObject* object() const { return object_; }
    SkinContext* context() const { return context_; }
    /// The object's name in later messages; at first the kind's name.
    void setMessageName(const char* name) { name_ = name; }

    /// A number; `fallback` if it may be missing and is missing or faulty.
    double number(const char* tag, double fallback = 0.0);
    /// The same, cut to an integer.
    std::int32_t integer(const char* tag, std::int32_t fallback = 0);
    /// The place that "x", "y", "w" and "h" tell.
    VSTGUI::CRect box();
    /// A text; empty if it may be missing and is.
    std::string text(const char* tag);
    /// A yes or no that may be missing.
    std::optional<bool> flag(const char* tag);

    /// The picture that a tag names; `fallback` if it may be missing and is. Without memory for it, the
    /// reader fails with a message titled `caption`.
    VSTGUI::CBitmap* picture(const char* tag, VSTGUI::CBitmap* fallback = nullptr,
                             const char* caption = "Bitmap not found");
    bool has(const char* tag) const { return findTag(*object_, tag) != nullptr; }

    /// Shows the message and fails: the builder has found a fault.
    void fail(const std::string& text, const char* caption,
              platform::MessageIcon icon = platform::MessageIcon::none);

  private:
    bool isRequired(const char* tag) const;

    const KindRule& kind_;
    const char* name_; ///< of the object in messages
    const SkinObject* object_;
    SkinContext* context_;
    bool hasFailed_ = false;
};

/// The place of a control. Each side is cut to a whole pixel after the addition.
VSTGUI::CRect placeOf(double x, double y, double width, double height);

/// Reads six digits as in FF8000 into an opaque colour; nothing if there are none.
std::optional<VSTGUI::CColor> colourOf(const char* text);

} // namespace skin
