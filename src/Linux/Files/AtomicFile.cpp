#include "Linux/Files/AtomicFile.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit {

namespace fs = std::filesystem;

namespace {

constexpr mode_t forTheOwner = 0600;

std::error_code lastError() { return {errno, std::generic_category()}; }

} // namespace

AtomicFile::AtomicFile(fs::path target, Name name) : target_(std::move(target)), file_(-1) {
    std::string made = target_.string();
    if (name == Name::ofItsOwn) {
        made += ".XXXXXX";
        file_ = Descriptor(::mkostemp(made.data(), O_CLOEXEC));
    } else {
        made += ".new";
        ::unlink(made.c_str());
        file_ =
            Descriptor(::open(made.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, forTheOwner));
    }
    if (!file_) {
        error_ = lastError();
        return;
    }
    name_ = std::move(made);
    ::fchmod(file_.get(), forTheOwner);
}

AtomicFile::~AtomicFile() {
    if (!name_.empty())
        ::unlink(name_.c_str());
}

std::error_code AtomicFile::write(std::string_view content) {
    while (!error_ && !content.empty()) {
        const ssize_t count = ::write(file_.get(), content.data(), content.size());
        if (count < 0 && errno != EINTR)
            error_ = lastError();
        else if (count > 0)
            content.remove_prefix(static_cast<std::size_t>(count));
    }
    return error_;
}

std::error_code AtomicFile::put() {
    if (!error_ && ::rename(name_.c_str(), target_.c_str()) != 0)
        error_ = lastError();
    if (!error_)
        name_.clear();
    return error_;
}

std::error_code AtomicFile::sync(const Descriptor& file) {
    return ::fsync(file.get()) == 0 ? std::error_code() : lastError();
}

// After a power cut a renamed file exists only if its folder has been written as well.
void AtomicFile::syncFolderOf(const fs::path& file) {
    const Descriptor opened(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        ::fsync(opened.get());
}

} // namespace velmorquit
