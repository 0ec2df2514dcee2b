// What Explorer shows of the modules' files.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

namespace {

class VersionResource : public testing::TestWithParam<std::string> {
  protected:
    VersionResource() {
        DWORD ignored = 0;
        const std::string& file = GetParam();
        block_.resize(GetFileVersionInfoSizeA(file.c_str(), &ignored));
        if (!block_.empty())
            GetFileVersionInfoA(file.c_str(), 0, static_cast<DWORD>(block_.size()), block_.data());
    }

    std::string text(const std::string& name) {
        char* value = nullptr;
        UINT length = 0;
        const std::string path = "\\StringFileInfo\\040904B0\\" + name;
        if (block_.empty() ||
            !VerQueryValueA(block_.data(), path.c_str(), reinterpret_cast<void**>(&value), &length))
            return "nothing";
        return value;
    }

    std::vector<char> block_;
};

TEST_P(VersionResource, NamesTheProductAndItsMaker) {
    EXPECT_EQ(text("ProductName"), "Quillon Multitap Delay");
    EXPECT_EQ(text("FileDescription"), "Quillon Multitap Delay");
    EXPECT_EQ(text("CompanyName"), "Quillon Software");
    EXPECT_EQ(text("OriginalFilename"), GetParam().substr(GetParam().rfind('/') + 1));
}

TEST_P(VersionResource, HasTheVersionOfTheProject) {
    EXPECT_EQ(text("FileVersion"), QUILLON_VERSION);
    EXPECT_EQ(text("ProductVersion"), QUILLON_VERSION);
    VS_FIXEDFILEINFO* numbers = nullptr;
    UINT length = 0;
    ASSERT_FALSE(block_.empty());
    ASSERT_TRUE(VerQueryValueA(block_.data(), "\\", reinterpret_cast<void**>(&numbers), &length));
    const DWORD high = numbers->dwFileVersionMS, low = numbers->dwFileVersionLS;
    EXPECT_EQ(std::to_string(HIWORD(high)) + "." + std::to_string(LOWORD(high)) + "." +
                  std::to_string(HIWORD(low)),
              QUILLON_VERSION);
}

INSTANTIATE_TEST_SUITE_P(Modules, VersionResource, testing::Values(QUILLON_LIBRARY, QUILLON_CLAP_MODULE));

} // namespace
