// SPDX-License-Identifier: Apache-2.0
// Saving through a temporary file.
#include "persistence/file_save.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

namespace {

namespace fs = std::filesystem;

// Links may point at each other; the system follows as many.
constexpr int mostLinks = 40;

std::atomic<unsigned> saves{0};

TM_String folderOf(const TM_String& path) {
    const TM_String folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

} // namespace

FileSave::FileSave(const TM_String& path) {
    if (resolveTarget(path) && openTemporary()) takeOverPermissions();
}

FileSave::~FileSave() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

bool FileSave::fail(const TM_String& reason) {
    if (reason_.empty()) reason_ = "cannot be written: " + reason;
    return false;
}

bool FileSave::fail(int error) { return fail(systemErrorText(error)); }

bool FileSave::resolveTarget(const TM_String& path) {
    if (path.empty() || path.find('\0') != TM_String::npos) return fail("not a file name");
    fs::path target = path;
    std::error_code error;
    for (int links = 0; fs::is_symlink(target, error); ++links) {
        if (links == mostLinks) return fail(ELOOP);
        const fs::path next = fs::read_symlink(target, error);
        if (error) return fail(error.value());
        target = target.parent_path() / next;
    }
    target_ = target.string();
    struct stat status {};
    if (::stat(target_.c_str(), &status) != 0) return errno == ENOENT || fail(errno);
    if (S_ISDIR(status.st_mode)) return fail("a folder, not a file");
    if (!S_ISREG(status.st_mode)) return fail("not a regular file");
    // Replacing needs no right to the file itself, but a write-protected one is meant to stay.
    return ::faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) == 0 || fail(errno);
}

bool FileSave::openTemporary() {
    const TM_String stem = folderOf(target_) + "/.sluice-save-" + std::to_string(::getpid()) + "-";
    do {
        temporary_ = stem + std::to_string(++saves);
        descriptor_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (descriptor_ < 0 && errno == EEXIST);
    if (descriptor_ >= 0) return true;
    const int error = errno;
    temporary_.clear();
    return fail(error);
}

void FileSave::takeOverPermissions() {
    struct stat old {};
    if (::stat(target_.c_str(), &old) != 0) return;
    constexpr mode_t allPermissions = 07777;
    // The owner first: changing it takes some permissions away. Where it may not be given, the file
    // belongs to who saved it.
    const bool isGiven = ::fchown(descriptor_, old.st_uid, old.st_gid) == 0;
    const mode_t kept = isGiven ? allPermissions : 0777;
    if (::fchmod(descriptor_, old.st_mode & kept) != 0) fail(errno);
}

bool FileSave::write(std::string_view piece) {
    while (reason_.empty() && !piece.empty()) {
        const ssize_t count = ::write(descriptor_, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return fail(count < 0 ? errno : ENOSPC);
        piece.remove_prefix(static_cast<std::size_t>(count));
    }
    return reason_.empty();
}

bool FileSave::commit() {
    if (!reason_.empty()) return false;
    if (::fsync(descriptor_) != 0) return fail(errno);
    const int closed = ::close(descriptor_);
    descriptor_ = -1;
    if (closed != 0) return fail(errno);
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) return fail(errno);
    temporary_.clear();
    // The name is on the disk once its folder is. The file is whole either way, so a folder that
    // cannot be flushed is no failure.
    const int folder = ::open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return true;
}

} // namespace tidemark::sluice::graph
