// Single files: what is read, what is written, and what is left after a failure.
#include "platform/files/files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "platform/files/file_digest.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

using test::TempFolder;
using testing::ElementsAre;

template <class Outcome>
ErrorKind kindOf(const Outcome& outcome) {
  EXPECT_FALSE(outcome.has_value());
  return outcome ? ErrorKind::Cancelled : outcome.error().kind;
}

unsigned modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & 07777U;
}

// All names of a folder, hidden and unfinished ones too.
std::vector<std::string> everyName(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

// A limit on the size of files stands for a full disk: both refuse the rest of a write.
class SizeLimit {
 public:
  explicit SizeLimit(rlim_t bytes) {
    oldHandler_ = ::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &old_);
    rlimit limit = old_;
    limit.rlim_cur = bytes;
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  SizeLimit(const SizeLimit&) = delete;
  SizeLimit& operator=(const SizeLimit&) = delete;
  ~SizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &old_);
    ::signal(SIGXFSZ, oldHandler_);
  }

 private:
  rlimit old_{};
  void (*oldHandler_)(int);
};

TEST(Files, BytesAreReadBackAsTheyWereWritten) {
  TempFolder folder;
  const std::string bytes("\0\r\n\xFF\x1A end", 9);
  ASSERT_TRUE(writeBytes(folder / "a", bytes));
  EXPECT_EQ(readBytes(folder / "a").value(), bytes);
}

TEST(Files, AnEmptyFileIsAnEmptyText) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", ""));
  EXPECT_EQ(readBytes(folder / "a").value(), "");
}

TEST(Files, ALargeFileIsReadWhole) {
  TempFolder folder;
  std::string bytes;
  for (int i = 0; i < 300000; ++i) bytes += std::to_string(i);
  ASSERT_TRUE(writeBytes(folder / "a", bytes));
  EXPECT_EQ(readBytes(folder / "a").value(), bytes);
}

TEST(Files, AFileWhoseSizeIsNotKnownIsReadWhole) { EXPECT_FALSE(readBytes("/proc/self/status").value().empty()); }

TEST(Files, TextIsWindows1252OnDiskAndKeepsItsLineEnds) {
  TempFolder folder;
  ASSERT_TRUE(writeText(folder / "a", "perché €\r\nfine\n\r"));
  EXPECT_EQ(readBytes(folder / "a").value(), "perch\xE9 \x80\r\nfine\n\r");
  EXPECT_EQ(readText(folder / "a").value(), "perché €\r\nfine\n\r");
}

TEST(Files, AMissingFileIsMissing) {
  TempFolder folder;
  EXPECT_EQ(kindOf(readBytes(folder / "a")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(readText(folder / "a")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(deleteFile(folder / "a")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(renameFile(folder / "a", folder / "b")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(copyFile(folder / "a", folder / "b")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(writeBytes(folder / "none/a", "x")), ErrorKind::Missing);
}

TEST(Files, AFailureNamesTheFileAndTheNumberOfTheSystem) {
  TempFolder folder;
  const auto read = readBytes(folder / "a");
  ASSERT_FALSE(read);
  EXPECT_EQ(read.error().where, folder / "a");
  EXPECT_EQ(read.error().what, "No such file or directory");
  EXPECT_EQ(read.error().number, ENOENT);
}

TEST(Files, AFolderIsNoFile) {
  TempFolder folder;
  EXPECT_EQ(kindOf(readBytes(folder.path())), ErrorKind::Other);
  EXPECT_EQ(kindOf(writeBytes(folder.path(), "x")), ErrorKind::Other);
  EXPECT_EQ(kindOf(deleteFile(folder.path())), ErrorKind::Other);
  EXPECT_FALSE(fileExists(folder.path()));
}

TEST(Files, APipeInPlaceOfAFileDoesNotHangTheProgram) {
  TempFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(kindOf(readBytes(folder / "pipe")), ErrorKind::Other);
  EXPECT_EQ(kindOf(writeBytes(folder / "pipe", "x")), ErrorKind::Other);
  EXPECT_THAT(everyName(folder.path()), ElementsAre("pipe"));
  EXPECT_FALSE(fileExists(folder / "pipe")) << "no file has replaced it";
}

TEST(Files, AFileWithoutTheOwnersWritePermissionIsReadOnlyForEveryone) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "old"));
  ASSERT_EQ(::chmod((folder / "a").c_str(), 0444), 0);
  EXPECT_EQ(kindOf(writeBytes(folder / "a", "new")), ErrorKind::ReadOnly);
  EXPECT_EQ(readBytes(folder / "a").value(), "old");
  EXPECT_THAT(everyName(folder.path()), ElementsAre("a"));
}

TEST(Files, NothingIsWrittenOrDeletedInAReadOnlyFolder) {
  TempFolder folder;
  ASSERT_TRUE(createFolder(folder / "f"));
  ASSERT_TRUE(writeBytes(folder / "f/a", "old"));
  ASSERT_EQ(::chmod((folder / "f").c_str(), 0555), 0);
  EXPECT_EQ(kindOf(writeBytes(folder / "f/b", "x")), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(writeBytes(folder / "f/a", "x")), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(deleteFile(folder / "f/a")), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(createFolder(folder / "f/g")), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(renameFile(folder / "f/a", folder / "a")), ErrorKind::ReadOnly);
  EXPECT_EQ(readBytes(folder / "f/a").value(), "old");
}

TEST(Files, AFullDiskLeavesTheOldFileAndNothingBeside) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "old"));
  {
    const SizeLimit limit(4096);
    EXPECT_EQ(kindOf(writeBytes(folder / "a", std::string(100000, 'x'))), ErrorKind::Full);
    EXPECT_EQ(kindOf(writeBytes(folder / "b", std::string(100000, 'x'))), ErrorKind::Full);
  }
  EXPECT_EQ(readBytes(folder / "a").value(), "old");
  EXPECT_THAT(everyName(folder.path()), ElementsAre("a"));
}

