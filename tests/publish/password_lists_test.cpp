// The lists of one-time passwords: which files are taken, what is read from them, and the script that is made of them.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "platform/files/files.h"
#include "publish/passwords/left_scripts.h"
#include "publish/passwords/password_script.h"
#include "support/failing_files.h"
#include "support/fixed_clock.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using Passwords = std::vector<std::string>;
using test::TempFolder;

std::string takenFiles(const std::vector<std::string>& chosen) {
  const auto files = passwordFilesOf(chosen);
  return files ? files->requests + "|" + files->responses : "(none)";
}

TEST(PasswordFiles, AreOneListOfEachKindInAnyOrderAndCase) {
  EXPECT_EQ(takenFiles({"/b/1.ric", "/b/1.ris"}), "/b/1.ric|/b/1.ris");
  EXPECT_EQ(takenFiles({"/b/2.RIS", "/b/1.Ric"}), "/b/1.Ric|/b/2.RIS");
  EXPECT_EQ(takenFiles({"/b/Risposte.asp", "/b/RICHIESTE.ASP"}), "/b/RICHIESTE.ASP|/b/Risposte.asp");
}

TEST(PasswordFiles, OfAnyOtherNumberOrKindAreRefused) {
  for (const std::vector<std::string>& chosen : {std::vector<std::string>{"a.ric"},
                                                 {"a.ric", "b.ric"},
                                                 {"a.ric", "risposte.asp"},
                                                 {"a.ric", "a.ris", "b.ris"},
                                                 {"mierichieste.asp", "risposte.asp"},
                                                 {}}) {
    EXPECT_EQ(takenFiles(chosen), "(none)");
  }
  EXPECT_EQ(passwordFilesWanted(),
            "E' necessario selezionare due file: \"xxxxxx.ric\" e \"xxxxxx.ris\",\n"
            "oppure \"richieste.asp\" e \"risposte.asp\".\n"
            "Per selezionare più file tenere premuto il tasto CTRL.");
}

TEST(PasswordList, EveryKindOfLineEndGivesTheSamePasswords) {
  const Passwords wanted{"abc1", "def2", "ghi3"};
  for (const char* bytes :
       {"abc1\r\ndef2\r\nghi3\r\n", "abc1\r\ndef2\r\nghi3", "abc1\ndef2\nghi3\n", "abc1\ndef2\nghi3",
        "abc1\rdef2\rghi3\r", "abc1\rdef2\rghi3", "abc1\r\ndef2\nghi3\r", "abc1\n\rdef2\n\rghi3"}) {
    TempFolder folder;
    ASSERT_TRUE(writeBytes(folder / "a.ric", bytes));
    const auto passwords = readPasswordList(folder / "a.ric");
    ASSERT_TRUE(passwords);
    EXPECT_EQ(*passwords, wanted) << bytes;
    EXPECT_EQ(listFiles(folder.path(), "*.*"), Passwords{"a.ric"}) << "the repaired copy stays";
    EXPECT_EQ(readBytes(folder / "a.ric").value(), bytes);
  }
}

TEST(PasswordList, EmptyLinesAndLinesOfSpacesGiveNoPassword) {
  EXPECT_EQ(passwordsOf("\r\n  abc1  \r\n\r\n   \r\nde f\r\n"), (Passwords{"abc1", "de f"}));
  EXPECT_EQ(passwordsOf(""), Passwords{});
  EXPECT_EQ(passwordsOf("\r\n"), Passwords{});
}

TEST(PasswordList, OnlyForeignLineEndsAreRepaired) {
  EXPECT_FALSE(hasForeignLineEnds("a\r\nb\r\n"));
  EXPECT_FALSE(hasForeignLineEnds("a"));
  EXPECT_TRUE(hasForeignLineEnds("a\r\nb\n"));
  EXPECT_TRUE(hasForeignLineEnds("a\r"));
  EXPECT_TRUE(hasForeignLineEnds("a\r\r\nb"));
  EXPECT_EQ(withUsualLineEnds("a\rb\nc"), "a\r\nb\r\nc\r\n");
}

