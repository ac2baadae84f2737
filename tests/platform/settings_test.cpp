// The settings of one user, in a file and in memory.
#include "platform/files/settings.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;

TEST(FileSettings, AMissingFileReadsAsEmptyTexts) {
  TempFolder folder;
  EXPECT_EQ(FileSettings(folder / "korvane.ini").get("AppIni", "smartbuild"), "");
}

TEST(FileSettings, AValueIsStoredAtOnceAndItsFolderMade) {
  TempFolder folder;
  FileSettings settings(folder / "korvane/korvane.ini");
  ASSERT_TRUE(settings.set("AppIni", "smartbuild", "1"));
  EXPECT_EQ(settings.get("AppIni", "smartbuild"), "1");
  EXPECT_EQ(readBytes(folder / "korvane/korvane.ini").value(), "[AppIni]\nsmartbuild=1\n");
  EXPECT_EQ(FileSettings(folder / "korvane/korvane.ini").get("AppIni", "smartbuild"), "1");
}

TEST(FileSettings, EveryValueSurvives) {
  TempFolder folder;
  const std::string values[] = {
      "a=b=c", "  spaces  ", "line\r\nline\n", "back\\slash\\n", "\\", "[AppIni]", ";x", "perché €", ""};
  for (const std::string& value : values) {
    FileSettings settings(folder / "s.ini");
    ASSERT_TRUE(settings.set("AppIni", "k", value));
    ASSERT_TRUE(settings.set("LoadImage", "k", value + "2"));
    EXPECT_EQ(settings.get("AppIni", "k"), value);
    EXPECT_EQ(FileSettings(folder / "s.ini").get("AppIni", "k"), value);
    EXPECT_EQ(FileSettings(folder / "s.ini").get("LoadImage", "k"), value + "2");
  }
}

TEST(FileSettings, NamesIgnoreCase) {
  TempFolder folder;
  FileSettings settings(folder / "s.ini");
  ASSERT_TRUE(settings.set("AppIni", "Path", "/a"));
  ASSERT_TRUE(settings.set("APPINI", "PATH", "/b"));
  EXPECT_EQ(settings.get("appini", "path"), "/b");
  EXPECT_EQ(readBytes(folder / "s.ini").value(), "[AppIni]\nPATH=/b\n");
}

TEST(FileSettings, LinesOfAnotherFormatAreKeptUnchanged) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "s.ini", "; mine\n# x=1\nnonsense\n[AppIni]\nPath = /a\n\n[Other]\nk=v\n"));
  FileSettings settings(folder / "s.ini");
  EXPECT_EQ(settings.get("AppIni", "path"), " /a");
  EXPECT_EQ(settings.get("", "# x"), "");
  ASSERT_TRUE(settings.set("AppIni", "Times", "3"));
  EXPECT_EQ(readBytes(folder / "s.ini").value(),
            "; mine\n# x=1\nnonsense\n[AppIni]\nPath = /a\nTimes=3\n\n[Other]\nk=v\n");
}

TEST(FileSettings, LineEndsOfAnotherSystemAreUnderstood) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "s.ini", "[AppIni]\r\nPath=/a\r\n"));
  EXPECT_EQ(FileSettings(folder / "s.ini").get("AppIni", "Path"), "/a");
}

TEST(FileSettings, OfTwoEqualNamesTheFirstCounts) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "s.ini", "[A]\nk=1\nK=2\n[a]\nk=3\n"));
  FileSettings settings(folder / "s.ini");
  EXPECT_EQ(settings.get("A", "k"), "1");
  ASSERT_TRUE(settings.set("A", "k", "9"));
  EXPECT_EQ(FileSettings(folder / "s.ini").get("a", "K"), "9");
}

TEST(FileSettings, ANameThatCouldNotBeReadBackIsMalformed) {
  TempFolder folder;
  FileSettings settings(folder / "s.ini");
  for (const char* key : {"", "a=b", "a\nb", " a", "[a", ";a", "#a"}) {
    EXPECT_EQ(settings.set("A", key, "1").error().kind, ErrorKind::Malformed) << key;
  }
  for (const char* section : {"a]", "a\nb", " a"}) {
    EXPECT_EQ(settings.set(section, "k", "1").error().kind, ErrorKind::Malformed) << section;
  }
  EXPECT_FALSE(fileExists(folder / "s.ini"));
}

