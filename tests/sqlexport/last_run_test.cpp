// When the host is known to hold the last database, which question is asked, and how that knowledge is kept.

#include "sqlexport/last_run.h"

#include "sqlexport/difference_fixture.h"
#include "support/failing_files.h"

namespace kv::test {
namespace {

class LastRunTest : public DifferenceTest {
 protected:
  LastRunTest() {
    note("2\r\n");
    EXPECT_TRUE(writeBytes(shop + "/db/sql.mdb", "the build"));
    EXPECT_TRUE(keepLastRun(shop, now, 2));
  }
  bool canUse(bool askUser = false) { return CanUseIncremental({shop, online}, now, user, askUser); }

  PublishedShop now{"ftp.montelune.it", "www.montelune.it", "localhost", "negozio", "abc"};
};

TEST_F(LastRunTest, TheFiveLinesAreKeptBesideACopyOfTheDatabase) {
  EXPECT_EQ(readBytes(shop + "/db/last.ini"), "ftp.montelune.it\r\nwww.montelune.it\r\nlocalhost\r\nnegozio\r\n2\r\n");
  EXPECT_EQ(readBytes(shop + "/db/last.mdb"), "the build");
}

TEST_F(LastRunTest, ElevenLinesAreReadAndThoseThatAreMissingAreEmpty) {
  EXPECT_EQ(readLastRun(shop)[4], "2");
  EXPECT_EQ(readLastRun(shop)[10], "");
  std::string lines;
  for (int i = 1; i <= 14; ++i) lines += std::to_string(i) + "\r\n";
  ASSERT_TRUE(writeBytes(shop + "/db/last.ini", lines));
  EXPECT_EQ(readLastRun(shop)[10], "11");
}

TEST_F(LastRunTest, TheSameShopMaySendADifference) { EXPECT_TRUE(canUse()); }

TEST_F(LastRunTest, WithoutTheDatabaseOrItsLinesItMayNot) {
  ASSERT_TRUE(deleteFile(shop + "/db/last.ini"));
  EXPECT_FALSE(canUse());
  ASSERT_TRUE(keepLastRun(shop, now, 2));
  ASSERT_TRUE(forgetLastRun(shop));
  EXPECT_FALSE(canUse());
  EXPECT_TRUE(forgetLastRun(shop));
}

TEST_F(LastRunTest, AnotherNumberOfLanguagesForcesAFullExport) {
  note("3\r\n");
  EXPECT_FALSE(canUse());
  note(" 2 \r\n");
  EXPECT_TRUE(canUse()) << "numbers are compared as numbers";
}

TEST_F(LastRunTest, AnotherDatabaseForcesAFullExport) {
  now.db_hostname = "db.montelune.it";
  EXPECT_FALSE(canUse(true));
  now.db_hostname = "localhost";
  now.db_dbname = "altro";
  EXPECT_FALSE(canUse(true));
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(LastRunTest, CaseMakesNoOtherDatabase) {
  now = {"FTP.Montelune.it", "WWW.montelune.it", "LOCALHOST", "Negozio", "abc"};
  EXPECT_TRUE(canUse(true));
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(LastRunTest, AnotherHostAndAddressForceAFullExportWithoutAQuestion) {
  now.hostname = "ftp.altro.it";
  now.URL = "www.altro.it";
  EXPECT_FALSE(canUse(true));
  EXPECT_FALSE(canUse(false));
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(LastRunTest, AnotherHostAlonePassesSilentlyInThePublishRun) {
  now.hostname = "ftp.altro.it";
  EXPECT_TRUE(canUse(false));
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(LastRunTest, AnotherHostAloneIsAskedAboutInTheSettingsWithNoAsDefault) {
  now.hostname = "ftp.altro.it";
  EXPECT_FALSE(canUse(true));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]),
            "[Question, YesNo, No -> No] L'ultimo aggiornamento del database è relativo all'indirizzo FTP "
            "\"ftp.montelune.it\".\n"
            "L'indirizo FTP è cambiato ma l'URL del sito (\"www.montelune.it\") è rimasta uguale.\n"
            "Il nuovo indirizzo (\"ftp.altro.it\")\n"
            "corrisponde al precedente (cioè il database utilizzato è sempre lo stesso)?");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(canUse(true));
}

TEST_F(LastRunTest, ANameOutsideTheCodePageIsTheSameOneAgain) {
  now.db_dbname = "negozio\xE2\x82\xBF";
  ASSERT_TRUE(keepLastRun(shop, now, 2));
  EXPECT_TRUE(canUse());
}

TEST_F(LastRunTest, AFailedKeepingLeavesNoBase) {
  for (int call = 1;; ++call) {
    ASSERT_TRUE(keepLastRun(shop, now, 2));
    now.db_dbname = "nuovo";
    FailingFiles files(call);
    files.onlyAt({FileStep::Create, FileStep::Write, FileStep::Rename});
    const auto kept = keepLastRun(shop, now, 2);
    if (!files.hasFailed()) break;
    EXPECT_FALSE(kept);
    EXPECT_FALSE(fileExists(shop + "/db/last.mdb")) << call;
    now.db_dbname = "negozio";
  }
}

TEST_F(LastRunTest, TheColumnsComeFromTheCatalogue) {
  const std::string path = folder / "catalog.mdb";
  ASSERT_TRUE(createDatabase(path, catalogueTables()));
  auto catalogue = Database::open(path, OpenMode::Shared);
  ASSERT_TRUE(catalogue);
  const auto none = readPublishedShop(*catalogue);
  ASSERT_TRUE(none);
  EXPECT_EQ(none->hostname, "");
  ASSERT_TRUE(
      catalogue->execute("INSERT INTO generale (hostname, URL, db_hostname, db_dbname, db_security) VALUES"
                         " ('h', 'u', 'd', 'n', 's')"));
  const auto found = readPublishedShop(*catalogue);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->hostname + found->URL + found->db_hostname + found->db_dbname + found->db_security, "hudns");
}

}  // namespace
}  // namespace kv::test
