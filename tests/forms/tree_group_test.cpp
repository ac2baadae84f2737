// Several departments selected in the tree of the main window, by keyboard and mouse.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

class TreeGroup : public DrivenWindow {
 protected:
  /// The tree is Negozio(Vasi(Piccoli) Piatti).
  void openTree() {
    openWide();
    window->tree().expandAll();
    window->workbench().goToDepartment("cat001");
    window->tree().setFocus();
    processEvents();
  }
  void click(const std::string& ID, Qt::KeyboardModifiers with = {}) {
    DepartmentView& tree = window->tree();
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, with, tree.visualRect(tree.departments().indexOf(ID)).center());
    processEvents();
  }
  std::vector<std::string> group() { return window->selectedDepartments(); }
};

TEST_F(TreeGroup, IsSelectedByCtrlAndTheMouseAndDeletedByOneQuestion) {
  openTree();
  click("cat002");
  click("cat003", Qt::ControlModifier);
  EXPECT_EQ(group(), (std::vector<std::string>{"cat003", "cat002"}));
  EXPECT_EQ(window->workbench().sets().department(), "cat003") << "the page shows the one that was clicked last";
  user.answers = {Answer::Yes};
  key(Qt::Key_Delete);
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Eliminare i 2 reparti selezionati con tutti i loro articoli (1)?"});
  EXPECT_EQ(treeShown(), "Negozio(Vasi)");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Piatti)");
}

TEST_F(TreeGroup, IsSelectedByShiftAndStaysSelectedWhenItMoves) {
  run(shop,
      "INSERT INTO categorie (contatore, ID, pagina, genitore, ordinamento, livello, titolo) VALUES"
      " (4, 'cat004', 'cat004', '###', 120, 1, 'Lumi')");
  openTree();
  click("cat003");
  key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(group(), (std::vector<std::string>{"cat003", "cat004"}));
  key(Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(treeShown(), "Negozio(Piatti Lumi Vasi(Piccoli))");
  EXPECT_EQ(group(), (std::vector<std::string>{"cat003", "cat004"}));
  click("cat001");
  EXPECT_EQ(group(), std::vector<std::string>{"cat001"});
}

TEST_F(TreeGroup, LeavesTheRootOut) {
  openTree();
  key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(group().size(), 3U);
}

}  // namespace
}  // namespace kv::test
