// The windows of what the law asks: makers, and the list of duties with the way to their fields.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTableWidget>

#include "commerce/settings/frm_produttori.h"
#include "commerce/settings/frm_requisiti.h"
#include "forms/wired_window.h"
#include "platform/qt/frm_note.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheMakersDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    dialog.emplace(session, env, MakerEditor::load(session.catalogue).value(),
                   [this](std::string_view page) { help = page; });
    show(*dialog);
    list = control<QListWidget>(*dialog, "lstProduttori");
    name = control<QLineEdit>(*dialog, "txtNome");
  }
  std::optional<frmProduttori> dialog;
  QListWidget* list = nullptr;
  QLineEdit* name = nullptr;
  std::string help;
};

TEST_F(TheMakersDialog, BeginsEmptyAndNamesEveryControl) {
  EXPECT_EQ(list->count(), 0);
  EXPECT_FALSE(name->isEnabled());
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  QTest::keyClick(&*dialog, Qt::Key_F1);
  EXPECT_EQ(help, "pagine/leggi.htm");
  expectEscapeLeaves(*dialog);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TheMakersDialog, OkStoresWhatWasTyped) {
  click(*dialog, "cmdNuovo");
  EXPECT_TRUE(name->hasFocus());
  QTest::keyClicks(name, "Forno");
  EXPECT_EQ(list->item(0)->text(), "Forno");
  QTest::keyClicks(control<QLineEdit>(*dialog, "txtContatto"), "a@b.it");
  test::keepPicture(*dialog, "produttori");
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(stored("nome || ' ' || contatto", "produttori"), "Forno a@b.it");
}

TEST_F(TheMakersDialog, AMakerWithoutANameIsRefusedBesideTheField) {
  click(*dialog, "cmdNuovo");
  click(*dialog, "cmdOK");
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(noteOf(*dialog), "Indicare il nome del produttore.");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TheMakersDialog, ChangesAreNotLostWithoutAQuestion) {
  click(*dialog, "cmdNuovo");
  QTest::keyClick(&*dialog, Qt::Key_Escape);
  EXPECT_TRUE(dialog->isVisible()) << "No is the default";
  ASSERT_EQ(user.texts(), std::vector<std::string>{std::string(makersUnsaved)});
  click(*dialog, "cmdElimina");
  EXPECT_EQ(list->count(), 0);
  expectEscapeLeaves(*dialog);
}

class TheDutiesWindow : public test::DialogFixture {
 protected:
  static std::vector<LegalDuty> duties() {
    return {{"Uno", DutyState::Met, "Va bene.", {}},
            {"Due", DutyState::Missing, "Manca il testo.", {DutySubject::Settings, "recesso", 0, 2, ""}}};
  }
  void SetUp() override {
    DialogFixture::SetUp();
    dialog.emplace(duties(), HelpOpener{});
    show(*dialog);
    grid = control<QTableWidget>(*dialog, "grdRequisiti");
  }
  std::optional<frmRequisiti> dialog;
  QTableWidget* grid = nullptr;
};

TEST_F(TheDutiesWindow, ListsDutiesWithTheFirstOpenOneSelected) {
  EXPECT_EQ(grid->rowCount(), 2);
  EXPECT_EQ(grid->item(0, 1)->text(), "A posto");
  EXPECT_EQ(grid->item(1, 1)->text(), "Manca");
  EXPECT_EQ(grid->currentRow(), 1);
  EXPECT_EQ(control<QLabel>(*dialog, "lblTesto")->text(), "Manca il testo.");
  EXPECT_EQ(test::namelessControls(*dialog), "");
}

TEST_F(TheDutiesWindow, TheButtonLeadsToTheFieldOfTheSelectedDuty) {
  click(*dialog, "cmdVai");
  EXPECT_EQ(dialog->tag(), "OK");
  ASSERT_TRUE(dialog->chosen());
  EXPECT_EQ(dialog->chosen()->column, "recesso");
  EXPECT_EQ(dialog->chosen()->language, 2);
}

TEST_F(TheDutiesWindow, ADutyWithoutAFieldLeadsNowhere) {
  grid->setCurrentCell(0, 0);
  EXPECT_FALSE(control<QAbstractButton>(*dialog, "cmdVai")->isEnabled());
  expectEscapeLeaves(*dialog);
  EXPECT_FALSE(dialog->chosen());
}

class LawInTheWindow : public test::WiredWindow {
 protected:
  /// Chooses the duty of a title in the list and goes to its field.
  void goToDutyOf(const QString& duty) {
    whenShown(toQt(legalTitle), [duty](QWidget& dialog) {
      auto* grid = control<QTableWidget>(dialog, "grdRequisiti");
      const auto found = grid->findItems(duty, Qt::MatchExactly);
      ASSERT_EQ(found.size(), 1) << fromQt(duty);
      grid->setCurrentItem(found.front());
      test::keepPicture(dialog, "requisiti");
      click(dialog, "cmdVai");
    });
    ASSERT_TRUE(choose("legalDuties"));
    processEvents();
    processEvents();
  }
  const QWidget* fieldOf(Tab tab, EditedSet set, const char* column) {
    return window->page(tab).binding(set, column)->field();
  }
};

TEST_F(LawInTheWindow, ADutyOfAnArticleLeadsToItsField) {
  openWindow();
  goToDutyOf(QStringLiteral("Prezzo per unità"));
  EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(Tab::Articles));
  EXPECT_EQ(window->focusWidget(), fieldOf(Tab::Articles, EditedSet::Articoli, "contenuto"));
  EXPECT_FALSE(window->workbench().history().canUndo());
}

TEST_F(LawInTheWindow, ADutyOfTheShopLeadsToItsSetting) {
  fill("UPDATE generale SET email = ''");
  openWindow();
  goToDutyOf(QStringLiteral("Indirizzo e-mail"));
  EXPECT_EQ(window->focusWidget(), fieldOf(editorOf(EditedSet::Generale, "email")->tab, EditedSet::Generale, "email"));
}

TEST_F(LawInTheWindow, MakersAreOneStepOfUndo) {
  openWindow();
  whenShown(toQt(makersTitle), [](QWidget& dialog) {
    click(dialog, "cmdNuovo");
    QTest::keyClicks(control<QLineEdit>(dialog, "txtNome"), "Forno");
    click(dialog, "cmdOK");
  });
  goTab(Tab::Site);
  ASSERT_TRUE(choose("makers"));
  EXPECT_EQ(stored("COUNT(*)", "produttori"), "1");
  EXPECT_EQ(window->workbench().history().undoName(), "Produttori");
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(stored("COUNT(*)", "produttori"), "0");
}

}  // namespace
}  // namespace kv
