// The table of the factory bank, for tests of its programs.
#pragma once

#include "tools/bank/bank_table.h"
#include "tools/bank/whole_file.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace bank {

inline const Bank& factoryBank() {
    static const Bank bank = [] {
        const std::string path = QUILLON_SOURCE "/skins/factory_bank.tsv";
        const auto bytes = readWholeFile(path);
        return parseTable({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, path);
    }();
    return bank;
}

/// The name of a test of one program: its number, and the letters of its name.
inline std::string programTestName(const testing::TestParamInfo<std::size_t>& info) {
    std::string name = std::to_string(info.param) + "_";
    std::ranges::copy_if(factoryBank()[info.param].name, std::back_inserter(name),
                         [](unsigned char c) { return std::isalnum(c) != 0; });
    return name;
}

} // namespace bank