TEST(FileSettings, AFailureLeavesTheOldValue) {
  TempFolder folder;
  FileSettings settings(folder / "s.ini");
  ASSERT_TRUE(settings.set("A", "k", "old"));
  ASSERT_EQ(::chmod((folder / "s.ini").c_str(), 0444), 0);
  EXPECT_EQ(settings.set("A", "k", "new").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(settings.set("B", "k", "new").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(settings.get("A", "k"), "old");
  EXPECT_EQ(settings.get("B", "k"), "");
}

TEST(FileSettings, AFileThatCannotBeReadIsNotReplaced) {
  TempFolder folder;
  ASSERT_TRUE(createFolder(folder / "s.ini"));
  FileSettings settings(folder / "s.ini");
  EXPECT_EQ(settings.get("A", "k"), "");
  EXPECT_EQ(settings.set("A", "k", "1").error().kind, ErrorKind::Other);
}

TEST(FileSettings, WhatAnotherWindowHasStoredMeanwhileSurvives) {
  TempFolder folder;
  FileSettings first(folder / "s.ini");
  ASSERT_TRUE(first.set("AppIni", "Times", "1"));
  FileSettings second(folder / "s.ini");
  ASSERT_TRUE(second.set("AppIni", "NoShow", "1"));
  ASSERT_TRUE(first.set("Finestra", "Aspetto", "scuro"));
  EXPECT_EQ(readBytes(folder / "s.ini").value(), "[AppIni]\nTimes=1\nNoShow=1\n[Finestra]\nAspetto=scuro\n");
}

TEST(FileSettings, AValueStoredByAnotherWindowIsReadAtTheNextLook) {
  TempFolder folder;
  FileSettings first(folder / "s.ini");
  EXPECT_EQ(first.get("AppIni", "NoShow"), "");
  ASSERT_TRUE(FileSettings(folder / "s.ini").set("AppIni", "NoShow", "1"));
  EXPECT_EQ(first.get("AppIni", "NoShow"), "1");
  ASSERT_TRUE(deleteFile(folder / "s.ini"));
  EXPECT_EQ(first.get("AppIni", "NoShow"), "");
}

TEST(FileSettings, ManyProgramsStoringAtOnceLoseNothing) {
  TempFolder folder;
  constexpr int programs = 4;
  constexpr int each = 25;
  for (int program = 0; program < programs; ++program) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child != 0) continue;
    bool stored = true;
    for (int n = 0; n < each; ++n) {
      FileSettings settings(folder / "s.ini");
      stored = settings.set("AppIni", "k" + std::to_string(program * each + n), "v").has_value() && stored;
    }
    ::_exit(stored ? 0 : 1);
  }
  for (int program = 0; program < programs; ++program) {
    int status = 1;
    ASSERT_GT(::wait(&status), 0);
    EXPECT_EQ(status, 0);
  }
  const FileSettings settings(folder / "s.ini");
  for (int n = 0; n < programs * each; ++n) EXPECT_EQ(settings.get("AppIni", "k" + std::to_string(n)), "v") << n;
}

TEST(FileSettings, ALockThatIsNeverLeftIsAFailureAndNotAnEndlessWait) {
  TempFolder folder;
  FileSettings settings(folder / "s.ini");
  ASSERT_TRUE(settings.set("A", "k", "old"));
  const int lock = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(::flock(lock, LOCK_EX), 0);
  EXPECT_EQ(settings.set("A", "k", "new").error().kind, ErrorKind::InUse);
  EXPECT_EQ(settings.get("A", "k"), "old");
  ::close(lock);
  EXPECT_TRUE(settings.set("A", "k", "new"));
}

TEST(MemorySettings, KeepValuesAndIgnoreTheCaseOfNames) {
  MemorySettings settings;
  EXPECT_EQ(settings.get("AppIni", "Path"), "");
  ASSERT_TRUE(settings.set("AppIni", "Path", "a=b\n"));
  EXPECT_EQ(settings.get("APPINI", "path"), "a=b\n");
  EXPECT_EQ(settings.get("Other", "path"), "");
}

class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) {
    const char* const old = std::getenv(name);
    if (old != nullptr) old_ = old;
    if (value != nullptr) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(UserSettingsPath, FollowsTheEnvironment) {
  const EnvironmentVariable home("HOME", "/home/anna");
  {
    const EnvironmentVariable config("XDG_CONFIG_HOME", "/etc/anna");
    EXPECT_EQ(userSettingsPath(), "/etc/anna/korvane/korvane.ini");
  }
  {
    const EnvironmentVariable config("XDG_CONFIG_HOME", "relative");
    EXPECT_EQ(userSettingsPath(), "/home/anna/.config/korvane/korvane.ini");
  }
  const EnvironmentVariable config("XDG_CONFIG_HOME", nullptr);
  EXPECT_EQ(userSettingsPath(), "/home/anna/.config/korvane/korvane.ini");
}

}  // namespace
}  // namespace kv
