// The commands and menus of the main window, as data.

#include "shell/workbench/command_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "shell/workbench/menu_table.h"

namespace kv::test {
namespace {

TEST(CommandTable, HasTheNumbers0To35And50To52InOrder) {
  std::vector<int> wanted;
  for (int n = 0; n <= 35; ++n) wanted.push_back(n);
  for (const int n : {50, 51, 52}) wanted.push_back(n);
  std::vector<int> numbers;
  for (const Command& command : commandTable()) numbers.push_back(command.number);
  EXPECT_EQ(numbers, wanted);
}

TEST(CommandTable, TheNumbers36To49AreInert) {
  for (int n = 36; n < 50; ++n) EXPECT_EQ(commandOf(n), nullptr) << n;
  EXPECT_EQ(commandOf(-1), nullptr);
  EXPECT_EQ(commandOf(53), nullptr);
}

TEST(CommandTable, AKeyStandsForOneCommandSaveTheExpansion) {
  std::map<std::string_view, int> uses;
  for (const Command& command : commandTable()) {
    if (!command.key.empty()) ++uses[command.key];
  }
  for (const auto& [key, count] : uses) EXPECT_EQ(count, key == "espansione" ? 2 : 1) << key;
}

TEST(CommandTable, TheKeysOfACursorAreThoseOfItsCommands) {
  EXPECT_THAT(articleKeys(), ::testing::SizeIs(8));
  EXPECT_THAT(departmentKeys(), ::testing::SizeIs(11));
  EXPECT_THAT(articleKeys(), ::testing::Contains(articleMask));
  EXPECT_THAT(departmentKeys(), ::testing::Contains(departmentMask));
  EXPECT_THAT(departmentKeys(), ::testing::Contains("+ articolo dopo"));
  for (const ImageKey& image : imageKeys()) {
    EXPECT_TRUE(std::ranges::any_of(commandTable(), [&](const Command& c) {
      return c.key == image.key && c.action == CommandAction::ClearImage;
    })) << image.key;
  }
}

TEST(CommandTable, TheVariantSlotNamesTheListAboveTheFirst) {
  EXPECT_EQ(variantSlot(1, 0), "1");
  EXPECT_EQ(variantSlot(1, 3), "1_3");
  EXPECT_EQ(variantSlot(4, 9), "4_9");
}

std::vector<std::string> entriesOf(MenuTab tab, std::string_view menu) {
  std::vector<std::string> names;
  for (const MenuEntry& entry : menuTable()) {
    if (entry.tab == tab && entry.menu == menu && entry.entry != "-") names.emplace_back(entry.entry);
  }
  return names;
}

TEST(MenuTable, EveryCommandNumberOfAnEntryExists) {
  for (const MenuEntry& entry : menuTable()) {
    if (entry.entry == "-") continue;
    EXPECT_TRUE(entry.command < 0 ? entry.action != MenuAction::None : commandOf(entry.command) != nullptr)
        << entry.entry;
  }
}

TEST(MenuTable, EveryCommandStandsInAMenu) {
  for (const Command& command : commandTable()) {
    EXPECT_TRUE(std::ranges::any_of(menuTable(), [&](const MenuEntry& e) { return e.command == command.number; }))
        << command.number;
  }
}

TEST(MenuTable, TheShopOfTheSiteHasItsFiveSettings) {
  EXPECT_THAT(entriesOf(MenuTab::Site, "Modifica"),
              ::testing::ElementsAre("Annulla", "Ripeti", "Spese di spedizione...", "Sistemi di pagamento...",
                                     "Testo e-mail di conferma...", "Impostazioni vetrina...", "Campi obbligatori..."));
}

TEST(MenuTable, NoShortcutIsTakenTwiceOnATab) {
  for (const MenuTab tab : {MenuTab::Departments, MenuTab::Articles, MenuTab::Site, MenuTab::Internet}) {
    std::set<std::string_view> taken;
    for (const MenuEntry& entry : menuTable()) {
      if (entry.shortcut.empty() || (entry.tab != tab && entry.tab != MenuTab::Every)) continue;
      EXPECT_TRUE(taken.insert(entry.shortcut).second) << entry.shortcut;
    }
  }
}

}  // namespace
}  // namespace kv::test
