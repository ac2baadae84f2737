// What can be pressed and chosen, as the cursors move through the shop: buttons, entries and editors together.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

constexpr std::array<std::string_view, 7> articleKeys{"articolo su", "articolo giu", "- articolo", "copia articolo",
                                                      "+ immagine0", "+ immagine1",  "+ immagine2"};
constexpr std::array<std::string_view, 10> departmentKeys{
    "+ categoria prima", "+ categoria dopo", "categoria su",    "categoria giu",   "- categoria",
    "copia categoria",   "+ articolo prima", "+ articolo dopo", "+ immagine cat0", "+ immagine cat1"};

class CommandStates : public DrivenWindow {
 protected:
  /// Names of the key's commands whose action or button isn't enabled as wanted.
  std::string others(std::string_view key, bool wanted) {
    std::string wrong;
    for (const Command& command : window->workbench().commands().table().rows()) {
      if (command.key != key) continue;
      if (isEntryOn(command.name) != wanted) wrong += command.name + " ";
      for (const QAbstractButton* button : buttonsOf(command.name)) {
        if (button->isEnabled() != wanted) wrong += "button " + command.name + " ";
      }
    }
    return wrong;
  }
  void expectKeys(std::span<const std::string_view> keys, bool wanted) {
    processEvents();
    for (const std::string_view key : keys) EXPECT_EQ(others(key, wanted), "") << key;
  }
  /// Editors of a set that aren't enabled as wanted.
  std::string editorsOther(EditedSet set, bool wanted) {
    std::string wrong;
    for (const Editor& editor : editorTable()) {
      if (editor.set != set) continue;
      const bool on = window->page(editor.tab).binding(editor.set, editor.column)->field()->isEnabled();
      if (on != wanted) wrong += std::string(editor.column) + " ";
    }
    return wrong;
  }
};

TEST_F(CommandStates, TheKeysOfAnArticleFollowTheArticleCursor) {
  openWide();
  goArticle(0);
  expectKeys(articleKeys, true);
  EXPECT_EQ(editorsOther(EditedSet::Articoli, true), "");
  go("cat002");
  expectKeys(articleKeys, false);
  EXPECT_EQ(editorsOther(EditedSet::Articoli, false), "");
  go("cat003");
  expectKeys(articleKeys, true);
}

TEST_F(CommandStates, TheKeysOfADepartmentFollowTheDepartmentCursor) {
  openWide();
  expectKeys(departmentKeys, true);
  EXPECT_EQ(editorsOther(EditedSet::Categorie, true), "");
  go("###");
  expectKeys(departmentKeys, false);
  EXPECT_EQ(editorsOther(EditedSet::Categorie, false), "");
  goTab(Tab::Articles);
  EXPECT_FALSE(isEntryOn("article.insertBefore"));
  EXPECT_FALSE(isEntryOn("article.insertAfter"));
}

