// The rows of the commands: their numbers, keys and names, and the menus, buttons and shortcuts made of them.

#include "shell/workbench/command_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files/files.h"
#include "shell/workbench/commands/command_rows.h"

namespace kv::test {
namespace {

class CommandTableTest : public ::testing::Test {
 protected:
  /// The entries of a menu: "Sposta / Su" in a submenu, "-" for a separator.
  std::vector<std::string> entriesOf(Menu menu) {
    std::vector<std::string> names;
    for (const MenuItem& item : table.entriesOf(menu)) {
      if (item.command == nullptr) {
        names.emplace_back("-");
      } else {
        const std::string submenu(item.place->submenu);
        names.push_back((submenu.empty() ? "" : submenu + " / ") + std::string(item.place->text));
      }
    }
    return names;
  }

  CommandTable table{allCommands()};
};

TEST_F(CommandTableTest, HasTheNumbers0To35And50To52) {
  std::vector<int> wanted;
  for (int n = 0; n <= 35; ++n) wanted.push_back(n);
  for (const int n : {50, 51, 52}) wanted.push_back(n);
  std::vector<int> numbers;
  for (const Command& command : table.rows()) {
    if (command.number >= 0) numbers.push_back(command.number);
  }
  std::ranges::sort(numbers);
  EXPECT_EQ(numbers, wanted);
}

TEST_F(CommandTableTest, TheNumbers36To49AreInert) {
  for (int n = 36; n < 50; ++n) EXPECT_EQ(table.numbered(n), nullptr) << n;
  EXPECT_EQ(table.numbered(-1), nullptr);
  EXPECT_EQ(table.numbered(53), nullptr);
}

TEST_F(CommandTableTest, ANameBelongsToOneCommandThatDoesSomething) {
  std::set<std::string> names;
  for (const Command& command : table.rows()) {
    EXPECT_FALSE(command.name.empty());
    EXPECT_TRUE(names.insert(command.name).second) << command.name;
    EXPECT_TRUE(command.run) << command.name;
  }
}

TEST_F(CommandTableTest, AKeyStandsForOneCommandSaveTheExpansion) {
  std::map<std::string_view, int> uses;
  for (const Command& command : table.rows()) {
    if (!command.key.empty()) ++uses[command.key];
  }
  for (const auto& [key, count] : uses) EXPECT_EQ(count, key == expansionKey ? 2 : 1) << key;
}

TEST_F(CommandTableTest, EveryNumberedCommandIsInAMenu) {
  for (const Command& command : table.rows()) EXPECT_TRUE(command.number < 0 || !command.menus.empty()) << command.name;
}

TEST_F(CommandTableTest, TheShopOfTheSiteHasItsSixSettings) {
  EXPECT_THAT(entriesOf(Menu::EditSite),
              ::testing::ElementsAre("Annulla", "Ripeti", "Cronologia...", "-", "Spese di spedizione...",
                                     "Sistemi di pagamento...", "Testo e-mail di conferma...",
                                     "Impostazioni vetrina...", "Campi obbligatori...", "Produttori..."));
}

TEST_F(CommandTableTest, NoTwoEntriesOfAMenuShareAPosition) {
  for (int menu = 0; menu < menuCount; ++menu) {
    std::set<int> taken;
    for (const MenuItem& item : table.entriesOf(static_cast<Menu>(menu))) {
      EXPECT_TRUE(item.place == nullptr || taken.insert(item.place->position).second) << item.place->text;
    }
  }
}

TEST_F(CommandTableTest, NoShortcutIsTakenTwiceOnATab) {
  for (const Menu edit : {Menu::EditDepartments, Menu::EditArticles, Menu::EditSite, Menu::EditInternet}) {
    std::set<std::string_view> taken;
    for (const Menu menu : {Menu::File, edit, Menu::View, Menu::Help}) {
      for (const MenuItem& item : table.entriesOf(menu)) {
        if (item.command == nullptr || item.command->shortcut.empty()) continue;
        EXPECT_TRUE(taken.insert(item.command->shortcut).second) << item.command->shortcut;
      }
    }
  }
}

TEST_F(CommandTableTest, EveryCommandHasAPageOfTheHelp) {
  for (const Command& command : table.rows()) {
    const std::string page = std::string(KORVANE_APP_DATA) + "/help/" + std::string(command.help);
    EXPECT_FALSE(command.help.empty()) << command.name;
    EXPECT_TRUE(fileExists(page)) << command.name << " " << page;
  }
}

}  // namespace
}  // namespace kv::test
