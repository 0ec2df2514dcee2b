#include "platform/files.h"

#include "desk/private_folder.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace files = std::filesystem;
using Bytes = std::vector<unsigned char>;

TEST(SpecialFiles, AreNotWaitedFor) {
    const desk::PrivateFolder folder;
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(platform::readWholeFile("pipe"), std::nullopt) << "nobody waits for the pipe's other end";
    EXPECT_FALSE(platform::writeWholeFile("pipe", "x", 1));
    EXPECT_TRUE(files::is_fifo("pipe"));
}

TEST(SpecialFiles, CannotBeWrittenOnAFullDisk) {
    EXPECT_FALSE(platform::writeWholeFile("/dev/full", "x", 1));
    EXPECT_TRUE(files::is_character_file("/dev/full"));
}

/// Every file that this process writes ends at `bytes`, as on a disk that is full.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    void (*signal_)(int);
    rlimit before_ = {};
};

/// A folder that holds one file of six bytes and takes no other.
class ReadOnlyFolder {
  public:
    ReadOnlyFolder() {
        files::create_directory("closed");
        EXPECT_TRUE(platform::writeWholeFile("closed/file", "before", 6));
        EXPECT_EQ(chmod("closed/file", 0666), 0);
        EXPECT_EQ(chmod(".", 0755), 0);
        EXPECT_EQ(chmod("closed", 0555), 0);
        // The superuser may write everywhere.
        if (geteuid() == 0) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    ~ReadOnlyFolder() {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
        }
        EXPECT_EQ(chmod("closed", 0755), 0);
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
};

class WholeFiles : public testing::Test {
  protected:
    static Bytes bytesOf(const char* text) { return {text, text + std::string(text).size()}; }
    static std::vector<std::string> names(const char* place) {
        std::vector<std::string> found;
        for (const auto& entry : files::directory_iterator(place))
            found.push_back(entry.path().filename());
        return found;
    }
    static mode_t modeOf(const char* path) {
        struct stat status = {};
        EXPECT_EQ(stat(path, &status), 0);
        return status.st_mode & 07777;
    }

