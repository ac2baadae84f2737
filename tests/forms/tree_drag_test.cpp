// Departments dragged in the tree of the main window: what may be dropped where, and what tree and cursor are then.

#include <QDrag>
#include <QMimeData>

#include "forms/driven_window.h"

namespace kv::test {
namespace {

/// Tells whether a drag has begun on a widget.
class DragWatch final : public QObject {
 public:
  explicit DragWatch(QObject& on) { on.installEventFilter(this); }
  bool began() const { return began_; }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    // A drag is made as a child of the view it starts from, and goes when it is over.
    if (event->type() == QEvent::ChildRemoved || event->type() == QEvent::ChildAdded) {
      QObject* child = static_cast<QChildEvent*>(event)->child();
      if (!child->isWidgetType()) began_ = true;
    }
    return false;
  }

 private:
  bool began_ = false;
};

class TreeDrag : public DrivenWindow {
 protected:
  void openTree() {
    openWide();
    window->tree().expandAll();
    processEvents();
  }
  DepartmentModel& model() { return window->tree().departments(); }
  QPoint placeOf(const std::string& ID) { return window->tree().visualRect(model().indexOf(ID)).center(); }

  /// What the view does of a drag from one node to another: false where the pointer shows that it is refused.
  bool drop(const std::string& key, const std::string& onto) {
    const std::unique_ptr<QMimeData> data(model().mimeData({model().indexOf(key)}));
    const QModelIndex target = model().indexOf(onto);
    if (!(model().flags(target) & Qt::ItemIsDropEnabled)) return false;
    if (!model().canDropMimeData(data.get(), Qt::MoveAction, -1, -1, target)) return false;
    model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, target);
    // The move waits until the drag is over, and the menus follow the move.
    processEvents();
    processEvents();
    return true;
  }
  /// Presses on a node and moves so far with the button held; whether a drag began.
  bool drags(const std::string& from, QPoint by) {
    QWidget* view = window->tree().viewport();
    const DragWatch watch(window->tree());
    const QPoint at = placeOf(from);
    QTest::mousePress(view, Qt::LeftButton, {}, at);
    const bool already = watch.began();
    for (const QPoint step : {by / 2, by, by}) {
      QMouseEvent move(QEvent::MouseMove, at + step, view->mapToGlobal(at + step), Qt::NoButton, Qt::LeftButton, {});
      QApplication::sendEvent(view, &move);
    }
    const bool began = !already && watch.began();
    QTest::mouseRelease(view, Qt::LeftButton, {}, at + by);
    processEvents();
    return began;
  }
};

TEST_F(TreeDrag, ADropOntoAnotherDepartmentHangsItThere) {
  openTree();
  EXPECT_TRUE(drop("cat003", "cat001"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piatti Piccoli))");
  EXPECT_EQ(selected(), "cat003");
  EXPECT_EQ(rows("SELECT ID, genitore, livello, hafigli FROM categorie ORDER BY contatore"),
            "cat001|###|1|1 cat002|cat001|2|0 cat003|cat001|2|0");
}

TEST_F(TreeDrag, ADropOntoTheRootMakesItATopDepartment) {
  openTree();
  EXPECT_TRUE(drop("cat002", "###"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi Piatti Piccoli)");
  EXPECT_EQ(rows("SELECT ID, genitore, livello, hafigli FROM categorie ORDER BY contatore"),
            "cat001|###|1|0 cat002|###|1|0 cat003|###|1|0");
}

TEST_F(TreeDrag, ADropOntoItselfOrItsOwnDescendantIsRefused) {
  openTree();
  const std::string before = whole(), shown = treeShown();
  EXPECT_FALSE(drop("cat001", "cat001"));
  EXPECT_FALSE(drop("cat001", "cat002"));
  EXPECT_FALSE(drop("###", "cat003"));
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(treeShown(), shown);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TreeDrag, WhatIsExpandedStaysSoAndTheArticlesFollow) {
  openTree();
  EXPECT_TRUE(drop("cat001", "cat003"));
  EXPECT_EQ(treeShown(), "Negozio(Piatti(Vasi(Piccoli)))");
  EXPECT_TRUE(window->tree().isExpanded(model().indexOf("cat001")));
  EXPECT_EQ(selected(), "cat001");
  EXPECT_EQ(listShown().find("Alba") != std::string::npos, true) << listShown();
  EXPECT_TRUE(drop("cat002", "###"));
  EXPECT_TRUE(window->tree().isExpanded(model().indexOf("cat003")));
}

TEST_F(TreeDrag, WhatIsTypedIsSavedBeforeTheMove) {
  openTree();
  type(line(EditedSet::Categorie, "titolo"), "Orci");
  EXPECT_TRUE(drop("cat003", "cat001"));
  EXPECT_EQ(treeShown(), "Negozio(Orci(Piatti Piccoli))");
  EXPECT_EQ(line(EditedSet::Categorie, "titolo").text(), "Piatti");
}

TEST_F(TreeDrag, ItIsOneStepThatCanBeUndone) {
  openTree();
  const std::string before = whole();
  EXPECT_TRUE(drop("cat003", "cat002"));
  EXPECT_EQ(entryText("undo"), "Annulla: Trascina reparto");
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Piatti)");
  EXPECT_EQ(whole(), before);
  EXPECT_TRUE(choose("redo"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli(Piatti)))");
  EXPECT_EQ(selected(), "cat003");
}

TEST_F(TreeDrag, ItBeginsBeyondFortyFiveTwipsAlongEitherAxis) {
  openTree();
  const int limit = 45 * window->tree().logicalDpiX() / 1440;
  EXPECT_FALSE(drags("cat001", {limit, limit}));
  EXPECT_TRUE(drags("cat001", {limit + 1, 0}));
  EXPECT_TRUE(drags("cat001", {0, limit + 1}));
  EXPECT_FALSE(drags("###", {limit + 40, 0})) << "the root stays where it is";
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Piatti)");
}

TEST_F(TreeDrag, PressingANodeMakesItTheCurrentDepartment) {
  openTree();
  QTest::mouseClick(window->tree().viewport(), Qt::LeftButton, {}, placeOf("cat003"));
  processEvents();
  EXPECT_EQ(window->workbench().sets().department(), "cat003");
  EXPECT_EQ(listShown(), "[Duna]");
  EXPECT_EQ(line(EditedSet::Categorie, "titolo").text(), "Piatti");
}

TEST_F(TreeDrag, ADepartmentOfAnotherProgramIsNotTaken) {
  openTree();
  QMimeData foreign;
  foreign.setData(QStringLiteral("application/x-korvane-reparto"), "cat099");
  EXPECT_FALSE(model().canDropMimeData(&foreign, Qt::MoveAction, -1, -1, model().indexOf("cat001")));
  QMimeData text;
  text.setText("cat003");
  EXPECT_FALSE(model().canDropMimeData(&text, Qt::MoveAction, -1, -1, model().indexOf("cat001")));
}

}  // namespace
}  // namespace kv::test
