// A shop of an earlier release in the window of the program: it opens without a word, up to date, and is built with
// its scripts patched, as by the command line.
#include <gmock/gmock.h>

#include <QLabel>
#include <map>
#include <sstream>

#include "forms/wired_window.h"
#include "shell/cli/cli_program.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* privacyPolicy = "ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP";
/// Lines of an earlier release, with other spaces than it had; they are never reached.
constexpr const char* formerSearch =
    "<?php if (false) { $Out =\timplode('',\r\n  file($name)); }\r\n"
    "if (false) { $fpagina[$artFound] = $rowArt[\"pagina\"].\".php?n=\".$rowArt[\"sottopagina\"].\"#\"\r\n"
    "  .$rowArt[\"contatore\"]; } ?>";
constexpr const char* formerLogin = "<?php if (false) { $home  =  \"index.php\"; } ?>";

class AnAgedShopInTheWindow : public WiredWindow {
 protected:
  AnAgedShopInTheWindow() {
    fill(
        "ALTER TABLE generale DROP COLUMN p3p; ALTER TABLE generale DROP COLUMN regprices;"
        "ALTER TABLE generale DROP COLUMN showsigns; UPDATE generale SET versione = 1001, singleitem_search = 1");
    auto seed = Database::open(shop + "/source.new", OpenMode::Shared);
    EXPECT_TRUE(seed && seed->execute("ALTER TABLE categoria DROP COLUMN compact_privacy_policy"));
    EXPECT_TRUE(createFolders(shop + "/code"));
    EXPECT_TRUE(copyTree(application + "/new/code/SysPay", shop + "/code/SysPay"));
    EXPECT_TRUE(copyFile(application + "/new/code/SysPay.kpg", shop + "/code/SysPay.kpg"));
    EXPECT_TRUE(writeBytes(shop + "/code/SysPay/conf.ini", configured));
    EXPECT_TRUE(writeBytes(shop + "/code/ve.dat", "1.0.6\r\n"));
    EXPECT_TRUE(writeBytes(shop + "/code/kvsearch.php", formerSearch));
    EXPECT_TRUE(writeBytes(shop + "/code/lognew.php", formerLogin));
  }
  std::string file(const std::string& name) const { return readBytes(shop + "/" + name).value_or("(none)"); }
  /// The scripts and pages of the site, by their names.
  std::map<std::string, std::string> site() const {
    std::map<std::string, std::string> files;
    for (const char* folder : {"online", "scripts"}) {
      for (const char* pattern : {"*.php", "*.js"}) {
        for (const std::string& name : listFiles(shop + "/" + folder, pattern)) {
          files[std::string(folder) + "/" + name] = file(std::string(folder) + "/" + name);
        }
      }
    }
    return files;
  }
  void clearSite() const {
    for (const auto& [name, text] : site()) EXPECT_TRUE(deleteFile(shop + "/" + name)) << name;
  }

  static constexpr const char* configured = "php(default)=syspay\r\nmid=4711\r\nrec=\r\nurl=\r\ndev=\r\n";
};

TEST_F(AnAgedShopInTheWindow, OpensUpToDateWithoutAWord) {
  openWindow();
  EXPECT_TRUE(user.shown.empty()) << asText(user.shown.front());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_EQ(stored("versione || '|' || p3p || '|' || (regprices IS NULL) || '|' || showsigns"),
            std::string("1002|") + privacyPolicy + "|1|1");
  EXPECT_EQ(file("code/ve.dat"), "1.0.8\r\n");
  EXPECT_FALSE(window->workbench().history().canUndo()) << "bringing up to date is no step";
  goTab(Tab::Site);
  EXPECT_EQ(
      fromQt(qobject_cast<QLineEdit*>(window->page(Tab::Site).binding(EditedSet::Generale, "p3p")->field())->text()),
      privacyPolicy);
}

TEST_F(AnAgedShopInTheWindow, KeepsTheAccountOfARenewedModuleAndSaysThatItHasToBeConfigured) {
  openWindow();
  EXPECT_EQ(file("backup/code/SysPay/conf.ini"), configured);
  EXPECT_EQ(file("code/SysPay/conf.ini"), readBytes(application + "/new/code/SysPay/conf.ini").value_or(""));
  goTab(Tab::Site);
  std::string state;
  whenShown(QStringLiteral("Korvane - Configurazione sistemi di pagamento"), [&](QWidget& dialog) {
    state = fromQt(control<QPushButton>(dialog, "cmdConfigura14")->text());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  EXPECT_TRUE(choose("payment"));
  EXPECT_EQ(state, "SysPay: da configurare");
}

TEST_F(AnAgedShopInTheWindow, IsNotWrittenToAtItsSecondOpening) {
  openWindow();
  closeSession(session, env);
  const std::string catalogue = file("catalog.mdb"), seed = file("source.new"), stamp = file("code/ve.dat");
  ASSERT_EQ(startSession(session, env), LoadResult::Opened);
  closeSession(session, env);
  EXPECT_TRUE(file("catalog.mdb") == catalogue);
  EXPECT_TRUE(file("source.new") == seed);
  EXPECT_EQ(file("code/ve.dat"), stamp);
}

TEST_F(AnAgedShopInTheWindow, IsBuiltWithItsScriptsPatchedAsByTheCommandLine) {
  openWindow();
  std::string said;
  whenFinished(said);
  run("build");
  EXPECT_THAT(said, HasSubstr("Creazione del negozio terminata."));
  EXPECT_TRUE(user.shown.empty()) << asText(user.shown.front());
  const auto byWindow = site();
  const std::string search = byWindow.at("online/kvsearch.php"), login = byWindow.at("online/lognew_l2.php");
  EXPECT_THAT(search, HasSubstr("{ \t$Out = @readfile($name);\r\n\t$Out = \"\"; }"));
  EXPECT_THAT(search,
              HasSubstr(R"({ 	$fpagina[$artFound]=$rowArt["pagina"].".php?n=".$rowArt["sottopagina"]."&prod=")"));
  EXPECT_THAT(search, Not(HasSubstr("implode")));
  EXPECT_THAT(login, HasSubstr("$home = \"index_l2.php\";"));
  EXPECT_EQ(file("code/kvsearch.php"), formerSearch) << "the merchant's own script stays";
  EXPECT_EQ(file("code/lognew.php"), formerLogin);

  closeSession(session, env);
  clearSite();
  std::ostringstream out, err;
  const std::vector<std::string> arguments{"--app", application, "build", shop};
  EXPECT_EQ(runCommandLine(arguments, {out, err, {}, ""}), CliOutcome::Done) << err.str();
  const auto byCommand = site();
  EXPECT_EQ(byCommand.size(), byWindow.size());
  for (const auto& [name, text] : byWindow) {
    EXPECT_TRUE(byCommand.contains(name) && byCommand.at(name) == text) << name;
  }
}

}  // namespace
}  // namespace kv::test
