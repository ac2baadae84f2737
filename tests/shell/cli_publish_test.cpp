// korvane-cli publish: what it names, what it sends, and how it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "shell/cli/cli_program.h"
#include "support/scripted_ftp_server.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

/// A new shop, built, whose server is one of the test's own; the host of its pages answers nobody.
class CliPublish : public ::testing::Test {
 protected:
  CliPublish() : server({.home = "/casa"}) {
    EXPECT_TRUE(copyTree(KORVANE_APP_DATA, home / "app"));
    server.makeFolder("/casa/www");
    server.makeFolder("/casa/cgi");
  }
  CliOutcome run(const std::vector<std::string>& words) {
    out.str("");
    err.str("");
    std::vector<std::string> arguments{"--app", home / "app"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    arguments.push_back(shop);
    ConsoleOptions screen;
    screen.cancelled = cancelled;
    return runCommandLine(arguments, {out, err, std::move(screen), ""});
  }
  void makeBuiltShop() {
    ASSERT_EQ(run({"new"}), CliOutcome::Done) << err.str();
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
    ASSERT_TRUE(catalogue);
    ASSERT_TRUE(
        catalogue->execute("UPDATE generale SET hostname='127.0.0.1', username='mario', password='segreto', "
                           "folderFTP='www', folderCGI='cgi', URL='http://127.0.0.1:1'"));
    catalogue->close();
    ASSERT_TRUE(writeBytes(shop + "/firewall.net", "FPRT: " + server.port() + "\r\n"));
    ASSERT_EQ(run({"build"}), CliOutcome::Done) << err.str();
  }

  test::TempFolder home;
  std::string shop = home / "shop";
  test::ScriptedFtpServer server;
  std::ostringstream out, err;
  std::function<bool()> cancelled;
};

TEST_F(CliPublish, NeedsABuiltShop) {
  ASSERT_EQ(run({"new"}), CliOutcome::Done);
  EXPECT_EQ(run({"publish"}), CliOutcome::Failed);
  EXPECT_EQ(err.str(), "E' necessario costruire il negozio prima di aggiornare il sito\n");
}

TEST_F(CliPublish, SendsWhatTheDryRunHasNamedAndTellsWhatTheHostAnswers) {
  makeBuiltShop();
  ASSERT_EQ(run({"publish", "--dry-run"}), CliOutcome::Done);
  EXPECT_EQ(server.connections(), 0);
  EXPECT_THAT(out.str(), HasSubstr("www/db.sql\n"));
  const std::string named = out.str();
  const auto lines = std::count(named.begin(), named.end(), '\n');
  EXPECT_THAT(named, EndsWith("File da inviare: " + std::to_string(lines - 1) + "\n"));

  EXPECT_EQ(run({"publish"}), CliOutcome::Failed) << "nobody answers where the pages should be";
  EXPECT_THAT(err.str(), HasSubstr("Si sono verificati errori nell'aggiornamento del database:"));
  EXPECT_EQ(server.fileNames().size(), static_cast<std::size_t>(lines - 1));
  EXPECT_EQ(server.file("/casa/www/db.sql"), readBytes(shop + "/online/db.sql").value_or("-"));
  EXPECT_THAT(out.str(), HasSubstr("File inviati: " + std::to_string(lines - 1)));
  for (const std::string& text : {out.str(), err.str()}) EXPECT_EQ(text.find("segreto"), std::string::npos);

  server.forgetCommands();
  EXPECT_EQ(run({"publish", "--all"}), CliOutcome::Failed);
  EXPECT_EQ(server.commands("STOR").size(), static_cast<std::size_t>(lines - 1));
}

TEST_F(CliPublish, SendsTheSqlFilesOfAnUnchangedShopOnceMore) {
  makeBuiltShop();
  run({"publish"});
  server.forgetCommands();
  run({"publish"});
  EXPECT_EQ(server.commands("STOR").size(), 8U);
  EXPECT_EQ(server.commands("STOR db").size(), 8U) << "the host has removed what it was told to load";
}

TEST_F(CliPublish, IsCancelledAtTheNextStep) {
  makeBuiltShop();
  cancelled = [this] { return !server.commands("STOR").empty(); };
  EXPECT_EQ(run({"publish"}), CliOutcome::Cancelled);
  EXPECT_LE(server.fileNames().size(), 1U);
}

TEST_F(CliPublish, SendsAShopInAFolderThatTheTableOfTheFilesDoesNotHold) {
  shop = home / "żółw";
  makeBuiltShop();
  ASSERT_EQ(run({"publish", "--dry-run"}), CliOutcome::Done) << err.str();
  const std::string named = out.str();
  const auto lines = std::count(named.begin(), named.end(), '\n');
  EXPECT_GT(lines, 50);
  run({"publish"});
  EXPECT_EQ(server.fileNames().size(), static_cast<std::size_t>(lines - 1));
  EXPECT_EQ(server.file("/casa/www/index.php"), readBytes(shop + "/online/index.php").value_or("-"));
}

}  // namespace
}  // namespace kv
