#include "tools/common/output_file.h"

#include "desk/child_process.h"
#include "platform/files.h"
#include "tools/common/tool_error.h"

#include <cerrno>
#include <random>
#include <string>
#include <system_error>

namespace tools {

namespace {

namespace files = std::filesystem;

/// The file that is really meant, where the name is that of a link to it, also to one that is not there yet.
files::path behindLinks(files::path target) {
    constexpr int mostLinks = 40;
    std::error_code error;
    for (int i = 0; i < mostLinks && files::is_symlink(target, error); ++i)
        target = (target.parent_path() / files::read_symlink(target, error)).lexically_normal();
    return target;
}

void checkTarget(const files::path& target) {
    std::error_code error;
    if (target.filename().empty() || files::is_directory(target, error))
        throw ToolError(target.string() + " is a folder; give the name of a file in it");
    if (files::exists(target, error) && !files::is_regular_file(target, error))
        throw ToolError(target.string() + " is not a plain file and will not be replaced");
    if (!files::is_directory(target.parent_path(), error))
        throw ToolError(target.string() + " cannot be written: there is no folder " +
                        target.parent_path().string());
}

std::string beginningOfParts(std::uint32_t process) {
    return ".quillon-" + std::to_string(process) + "-";
}

files::path unusedNameBeside(const files::path& target) {
    std::random_device random;
    return target.parent_path() /
           (beginningOfParts(desk::ownProcessId()) + std::to_string(random()) + ".part");
}

/// What is under a name, so that it can be brought back.
class KeptFile {
  public:
    explicit KeptFile(const files::path& target) : target_(target), kept_(unusedNameBeside(target)) {
        std::error_code error;
        wasThere_ = files::exists(target, error);
        if (!wasThere_)
            return;
        unfinished_.emplace(kept_, desk::UnfinishedPath::Kind::file);
        files::create_hard_link(target, kept_, error);
        if (error) // not every disk has them
            files::copy_file(target, kept_, error);
    }
    ~KeptFile() {
        std::error_code ignored;
        files::remove(kept_, ignored);
    }
    KeptFile(const KeptFile&) = delete;
    KeptFile& operator=(const KeptFile&) = delete;

    /// Whether that is under its name again.
    bool putBack() const {
        std::error_code error;
        if (wasThere_)
            files::rename(kept_, target_, error);
        else
            files::remove(target_, error);
        return !error;
    }

  private:
    files::path target_;
    files::path kept_;
    bool wasThere_ = false;
    std::optional<desk::UnfinishedPath> unfinished_;
};

} // namespace

OutputFile::OutputFile(const files::path& target) : target_(behindLinks(target)) {
    checkTarget(target_);
    temporary_ = unusedNameBeside(target_);
    unfinished_.emplace(temporary_, desk::UnfinishedPath::Kind::file);
    if (!desk::makeNewFile(temporary_))
        throw ToolError(target.string() + " cannot be written: " + std::generic_category().message(errno));
}

OutputFile::~OutputFile() {
    std::error_code ignored;
    if (!isCommitted_)
        files::remove(temporary_, ignored);
}

void OutputFile::commit() {
    if (const std::error_code error = platform::giveName(temporary_, target_))
        throw ToolError(target_.string() + " cannot be written: " + error.message());
    isCommitted_ = true;
    unfinished_.reset();
}

void commitBoth(OutputFile& first, OutputFile& second) {
    const KeptFile before(first.target());
    first.commit();
    try {
        second.commit();
    } catch (const ToolError& error) {
        if (before.putBack())
            throw;
        throw ToolError(error.what() + std::string("; ") + first.target().string() + " is written");
    }
}

bool isPartOf(std::uint32_t process, const files::path& file) {
    return file.filename().string().starts_with(beginningOfParts(process));
}

} // namespace tools
