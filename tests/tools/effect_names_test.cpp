// Parameters and programs by what people call them.

#include "tools/common/effect_names.h"

#include "desk/private_folder.h"
#include "parameters/host_panel.h"
#include "tools/common/effect_library.h"
#include "tools/common/tool_error.h"

#include <gtest/gtest.h>

namespace {

using tools::findParameter;
using tools::findProgram;

class EffectNames : public testing::Test {
  protected:
    desk::PrivateFolder folder;
    const host::Library& quillonLibrary = tools::loadForGood(QUILLON_LIBRARY);
    const host::Library& probeLibrary = tools::loadForGood(PROBES "/probe.so");
    host::Plugin quillon{quillonLibrary};
    host::Plugin probe{probeLibrary};

    template <typename Action>
    void expectRefused(Action&& action, const std::string& reason) {
        try {
            action();
            FAIL() << "was found; expected: " << reason;
        } catch (const tools::ToolError& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        }
    }
};

TEST_F(EffectNames, GiveAParameterByNumber) {
    EXPECT_EQ(findParameter(quillon, "0"), 0);
    EXPECT_EQ(findParameter(quillon, " 20 "), 20);
    expectRefused([&] { findParameter(quillon, "21"); }, "there is no parameter \"21\"");
    expectRefused([&] { findParameter(quillon, "-1"); }, "there is no parameter \"-1\"");
}

TEST_F(EffectNames, GiveAParameterByNameWithoutItsTrailingBlank) {
    EXPECT_EQ(findParameter(quillon, "Pre LP"), 9);
    EXPECT_EQ(findParameter(quillon, "pre hp "), 10);
    EXPECT_EQ(findParameter(quillon, "TAPS #"), 1);
    EXPECT_EQ(findParameter(probe, "gain"), 0);
}

TEST_F(EffectNames, GiveAParameterByItsFullName) {
    EXPECT_EQ(findParameter(quillon, "Stretch dly"), 3);
    EXPECT_EQ(findParameter(quillon, "Amp Decay"), 4);
    EXPECT_EQ(findParameter(quillon, "Stretch"), 3);
    EXPECT_EQ(findParameter(quillon, "Amp Deca"), 4);
    EXPECT_EQ(findParameter(probe, "LongName that goes on"), 7);
}

TEST_F(EffectNames, GiveAParameterByItsNameInTheWindow) {
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id)
        EXPECT_EQ(findParameter(quillon, parameters::panelEntry(id).name), id);
    EXPECT_EQ(findParameter(quillon, "base  LENGTH "), 0);
    EXPECT_EQ(findParameter(quillon, "fade / swell"), 4);
    expectRefused([&] { findParameter(probe, "Base length"); }, "there is no parameter \"Base length\"");
}

TEST_F(EffectNames, ComeAsASuggestionForWhatIsNearlyOne) {
    const auto expectSuggestion = [&](const std::string& written, const std::string& suggested) {
        expectRefused([&] { findParameter(quillon, written); },
                      "no parameter \"" + written + "\"; did you mean " + suggested + "?");
    };
    expectSuggestion("Feedbak", "\"Feedback\"");
    expectSuggestion("taps", "\"Taps #\"");
    expectSuggestion("fade/swell", "\"Fade / Swell\"");
    expectSuggestion("Amp Decya", "\"Amp Decay\"");
    expectSuggestion("Base lenght", "\"Base length\"");
    expectSuggestion("LFO Dp and more", "\"LFO Dp\"");
    expectSuggestion("sweep", "\"Sweep rate\" or \"Sweep depth\"");
    expectRefused([&] { findParameter(quillon, "Volume"); }, "\"Volume\"; quillon-render --list shows them");
    expectRefused([&] { findParameter(quillon, "21"); }, "\"21\"; quillon-render --list shows them");
    expectRefused([&] { findParameter(probe, "gian"); }, "did you mean \"Gain\"?");
    const auto programs = tools::programNames(quillon);
    expectRefused([&] { findProgram(programs, "Skiping Stone"); }, "did you mean \"Skipping Stone\"?");
}

TEST_F(EffectNames, DoNotMistakeALongNameForAShortOne) {
    expectRefused([&] { findParameter(quillon, "LFO Dp and more"); }, "there is no parameter");
    expectRefused([&] { findParameter(quillon, "Curve of it"); }, "there is no parameter");
    expectRefused([&] { findParameter(quillon, ""); }, "there is no parameter");
}

TEST_F(EffectNames, SayWhichParametersAreMeant) {
    expectRefused([&] { findParameter(quillon, "not used"); }, "give the number: 17, 18, 19 and 20");
    expectRefused([&] { findParameter(probe, "twin"); }, "give the number: 4 and 5");
}

TEST_F(EffectNames, GiveAProgramByNumber) {
    const std::vector<std::string> names(128, "Fiber Cascade");
    EXPECT_EQ(findProgram(names, "0"), 0);
    EXPECT_EQ(findProgram(names, "127"), 127);
    expectRefused([&] { findProgram(names, "128"); }, "there is no program 128; they are numbered 0 to 127");
}

TEST_F(EffectNames, GiveAProgramByNameOrByTheBeginningOfIt) {
    const auto names = tools::programNames(probe);
    ASSERT_EQ(names.size(), 5u);
    EXPECT_EQ(findProgram(names, "first"), 0);
    EXPECT_EQ(findProgram(names, "Second"), 1) << "a whole name comes before a beginning";
    EXPECT_EQ(findProgram(names, "second h"), 2);
    EXPECT_EQ(findProgram(names, "F"), 0);
}

TEST_F(EffectNames, SayWhichProgramsAreMeant) {
    const auto names = tools::programNames(probe);
    expectRefused([&] { findProgram(names, "Twice"); },
                  "could be several programs; give the number: 3 and 4");
    expectRefused([&] { findProgram(names, "s"); }, "could be several programs; give the number: 1 and 2");
    expectRefused([&] { findProgram(names, "Third"); }, "there is no program \"Third\"");
    const std::vector<std::string> equal(128, "Fiber Cascade");
    expectRefused([&] { findProgram(equal, "Fiber Cascade"); }, "0, 1, 2, 3, 4, 5 and so on");
    expectRefused([&] { findProgram({}, "0"); }, "has no programs");
}

TEST_F(EffectNames, AreTheOnesThatTheEffectGives) {
    const auto names = tools::programNames(quillon);
    ASSERT_EQ(names.size(), 128u);
    for (std::int32_t program : {0, 5, 127}) {
        quillon.setProgram(program);
        EXPECT_EQ(names[static_cast<std::size_t>(program)], quillon.programName());
    }
}

} // namespace