    desk::PrivateFolder folder;
    const Bytes longer = Bytes(100, 'n');
};

TEST_F(WholeFiles, AreNotBegunOnAFullDisk) {
    for (const rlim_t room : {0u, 40u, 99u}) {
        const FullDisk disk(room);
        EXPECT_FALSE(platform::writeWholeFile("file", longer.data(), longer.size())) << room;
        EXPECT_EQ(names("."), std::vector<std::string>()) << room;
    }
}

TEST_F(WholeFiles, KeepWhatTheyHeldOnAFullDisk) {
    ASSERT_TRUE(platform::writeWholeFile("file", "before", 6));
    for (const rlim_t room : {0u, 3u, 40u, 99u}) {
        const FullDisk disk(room);
        EXPECT_FALSE(platform::writeWholeFile("file", longer.data(), longer.size())) << room;
        EXPECT_EQ(platform::readWholeFile("file"), bytesOf("before")) << room;
        EXPECT_EQ(names("."), std::vector<std::string>{"file"}) << room;
    }
}

TEST_F(WholeFiles, TakeTheOldOnesPlaceInOneStep) {
    ASSERT_TRUE(platform::writeWholeFile("file", "before", 6));
    std::FILE* const reader = std::fopen("file", "r");
    ASSERT_TRUE(platform::writeWholeFile("file", "later", 5));
    char text[100] = {};
    EXPECT_EQ(std::fread(text, 1, sizeof text - 1, reader), 6u);
    std::fclose(reader);
    EXPECT_STREQ(text, "before") << "whoever has the old file open reads it to its end";
    EXPECT_EQ(platform::readWholeFile("file"), bytesOf("later"));
    EXPECT_EQ(names("."), std::vector<std::string>{"file"});
}

TEST_F(WholeFiles, AreWrittenInPlaceInAReadOnlyFolder) {
    const ReadOnlyFolder closed;
    for (const char* text : {"a longer text", "short", ""}) {
        EXPECT_TRUE(platform::writeWholeFile("closed/file", text, std::string(text).size()));
        EXPECT_EQ(platform::readWholeFile("closed/file"), bytesOf(text));
    }
    EXPECT_FALSE(platform::writeWholeFile("closed/another", "x", 1));
    EXPECT_EQ(names("closed"), std::vector<std::string>{"file"});
}

TEST_F(WholeFiles, AreAsTheyWereWhereTheyCannotBeWrittenInPlaceToTheirEnd) {
    const ReadOnlyFolder closed;
    for (const rlim_t room : {6u, 40u, 99u}) {
        const FullDisk disk(room);
        EXPECT_FALSE(platform::writeWholeFile("closed/file", longer.data(), longer.size())) << room;
        EXPECT_EQ(platform::readWholeFile("closed/file"), bytesOf("before")) << room;
    }
}

TEST_F(WholeFiles, ThatAreWriteProtectedStayAsTheyAre) {
    const ReadOnlyFolder closed;
    if (getuid() == 0) {
        ASSERT_EQ(seteuid(0), 0);
        ASSERT_EQ(chmod(".", 0777), 0);
        ASSERT_EQ(seteuid(65534), 0);
    }
    ASSERT_TRUE(platform::writeWholeFile("file", "before", 6));
    ASSERT_EQ(chmod("file", 0444), 0);
    EXPECT_FALSE(platform::writeWholeFile("file", "later", 5));
    EXPECT_EQ(platform::readWholeFile("file"), bytesOf("before"));
    files::remove("file");
}

TEST_F(WholeFiles, KeepTheirPermissions) {
    const mode_t mask = umask(022);
    ASSERT_TRUE(platform::writeWholeFile("file", "before", 6));
    EXPECT_EQ(modeOf("file"), 0644u) << "as every new file";
    for (const mode_t mode : {0600u, 0664u, 0755u}) {
        ASSERT_EQ(chmod("file", mode), 0);
        ASSERT_TRUE(platform::writeWholeFile("file", "later", 5));
        EXPECT_EQ(modeOf("file"), mode);
    }
    umask(mask);
}

TEST_F(WholeFiles, KeepTheirLinks) {
    files::create_directory("sub");
    ASSERT_TRUE(platform::writeWholeFile("sub/file", "before", 6));
    files::create_symlink("sub/file", "soft");
    files::create_symlink("soft", "softer");
    ASSERT_TRUE(platform::writeWholeFile("softer", "later", 5));
    EXPECT_TRUE(files::is_symlink("softer"));
    EXPECT_TRUE(files::is_symlink("soft"));
    EXPECT_EQ(platform::readWholeFile("sub/file"), bytesOf("later"));

    files::create_hard_link("sub/file", "hard");
    ASSERT_TRUE(platform::writeWholeFile("hard", "latest", 6));
    EXPECT_EQ(platform::readWholeFile("sub/file"), bytesOf("latest"));

    files::create_symlink("sub/to come", "dangling");
    ASSERT_TRUE(platform::writeWholeFile("dangling", "first", 5));
    EXPECT_TRUE(files::is_symlink("dangling"));
    EXPECT_EQ(platform::readWholeFile("sub/to come"), bytesOf("first"));

    files::create_symlink("circle", "circle");
    EXPECT_FALSE(platform::writeWholeFile("circle", "x", 1));
}

TEST_F(WholeFiles, MayHaveTheLongestNameThatThereIs) {
    const std::string name(255, 'n');
    for (const char* text : {"before", "later"}) {
        EXPECT_TRUE(platform::writeWholeFile(name, text, 5));
        EXPECT_EQ(names("."), std::vector<std::string>{name});
    }
}

/// Folders within each other; the innermost is the current directory and has a path of `length` characters.
void enterFolderWithPathOf(std::size_t length) {
    std::string path = files::current_path();
    while (path.size() < length) {
        std::size_t step = std::min<std::size_t>(length - path.size() - 1, 200);
        if (length - path.size() - 1 - step == 1)
            --step; // a slash needs a name behind it
        const std::string name(step, 'd');
        ASSERT_TRUE(files::create_directory(name));
        ASSERT_EQ(chdir(name.c_str()), 0);
        path += "/" + name;
    }
}

TEST_F(WholeFiles, MayHaveTheLongestPathThatThereIs) {
    constexpr std::size_t longest = PATH_MAX - 1;
    const std::string name = "file.bin";
    ASSERT_NO_FATAL_FAILURE(enterFolderWithPathOf(longest - name.size() - 1));
    const std::string path = files::current_path() / name;
    ASSERT_EQ(path.size(), longest);
    for (const char* text : {"before", "later"}) {
        EXPECT_TRUE(platform::writeWholeFile(path, text, 5));
        EXPECT_EQ(platform::readWholeFile(path), bytesOf(std::string(text).substr(0, 5).c_str()));
        EXPECT_EQ(names("."), std::vector<std::string>{name});
    }
    const FullDisk disk(40);
    EXPECT_FALSE(platform::writeWholeFile(path, longer.data(), longer.size()));
    EXPECT_EQ(platform::readWholeFile(path), bytesOf("later"));
    files::remove(name);
    EXPECT_FALSE(platform::writeWholeFile(path, longer.data(), longer.size()));
    EXPECT_EQ(names("."), std::vector<std::string>());
    ASSERT_EQ(chdir(folder.path().c_str()), 0);
}

} // namespace
