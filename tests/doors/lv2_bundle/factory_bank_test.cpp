// The factory bank as the bundle's presets are made of it.
#include "doors/lv2_bundle/factory_bank.h"

#include "desk/private_folder.h"
#include "platform/files.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace {

using lv2_bundle::readFactoryBank;

/// Why the bank at `path` cannot be used; empty if it can.
std::string faultOf(const std::string& path) {
    try {
        readFactoryBank(path);
        return "";
    } catch (const std::runtime_error& fault) {
        return fault.what();
    }
}

TEST(FactoryBank, HasAllProgramsInTheirOrder) {
    const auto programs = readFactoryBank(QUILLON_SOURCE "/skins/default.fxb");
    ASSERT_EQ(programs.size(), 128u);
    EXPECT_STREQ(programs.front().name, "Skipping Stone");
}

TEST(FactoryBank, ThatCannotBeUsedIsNotPassedOver) {
    const desk::PrivateFolder folder;
    EXPECT_EQ(faultOf("nowhere.fxb"), "Default bank error: file not found");
    const auto bank = platform::readWholeFile(QUILLON_SOURCE "/skins/default.fxb", 1000000).value();
    platform::writeWholeFile("cut.fxb", bank.data(), bank.size() - 1);
    EXPECT_EQ(faultOf("cut.fxb"), "Default bank error: not an fxb file");
    platform::writeWholeFile("header.fxb", bank.data(), 159);
    EXPECT_EQ(faultOf("header.fxb"), "Default bank error: not an fxb file");
}

} // namespace
