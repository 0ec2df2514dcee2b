// Note values and their lengths at a tempo.

#include "tools/common/note_length.h"
#include "tools/common/tool_error.h"
#include "tools/common/wanted_value.h"
#include "tools/render/automation.h"
#include "tools/render/options.h"

#include <gtest/gtest.h>
#include <iterator>

namespace {

using tools::milliseconds;
using tools::noteFrom;
using tools::noteText;
using tools::ToolError;

TEST(NoteLength, IsOfPlainDottedAndTripletNotes) {
    struct Case {
        const char* text;
        double at120;
    };
    for (const Case& note : {Case{"1/1", 2000.0},
                             {"1/2", 1000.0},
                             {"1/4", 500.0},
                             {"1/8", 250.0},
                             {"1/16", 125.0},
                             {"1/32", 62.5},
                             {"1/64", 31.25},
                             {"1/4.", 750.0},
                             {"1/8.", 375.0},
                             {"1/16.", 187.5},
                             {"1/4t", 1000.0 / 3.0},
                             {"1/8t", 500.0 / 3.0},
                             {"1/8T", 500.0 / 3.0},
                             {"3/16", 375.0},
                             {"3/8", 750.0},
                             {"5/4", 2500.0},
                             {"2/1", 4000.0},
                             {" 1/8 ", 250.0}}) {
        const auto value = noteFrom(note.text);
        ASSERT_TRUE(value) << note.text;
        EXPECT_DOUBLE_EQ(milliseconds(*value, 120.0), note.at120) << note.text;
        EXPECT_DOUBLE_EQ(milliseconds(*value, 60.0), 2.0 * note.at120) << note.text;
    }
}

TEST(NoteLength, IsWrittenAsItIsRead) {
    for (const char* text : {"1/1", "1/4", "1/8.", "1/8t", "3/16", "64/64"})
        EXPECT_EQ(noteText(noteFrom(text).value()), text);
}

TEST(NoteLength, IsOfNothingElse) {
    for (const char* text :
         {"",          "/",     "1",    "1/",   "/4",   "0/4",  "1/0",           "1/3",
          "1/6",       "1/128", "65/4", "-1/4", "+1/4", "1/-4", "1.5/4",         "1/4..",
          "1/4.t",     "1/8 t", "1/8d", "1 /4", "1/ 4", "1/4s", "99999999999/4", "1/99999999999",
          "1/4 dotted"})
        EXPECT_FALSE(noteFrom(text)) << text;
}

TEST(NoteLength, IsHalved) {
    EXPECT_EQ(noteText(halved(*noteFrom("1/4.")).value()), "1/8.");
    EXPECT_EQ(noteText(halved(*noteFrom("2/64")).value()), "1/64");
    EXPECT_FALSE(halved(*noteFrom("1/64")));
}

TEST(Tempo, IsAFewBeatsPerMinuteToMany) {
    EXPECT_DOUBLE_EQ(tools::bpmFrom("112"), 112.0);
    EXPECT_DOUBLE_EQ(tools::bpmFrom(" 93.75 "), 93.75);
    for (const char* text : {"", "0", "-120", "19.9", "400.1", "1e9", "fast", "120bpm", "120,5", "nan"})
        EXPECT_THROW(tools::bpmFrom(text), ToolError) << text;
}

TEST(WantedNote, HasItsLengthAtTheTempo) {
    const auto value = tools::wantedValue("1/8.", 112.0);
    EXPECT_EQ(value.kind, tools::WantedValue::Kind::shownNumber);
    EXPECT_EQ(value.unit, "ms");
    EXPECT_DOUBLE_EQ(value.number, 45000.0 / 112.0);
    EXPECT_EQ(value.text, "1/8. at 112 bpm");
    EXPECT_EQ(value.note, noteFrom("1/8."));
}

TEST(WantedNote, NeedsATempo) {
    try {
        tools::wantedValue("1/8.");
        FAIL();
    } catch (const ToolError& error) {
        EXPECT_STREQ(error.what(), "\"1/8.\" is a note length and needs a tempo; add --bpm");
    }
}

TEST(WantedNote, StandsInAutomation) {
    const auto lines = tools::render::parseAutomation("0.5 \"Base length\" 1/8.\n", 60.0);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_DOUBLE_EQ(lines[0].setting.value.number, 750.0);
    EXPECT_THROW(tools::render::parseAutomation("0.5 \"Base length\" 1/8.\n"), ToolError);
}

TEST(WantedNote, StandsOnTheCommandLine) {
    const char* const words[] = {"quillon-render",  "in.wav", "out.wav", "--set",
                                 "Base length=1/4", "--bpm",  "75"};
    const auto parsed = tools::render::parseOptions(static_cast<int>(std::size(words)), words);
    const auto& options = std::get<tools::render::Options>(parsed);
    EXPECT_EQ(options.bpm, 75.0);
    EXPECT_DOUBLE_EQ(options.settings.at(0).setting.value.number, 800.0);
}

} // namespace