TEST(PasswordList, IsReadAndLeavesNoCopyWhicheverFileOperationFails) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a.ric", "abc1\ndef2\n"));
  bool reached = true;
  for (int n = 1; reached && n < 100; ++n) {
    test::FailingFiles failing(n);
    const auto passwords = readPasswordList(folder / "a.ric");
    reached = failing.hasFailed();
    EXPECT_EQ(passwords.value_or(Passwords{"abc1", "def2"}), (Passwords{"abc1", "def2"})) << n;
  }
  EXPECT_FALSE(reached);
  EXPECT_FALSE(fileExists(folder / "a.ric.tmp"));
}

TEST(PasswordList, LongerThanAnyBanksIsNotRead) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a.ric", "abc1\r\n"));
  std::filesystem::resize_file(folder / "a.ric", mostListBytes + 1);
  const auto passwords = readPasswordList(folder / "a.ric");
  ASSERT_FALSE(passwords);
  EXPECT_EQ(passwords.error().number, EFBIG);
}

constexpr const char* scriptStart =
    "<?php\r\ninclude \"funcs.php\";\r\nerror_reporting(0);\r\n\r\n$sql = \"CREATE TABLE kv_OTP (\r\n"
    "pwd varchar(50) binary NOT NULL default '',\r\npwdtype tinyint(4) NOT NULL default '0',\r\n"
    "UNIQUE KEY pwd (pwd),\r\nKEY pwdtype (pwdtype)\r\n)\";\r\n$result = mysql_query($sql);\r\n\r\n";
constexpr const char* scriptInsert = "$sql = \"INSERT IGNORE kv_OTP (pwd,pwdtype) VALUES \r\n";
constexpr const char* scriptEnd =
    "('stop',3)\";\r\nif ($result = mysql_query($sql)) {\r\necho 'OK';\r\n} else {\r\necho mysql_error();\r\n}\r\n"
    "?>\r\n";

TEST(PasswordScript, ReplacesToTheByte) {
  EXPECT_EQ(passwordScript({{"r1", "r2"}, {"s1"}}, true),
            std::string(scriptStart) + "$sql = \"DELETE FROM kv_OTP\";\r\n$result = mysql_query($sql);\r\n\r\n" +
                scriptInsert + "('r1',1),\r\n('r2',1),\r\n('s1',2),\r\n" + scriptEnd);
}

TEST(PasswordScript, AppendsWithoutDeletingAnything) {
  EXPECT_EQ(passwordScript({{"r1"}, {"s1"}}, false),
            std::string(scriptStart) + scriptInsert + "('r1',1),\r\n('s1',2),\r\n" + scriptEnd);
}

TEST(PasswordScript, OfEmptyListsHasTheEndMarkAlone) {
  EXPECT_EQ(passwordScript({}, false), std::string(scriptStart) + scriptInsert + scriptEnd);
}

TEST(PasswordScript, DoesNotGuardAgainstAQuoteInAPassword) {
  EXPECT_NE(passwordScript({{"o'neil"}, {}}, false).find("('o'neil',1),\r\n"), std::string::npos);
}

TEST(PasswordScript, HasANameOfTwentyRandomCharacters) {
  test::FixedRandom random;
  EXPECT_EQ(passwordScriptName(random), "abcdefghijklmnopqrst.php");
  EXPECT_EQ(passwordScriptName(random), "uvwxyzabcdefghijklmn.php");
  EXPECT_TRUE(isPasswordScriptName(passwordScriptName(systemRandom())));
  for (const char* name : {"funcs.php", "abcdefghijklmnopqrst.PHP", "Abcdefghijklmnopqrst.php", ""}) {
    EXPECT_FALSE(isPasswordScriptName(name)) << name;
  }
}

class ThePasswordScript : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(createFolders(root / "online"));
    ASSERT_TRUE(writeBytes(root / "a.ric", "r1\n"));
    ASSERT_TRUE(writeBytes(root / "a.ris", "s1\r\n"));
    job.files = {root / "a.ric", root / "a.ris"};
    job.shopFolder = root.path();
    job.onlineFolder = root / "online";
    job.serverFolder = "host/www";
  }
  /// Names of the files of the online folder.
  Passwords online() const { return listFiles(root / "online", "*.*"); }

  TempFolder root;
  PasswordScriptJob job;
  test::FixedRandom random;
};

