#include "tools/common/output_file.h"

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

files::path unusedNameBeside(const files::path& target) {
    std::random_device random;
    return target.parent_path() / (".quillon-" + std::to_string(random()) + ".part");
}

} // namespace

OutputFile::OutputFile(const files::path& target) : target_(behindLinks(target)) {
    checkTarget(target_);
    temporary_ = unusedNameBeside(target_);
    unfinished_.emplace(temporary_, platform::UnfinishedPath::Kind::file);
    if (!platform::makeNewFile(temporary_))
        throw ToolError(target.string() + " cannot be written: " + std::generic_category().message(errno));
}

OutputFile::~OutputFile() {
    std::error_code ignored;
    if (!isCommitted_)
        files::remove(temporary_, ignored);
}

void OutputFile::commit() {
    std::error_code error;
    files::rename(temporary_, target_, error);
    if (error)
        throw ToolError(target_.string() + " cannot be written: " + error.message());
    isCommitted_ = true;
    unfinished_.reset();
}

} // namespace tools
