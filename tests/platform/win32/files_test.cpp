// Who else may have a file open, and what the system forbids.

#include "platform/files.h"

#include "desk/private_folder.h"
#include "platform/folders.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <windows.h>
// After it, as they need its types.
#include <aclapi.h>
#include <sddl.h>

namespace {

using Bytes = std::vector<unsigned char>;
using platform::Sharing;

constexpr DWORD everySharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// A file that somebody else has open.
class OpenElsewhere {
  public:
    OpenElsewhere(const char* path, DWORD access, DWORD sharing)
        : handle_(CreateFileA(path, access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
    }
    ~OpenElsewhere() { CloseHandle(handle_); }
    OpenElsewhere(const OpenElsewhere&) = delete;
    OpenElsewhere& operator=(const OpenElsewhere&) = delete;

  private:
    HANDLE handle_;
};

/// A folder that holds one file of three bytes.
class SharedFiles : public testing::Test {
  protected:
    void SetUp() override { std::ofstream("file", std::ios::binary) << "old"; }

    desk::PrivateFolder folder;
    const Bytes old = {'o', 'l', 'd'};
    const std::size_t whole = static_cast<std::size_t>(-1);
};

TEST_F(SharedFiles, AreReadAlongWithOthersWhoReadAndWrite) {
    const OpenElsewhere reader("file", GENERIC_READ, everySharing);
    const OpenElsewhere writer("file", GENERIC_WRITE, everySharing);
    EXPECT_EQ(platform::readWholeFile("file"), old);
}

TEST_F(SharedFiles, AreReadAlongWithOneWhoLetsOthersOnlyRead) {
    const OpenElsewhere reader("file", GENERIC_READ, FILE_SHARE_READ);
    EXPECT_EQ(platform::readWholeFile("file"), old) << "nothing but reading is asked for";
}

TEST_F(SharedFiles, AreNotReadForOneselfWhileAnybodyHasThemOpen) {
    {
        const OpenElsewhere reader("file", GENERIC_READ, everySharing);
        EXPECT_EQ(platform::readWholeFile("file", whole, Sharing::nobody), std::nullopt);
    }
    EXPECT_EQ(platform::readWholeFile("file", whole, Sharing::nobody), old);
}

TEST_F(SharedFiles, AreNotReadWhereTheirOwnerSharesThemWithNobody) {
    const OpenElsewhere owner("file", GENERIC_READ, 0);
    EXPECT_EQ(platform::readWholeFile("file"), std::nullopt);
    EXPECT_EQ(platform::readWholeFile("file", whole, Sharing::nobody), std::nullopt);
    EXPECT_TRUE(platform::fileExists("file"));
}

TEST_F(SharedFiles, AreNotWrittenAndStayAsTheyAreWhileAnybodyHasThemOpen) {
    {
        const OpenElsewhere reader("file", GENERIC_READ, everySharing);
        EXPECT_FALSE(platform::writeWholeFile("file", "new", 3));
    }
    EXPECT_EQ(platform::readWholeFile("file"), old);
    EXPECT_TRUE(platform::writeWholeFile("file", "new", 3));
}

TEST_F(SharedFiles, AreLetGoOfAfterwards) {
    platform::readWholeFile("file");
    platform::readWholeFile("file", whole, Sharing::nobody);
    platform::writeWholeFile("file", "new", 3);
    const OpenElsewhere owner("file", GENERIC_READ | GENERIC_WRITE, 0);
}

TEST_F(SharedFiles, LeaveNothingBesideThem) {
    for (const char* name : {"file", "another"})
        EXPECT_TRUE(platform::writeWholeFile(name, "new", 3));
    std::vector<std::string> names = platform::listFolder(".");
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::string>{"another", "file"}));
}

TEST_F(SharedFiles, ThatAreReplacedKeepTheirAttributes) {
    constexpr DWORD attributes = FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN;
    if (!SetFileAttributesA("file", attributes) || GetFileAttributesA("file") != attributes)
        GTEST_SKIP() << "this file system keeps no such attributes";
    EXPECT_TRUE(platform::writeWholeFile("file", "new", 3));
    EXPECT_EQ(platform::readWholeFile("file"), (Bytes{'n', 'e', 'w'}));
    EXPECT_EQ(GetFileAttributesA("file"), attributes);
}