TEST_F(CommandStates, OnTheRootOnlyASubdepartmentCanBeAdded) {
  openWide();
  go("###");
  EXPECT_TRUE(press("department.insertBelow"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Piatti Nuovo Reparto)");
  EXPECT_EQ(selected(), "cat004");
  EXPECT_EQ(scalar("SELECT genitore FROM categorie WHERE ID = 'cat004'"), "###");
}

TEST_F(CommandStates, APictureIsTakenAwayOnlyWhereThereIsOne) {
  run(shop,
      "UPDATE articoli SET immagine1 = 'foto.gif' WHERE ID = 2; UPDATE articoli SET immagine2 = 'foto.gif' WHERE ID = "
      "3;"
      "UPDATE categorie SET immagine0 = 'foto.gif' WHERE ID = 'cat001';"
      "UPDATE categorie SET immagine1 = 'foto.gif' WHERE ID = 'cat003'; UPDATE generale SET immagine1 = 'foto.gif'");
  openWide();
  const auto on = [this] {
    processEvents();
    std::string names;
    for (const char* name :
         {"article.picture0.clear", "article.picture1.clear", "article.picture2.clear", "department.picture0.clear",
          "department.picture1.clear", "shop.picture0.clear", "shop.picture1.clear"}) {
      if (isEntryOn(name)) names += std::string(name) + " ";
    }
    return names;
  };
  EXPECT_EQ(on(), "department.picture0.clear shop.picture1.clear ");
  goArticle(1);
  EXPECT_EQ(on(), "article.picture1.clear department.picture0.clear shop.picture1.clear ");
  goArticle(2);
  EXPECT_EQ(on(), "article.picture2.clear department.picture0.clear shop.picture1.clear ");
  go("cat003");
  EXPECT_EQ(on(), "department.picture1.clear shop.picture1.clear ");
}

TEST_F(CommandStates, TheButtonPictureFollowsTheLanguage) {
  run(shop, "UPDATE categorie SET immagine1_l2 = 'knob.gif' WHERE ID = 'cat001'");
  openWide();
  EXPECT_FALSE(isEntryOn("department.picture1.clear"));
  EXPECT_TRUE(choose("language.2"));
  EXPECT_TRUE(isEntryOn("department.picture1.clear"));
}

TEST_F(CommandStates, PastingFollowsWhatWasCopied) {
  openWide();
  EXPECT_FALSE(isEntryOn("article.paste"));
  EXPECT_FALSE(isEntryOn("department.paste"));
  go("cat002");
  EXPECT_TRUE(press("department.copy"));
  EXPECT_TRUE(isEntryOn("department.paste"));
  EXPECT_FALSE(isEntryOn("article.paste"));
  go("cat001");
  goArticle(0);
  EXPECT_TRUE(press("article.copy"));
  EXPECT_TRUE(isEntryOn("article.paste"));
  EXPECT_FALSE(isEntryOn("department.paste"));
}

TEST_F(CommandStates, TheServerFoldersAndItsTrialFollowHostUserAndPassword) {
  openWide();
  answerServerFolder(false);
  answer(&WorkbenchDialogs::verifyConnection, true);
  refreshEntries();
  goTab(Tab::Internet);
  const auto offered = [this] {
    processEvents();
    const bool isOn = isEntryOn("connection.verify");
    EXPECT_EQ(isEntryOn("connection.shopFolder"), isOn);
    EXPECT_EQ(isEntryOn("connection.scriptFolder"), isOn);
    return isOn;
  };
  for (const char* column : {"hostname", "username", "password"}) {
    EXPECT_FALSE(offered()) << column;
    type(line(EditedSet::Generale, column), "x");
    leave(line(EditedSet::Generale, column));
  }
  EXPECT_TRUE(offered());
  type(line(EditedSet::Generale, "username"), "   ");
  leave(line(EditedSet::Generale, "username"));
  EXPECT_FALSE(offered());
}

TEST_F(CommandStates, TheTreeCommandsAreOffWhereThereIsNoTree) {
  openWide();
  for (const Tab tab : {Tab::Site, Tab::Internet, Tab::Articles, Tab::Departments}) {
    goTab(tab);
    const bool tree = tab == Tab::Departments || tab == Tab::Articles;
    EXPECT_EQ(isEntryOn("tree.expand"), tree);
    EXPECT_EQ(isEntryOn("tree.collapse"), tree);
    EXPECT_EQ(isEntryOn("details.hide"), tree);
    EXPECT_EQ(window->tree().isVisible(), tree);
  }
}

TEST_F(CommandStates, AVariantIsDefinedForAnArticleAlone) {
  openWide();
  goArticle(0);
  for (const char* name : {"article.variant1", "article.variant2", "article.variant3", "article.variant4"})
    EXPECT_TRUE(isEntryOn(name)) << name;
  go("cat002");
  for (const char* name : {"article.variant1", "article.variant2", "article.variant3", "article.variant4"})
    EXPECT_FALSE(isEntryOn(name)) << name;
}

TEST_F(CommandStates, WithoutADepartmentThereIsNothingToExpand) {
  run(shop, "DELETE FROM categorie; DELETE FROM articoli");
  openWide();
  EXPECT_FALSE(isEntryOn("tree.expand"));
  EXPECT_EQ(treeShown(), "Negozio");
  EXPECT_TRUE(press("department.insertBelow"));
  EXPECT_TRUE(isEntryOn("tree.expand"));
}

TEST_F(CommandStates, TheStatusLineFollowsTheDepartment) {
  openWide();
  auto* status = window->findChild<QLabel*>(QStringLiteral("lblStato"));
  ASSERT_NE(status, nullptr);
  EXPECT_EQ(status->text(), " Articoli: 3 /4");
  go("cat002");
  EXPECT_EQ(status->text(), " Articoli: 0 /4");
  go("###");
  EXPECT_EQ(status->text(), " Articoli: 4");
  go("cat003");
  goTab(Tab::Articles);
  EXPECT_TRUE(press("article.insertAfter"));
  EXPECT_EQ(status->text(), " Articoli: 2 /5");
}

}  // namespace
}  // namespace kv::test