TEST(Files, ACopyOntoAFullDiskLeavesTheOldFileAndNothingBeside) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "from", std::string(100000, 'x')));
  ASSERT_TRUE(writeBytes(folder / "to", "old"));
  {
    const SizeLimit limit(4096);
    EXPECT_EQ(kindOf(copyFile(folder / "from", folder / "to")), ErrorKind::Full);
  }
  EXPECT_EQ(readBytes(folder / "to").value(), "old");
  EXPECT_THAT(everyName(folder.path()), ElementsAre("from", "to"));
}

TEST(Files, AKillAtAnyMomentLeavesAWholeFile) {
  TempFolder folder;
  const std::string path = folder / "a", odd(500000, '1'), even(500000, '2');
  ASSERT_TRUE(writeBytes(path, odd));
  for (int round = 0; round < 15; ++round) {
    int started[2];
    ASSERT_EQ(::pipe(started), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int i = 0;; ++i) {
        if (!writeBytes(path, i % 2 == 0 ? even : odd)) ::_exit(1);
        if (i == 0 && ::write(started[1], "x", 1) != 1) ::_exit(2);
      }
    }
    char byte = 0;
    EXPECT_EQ(::read(started[0], &byte, 1), 1);
    ::usleep(static_cast<useconds_t>(200 * round));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    ::close(started[0]);
    ::close(started[1]);
    const std::string found = readBytes(path).value();
    EXPECT_TRUE(found == odd || found == even);
    EXPECT_THAT(listFiles(folder.path(), "*"), ElementsAre("a")) << "the killed write's file is never listed";
  }
}

TEST(Files, ThePermissionBitsOfTheOldFileAreKept) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "old"));
  ASSERT_EQ(::chmod((folder / "a").c_str(), 0751), 0);
  ASSERT_TRUE(writeBytes(folder / "a", "new"));
  EXPECT_EQ(modeOf(folder / "a"), 0751U);
}

TEST(Files, ANewFileGetsTheBitsThatTheProcessAllows) {
  TempFolder folder;
  const mode_t old = ::umask(027);
  const auto written = writeBytes(folder / "a", "x");
  ::umask(old);
  ASSERT_TRUE(written);
  EXPECT_EQ(modeOf(folder / "a"), 0640U);
}

TEST(Files, ALinkIsWrittenThroughAndStaysALink) {
  TempFolder folder;
  ASSERT_TRUE(createFolder(folder / "f"));
  ASSERT_TRUE(writeBytes(folder / "f/a", "old"));
  std::filesystem::create_symlink("f/a", folder / "link");
  ASSERT_TRUE(writeBytes(folder / "link", "new"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(readBytes(folder / "f/a").value(), "new");
}

TEST(Files, AVeryLongNameCanStillBeWritten) {
  TempFolder folder;
  const std::string path = folder / std::string(255, 'n');
  ASSERT_TRUE(writeBytes(path, "x"));
  EXPECT_TRUE(fileExists(path));
}

TEST(Files, ACopyCanBeWrittenByTheOwner) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "x"));
  ASSERT_EQ(::chmod((folder / "a").c_str(), 0444), 0);
  ASSERT_TRUE(copyFile(folder / "a", folder / "b"));
  EXPECT_TRUE((modeOf(folder / "b") & S_IWUSR) != 0);
  EXPECT_TRUE(writeBytes(folder / "b", "y"));
}

TEST(Files, ACopyKeepsTheTimeOfItsSource) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "x"));
  const timespec times[] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "a").c_str(), times, 0), 0);
  ASSERT_TRUE(copyFile(folder / "a", folder / "b"));
  struct stat status {};
  ASSERT_EQ(::stat((folder / "b").c_str(), &status), 0);
  EXPECT_EQ(status.st_mtim.tv_sec, 1000000000);
}

