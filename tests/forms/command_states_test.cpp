// What can be pressed and chosen, as the cursors move through the shop: buttons, entries and editors together.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

class CommandStates : public DrivenWindow {
 protected:
  /// Numbers of the key's commands whose action or button stands otherwise than told.
  std::string others(std::string_view key, bool wanted) {
    std::string wrong;
    for (const Command& command : commandTable()) {
      if (command.key != key) continue;
      if (window->menus().command(command.number)->isEnabled() != wanted) wrong += std::to_string(command.number) + " ";
      for (const QAbstractButton* button : buttonsOf(command.number)) {
        if (button->isEnabled() != wanted) wrong += "button " + std::to_string(command.number) + " ";
      }
    }
    return wrong;
  }
  void expectKeys(std::span<const std::string_view> keys, bool wanted) {
    settle();
    for (const std::string_view key : keys) EXPECT_EQ(others(key, wanted), "") << key;
  }
  /// Editors of a set that stand otherwise than the mask tells.
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
  expectKeys(articleKeys(), true);
  EXPECT_EQ(editorsOther(EditedSet::Articoli, true), "");
  go("cat002");
  expectKeys(articleKeys(), false);
  EXPECT_EQ(editorsOther(EditedSet::Articoli, false), "");
  go("cat003");
  expectKeys(articleKeys(), true);
}

TEST_F(CommandStates, TheKeysOfADepartmentFollowTheDepartmentCursor) {
  openWide();
  expectKeys(departmentKeys(), true);
  EXPECT_EQ(editorsOther(EditedSet::Categorie, true), "");
  go("###");
  expectKeys(departmentKeys(), false);
  EXPECT_EQ(editorsOther(EditedSet::Categorie, false), "");
  goTab(Tab::Articles);
  EXPECT_FALSE(window->menus().command(2)->isEnabled());
  EXPECT_FALSE(window->menus().command(3)->isEnabled());
}

TEST_F(CommandStates, OnTheRootOnlyASubdepartmentCanBeAdded) {
  openWide();
  go("###");
  EXPECT_TRUE(press(20));
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
    settle();
    std::string numbers;
    for (const int number : {10, 22, 27, 18, 24, 28, 33}) {
      if (window->menus().command(number)->isEnabled()) numbers += std::to_string(number) + " ";
    }
    return numbers;
  };
  EXPECT_EQ(on(), "18 33 ");
  goArticle(1);
  EXPECT_EQ(on(), "22 18 33 ");
  goArticle(2);
  EXPECT_EQ(on(), "27 18 33 ");
  go("cat003");
  EXPECT_EQ(on(), "24 33 ");
}

TEST_F(CommandStates, TheButtonPictureFollowsTheLanguage) {
  run(shop, "UPDATE categorie SET immagine1_l2 = 'knob.gif' WHERE ID = 'cat001'");
  openWide();
  EXPECT_FALSE(window->menus().command(24)->isEnabled());
  EXPECT_TRUE(choose(MenuAction::EditLanguage, 2));
  EXPECT_TRUE(window->menus().command(24)->isEnabled());
}

TEST_F(CommandStates, PastingFollowsWhatWasCopied) {
  openWide();
  EXPECT_FALSE(window->menus().command(6)->isEnabled());
  EXPECT_FALSE(window->menus().command(11)->isEnabled());
  go("cat002");
  EXPECT_TRUE(press(12));
  EXPECT_TRUE(window->menus().command(11)->isEnabled());
  EXPECT_FALSE(window->menus().command(6)->isEnabled());
  go("cat001");
  goArticle(0);
  EXPECT_TRUE(press(5));
  EXPECT_TRUE(window->menus().command(6)->isEnabled());
  EXPECT_FALSE(window->menus().command(11)->isEnabled());
}

TEST_F(CommandStates, TheServerFoldersFollowHostUserAndPassword) {
  openWide();
  answer("frmFolderFTP", "");
  goTab(Tab::Internet);
  const auto offered = [this] {
    settle();
    return window->menus().entry(MenuAction::ShopFtpFolder)->isEnabled() &&
           window->menus().entry(MenuAction::ScriptFtpFolder)->isEnabled();
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
    EXPECT_EQ(window->menus().command(7)->isEnabled(), tree);
    EXPECT_EQ(window->menus().command(8)->isEnabled(), tree);
    EXPECT_EQ(window->menus().entry(MenuAction::HideDetails)->isEnabled(), tree);
    EXPECT_EQ(window->tree().isVisible(), tree);
  }
}

TEST_F(CommandStates, AVariantIsDefinedForAnArticleAlone) {
  openWide();
  goArticle(0);
  for (const int number : {30, 31, 34, 35}) EXPECT_TRUE(window->menus().command(number)->isEnabled()) << number;
  go("cat002");
  for (const int number : {30, 31, 34, 35}) EXPECT_FALSE(window->menus().command(number)->isEnabled()) << number;
}

TEST_F(CommandStates, WithoutADepartmentThereIsNothingToExpand) {
  run(shop, "DELETE FROM categorie; DELETE FROM articoli");
  openWide();
  EXPECT_FALSE(window->menus().command(7)->isEnabled());
  EXPECT_EQ(treeShown(), "Negozio");
  EXPECT_TRUE(press(20));
  EXPECT_TRUE(window->menus().command(7)->isEnabled());
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
  EXPECT_TRUE(press(3));
  EXPECT_EQ(status->text(), " Articoli: 2 /5");
}

}  // namespace
}  // namespace kv::test
