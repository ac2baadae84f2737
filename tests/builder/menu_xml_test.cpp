// shopmenu.xml: its bytes, when it is written, and that it is always in the list of files.

#include "builder/navigation/menu_xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "platform/files/files.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string heading =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" ?>\r\n"
    "<!DOCTYPE shopmenu [\r\n"
    "  <!ELEMENT shopmenu (submenu*)>\r\n"
    "  <!ELEMENT submenu (menuitem*)>\r\n"
    "  <!ELEMENT menuitem (title*, image*, link*, submenu*)>\r\n"
    "  <!ELEMENT title (#PCDATA)>\r\n"
    "  <!ELEMENT image (#PCDATA)>\r\n"
    "  <!ELEMENT link (#PCDATA)>\r\n"
    "]>\r\n"
    "<shopmenu>\r\n";

MenuDepartment department(const std::string& id, const std::string& genitore, std::int64_t livello) {
  MenuDepartment made;
  made.ID = made.pagina = id;
  made.titolo = "Reparto " + id;
  made.genitore = genitore;
  made.livello = livello;
  return made;
}

TEST(MenuXmlTest, AShopWithoutVisibleDepartmentsHasAnEmptyMenu) {
  EXPECT_EQ(CatEsploraXML(DepartmentTree(), ""), heading + "</shopmenu>\r\n");
  MenuDepartment hidden = department("a", "###", 1);
  hidden.nascosto = true;
  EXPECT_EQ(CatEsploraXML(DepartmentTree({hidden, department("b", "a", 2)}), ""), heading + "</shopmenu>\r\n");
}

TEST(MenuXmlTest, ItemsNestWithTheImageBeforeTheTitle) {
  MenuDepartment first = department("a", "###", 1);
  first.immagine1 = "a&b.gif";
  EXPECT_EQ(CatEsploraXML(DepartmentTree({first, department("b", "###", 1), department("c", "a", 2)}), "_l2"),
            heading +
                "  <submenu>\r\n"
                "    <menuitem>\r\n"
                "      <image>a&b.gif</image>\r\n"
                "      <title>Reparto a</title>\r\n"
                "      <link>a_l2.php?n=1</link>\r\n"
                "      <submenu>\r\n"
                "        <menuitem>\r\n"
                "          <title>Reparto c</title>\r\n"
                "          <link>c_l2.php?n=1</link>\r\n"
                "        </menuitem>\r\n"
                "      </submenu>\r\n"
                "    </menuitem>\r\n"
                "    <menuitem>\r\n"
                "      <title>Reparto b</title>\r\n"
                "      <link>b_l2.php?n=1</link>\r\n"
                "    </menuitem>\r\n"
                "  </submenu>\r\n"
                "</shopmenu>\r\n");
}

TEST(MenuXmlTest, TitleAndLinkAreEscapedAndABarIsADoubleQuote) {
  MenuDepartment odd = department("a", "###", 1);
  odd.titolo = "<b>R&D</b> |&lt;";
  odd.pagina = "r&d";
  odd.immagine1 = "a|b.gif";
  EXPECT_THAT(CatEsploraXML(DepartmentTree({odd}), ""),
              HasSubstr("      <image>a\"b.gif</image>\r\n"
                        "      <title>&lt;b&gt;R&amp;D&lt;/b&gt; \"&amp;lt;</title>\r\n"
                        "      <link>r&amp;d.php?n=1</link>\r\n"));
}

TEST(MenuXmlTest, ADepartmentWithHiddenChildrenAloneHasNoSubmenu) {
  MenuDepartment child = department("b", "a", 2);
  child.nascosto = true;
  EXPECT_THAT(CatEsploraXML(DepartmentTree({department("a", "###", 1), child}), ""),
              HasSubstr("      <link>a.php?n=1</link>\r\n    </menuitem>\r\n  </submenu>\r\n</shopmenu>\r\n"));
}

TEST(MenuXmlBuildTest, EachLanguageHasItsFileInWindows1252) {
  TempShop shop(2);
  shop.department("cat001", {{"titolo", std::string("Città €")}, {"titolo_l2", std::string("Łódź")}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const auto bytes = readBytes(shop.session.onlineFolder + "/shopmenu.xml");
  ASSERT_TRUE(bytes.has_value()) << shop.user.texts().front();
  EXPECT_THAT(*bytes, HasSubstr("<title>Citt\xE0 \x80</title>"));
  EXPECT_THAT(shop.page("shopmenu_l2.xml"), HasSubstr("<title>&#321;ód&#378;</title>"));
  EXPECT_THAT(shop.page("shopmenu_l2.xml"), HasSubstr("<link>cat001_l2.php?n=1</link>"));
}

TEST(MenuXmlBuildTest, AnUnchangedMenuKeepsItsDateAndStaysInTheList) {
  TempShop shop;
  shop.department("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string path = shop.session.onlineFolder + "/shopmenu.xml";
  const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
  std::filesystem::last_write_time(path, old);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(std::filesystem::last_write_time(path), old);
  EXPECT_THAT(shop.fileList(), Contains("#" + path));
  shop.sql("UPDATE categorie SET titolo = 'Nuovo'");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_NE(std::filesystem::last_write_time(path), old);
  EXPECT_THAT(shop.page("shopmenu.xml"), HasSubstr("<title>Nuovo</title>"));
}

TEST(MenuXmlBuildTest, TheSettingAtZeroAloneSwitchesTheMenuOff) {
  TempShop shop;
  const std::string line = "#" + shop.session.onlineFolder + "/shopmenu.xml";
  ASSERT_TRUE(shop.settings.set(settingsSection, "XMLmenu", "0"));
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_FALSE(shop.hasPage("shopmenu.xml"));
  EXPECT_THAT(shop.fileList(), Not(Contains(line)));
  ASSERT_TRUE(shop.settings.set(settingsSection, "XMLmenu", "no"));
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_TRUE(shop.hasPage("shopmenu.xml"));
  EXPECT_THAT(shop.fileList(), Contains(line));
}

TEST(MenuXmlBuildTest, AMenuThatCannotBeWrittenIsToldAndDoesNotEndTheBuild) {
  TempShop shop;
  std::filesystem::create_directories(shop.session.onlineFolder + "/shopmenu.xml/x");
  EXPECT_EQ(shop.build(), BuildOutcome::Done);
  const std::string path = shop.session.onlineFolder + "/shopmenu.xml";
  EXPECT_THAT(shop.fileList(), Contains("#" + path));
  EXPECT_THAT(shop.user.texts(), Contains("Impossibile scrivere il file '" + path + "'"));
}

}  // namespace
}  // namespace kv::test
