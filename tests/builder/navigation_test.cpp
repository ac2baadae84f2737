// The tree of links, the drop-down, the title path and the sub-departments, to the byte.

#include "builder/navigation/navigation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// A department called like its ID in capitals, with a page of its ID.
MenuDepartment department(const std::string& id, const std::string& genitore = "###", std::int64_t livello = 1) {
  MenuDepartment made;
  made.ID = made.pagina = made.titolo = id;
  made.titolo[0] = static_cast<char>(made.titolo[0] - 'a' + 'A');
  made.genitore = genitore;
  made.livello = livello;
  return made;
}
MenuDepartment hidden(MenuDepartment made) {
  made.nascosto = true;
  return made;
}
MenuDepartment withImage(MenuDepartment made) {
  made.immagine1 = made.ID + ".gif";
  made.imgX1 = 20;
  return made;
}
MenuDepartment titled(MenuDepartment made, const std::string& titolo) {
  made.titolo = titolo;
  return made;
}

NavigationLook plainLook(std::int64_t livelliaperti = 1) { return {{}, "<i>###</i>", livelliaperti, ""}; }
NavigationLook templateLook(std::string_view fileText, std::int64_t livelliaperti = 1) {
  return {menuTemplates(fileText), "<i>###</i>", livelliaperti, ""};
}
DepartmentNavigation navigation(std::vector<MenuDepartment> rows, NavigationLook look = plainLook()) {
  return {DepartmentTree(std::move(rows)), std::move(look)};
}

std::string link(const std::string& id, const std::string& label) {
  return "<a href=\"" + id + ".php?n=1\">" + label + "</a>";
}
std::string plainTop(const std::string& id, const std::string& title) {
  return "<B>• </B>" + link(id, "<i>" + title + "</i>") + "<BR>\r\n";
}

// Two departments, one of them three levels deep: a(b(c)), d.
std::vector<MenuDepartment> deep() {
  return {department("a"), department("d"), department("b", "a", 2), department("c", "b", 3)};
}

TEST(NavigationTest, PlainEntriesAreIndentedByLevelAndTheCurrentOneIsBoldWithoutALink) {
  EXPECT_EQ(navigation(deep()).CatEsplora("b").tree,
            plainTop("a", "A") +
                "&nbsp; &nbsp;&nbsp;<B><i>B</i></B><BR>\r\n"
                "&nbsp;&nbsp;&nbsp; &nbsp;&nbsp;<a href=\"c.php?n=1\"><i>C</i></a><BR>\r\n" +
                plainTop("d", "D"));
}

TEST(NavigationTest, AnImageAtTheTopTurnsTheBulletIntoALineBreak) {
  EXPECT_EQ(navigation({withImage(department("a"))}).CatEsplora("###").tree,
            "<BR><a href=\"a.php?n=1\"><img src=\"a.gif\" width=\"20\" height=\"\" border=\"0\"></a><BR>\r\n");
  EXPECT_EQ(navigation({withImage(department("a"))}).CatEsplora("a").tree,
            "<BR><B><img src=\"a.gif\" width=\"20\" height=\"\" border=\"0\"></B><BR>\r\n");
}

TEST(NavigationTest, AnImageBelowTheTopKeepsTheSpacesAsItsMark) {
  EXPECT_THAT(
      navigation({department("a"), withImage(department("b", "a", 2))}).CatEsplora("a").tree,
      HasSubstr("&nbsp; &nbsp;&nbsp;<a href=\"b.php?n=1\"><img src=\"b.gif\" width=\"20\" height=\"\" border=\"0\">"));
}

TEST(NavigationTest, ABarInATitleBecomesADoubleQuoteInTheTreeTheDropDownAndTheLinks) {
  const auto shop = navigation({titled(department("a"), "5|x7|"), department("b", "a", 2)});
  EXPECT_EQ(shop.CatEsplora("###").tree, plainTop("a", "5\"x7\""));
  EXPECT_THAT(shop.CatEsplora("###").menu, HasSubstr("\"> 5\"x7\"</option>"));
  EXPECT_EQ(shop.MakePercorsoTitolo("b"), "<font size=\"1\"><a href=\"a.php?n=1\">5\"x7\"</a> &gt; </font>");
}

TEST(NavigationTest, WithNoLevelAlwaysOpenAPageShowsChildrenSiblingsAndAncestorsAlone) {
  const auto shop = navigation({department("a"), department("z"), department("b", "a", 2), department("s", "a", 2),
                                department("y", "z", 2), department("c", "b", 3), department("t", "s", 3)},
                               plainLook(0));
  const std::string tree = shop.CatEsplora("b").tree;
  for (const char* shown : {"<i>A</i>", "<i>B</i>", "<i>S</i>", "<i>C</i>"}) EXPECT_THAT(tree, HasSubstr(shown));
  for (const char* closed : {"<i>Z</i>", "<i>Y</i>", "<i>T</i>"}) EXPECT_THAT(tree, Not(HasSubstr(closed)));
}

