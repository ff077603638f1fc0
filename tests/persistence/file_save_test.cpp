// SPDX-License-Identifier: Apache-2.0
// Tests of replacing files: what stays when it fails, and what is kept when it works.
#include "persistence/file_save.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "persistence/files.h"

using namespace tidemark::sluice::graph;
using support::contentOf;
using support::TemporaryFolder;
namespace fs = std::filesystem;

namespace {

// The reason of the failure; empty when the content was saved.
std::string save(const std::string& path, const std::string& content) {
    FileSave file(path);
    file.write(content);
    const bool isSaved = file.commit();
    EXPECT_EQ(isSaved, file.reason().empty());
    return file.reason();
}

// While it lives, no file of the process may grow beyond `bytes`: writing fails as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        handler_ = ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit now{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        ::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    sighandler_t handler_;
};

} // namespace

TEST(FileSave, WritesANewFileAndReplacesAnOldOne) {
    const TemporaryFolder folder;
    EXPECT_EQ(save(folder.file("a"), "first"), "");
    EXPECT_EQ(contentOf(folder.file("a")), "first");
    EXPECT_EQ(save(folder.file("a"), "2"), "");
    EXPECT_EQ(contentOf(folder.file("a")), "2");
    EXPECT_EQ(folder.countOfFiles(), 1u);
}

TEST(FileSave, WritesIntoTheCurrentFolder) {
    const TemporaryFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.file(""));
    EXPECT_EQ(save("a", "x"), "");
    fs::current_path(before);
    EXPECT_EQ(contentOf(folder.file("a")), "x");
}

TEST(FileSave, LeavesTheOldFileUntilItIsCommitted) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    {
        FileSave file(path);
        ASSERT_TRUE(file.write("new"));
        EXPECT_EQ(contentOf(path), "old");
    }
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(folder.countOfFiles(), 1u);
}

TEST(FileSave, KeepsThePermissions) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    ::chmod(path.c_str(), 0640);
    EXPECT_EQ(save(path, "new"), "");
    struct stat status {};
    ::stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(status.st_uid, ::geteuid());
}

TEST(FileSave, GivesANewFileTheUsualPermissions) {
    const TemporaryFolder folder;
    const mode_t mask = ::umask(027);
    EXPECT_EQ(save(folder.file("a"), "new"), "");
    ::umask(mask);
    struct stat status {};
    ::stat(folder.file("a").c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST(FileSave, ReplacesTheTargetOfALink) {
    const TemporaryFolder folder;
    fs::create_directory(folder.file("below"));
    folder.write("below/target", "old");
    fs::create_symlink("below/target", folder.file("second"));
    fs::create_symlink("second", folder.file("first"));
    EXPECT_EQ(save(folder.file("first"), "new"), "");
    EXPECT_TRUE(fs::is_symlink(folder.file("first")));
    EXPECT_TRUE(fs::is_symlink(folder.file("second")));
    EXPECT_FALSE(fs::is_symlink(folder.file("below/target")));
    EXPECT_EQ(contentOf(folder.file("below/target")), "new");
}

TEST(FileSave, MakesTheTargetOfALinkToNothing) {
    const TemporaryFolder folder;
    fs::create_symlink("target", folder.file("link"));
    EXPECT_EQ(save(folder.file("link"), "new"), "");
    EXPECT_TRUE(fs::is_symlink(folder.file("link")));
    EXPECT_EQ(contentOf(folder.file("target")), "new");
}

TEST(FileSave, RefusesWhatIsNoFile) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    fs::create_directory(folder.file("folder"));
    fs::create_symlink("b", folder.file("a"));
    fs::create_symlink("a", folder.file("b"));
    ::mkfifo(folder.file("pipe").c_str(), 0600);
    EXPECT_EQ(save(folder.file("folder"), "x"), "cannot be written: a folder, not a file");
    EXPECT_EQ(save(folder.file("pipe"), "x"), "cannot be written: not a regular file");
    EXPECT_EQ(save("/dev/null", "x"), "cannot be written: not a regular file");
    EXPECT_EQ(save("", "x"), "cannot be written: not a file name");
    EXPECT_EQ(save(std::string("a\0b", 3), "x"), "cannot be written: not a file name");
    EXPECT_EQ(save(folder.file("a"), "x"), "cannot be written: Too many levels of symbolic links");
    EXPECT_EQ(save(folder.file("file") + "/x", "x"), "cannot be written: Not a directory");
    EXPECT_EQ(save(folder.file("none") + "/x", "x"),
              "cannot be written: No such file or directory");
    EXPECT_EQ(contentOf(folder.file("file")), "old");
}

TEST(FileSave, RefusesAWriteProtectedFolderAndFile) {
    const TemporaryFolder folder;
    fs::create_directory(folder.file("locked"));
    folder.write("locked/a", "old");
    folder.write("protected", "old");
    ::chmod(folder.file("locked/a").c_str(), 0666);
    ::chmod(folder.file("locked").c_str(), 0555);
    ::chmod(folder.file("protected").c_str(), 0444);
    ::chmod(folder.file("").c_str(), 0777);
    // Root may write anywhere: the test is done as somebody else.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::seteuid(nobody) != 0) ::_exit(9);
        const bool folderRefused =
            save(folder.file("locked/a"), "x") == "cannot be written: Permission denied";
        const bool fileRefused =
            save(folder.file("protected"), "x") == "cannot be written: Permission denied";
        ::_exit((folderRefused ? 0 : 1) + (fileRefused ? 0 : 2));
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    ::chmod(folder.file("locked").c_str(), 0755);
    EXPECT_EQ(contentOf(folder.file("locked/a")), "old");
    EXPECT_EQ(contentOf(folder.file("protected")), "old");
}

TEST(FileSave, LeavesTheOldFileWhenThereIsNoRoom) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    {
        const FileSizeLimit limit(4096);
        EXPECT_EQ(save(path, std::string(100000, 'x')), "cannot be written: File too large");
    }
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(folder.countOfFiles(), 1u);
}

TEST(FileSave, LeavesAWholeFileWhenItIsKilled) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a");
    const std::string contents[] = {std::string(300000, 'a'), std::string(300000, 'b')};
    ASSERT_EQ(save(path, contents[0]), "");
    for (useconds_t delay = 0; delay < 20000; delay += 1000) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 1;; ++i) save(path, contents[i % 2]);
        }
        ::usleep(delay);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const std::string found = contentOf(path);
        ASSERT_TRUE(found == contents[0] || found == contents[1]) << found.size();
    }
}
