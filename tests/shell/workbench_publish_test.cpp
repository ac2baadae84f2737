// Build, publishing, the back office and the emptying of the working folders, as the workbench starts them.

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

constexpr const char* templateNeeded = "Per costruire il negozio è necessario scegliere un template";

class WorkbenchPublishTest : public WorkbenchFixture {};

TEST_F(WorkbenchPublishTest, ABuildSavesWhatIsTypedFirst) {
  start();
  view.typing = [this] { leave(EditedSet::Categorie, "titolo", "Orci"); };
  dialogs().build = [this] {
    dialogsRun.push_back(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"));
    return true;
  };
  press("build");
  EXPECT_THAT(dialogsRun, ElementsAre("Orci"));
}

TEST_F(WorkbenchPublishTest, ABuildWithoutATemplateRunsTheChoiceFirst) {
  run(shop, "UPDATE generale SET template = ''");
  int asked = 0;
  env.hooks.frmTemplate = [&](const std::string&) { return std::string(++asked > 1 ? "base" : ""); };
  start();
  press("build");
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(session.templatePath, "template/base");
  EXPECT_TRUE(user.shown.empty());
  EXPECT_THAT(dialogsRun, ElementsAre("build"));
}

TEST_F(WorkbenchPublishTest, LeavingTheTemplateChoiceAsksAndACancelEndsTheCommand) {
  run(shop, "UPDATE generale SET template = ''");
  int asked = 0;
  env.hooks.frmTemplate = [&](const std::string&) {
    ++asked;
    return std::string();
  };
  start();
  user.answers = {Answer::Ok, Answer::Cancel};
  press("build");
  EXPECT_EQ(asked, 3);
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(user.shown[0], (Shown{templateNeeded, Icon::Exclamation, Buttons::OkCancel, Answer::Ok, Answer::Ok}));
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(WorkbenchPublishTest, PublishingRemindsChecksAndSends) {
  start();
  write(shop + "/kvftp.dat", "#\r\n");
  answer(&WorkbenchDialogs::remindToBuild, true);
  answer(&WorkbenchDialogs::publishOptions, true);
  press("publish");
  EXPECT_THAT(dialogsRun, ElementsAre("remindToBuild", "publishOptions", "publish"));
}

TEST_F(WorkbenchPublishTest, TheReminderEndsThePublishingOnNo) {
  start();
  write(shop + "/kvftp.dat", "#\r\n");
  press("publish");
  EXPECT_THAT(dialogsRun, ElementsAre("remindToBuild"));
}

TEST_F(WorkbenchPublishTest, TheReminderIsLeftOutWhenTheUserHasToldSo) {
  ASSERT_TRUE(settings.set(settingsSection, "NoShow", "1"));
  start();
  write(shop + "/kvftp.dat", "#\r\n");
  press("publish");
  EXPECT_THAT(dialogsRun, ElementsAre("publishOptions"));
}

TEST_F(WorkbenchPublishTest, AnyOtherValueOfTheSettingLeavesTheReminderOn) {
  start();
  write(shop + "/kvftp.dat", "#\r\n");
  for (const char* value : {"", "0", "2", "yes", "11"}) {
    ASSERT_TRUE(settings.set(settingsSection, "NoShow", value));
    dialogsRun.clear();
    press("publish");
    EXPECT_THAT(dialogsRun, ElementsAre("remindToBuild")) << value;
  }
}

TEST_F(WorkbenchPublishTest, AShopThatWasNeverBuiltIsNotPublished) {
  start();
  answer(&WorkbenchDialogs::remindToBuild, true);
  press("publish");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], said("E' necessario costruire il negozio prima di aggiornare il sito", Icon::Exclamation));
  EXPECT_THAT(dialogsRun, ElementsAre("remindToBuild"));
}

TEST_F(WorkbenchPublishTest, TheBackOfficeIsOpenedAtItsAddress) {
  start();
  leave(EditedSet::Generale, "URL", "www.bottega.example/");
  leave(EditedSet::Generale, "cartellaCGI", "/gestione/");
  press("backOffice");
  leave(EditedSet::Generale, "cartellaCGI", "");
  press("backOffice");
  EXPECT_THAT(opened,
              ElementsAre("http://www.bottega.example/gestione/index.php", "http://www.bottega.example/index.php"));
}

TEST_F(WorkbenchPublishTest, WithoutAnAddressTheBackOfficeIsExplained) {
  start();
  press("backOffice");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "Il BackOffice non è disponibile finché non si costruisce ed aggiorna il negozio per la prima volta.\n"
            "Indicarne l'URL nella scheda \"Internet\", quindi costruire ed aggiornare il negozio.");
  EXPECT_TRUE(opened.empty());
}

class CleanFoldersTest : public WorkbenchFixture {
 protected:
  void fill() {
    write(shop + "/online/index.php", "x");
    write(shop + "/online/sotto/resta.gif", "x");
    write(shop + "/scripts/ordine.php", "x");
  }
  std::string question() {
    return "Le seguenti cartelle saranno svuotate:\n\n" + shop + "/online\n" + shop +
           "/scripts\n\nATTENZIONE: Tutti i file presenti in queste cartelle verranno cancellati.\n"
           "Si desidera procedere con la cancellazione?";
  }
};

TEST_F(CleanFoldersTest, AsksForEachFolderWithCancelAsTheDefault) {
  start();
  fill();
  user.answers = {Answer::Yes, Answer::Ok};
  choose("shop.cleanFolders");
  ASSERT_EQ(user.shown.size(), 3U);
  EXPECT_EQ(user.shown[0], asked(question(), Answer::No, Answer::Yes, Icon::Exclamation));
  EXPECT_EQ(user.shown[1], (Shown{"Saranno cancellati i file presenti in " + shop + "/online", Icon::Exclamation,
                                  Buttons::OkCancel, Answer::Cancel, Answer::Ok}));
  EXPECT_EQ(user.shown[2], (Shown{"Saranno cancellati i file presenti in " + shop + "/scripts", Icon::Exclamation,
                                  Buttons::OkCancel, Answer::Cancel, Answer::Cancel}));
  EXPECT_FALSE(fileExists(shop + "/online/index.php"));
  EXPECT_TRUE(fileExists(shop + "/online/sotto/resta.gif"));
  EXPECT_TRUE(fileExists(shop + "/scripts/ordine.php"));
}

TEST_F(CleanFoldersTest, NothingIsDeletedWithoutAYes) {
  start();
  fill();
  choose("shop.cleanFolders");
  EXPECT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(fileExists(shop + "/online/index.php"));
}

}  // namespace
}  // namespace kv::test
