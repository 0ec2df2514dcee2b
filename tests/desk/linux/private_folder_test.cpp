#include "desk/private_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>

namespace {

namespace files = std::filesystem;
using desk::PrivateFolder;

TEST(PrivateFolder, IsReadableByNobodyElse) {
    const PrivateFolder folder;
    EXPECT_EQ(files::status(folder.path()).permissions(), files::perms::owner_all);
}

TEST(PrivateFolder, LeavesWhatALinkInItPointsTo) {
    const PrivateFolder outer;
    files::create_directory("kept");
    std::ofstream("kept/file") << "precious";
    {
        const PrivateFolder inner;
        files::create_directory_symlink(files::path(outer.path()) / "kept", "link");
    }
    EXPECT_TRUE(files::exists("kept/file"));
}

/// Where the system keeps temporary files as long as this object lives.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const char* path) {
        if (const char* usual = std::getenv("TMPDIR"))
            usual_ = usual;
        setenv("TMPDIR", path, 1);
    }
    ~TemporaryFolder() {
        if (usual_)
            setenv("TMPDIR", usual_->c_str(), 1);
        else
            unsetenv("TMPDIR");
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  private:
    std::optional<std::string> usual_;
};

TEST(PrivateFolder, ThrowsIfNoneCanBeMade) {
    const files::path before = files::current_path();
    const TemporaryFolder temporary("/no/such/folder");
    EXPECT_THROW(PrivateFolder(), std::runtime_error);
    EXPECT_EQ(files::current_path(), before);
}

TEST(PrivateFolder, HasAWholePathWhereTheSystemsIsNamedFromTheCurrentFolder) {
    const PrivateFolder outer;
    const TemporaryFolder temporary(".");
    std::string path;
    {
        const PrivateFolder inner;
        path = inner.path();
        EXPECT_TRUE(files::path(path).is_absolute()) << path;
        EXPECT_TRUE(files::equivalent(files::current_path(), path));
    }
    EXPECT_FALSE(files::exists(path));
}

} // namespace