TEST_F(ThePasswordScript, IsThereWhileItIsSentAndNotAfterwards) {
  for (const bool succeeds : {true, false}) {
    const auto sent = sendPasswordScript(job, random, [&](const std::string& name) {
      EXPECT_EQ(online(), Passwords{name});
      EXPECT_EQ(readBytes(root / "online/" + name).value(), passwordScript({{"r1"}, {"s1"}}, true));
      EXPECT_EQ(leftScripts(root.path()).back().name, name) << "a kill from here on would leave it unknown";
      return succeeds;
    });
    ASSERT_TRUE(sent);
    EXPECT_EQ(*sent, succeeds);
    EXPECT_EQ(online(), Passwords{});
  }
}

TEST_F(ThePasswordScript, OfAMissingListIsNotMade) {
  job.files.responses = root / "b.ris";
  const auto sent = sendPasswordScript(job, random, [](const std::string&) { return true; });
  ASSERT_FALSE(sent);
  EXPECT_EQ(sent.error().kind, ErrorKind::Missing);
  EXPECT_TRUE(leftScripts(root.path()).empty());
  EXPECT_EQ(online(), Passwords{});
}

TEST_F(ThePasswordScript, LeftHereByAKilledRunGoesWithTheNextOne) {
  const std::string left = "zzzzzzzzzzzzzzzzzzzz.php";
  ASSERT_TRUE(writeBytes(root / "online/" + left, "passwords"));
  ASSERT_TRUE(writeBytes(root / "online/index.php", "page"));
  ASSERT_TRUE(rememberScript(root.path(), {"host/www", left}));
  ASSERT_TRUE(sendPasswordScript(job, random, [](const std::string&) { return true; }));
  EXPECT_EQ(online(), Passwords{"index.php"});
}

TEST_F(ThePasswordScript, AFailureOfAnyFileOperationLeavesNoScriptHere) {
  bool reached = true;
  for (int n = 1; reached && n < 200; ++n) {
    {
      test::FailingFiles failing(n);
      int calls = 0;
      const auto sent = sendPasswordScript(job, random, [&](const std::string&) { return ++calls > 0; });
      reached = failing.hasFailed();
      EXPECT_EQ(sent.has_value(), calls == 1) << n;
    }
    // Where the deletion itself failed it is the next run that deletes.
    ASSERT_TRUE(sendPasswordScript(job, random, [](const std::string&) { return true; }));
    EXPECT_EQ(online(), Passwords{}) << n;
  }
  EXPECT_FALSE(reached);
}

TEST(LeftScripts, AreRememberedUntilTheyAreForgotten) {
  TempFolder folder;
  const std::string first = "aaaaaaaaaaaaaaaaaaaa.php", second = "bbbbbbbbbbbbbbbbbbbb.php";
  ASSERT_TRUE(rememberScript(folder.path(), {"host/www/negozio", first}));
  ASSERT_TRUE(rememberScript(folder.path(), {"host//", second}));
  EXPECT_EQ(readBytes(folder / "kvotp.dat").value(), "host/www/negozio/" + first + "\r\nhost///" + second + "\r\n");
  ASSERT_TRUE(forgetScript(folder.path(), first));
  ASSERT_EQ(leftScripts(folder.path()).size(), 1U);
  EXPECT_EQ(leftScripts(folder.path())[0].serverFolder, "host//");
  ASSERT_TRUE(forgetScript(folder.path(), second));
  EXPECT_FALSE(fileExists(folder / "kvotp.dat"));
  EXPECT_TRUE(forgetScript(folder.path(), second));
}

TEST(LeftScripts, AFileOfOtherTextNamesNoFileToDelete) {
  EXPECT_TRUE(parseLeftScripts("host/www/index.php\r\n../../x\r\naaaaaaaaaaaaaaaaaaaa.php\r\n\r\n").empty());
}

}  // namespace
}  // namespace kv
