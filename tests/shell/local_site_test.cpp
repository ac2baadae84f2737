// "Vedi il negozio": when it can be chosen, what the machine must have, and what becomes of the host's answers.

#include "shell/workbench/local_site.h"
#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class LocalSite : public WorkbenchFixture {
 protected:
  LocalSite() {
    programs = folder_ / "programmi";
    EXPECT_TRUE(createFolder(programs));
    ports.host.programFolders = {folder_ / "nessuno", programs};
    ports.host.start = [this](const std::string& shopFolder) {
      served.push_back(shopFolder);
      return startResult;
    };
    ports.host.wait = [this] {
      HostReport report = reports.front();
      if (reports.size() > 1) reports.erase(reports.begin());
      return report;
    };
    ports.host.stop = [this] { ++stops; };
  }
  void install() {
    for (const char* program : {"/python3", "/php-fpm8.2", "/nginx", "/mariadbd"}) write(programs + program, "");
  }
  void build() { write(shop + "/kvftp.dat", "#\r\n"); }

  TempFolder folder_;
  std::string programs;
  std::vector<std::string> served;
  Result<> startResult;
  std::vector<HostReport> reports{{true, "http://127.0.0.1:8123/", ""}};
  int stops = 0;
};

TEST_F(LocalSite, IsOffWithItsReasonUntilTheShopIsBuilt) {
  install();
  start();
  EXPECT_FALSE(state("site.view").enabled);
  EXPECT_EQ(state("site.view").why, "Costruire prima il negozio");
  choose("site.view");
  EXPECT_TRUE(served.empty());
  build();
  EXPECT_TRUE(state("site.view").enabled);
}

TEST_F(LocalSite, OpensInTheBrowserOnceItIsServed) {
  install();
  build();
  reports = {{true, "", ""}, {true, "", ""}, {true, "http://127.0.0.1:8123/", ""}};
  start();
  choose("site.view");
  EXPECT_THAT(served, ElementsAre(shop));
  EXPECT_THAT(opened, ElementsAre("http://127.0.0.1:8123/"));
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(stops, 0) << "it serves on";
}

TEST_F(LocalSite, WhatIsTypedIsStoredBeforeTheShopIsServed) {
  install();
  build();
  start();
  view.typing = [this] { leave(EditedSet::Categorie, "titolo", "Orci"); };
  choose("site.view");
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
}

TEST_F(LocalSite, TellsHowToGetWhatTheMachineLacks) {
  build();
  write(programs + "/python3", "");
  write(programs + "/nginx", "");
  start();
  choose("site.view");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "Per vedere il negozio su questa macchina mancano dei programmi.\n"
            "Si installano, da amministratore, con il comando:\n\n"
            "sudo apt install php-fpm php-mysql mariadb-server");
  EXPECT_EQ(user.shown[0].icon, Icon::Information);
  EXPECT_TRUE(served.empty());
}

TEST_F(LocalSite, TellsWhatTheHostSaidWhenItEndedByItself) {
  install();
  build();
  reports = {{true, "", ""}, {false, "", "nginx ended"}};
  start();
  choose("site.view");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Impossibile mostrare il negozio su questa macchina:\nnginx ended");
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_TRUE(opened.empty());
}

TEST_F(LocalSite, TellsWhenTheHostDoesNotStartAtAll) {
  install();
  build();
  startResult = fail(ErrorKind::Other, "python3", "no such program");
  start();
  choose("site.view");
  EXPECT_EQ(user.texts(),
            std::vector<std::string>{"Impossibile mostrare il negozio su questa macchina:\nno such program"});
}

TEST_F(LocalSite, ACancelEndsTheHostWithoutAWord) {
  install();
  build();
  reports = {{true, "", ""}};
  start();
  user.cancelAtYield = 2;
  choose("site.view");
  EXPECT_EQ(stops, 1);
  EXPECT_TRUE(opened.empty());
  EXPECT_TRUE(user.shown.empty());
}

}  // namespace
}  // namespace kv::test
