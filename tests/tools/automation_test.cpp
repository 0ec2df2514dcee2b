// Reading automation files.

#include "tools/common/tool_error.h"
#include "tools/render/automation.h"

#include <gtest/gtest.h>

namespace {

using tools::WantedValue;
using tools::render::AutomationLine;
using tools::render::parseAutomation;

AutomationLine onlyLine(std::string_view text) {
    const auto lines = parseAutomation(text);
    EXPECT_EQ(lines.size(), 1u) << text;
    return lines.empty() ? AutomationLine() : lines.front();
}

void expectRefused(std::string_view text, const std::string& reason) {
    try {
        parseAutomation(text);
        FAIL() << text << " was read; expected: " << reason;
    } catch (const tools::ToolError& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
    }
}

TEST(Automation, ReadsTimeParameterAndValue) {
    const AutomationLine line = onlyLine("0.5 Feedback 0.9\n");
    EXPECT_EQ(line.line, 1);
    EXPECT_EQ(line.time.frameAt(48000.0), 24000);
    EXPECT_EQ(line.setting.parameter, "Feedback");
    EXPECT_EQ(line.setting.value.kind, WantedValue::Kind::normalised);
    EXPECT_DOUBLE_EQ(line.setting.value.number, 0.9);
}

TEST(Automation, TakesSecondsMillisecondsAndSamples) {
    EXPECT_EQ(onlyLine("2 6 0").time.frameAt(44100.0), 88200);
    EXPECT_EQ(onlyLine("2s 6 0").time.frameAt(44100.0), 88200);
    EXPECT_EQ(onlyLine("250ms 6 0").time.frameAt(48000.0), 12000);
    EXPECT_EQ(onlyLine("12345smp 6 0").time.frameAt(48000.0), 12345);
    EXPECT_EQ(onlyLine("12345samples 6 0").time.frameAt(8000.0), 12345);
}

TEST(Automation, RoundsToTheNearestSample) {
    EXPECT_EQ(onlyLine("0.00006 6 0").time.frameAt(10000.0), 1);
    EXPECT_EQ(onlyLine("0.00004 6 0").time.frameAt(10000.0), 0);
}

TEST(Automation, TakesCommasBlanksAndTabs) {
    for (const char* text : {"1,Bs Lgh 1,0.5", "1 , Bs Lgh 1 , 0.5", "1 Bs Lgh 1 0.5", "1\tBs Lgh 1\t0.5",
                             "1 \"Bs Lgh 1\" 0.5", "1,\"Bs Lgh 1\",0.5"}) {
        const AutomationLine line = onlyLine(text);
        EXPECT_EQ(line.setting.parameter, "Bs Lgh 1") << text;
        EXPECT_DOUBLE_EQ(line.setting.value.number, 0.5) << text;
    }
}

TEST(Automation, KeepsANameThatEndsInANumberSign) {
    EXPECT_EQ(onlyLine("1 Taps # 0.5").setting.parameter, "Taps #");
    EXPECT_EQ(onlyLine("1,Taps #,0.5").setting.parameter, "Taps #");
    EXPECT_EQ(onlyLine("1 \"Taps #\" 0.5 # not this").setting.parameter, "Taps #");
}

TEST(Automation, KeepsCommasAndBlanksOfADisplayBetweenQuotes) {
    const AutomationLine line = onlyLine("1,Set,\"display:LFO Off,Use Pitch Off\"");
    EXPECT_EQ(line.setting.value.kind, WantedValue::Kind::shownText);
    EXPECT_EQ(line.setting.value.text, "LFO Off,Use Pitch Off");
}

TEST(Automation, PassesOverCommentsEmptyLinesAndAHeading) {
    const auto lines =
        parseAutomation("\xEF\xBB\xBFtime,parameter,value\r\n# all of it\r\n\r\n   \r\n1,6,0.5\r\n"
                        "  # more\n2,6,0.6 # the end\n3 6 0.7");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].line, 5);
    EXPECT_EQ(lines[1].line, 7);
    EXPECT_EQ(lines[2].line, 8);
}

TEST(Automation, ReadsRamps) {
    for (const char* text :
         {"2s Bs Lgh 1 0.2 -> 0.9 over 4s # up", "2,Bs Lgh 1,0.2 -> 0.9 over 4000ms",
          "2\t\"Bs Lgh 1\"\t0.2 -> 0.9\tover 4", "2000ms , Bs Lgh 1 ,  0.2  ->  0.9  over  4s\n"}) {
        const AutomationLine line = onlyLine(text);
        EXPECT_EQ(line.time.frameAt(1000.0), 2000) << text;
        EXPECT_EQ(line.setting.parameter, "Bs Lgh 1") << text;
        EXPECT_DOUBLE_EQ(line.setting.value.number, 0.2) << text;
        ASSERT_TRUE(line.ramp.has_value()) << text;
        EXPECT_DOUBLE_EQ(line.ramp->target.number, 0.9) << text;
        EXPECT_EQ(line.ramp->duration.frameAt(1000.0), 4000) << text;
    }
    EXPECT_FALSE(onlyLine("2s Feedback 0.2").ramp.has_value());
    const AutomationLine shown = onlyLine("0,Base length,250ms -> display:1 s over 96000smp");
    EXPECT_EQ(shown.setting.value.kind, WantedValue::Kind::shownNumber);
    EXPECT_EQ(shown.ramp->target.text, "1 s");
    EXPECT_EQ(shown.ramp->duration.frameAt(48000.0), 96000);
}

TEST(Automation, RefusesARampThatIsNotComplete) {
    constexpr const char* form = "line 1: a ramp is: time, parameter, value -> value over duration";
    for (const char* text :
         {"1 Gain -> 0.5 over 2s", "1 Gain 0.1 -> 0.5", "1 Gain 0.1 -> 0.5 over", "1 Gain 0.1 -> 0.5 in 2s",
          "1,Gain,0.1 -> 0.5", "1,Gain, -> 0.5 over 2s", "1,Gain,0.1 -> over 2s"})
        expectRefused(text, form);
    expectRefused("1 Gain 0.1 -> 1.5 over 2s", "line 1: a value without a unit must be from 0 to 1");
    expectRefused("1 Gain 0.1 -> 0.5 over soon", "line 1: \"soon\" is not a time");
    expectRefused("1 Gain 0.1 -> 0.5 over 0s", "line 1: a ramp needs a duration above 0");
}

TEST(Automation, OfNothingIsNothing) {
    EXPECT_TRUE(parseAutomation("").empty());
    EXPECT_TRUE(parseAutomation("\n\n# only words\n").empty());
}

TEST(Automation, NamesTheLineThatIsWrong) {
    expectRefused("1 6 0.5\n1 6\n", "line 2: a line is: time, parameter, value");
    expectRefused("1,6\n", "line 1: a line is");
    expectRefused("1,6,0.5,7\n", "line 1: a line is");
    expectRefused("1,,0.5\n", "line 1: a line is");
    expectRefused("\nsoon Feedback 0.5\n", "line 2: \"soon\" is not a time");
    expectRefused("-1 6 0.5\n", "line 1: \"-1\" is not a time");
    expectRefused("1.5smp 6 0.5\n", "line 1: \"1.5smp\" is not a whole number of samples");
    expectRefused("1min 6 0.5\n", "line 1: \"1min\" is not a time");
    expectRefused("1 6 1.5\n", "line 1: a value without a unit must be from 0 to 1");
    expectRefused("1 6 loud\n", "line 1: \"loud\" is not a value");
    expectRefused("1 \"Bs Lgh 1 0.5\n", "line 1: a quotation mark is not closed");
}

} // namespace
