// Files of ours that the shop no longer has: which are offered for removal, and what becomes of them on the server.
#include "publish/run/clean_up.h"

#include "publish_fixture.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;
using Kind = test::FtpFault::Kind;

class ACleanUp : public test::PublishFixture {
 protected:
  ACleanUp() {
    settings.onlyShopFiles = true;
    settings.cleanUp = true;
    for (const char* name : {"online/a.htm", "online/b.htm", "online/c.gif", "scripts/d.php"}) write(name, "1");
    build({"online/a.htm", "online/b.htm", "online/c.gif", "scripts/d.php"});
    EXPECT_EQ(publish(), PublishOutcome::Done);
  }
  /// Writes the list of files of a build.
  void build(const Names& names) {
    std::string list;
    for (const std::string& name : names) list += "#" + (root / name) + "\r\n";
    ASSERT_TRUE(writeBytes(root / "kvftp.dat", list + "#\r\n"));
  }
  Names removed() const { return server.commands("DELE "); }
};

TEST_F(ACleanUp, RemovesWhatTheLastBuildNoLongerListsAfterTheQuestion) {
  build({"online/a.htm", "scripts/e.php"});
  server.putFile("/casa/www/negozio/altrui.htm", "non nostro");
  user.answers = {Answer::Yes, Answer::Yes};
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(test::asText(user.shown.at(0)),
            "[Question, YesNo, No -> Yes] Nella cartella \"www/negozio\" del server ci sono file che il negozio non ha "
            "più:\nb.htm\nc.gif\n\nSi desidera eliminarli dal server?");
  EXPECT_EQ(removed(), (Names{"DELE b.htm", "DELE c.gif", "DELE d.php"}));
  EXPECT_EQ(server.fileNames(), (Names{"/casa/www/negozio/a.htm", "/casa/www/negozio/altrui.htm"}));
  EXPECT_EQ(tableRows(), "127.0.0.1/www/negozio/a.htm|1\n");
  EXPECT_EQ(report.removed, 3);
  EXPECT_EQ(reportText(report), "File inviati: 0 (0 byte), già presenti: 1, eliminati dal server: 3");
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(user.shown.size(), 2U) << "nothing is left to ask about";
}

TEST_F(ACleanUp, RemovesNothingUnlessTheUserSaysYes) {
  build({"online/a.htm"});
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(removed(), Names{});
  EXPECT_EQ(server.fileNames().size(), 4U);
}

TEST_F(ACleanUp, IsOffInAnUntouchedShop) {
  EXPECT_TRUE(uploadOptions(job, {}, way).cleanUpFolders.empty());
  settings.cleanUp = false;
  build({"online/a.htm"});
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(ACleanUp, AsksNothingWithoutAListOfTheLastBuild) {
  settings.onlyShopFiles = false;
  ASSERT_TRUE(deleteFile(root / "kvftp.dat"));
  ASSERT_EQ(publish(), PublishOutcome::Done);
  build({});
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(ACleanUp, KeepsWhatARunWouldSendAgain) {
  settings.onlyShopFiles = false;
  build({"online/a.htm", "scripts/d.php"});
  ASSERT_TRUE(deleteFile(root / "online/b.htm"));
  user.answers = {Answer::Yes};
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(removed(), Names{"DELE b.htm"}) << "the picture is the merchant's own, and still in the folder";
}

TEST_F(ACleanUp, KeepsSqlFilesPasswordListsAndTypesThatAreNotTransferred) {
  const FileChoice choice{true, ".htm.sql.ric.", {"a.htm"}};
  EXPECT_EQ(surplusFiles({"a.htm", "b.htm", "c.gif", "db.sql", "e.ric", "f.ris"}, choice, {}), Names{"b.htm"});
}

TEST_F(ACleanUp, AsksForEachHostAndFolderAboutItsOwnFiles) {
  job.folderFTP = "www";
  build({"online/a.htm", "scripts/d.php"});
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_TRUE(user.shown.empty()) << "nothing but a.htm was sent to this folder, and what is below it is another's";
}

TEST_F(ACleanUp, ForgetsAFileThatHasGoneFromTheServerAlready) {
  build({"online/a.htm", "online/c.gif", "scripts/d.php"});
  server.fail({.verb = "DELE", .reply = "550 nessun file\r\n"});
  server.fail({.verb = "MDTM", .reply = "550 nessun file\r\n"});
  user.answers = {Answer::Yes};
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(report.removed, 0);
  EXPECT_EQ(tableRows().find("b.htm"), std::string::npos);
}

TEST_F(ACleanUp, NamesWhatTheServerKeepsAndOffersItAgain) {
  build({"online/a.htm", "online/c.gif", "scripts/d.php"});
  server.fail({.verb = "DELE", .reply = "550 vietato\r\n"});
  user.answers = {Answer::Yes};
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(user.texts().at(1),
            "Il server non permette di eliminare questi file:\nb.htm\n\nTutti gli altri file sono aggiornati.");
  user.answers.push_back(Answer::Yes);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(removed(), Names{"DELE b.htm"});
  EXPECT_EQ(server.fileNames().size(), 3U);
}

TEST_F(ACleanUp, ThatBreaksOffFailsTheRunAndKeepsTheRowsOfWhatIsStillThere) {
  build({"online/a.htm", "scripts/d.php"});
  server.fail({.verb = "DELE", .kind = Kind::Close, .occurrence = 2});
  user.answers = {Answer::Yes};
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(tableRows(), "127.0.0.1/cgi/d.php|1\n127.0.0.1/www/negozio/a.htm|1\n127.0.0.1/www/negozio/c.gif|1\n");
}

TEST_F(ACleanUp, IsForetoldWithoutTheServer) {
  build({"online/a.htm"});
  const auto names = [this] { return filesToRemove(job, uploadOptions(job, settings, way)).value_or(Names{"failed"}); };
  EXPECT_EQ(names(), (Names{"www/negozio/b.htm", "www/negozio/c.gif", "cgi/d.php"}));
  EXPECT_EQ(server.fileNames().size(), 4U);
  settings.cleanUp = false;
  EXPECT_EQ(names(), Names{});
}

TEST_F(ACleanUp, NamesTheFirstOfManyFilesAndTheirNumber) {
  Names names;
  for (int i = 10; i < 30; ++i) names.push_back("p" + std::to_string(i) + ".htm");
  const std::string text = cleanUpQuestion("www", names).text;
  EXPECT_NE(text.find("p24.htm\n... (in tutto 20)\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("p25.htm"), std::string::npos);
}

}  // namespace
}  // namespace kv
