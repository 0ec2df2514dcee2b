// Tests of the skin language: a window of 200 x 100 pixels with objects in it.
#pragma once

#include "skin_bench.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace test {

/// Pictures of one colour are called by it; each has a size of its own, by which it can be told.
class SkinWindow : public testing::Test {
  protected:
    using Editor = ExposedEditor<skin::xmlGuiEditor>;

    SkinWindow();

    /// Opens a window of a "ground.png" with these objects on it.
    Editor& open(const std::string& objects);
    /// Opens a window of exactly these objects.
    Editor& openAlone(const std::string& objects);

    /// The only control in the window, as the class it is of; the test ends where that is not so.
    template <class Control>
    Control& only() {
        const auto all = editor->controls();
        auto* const control = all.size() == 1 ? dynamic_cast<Control*>(all.front()) : nullptr;
        if (!control)
            throw std::runtime_error("not one control of that class, but " + std::to_string(all.size()));
        return *control;
    }

    /// What was shown since the last question.
    std::vector<Message> takeMessages();

    SkinBench bench;
    Editor* editor = nullptr;
};

/// What a skin's fault looks like.
inline Message missingTag(const std::string& tag, const std::string& object) {
    return {"Missing tag " + tag + " for object " + object, "Skin Error", platform::MessageIcon::error};
}
inline Message wrongTag(const std::string& tag, const std::string& object) {
    return {"Error calculating value of tag " + tag + " for object " + object, "Skin Error",
            platform::MessageIcon::error};
}

} // namespace test