TEST(NavigationTest, WithNoLevelAlwaysOpenThePagesOfNoDepartmentHaveAnEmptyTreeAndAFullDropDown) {
  const Navigation page = navigation(deep(), plainLook(0)).CatEsplora("###");
  EXPECT_EQ(page.tree, "");
  EXPECT_EQ(page.menu,
            "<form name=\"kvReparti\">\r\n"
            "<select name=\"kvRepartiMenu\" onChange=\"RepGoTo()\">\r\n"
            "<option selected value=\"#\"> </option>\r\n"
            "<option value=\"a.php?n=1\"> A</option>\r\n"
            "<option value=\"b.php?n=1\">&nbsp; &nbsp;&nbsp; B</option>\r\n"
            "<option value=\"c.php?n=1\">&nbsp;&nbsp;&nbsp; &nbsp;&nbsp; C</option>\r\n"
            "<option value=\"d.php?n=1\"> D</option>\r\n"
            "</select>\r\n"
            "</form>");
}

TEST(NavigationTest, NothingIsBoldOnAPageOfNoDepartment) {
  EXPECT_EQ(navigation(deep(), plainLook(3)).CatEsplora("###").tree,
            plainTop("a", "A") +
                "&nbsp; &nbsp;&nbsp;<a href=\"b.php?n=1\"><i>B</i></a><BR>\r\n"
                "&nbsp;&nbsp;&nbsp; &nbsp;&nbsp;<a href=\"c.php?n=1\"><i>C</i></a><BR>\r\n" +
                plainTop("d", "D"));
}

TEST(NavigationTest, NoEntryTakesACurrentSectionOnAPageOfNoDepartment) {
  const char* menu = "[top titles]\r\n%title.\r\n[top titles selected]\r\n%title!\r\n";
  EXPECT_EQ(navigation(deep(), templateLook(menu)).CatEsplora("###").tree, "A.D.");
  EXPECT_EQ(navigation(deep(), templateLook(menu)).CatEsplora("d").tree, "A.D!");
}

TEST(NavigationTest, AHiddenDepartmentTakesItsChildrenWithItFromTreeAndDropDown) {
  const Navigation page =
      navigation({department("a"), hidden(department("h")), department("b", "h", 2)}, plainLook(9)).CatEsplora("b");
  EXPECT_EQ(page.tree, plainTop("a", "A"));
  EXPECT_THAT(page.menu, Not(HasSubstr("b.php")));
  EXPECT_THAT(page.menu, Not(HasSubstr("h.php")));
}

TEST(NavigationTest, AnOpenDepartmentBeneathAClosedOneIsShownInThePlainTree) {
  // On the level that is always open, yet put beneath a department that isn't.
  const auto shop = navigation({department("low", "b", 1), department("a"), department("b", "a", 2)}, plainLook(1));
  EXPECT_EQ(shop.CatEsplora("###").tree, plainTop("a", "A") + plainTop("low", "Low"));
}

TEST(NavigationTest, AnOpenDepartmentBeneathAClosedOneVanishesWithTheWrappers) {
  const char* menu = "[top titles]\r\n%title\r\n[titles]\r\n%title\r\n[children]\r\n(%rep:%subrep)\r\n";
  std::vector<MenuDepartment> rows{department("low", "b", 1), department("a"), department("b", "a", 2)};
  EXPECT_EQ(navigation(rows, templateLook(menu)).CatEsplora("###").tree, "ALow");
  EXPECT_EQ(navigation(rows, templateLook(std::string(menu) + "[nochildren]\r\n(%rep)\r\n")).CatEsplora("###").tree,
            "(A)");
}

TEST(NavigationTest, WrappersNestWhatIsOpenAndASectionWithoutTextDropsAllBeneath) {
  const std::string menu =
      "[top titles]\r\n%title\r\n[titles]\r\n%title\r\n[titles selected]\r\n%title!\r\n"
      "[children]\r\n<li>%rep<ul>%subrep</ul></li>\r\n[nochildren]\r\n<li>%rep</li>\r\n";
  EXPECT_EQ(navigation(deep(), templateLook(menu)).CatEsplora("b").tree,
            "<li>A<ul><li>B!<ul><li>C</li></ul></li></ul></li><li>D</li>");
  EXPECT_EQ(navigation(deep(), templateLook(menu + "[titles selected]\r\n")).CatEsplora("b").tree,
            "<li>A</li><li>D</li>");
}

