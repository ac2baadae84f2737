// The sections of kvan_menu.ini.

#include "builder/navigation/menu_templates.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

TEST(MenuTemplatesTest, EachHeadingNamesItsSection) {
  const MenuTemplates menu = menuTemplates(
      "[top titles]\r\n1\r\n[top titles selected]\r\n2\r\n[top images]\r\n3\r\n[top images selected]\r\n4\r\n"
      "[titles]\r\n5\r\n[titles selected]\r\n6\r\n[images]\r\n7\r\n[images selected]\r\n8\r\n"
      "[tab]\r\n9\r\n[children]\r\n10\r\n[nochildren]\r\n11\r\n");
  EXPECT_EQ(menu.entry({true, false, false}), "1");
  EXPECT_EQ(menu.entry({true, false, true}), "2");
  EXPECT_EQ(menu.entry({true, true, false}), "3");
  EXPECT_EQ(menu.entry({true, true, true}), "4");
  EXPECT_EQ(menu.entry({false, false, false}), "5");
  EXPECT_EQ(menu.entry({false, false, true}), "6");
  EXPECT_EQ(menu.entry({false, true, false}), "7");
  EXPECT_EQ(menu.entry({false, true, true}), "8");
  EXPECT_EQ(menu.tab, "9");
  EXPECT_EQ(menu.children, "10");
  EXPECT_EQ(menu.nochildren, "11");
  EXPECT_TRUE(menu.wraps());
}

TEST(MenuTemplatesTest, HeadingsCountInAnyCaseAndWithSpacesAround) {
  EXPECT_EQ(menuTemplates("  [Top TITLES]  \r\n<b>").entry({true, false, false}), "<b>");
}

TEST(MenuTemplatesTest, LinesKeepTheirSpacesAndInnerEmptyLinesAndEmptyLinesAroundGo) {
  EXPECT_EQ(menuTemplates("[tab]\n\n   \n  a \n\n b\n \n\n[titles]\nx").tab, "  a \r\n\r\n b");
}

TEST(MenuTemplatesTest, TextBeforeAHeadingAndUnderAStrangeOneIsLeftOut) {
  const MenuTemplates menu = menuTemplates("x\r\n[titoli]\r\ny\r\n[tab]\r\nz\r\n[a] b\r\n");
  EXPECT_EQ(menu.tab, "z\r\n[a] b");
  EXPECT_EQ(menu.entry({true, false, false}), "");
}

TEST(MenuTemplatesTest, ALaterSectionOfTheSameNameReplacesTheFirst) {
  EXPECT_EQ(menuTemplates("[tab]\r\na\r\n[titles]\r\nb\r\n[TAB]\r\nc").tab, "c");
}

TEST(MenuTemplatesTest, OneEmptyWrapperSwitchesBothOff) {
  EXPECT_FALSE(menuTemplates("[children]\r\na").wraps());
  EXPECT_FALSE(menuTemplates("[nochildren]\r\na\r\n[children]\r\n \r\n").wraps());
}

TEST(MenuTemplatesTest, AnEmptyFileCountsAsPresentAndAMissingOneDoesNot) {
  TempFolder folder;
  EXPECT_FALSE(valueOf(CaricaClFile(folder / "")).present);
  ASSERT_TRUE(writeText(folder / "KVAN_menu.INI", ""));
  const auto menu = CaricaClFile(folder / "");
  ASSERT_TRUE(menu.has_value());
  EXPECT_TRUE(menu->present);
}

TEST(MenuTemplatesTest, TheFilesAccentsAreReadFromItsCodePage) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "kvan_menu.ini", "[tab]\r\n\xE8\x95"));
  EXPECT_EQ(valueOf(CaricaClFile(folder / "")).tab, "è•");
}

}  // namespace
}  // namespace kv::test
