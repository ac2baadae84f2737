// A field whose row can't be written, in the window: the text stays and is marked, and leaving the program asks.

#include "forms/driven_window.h"
#include "platform/qt/frm_field_mark.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using enum EditedSet;

class UnsavedField : public DrivenWindow {
 protected:
  /// Types a title for the first article while the disk is full, and goes to another field.
  void typeOnFullDisk(const QString& title) { typeWhileFailing(title, FailingStore::fullDisk); }
  /// The same while each change of a row fails with a code of the engine.
  void typeWhileFailing(const QString& title, int code) {
    FailingStore full(1, AfterFailure::FailsToo, code);
    full.onlyFor("UPDATE");
    goTab(Tab::Articles);
    type(line(Articoli, "titolo"), title);
    processEvents();
    leave(line(Articoli, "titolo"));
  }
  std::string shownTitle() { return fromQt(line(Articoli, "titolo").text()); }
  std::string reason() { return fromQt(line(Articoli, "titolo").findChild<FieldMark*>()->reason()); }
};

TEST_F(UnsavedField, TheTextStaysWithAMarkAndIsSavedWhenThereIsRoomAgain) {
  open();
  goArticle(0);
  typeOnFullDisk("Aurora");
  EXPECT_EQ(shownTitle(), "Aurora");
  EXPECT_TRUE(reason().starts_with("Non salvato. Titolo: il disco è pieno.")) << reason();
  EXPECT_EQ(line(Articoli, "titolo").accessibleDescription(), QString::fromStdString(reason()));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_NE(scalar("SELECT titolo FROM articoli WHERE ID = 1"), "Aurora");
  EXPECT_EQ(fromQt(cell(0, ArticleModel::Title)), scalar("SELECT titolo FROM articoli WHERE ID = 1"));
  goArticle(1);
  EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 1"), "Aurora");
  EXPECT_EQ(reason(), "");
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(UnsavedField, AStoreThatCannotBeWrittenOrOpenedKeepsTheTextAsAFullDiskDoes) {
  open();
  goArticle(0);
  constexpr int readOnly = 8;     // SQLITE_READONLY
  constexpr int cannotOpen = 14;  // SQLITE_CANTOPEN
  for (const int code : {readOnly, cannotOpen}) {
    const std::string title = "Aurora " + std::to_string(code);
    typeWhileFailing(QString::fromStdString(title), code);
    EXPECT_EQ(shownTitle(), title);
    EXPECT_TRUE(reason().starts_with("Non salvato. Titolo: ")) << reason();
    EXPECT_NE(scalar("SELECT titolo FROM articoli WHERE ID = 1"), title);
    goArticle(1);
    EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 1"), title);
    goArticle(0);
    EXPECT_EQ(reason(), "");
  }
}

TEST_F(UnsavedField, EscapeGivesTheTextUpAndTheRowIsShownAgain) {
  open();
  goArticle(0);
  const std::string before = shownTitle();
  typeOnFullDisk("Aurora");
  line(Articoli, "titolo").setFocus();
  key(Qt::Key_Escape);
  EXPECT_EQ(shownTitle(), before);
  EXPECT_EQ(reason(), "");
  user.shown.clear();
  EXPECT_TRUE(window->QWidget::close());
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(UnsavedField, ClosingTheWindowAsksFirst) {
  open();
  goArticle(0);
  FailingStore full(1, AfterFailure::FailsToo, FailingStore::fullDisk);
  full.onlyFor("UPDATE");
  goTab(Tab::Articles);
  type(line(Articoli, "titolo"), "Aurora");
  user.answers = {Answer::No, Answer::Yes};
  EXPECT_FALSE(window->QWidget::close());
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(shownTitle(), "Aurora");
  EXPECT_EQ(user.shown.back().preset, Answer::No);
  EXPECT_TRUE(window->QWidget::close());
}

}  // namespace
}  // namespace kv::test
