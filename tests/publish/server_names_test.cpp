// Hosts and folders as typed, and the folders that lines of a server's listing name.

#include <gtest/gtest.h>

#include "publish/settings/server_names.h"

namespace kv::test {
namespace {

TEST(ServerNames, AHostLosesItsSchemeInAnyCaseAndTheSlashesAroundIt) {
  EXPECT_EQ(serverHost("  ftp.montelune.it "), "ftp.montelune.it");
  EXPECT_EQ(serverHost("FTP://ftp.montelune.it/"), "ftp.montelune.it");
  EXPECT_EQ(serverHost("Http:\\\\montelune.it\\\\"), "montelune.it");
  EXPECT_EQ(serverHost("//montelune.it"), "montelune.it");
  EXPECT_EQ(serverHost("http://ftp://montelune.it"), "montelune.it");
  EXPECT_EQ(serverHost("///"), "");
}

TEST(ServerNames, AFolderHasSlashesOfOneKindAndNoneAtItsEnd) {
  EXPECT_EQ(serverFolder("www\\negozio\\"), "www/negozio");
  EXPECT_EQ(serverFolder(" /www/negozio// "), "/www/negozio");
  EXPECT_EQ(serverFolder("/"), "/");
  EXPECT_EQ(serverFolder("  "), ".");
}

TEST(ServerNames, AnEmptyFolderIsTheOneAfterTheLogin) { EXPECT_EQ(serverFolder(""), "."); }

TEST(ServerListing, AUnixFolderIsNamedAfterEightColumns) {
  EXPECT_EQ(listedFolder("drwxr-xr-x   2 ada  web   4096 Jan  1 12:00 negozio\r\n"), "negozio");
  EXPECT_EQ(listedFolder("Drwxr-xr-x   2 ada  web   4096 Jan  1  2024 negozio"), "negozio");
}

TEST(ServerListing, SpacesInsideANameStay) {
  EXPECT_EQ(listedFolder("drwxr-xr-x 2 ada web 4096 Jan  1 12:00 il mio  negozio"), "il mio  negozio");
  EXPECT_EQ(listedFolder("03-08-24  09:12AM       <DIR>          il mio  negozio\r\n"), "il mio  negozio");
}

TEST(ServerListing, AListingWithoutAGroupHasOneColumnLess) {
  EXPECT_EQ(listedFolder("drwxr-xr-x 2 ada 4096 Jan  1 12:00 mio negozio"), "mio negozio");
}

TEST(ServerListing, ALinkIsShownWithoutItsTarget) {
  EXPECT_EQ(listedFolder("lrwxrwxrwx 1 ada web 11 Jan  1 12:00 www -> public_html\r\n"), "www");
  EXPECT_EQ(listedFolder("Lrwxrwxrwx 1 ada web 11 Jan  1 12:00 il sito -> /srv/il sito"), "il sito");
}

TEST(ServerListing, AFolderWithAnArrowInItsNameKeepsIt) {
  EXPECT_EQ(listedFolder("drwxr-xr-x 2 ada web 4096 Jan  1 12:00 a -> b"), "a -> b");
}

TEST(ServerListing, AWindowsFolderIsNamedAfterItsMark) {
  EXPECT_EQ(listedFolder("01-01-26  12:00PM       <DIR>          wwwroot\r\n"), "wwwroot");
}

TEST(ServerListing, FilesAndOtherLinesNameNoFolder) {
  for (const char* line : {"-rw-r--r-- 1 ada web 12 Jan  1 12:00 a.htm", "01-01-26  12:00PM       1234 a.htm",
                           "total 12", "", "d", "drwxr-xr-x", "drwxr-xr-x 2 ada web 4096 Jan  1 12:00 .",
                           "drwxr-xr-x 2 ada web 4096 Jan  1 12:00 ..", "<DIR>", "<DIR>   \r\n"}) {
    EXPECT_EQ(listedFolder(line), std::nullopt) << line;
  }
}

TEST(ServerListing, APathOrANameWithAControlCharacterNamesNoFolder) {
  const std::string unixStart = "drwxr-xr-x 2 ada web 4096 Jan  1 12:00 ", dosStart = "01-01-26  12:00PM       <DIR> ";
  for (const char* name : {"../segreto", "a/b", "/etc", "a\nQUIT", "a\rb", "\x1b[2Jvuota", "a\tb", "a\x7f", "//"}) {
    EXPECT_EQ(listedFolder(unixStart + name), std::nullopt) << name;
    EXPECT_EQ(listedFolder(dosStart + name), std::nullopt) << name;
  }
  EXPECT_EQ(listedFolder("lrwxrwxrwx 1 ada web 11 Jan  1 12:00 www -> ../altrove"), "www");
  EXPECT_EQ(listedFolder(unixStart + "negozio/"), "negozio/") << "as some servers mark a folder";
}

TEST(ServerListing, ANameThatIsNoUtf8IsShownByItsWindowsCharacters) {
  EXPECT_EQ(shownName("citt\xC3\xA0"), "citt\xC3\xA0");
  EXPECT_EQ(shownName("citt\xE0"), "citt\xC3\xA0");
  EXPECT_EQ(shownName("cos'\xC3\xA8?"), "cos'\xC3\xA8?");
}

TEST(ServerPaths, AtTheRootNoSlashIsDoubled) {
  EXPECT_EQ(joinServerPath("/", "www"), "/www");
  EXPECT_EQ(joinServerPath("/home/ada", "www"), "/home/ada/www");
}

TEST(ServerPaths, AFolderBelowTheBaseIsRelativeToIt) {
  EXPECT_EQ(relativeToBase("/home/ada/www/negozio", "/home/ada"), "www/negozio");
  EXPECT_EQ(relativeToBase("/home/ada", "/home/ada"), "");
  EXPECT_EQ(relativeToBase("/home/adamo", "/home/ada"), "/home/adamo");
  EXPECT_EQ(relativeToBase("/www", "/"), "/www");
}

}  // namespace
}  // namespace kv::test