TEST(NavigationTest, ABarInTheOwnTextOfTheWrappersBecomesADoubleQuote) {
  const std::string menu =
      "[top titles]\r\n%title\r\n[titles]\r\n%title\r\n[titles selected]\r\n%title!\r\n"
      "[children]\r\n<li class=|open|>%rep<ul>%subrep</ul></li>\r\n[nochildren]\r\n<li class=|leaf|>%rep</li>\r\n";
  EXPECT_EQ(navigation(deep(), templateLook(menu)).CatEsplora("b").tree,
            "<li class=\"open\">A<ul><li class=\"open\">B!<ul><li class=\"leaf\">C</li></ul></li></ul></li>"
            "<li class=\"leaf\">D</li>");
}

TEST(NavigationTest, TemplateSectionsGetImageSizeTitleAndLinkAndTabsByLevel) {
  const char* menu =
      "[top images]\r\n%image %x %y %title %link;\r\n[images selected]\r\n%image %x,%y;\r\n"
      "[titles]\r\n%image %title %link;\r\n[tab]\r\n-|-\r\n";
  auto image = withImage(department("b", "a", 2));
  image.imgY1 = 7;
  EXPECT_EQ(
      navigation({withImage(department("a")), image, department("c", "b", 3)}, templateLook(menu)).CatEsplora("b").tree,
      "a.gif 20  A a.php?n=1;-\"-b.gif 20,7;-\"--\"-%image C c.php?n=1;");
}

TEST(NavigationTest, ATitleMayHoldThePlaceholderOfTheLink) {
  EXPECT_EQ(
      navigation({titled(department("a"), "%link")}, templateLook("[top titles]\r\n%title\r\n")).CatEsplora("###").tree,
      "a.php?n=1");
}

TEST(NavigationTest, LinksCarryTheLanguageSuffix) {
  NavigationLook look = plainLook();
  look.lingua = "_l3";
  EXPECT_THAT(navigation({department("a")}, look).CatEsplora("###").menu, HasSubstr("value=\"a_l3.php?n=1\""));
}

TEST(NavigationTest, ThePathLinksTheAncestorsFromTheTopAndLeavesHiddenOnesOut) {
  const std::string top = "<font size=\"1\"><a href=\"a.php?n=1\">A</a> &gt; </font>";
  EXPECT_EQ(navigation(deep()).MakePercorsoTitolo("c"),
            top + "<font size=\"1\"><a href=\"b.php?n=1\">B</a> &gt; </font>");
  EXPECT_EQ(
      navigation({department("a"), hidden(department("b", "a", 2)), department("c", "b", 3)}).MakePercorsoTitolo("c"),
      top);
  EXPECT_EQ(navigation(deep()).MakePercorsoTitolo("a"), "");
}

TEST(NavigationTest, ABrokenChainOfParentsHasNoPath) {
  auto unparented = department("a");
  unparented.genitore.reset();
  EXPECT_EQ(navigation({unparented, department("b", "a", 2)}).MakePercorsoTitolo("b"), "");
  EXPECT_EQ(navigation({department("b", "gone", 2), department("c", "b", 3)}).MakePercorsoTitolo("c"), "");
}

TEST(NavigationTest, AnAncestorWithAnEmptyParentIsSkippedAndEndsThePath) {
  EXPECT_EQ(navigation({department("a", ""), department("b", "a", 2), department("c", "b", 3)}).MakePercorsoTitolo("c"),
            "<font size=\"1\"><a href=\"b.php?n=1\">B</a> &gt; </font>");
}

TEST(NavigationTest, ACircleOfParentsIsNeitherShownNorWalkedForEver) {
  const auto shop = navigation({department("a"), department("b", "c", 2), department("c", "b", 2)}, plainLook(9));
  EXPECT_EQ(shop.CatEsplora("b").tree, plainTop("a", "A"));
  EXPECT_EQ(shop.MakePercorsoTitolo("b"), "");
  EXPECT_EQ(shop.MakeSottoreparti("b"),
            "<BR><font size=\"1\">&gt;&gt;&nbsp;</font><font face=\"Arial\" size=\"1\"><a href=\"c.php?n=1\">C</a> | "
            "</font>");
  EXPECT_EQ(navigation({department("###"), department("a")}).CatEsplora("###").tree, plainTop("a", "A"));
}

TEST(NavigationTest, TheLastSeparatorOfTheSubDepartmentsStays) {
  const auto shop =
      navigation({department("a"), hidden(department("h", "a", 2)), department("b", "a", 2), department("c", "a", 2)});
  EXPECT_EQ(shop.MakeSottoreparti("a"),
            "<BR><font size=\"1\">&gt;&gt;&nbsp;</font>"
            "<font face=\"Arial\" size=\"1\"><a href=\"b.php?n=1\">B</a> | </font>"
            "<font face=\"Arial\" size=\"1\"><a href=\"c.php?n=1\">C</a> | </font>");
  EXPECT_EQ(shop.MakeSottoreparti("b"), "");
}