/// Who may do what with a file, as text.
std::string rightsOf(const char* path) {
    PSECURITY_DESCRIPTOR security = nullptr;
    char* text = nullptr;
    if (GetNamedSecurityInfoA(path, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                              nullptr, &security) != ERROR_SUCCESS)
        return "unknown";
    ConvertSecurityDescriptorToStringSecurityDescriptorA(security, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                         &text, nullptr);
    const std::string rights = text ? text : "no text";
    LocalFree(text);
    LocalFree(security);
    return rights;
}

/// Lets everybody do anything with a file, which a new one does not.
void openToEverybody(const char* path) {
    PSECURITY_DESCRIPTOR security = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA("D:P(A;;FA;;;WD)", SDDL_REVISION_1,
                                                                     &security, nullptr));
    EXPECT_TRUE(SetFileSecurityA(path, DACL_SECURITY_INFORMATION, security));
    LocalFree(security);
}

TEST_F(SharedFiles, ThatAreReplacedKeepTheRightsOfOthers) {
    std::ofstream("new") << "new";
    openToEverybody("file");
    const std::string rights = rightsOf("file");
    ASSERT_NE(rights, rightsOf("new"));
    EXPECT_TRUE(platform::writeWholeFile("file", "new", 3));
    EXPECT_EQ(rightsOf("file"), rights);
    openToEverybody("file");
    EXPECT_EQ(platform::giveName("new", "file"), std::error_code());
    EXPECT_EQ(rightsOf("file"), rights);
    EXPECT_FALSE(platform::fileExists("new"));
}

TEST_F(SharedFiles, AreGivenANameThatNothingHas) {
    EXPECT_EQ(platform::giveName("file", "another"), std::error_code());
    EXPECT_EQ(platform::readWholeFile("another"), old);
    EXPECT_FALSE(platform::fileExists("file"));
    EXPECT_TRUE(platform::giveName("missing", "another"));
    EXPECT_EQ(platform::readWholeFile("another"), old);
}

TEST_F(SharedFiles, ThatHaveTwoNamesKeepBoth) {
    if (!CreateHardLinkA("second", "file", nullptr))
        GTEST_SKIP() << "this file system knows no second names";
    EXPECT_TRUE(platform::writeWholeFile("second", "longer", 6));
    EXPECT_EQ(platform::readWholeFile("file")->size(), 6u);
    EXPECT_TRUE(platform::writeWholeFile("file", "new", 3));
    EXPECT_EQ(platform::readWholeFile("second"), (Bytes{'n', 'e', 'w'}));
}

TEST_F(SharedFiles, ThatAreWriteProtectedStayAsTheyAre) {
    ASSERT_TRUE(SetFileAttributesA("file", FILE_ATTRIBUTE_READONLY));
    const HANDLE allowed = CreateFileA("file", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (allowed != INVALID_HANDLE_VALUE) {
        CloseHandle(allowed);
        GTEST_SKIP() << "the superuser of the system below may write everything";
    }
    EXPECT_FALSE(platform::writeWholeFile("file", "new", 3));
    EXPECT_EQ(platform::readWholeFile("file"), old);
    EXPECT_EQ(platform::listFolder(".").size(), 1u);
}

TEST_F(SharedFiles, AreReadThoughTheyAreWriteProtected) {
    ASSERT_TRUE(SetFileAttributesA("file", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(platform::readWholeFile("file"), old);
    EXPECT_EQ(platform::readWholeFile("file", whole, Sharing::nobody), old);
}

TEST_F(SharedFiles, AreNotMadeByReading) {
    EXPECT_EQ(platform::readWholeFile("missing", whole, Sharing::nobody), std::nullopt);
    EXPECT_FALSE(platform::fileExists("missing"));
}

TEST_F(SharedFiles, AreFoundByEitherSlashAndInAnyLetterCase) {
    ASSERT_TRUE(CreateDirectoryA("Folder", nullptr));
    ASSERT_TRUE(platform::writeWholeFile("Folder/Map.bin", "x", 1));
    EXPECT_TRUE(platform::fileExists("folder\\MAP.BIN"));
    EXPECT_EQ(platform::readWholeFile("FOLDER\\map.bin"), Bytes{'x'});
}

TEST_F(SharedFiles, OfTooLongAPathAreNotThere) {
    const std::string path = folder.path() + '\\' + std::string(300, 'x');
    EXPECT_FALSE(platform::fileExists(path));
    EXPECT_EQ(platform::readWholeFile(path), std::nullopt);
    EXPECT_FALSE(platform::writeWholeFile(path, "x", 1));
}

} // namespace