TEST(Files, AStampIsSizeAndTimeOfTheLastChange) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "12345"));
  std::filesystem::last_write_time(folder / "a",
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
  ASSERT_TRUE(copyFile(folder / "a", folder / "b"));
  const auto stamp = fileStamp(folder / "a");
  ASSERT_TRUE(stamp);
  EXPECT_EQ(stamp->size, 5U);
  EXPECT_EQ(*stamp, test::valueOf(fileStamp(folder / "b")));
  ASSERT_TRUE(writeBytes(folder / "b", "54321"));
  EXPECT_GT(test::valueOf(fileStamp(folder / "b")).changedAt, stamp->changedAt);
  EXPECT_EQ(kindOf(fileStamp(folder / "c")), ErrorKind::Missing);
}

TEST(Files, ACopyReplacesTheFileThere) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", std::string(600000, 'a')));
  ASSERT_TRUE(writeBytes(folder / "b", "old"));
  ASSERT_TRUE(copyFile(folder / "a", folder / "b"));
  EXPECT_EQ(readBytes(folder / "b").value(), std::string(600000, 'a'));
}

TEST(Files, ACopyCanBeCancelledAndLeavesTheOldFileAndNothingBeside) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", std::string(9'000'000, 'x')));
  ASSERT_TRUE(writeBytes(folder / "b", "old"));
  int asked = 0;
  EXPECT_EQ(kindOf(copyFile(folder / "a", folder / "b", AtLink::Follow, [&] { return ++asked < 2; })),
            ErrorKind::Cancelled);
  EXPECT_EQ(asked, 2) << "before the first bytes, and again before the last";
  EXPECT_EQ(readBytes(folder / "b").value(), "old");
  EXPECT_EQ(listFiles(folder.path(), "*"), (std::vector<std::string>{"a", "b"}));
  ASSERT_TRUE(copyFile(folder / "a", folder / "b", AtLink::Follow, [] { return true; }));
  EXPECT_EQ(readBytes(folder / "b").value().size(), 9'000'000U);
}

TEST(Files, TheDigestOfALargeFileCanBeCancelled) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", std::string(3'000'000, 'x')));
  int asked = 0;
  EXPECT_EQ(kindOf(fileDigest(folder / "a", [&] { return ++asked < 3; })), ErrorKind::Cancelled);
  EXPECT_EQ(asked, 3) << "once a MiB";
}

TEST(Files, ACopyOverAReadOnlyFileIsRefused) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "new"));
  ASSERT_TRUE(writeBytes(folder / "b", "old"));
  ASSERT_EQ(::chmod((folder / "b").c_str(), 0444), 0);
  EXPECT_EQ(kindOf(copyFile(folder / "a", folder / "b")), ErrorKind::ReadOnly);
  EXPECT_EQ(readBytes(folder / "b").value(), "old");
}

TEST(Files, ACopyOntoItselfChangesNothing) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "x"));
  ASSERT_TRUE(copyFile(folder / "a", folder / "a"));
  EXPECT_EQ(readBytes(folder / "a").value(), "x");
}

TEST(Files, ARenameReplacesAFile) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "1"));
  ASSERT_TRUE(writeBytes(folder / "b", "2"));
  ASSERT_TRUE(renameFile(folder / "a", folder / "b"));
  EXPECT_EQ(readBytes(folder / "b").value(), "1");
  EXPECT_FALSE(fileExists(folder / "a"));
}

TEST(Files, DeletingALinkLeavesWhatItLeadsTo) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a", "1"));
  std::filesystem::create_symlink("a", folder / "link");
  ASSERT_TRUE(deleteFile(folder / "link"));
  EXPECT_TRUE(fileExists(folder / "a"));
}

TEST(Paths, AreJoinedWithOneSeparator) {
  EXPECT_EQ(joinPath("a", "b"), "a/b");
  EXPECT_EQ(joinPath("a/", "b"), "a/b");
  EXPECT_EQ(joinPath("a/", "/b"), "a/b");
  EXPECT_EQ(joinPath("/", "b"), "/b");
  EXPECT_EQ(joinPath("", "b"), "b");
  EXPECT_EQ(joinPath("a", ""), "a");
}

TEST(Paths, AreDividedAtTheLastSeparator) {
  EXPECT_EQ(baseName("a/b/c.htm"), "c.htm");
  EXPECT_EQ(baseName("c.htm"), "c.htm");
  EXPECT_EQ(baseName("a/"), "");
  EXPECT_EQ(folderOf("a/b/c.htm"), "a/b");
  EXPECT_EQ(folderOf("/c"), "/");
  EXPECT_EQ(folderOf("c"), "");
}

TEST(Paths, ARootIsOfTheSystemOrADrive) {
  EXPECT_TRUE(isRoot("/"));
  EXPECT_TRUE(isRoot("C:\\"));
  EXPECT_TRUE(isRoot("d:/"));
  EXPECT_FALSE(isRoot(""));
  EXPECT_FALSE(isRoot("/home"));
  EXPECT_FALSE(isRoot("C:\\shop"));
  EXPECT_FALSE(isRoot("C:"));
}

}  // namespace
}  // namespace kv
