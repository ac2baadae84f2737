// Articles dragged from the list onto a department of the tree.

#include <QDragEnterEvent>
#include <QMimeData>

#include "forms/driven_window.h"

namespace kv::test {
namespace {

class ArticleDrag : public DrivenWindow {
 protected:
  void openList() {
    openWide();
    window->tree().expandAll();
    goArticle(0);
    window->articles().setFocus();
  }
  /// What the views do of a drag of the selected rows onto a node: false where the pointer shows that it is refused.
  bool drop(const std::string& onto) {
    const std::unique_ptr<QMimeData> data(
        window->articles().articles().mimeData(window->articles().selectionModel()->selectedIndexes()));
    DepartmentModel& model = window->tree().departments();
    const QModelIndex target = model.indexOf(onto);
    if (!model.canDropMimeData(data.get(), Qt::MoveAction, -1, -1, target)) return false;
    EXPECT_FALSE(model.dropMimeData(data.get(), Qt::MoveAction, -1, -1, target)) << "the list removes no row itself";
    processEvents();
    processEvents();
    return true;
  }
};

TEST_F(ArticleDrag, TheSelectedRowsGoIntoTheDepartmentByOneStep) {
  run(shop, "UPDATE articoli SET inelenco = 1 WHERE ID = 2");
  openList();
  const std::string before = whole();
  key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_TRUE(drop("cat003"));
  EXPECT_EQ(listShown(), "[Cielo]");
  EXPECT_EQ(selected(), "cat001") << "the merchant goes on where he was";
  EXPECT_EQ(rows("SELECT titolo, inelenco FROM articoli WHERE catID = 'cat003' ORDER BY ordinamento"),
            "Duna| Alba| Brina|1");
  EXPECT_EQ(entryText("undo"), "Annulla: Trascina articoli");
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(titlesShown(), "Alba Brina Cielo");
}

TEST_F(ArticleDrag, OneArticleIsNamedAsOne) {
  openList();
  EXPECT_TRUE(drop("cat002"));
  EXPECT_EQ(entryText("undo"), "Annulla: Trascina articolo");
  EXPECT_EQ(rows("SELECT titolo FROM articoli WHERE catID = 'cat002'"), "Alba");
}

TEST_F(ArticleDrag, TheirOwnDepartmentAndTheRootRefuseThem) {
  openList();
  const std::string before = whole();
  EXPECT_FALSE(drop("cat001"));
  EXPECT_FALSE(drop("###"));
  EXPECT_EQ(whole(), before);
}

TEST_F(ArticleDrag, WhatIsTypedIsSavedBeforeTheMove) {
  openList();
  type(line(EditedSet::Articoli, "titolo"), "Aurora");
  EXPECT_TRUE(drop("cat003"));
  EXPECT_EQ(rows("SELECT titolo FROM articoli WHERE catID = 'cat003' ORDER BY ordinamento"), "Duna Aurora");
}

TEST_F(ArticleDrag, AFilteredListMovesWhatItShows) {
  openList();
  window->findChild<QLineEdit*>(QStringLiteral("txtFiltro"))->setText("ci");
  window->articles().selectAll();
  EXPECT_TRUE(drop("cat003"));
  EXPECT_EQ(rows("SELECT titolo FROM articoli WHERE catID = 'cat003' ORDER BY ordinamento"), "Duna Cielo");
}

TEST_F(ArticleDrag, WhatComesFromAnotherWindowOfTheProgramIsNotTaken) {
  openList();
  QMimeData foreign;
  foreign.setData(QStringLiteral("application/x-korvane-articoli"), "1 2");
  QWidget* tree = window->tree().viewport();
  QDragEnterEvent enter(tree->rect().center(), Qt::MoveAction, &foreign, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(tree, &enter);
  EXPECT_FALSE(enter.isAccepted());
}

}  // namespace
}  // namespace kv::test
