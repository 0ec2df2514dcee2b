#include "skin/skin_object.h"

#include "base/ascii.h"
#include "base/fixed_text.h"

namespace skin {

SkinObject::SkinObject(XmlNode* element) : text(element->text), node(element) {
    for (const XmlAttr* attribute = element->attrs; attribute; attribute = attribute->next) {
        SkinTag tag;
        base::copyText(tag.name, attribute->name);
        base::copyText(tag.value, attribute->value ? attribute->value : "");
        tags.append(tag);
    }
}

const SkinTag* findTag(const SkinObject& object, const char* name) {
    for (const SkinTag& tag : object.tags)
        if (base::equalIgnoringCase(tag.name, name))
            return &tag;
    return nullptr;
}

} // namespace skin