TEST(NavigationTest, ATreeOfAHundredThousandLevelsIsWalked) {
  std::vector<MenuDepartment> rows;
  for (int i = 0; i < 100000; ++i) {
    rows.push_back(department("c" + std::to_string(i), i == 0 ? "###" : "c" + std::to_string(i - 1)));
  }
  const auto shop = navigation(std::move(rows), templateLook("[top titles]\r\n%title.\r\n", 1));
  EXPECT_THAT(shop.CatEsplora("c99999").tree, ::testing::EndsWith("C99998."));
}

// Whole builds: the columns as pages show them.

TEST(NavigationBuildTest, TreeDropDownPathAndSubDepartmentsReachTheirColumns) {
  TempShop shop;
  shop.sql("UPDATE generale SET livelliaperti = 1, vis_percrep = 1");
  shop.department("cat001", {{"titolo", std::string("Città")}});
  shop.department("cat002", {{"genitore", std::string("cat001")}, {"livello", std::int64_t{2}}});
  shop.templateFile("modello1.htm", "<<1-titolo>>[<<1-reparti>>]<KV_START><KV_END>");
  shop.templateFile("index.htm", "[<<1-reparti>>][<<1-repartimenu>>]");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string mark = "<font color=\"#0400FF\">";
  // The second pass over a page reads "&gt;&gt;" as the end of a tag and writes it plainly.
  EXPECT_THAT(shop.page("cat001.php"),
              HasSubstr("Citt&agrave;<BR><font size=\"1\">>>&nbsp;</font><font face=\"Arial\" size=\"1\"><a "
                        "href=\"cat002.php?n=1\">Reparto cat002</a> | </font>[<B>• </B><B>" +
                        mark + "Città</font></B><BR>\r\n&nbsp; &nbsp;&nbsp;<a href=\"cat002.php?n=1\">" + mark +
                        "Reparto cat002</font></a><BR>\r\n]"));
  EXPECT_THAT(shop.page("cat002.php"),
              HasSubstr("<font size=\"1\"><a href=\"cat001.php?n=1\">Città</a> &gt; </font>Reparto cat002["));
  EXPECT_THAT(shop.page("index.php"),
              HasSubstr("[<B>• </B><a href=\"cat001.php?n=1\">" + mark + "Città</font></a><BR>\r\n]"));
  EXPECT_THAT(shop.page("index.php"), HasSubstr("[<form name=\"kvReparti\">\r\n<select name=\"kvRepartiMenu\""));
}

TEST(NavigationBuildTest, TheMenuFileOfTheTemplateShapesTheTreeAndTheLanguageFolderItsOwn) {
  TempShop shop(2);
  shop.sql("UPDATE generale SET livelliaperti = 1");
  shop.department("cat001", {{"titolo", std::string("Vasi")}, {"titolo_l2", std::string("Vases")}});
  shop.templateFile("kvan_menu.ini", "[top titles]\r\n<u>%title</u>\r\n");
  shop.templateFile("inglese/kvan_menu.ini", "[top titles]\r\n<b>%title</b>\r\n");
  shop.templateFile("index.htm", "[<<1-reparti>>]");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("[<u>Vasi</u>]"));
  EXPECT_THAT(shop.page("index_l2.php"), HasSubstr("[<b>Vases</b>]"));
}

TEST(NavigationBuildTest, AHiddenDepartmentHasItsPageAllTheSame) {
  TempShop shop;
  shop.sql("UPDATE generale SET livelliaperti = 9");
  shop.department("cat001", {{"nascosto", true}});
  shop.department("cat002", {{"genitore", std::string("cat001")}, {"livello", std::int64_t{2}}});
  shop.templateFile("index.htm", "[<<1-reparti>>]");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("[]"));
  EXPECT_TRUE(shop.hasPage("cat001.php"));
  EXPECT_TRUE(shop.hasPage("cat002.php"));
}

TEST(NavigationBuildTest, WithoutTheSettingATitleHasNeitherPathNorSubDepartments) {
  TempShop shop;
  shop.department("cat001");
  shop.department("cat002", {{"genitore", std::string("cat001")}, {"livello", std::int64_t{2}}});
  shop.templateFile("modello1.htm", "[<<1-titolo>>]<KV_START><KV_END>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("[Reparto cat001]"));
  EXPECT_THAT(shop.page("cat002.php"), HasSubstr("[Reparto cat002]"));
}

}  // namespace
}  // namespace kv::test
