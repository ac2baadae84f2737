// What a new command costs: one row, which is then found in menu, buttons, shortcuts, states, undo and help.

#include <algorithm>

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

class AddedCommandTest : public WorkbenchFixture {
 protected:
  /// The smallest row of a dialog that edits the shop: here it raises the number of columns of the showcase.
  AddedCommandTest() {
    Command row = dialogCommand("columns", {Menu::EditSite, 206, "Colonne..."}, &WorkbenchDialogs::showcase, "Colonne");
    row.caption = "Colonne";
    row.toolbar = {Toolbar::Articles, 201};
    row.shortcut = "Ctrl+K";
    row.help = "pagine/sito.htm";
    ports.commands.push_back(std::move(row));
    dialogs().showcase = [this] {
      return session.catalogue.execute("UPDATE generale SET colonnevetrina = 5").has_value();
    };
  }
  const CommandTable& table() { return bench->commands().table(); }
};

TEST_F(AddedCommandTest, IsInItsMenuAfterTheOthers) {
  start();
  const MenuItem last = table().entriesOf(Menu::EditSite).back();
  ASSERT_NE(last.command, nullptr);
  EXPECT_EQ(last.command->name, "columns");
  EXPECT_EQ(last.place->text, "Colonne...");
}

TEST_F(AddedCommandTest, HasAButtonInAGroupOfItsOwn) {
  start();
  const auto buttons = table().buttonsOf(Toolbar::Articles);
  EXPECT_EQ(buttons.back(), &command("columns"));
  EXPECT_EQ(buttons[buttons.size() - 2], nullptr);
}

TEST_F(AddedCommandTest, IsInTheListOfShortcutsAndInTheHelp) {
  start();
  const auto shortcuts = table().shortcuts();
  const auto found = std::ranges::find(shortcuts, "Ctrl+K", &Shortcut::keys);
  ASSERT_NE(found, shortcuts.end());
  EXPECT_EQ(found->command->help, "pagine/sito.htm");
}

TEST_F(AddedCommandTest, IsOneStepOfTheHistory) {
  start();
  press("columns");
  EXPECT_EQ(undoName(), "Colonne");
  undo();
  EXPECT_EQ(scalar("SELECT colonnevetrina FROM generale"), "");
}

TEST_F(AddedCommandTest, IsOffWhereItsDialogIsMissing) {
  start();
  EXPECT_TRUE(isOffered("columns"));
  dialogs().showcase = nullptr;
  EXPECT_FALSE(isOffered("columns"));
}

}  // namespace
}  // namespace kv::test
