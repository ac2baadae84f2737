// Where the focus is after a dialog has refused what was typed.

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "forms/dialog_fixture.h"
#include "platform/qt/frm_user.h"

namespace kv::test {
namespace {

/// Two fields, and an OK that refuses; it points to the second field when told to.
class RefusingDialog final : public FormDialog {
 public:
  explicit RefusingDialog(bool points) : FormDialog("Rifiuto", nullptr) {
    auto* column = new QVBoxLayout(this);
    column->addWidget(first);
    column->addWidget(second);
    QDialogButtonBox* buttons = makeButtons();
    connect(buttons, &QDialogButtonBox::accepted, this, [this, points] {
      ++refusals;
      if (points) second->setFocus();
    });
    column->addWidget(buttons);
  }
  QLineEdit* first = named(new QLineEdit, "txtPrimo", "Primo");
  QLineEdit* second = named(new QLineEdit, "txtSecondo", "Secondo");
  int refusals = 0;
};

/// A field, and buttons of a dialog's own that say something of what is in it.
class SayingDialog final : public FormDialog {
 public:
  SayingDialog() : FormDialog("Prova", nullptr) {
    auto* column = new QVBoxLayout(this);
    column->addWidget(field);
    for (const auto& [button, icon] : {std::pair{refuse, Icon::Exclamation}, std::pair{tell, Icon::Information}}) {
      column->addWidget(button);
      connect(button, &QPushButton::clicked, this, [this, icon = icon] { user.message("Testo", icon); });
    }
  }
  QLineEdit* field = named(new QLineEdit, "txtCampo", "Campo");
  QPushButton* refuse = named(new QPushButton("Prova"), "cmdProva");
  QPushButton* tell = named(new QPushButton("Dimmi"), "cmdDimmi");
  QtUser user;
};

/// Buttons that were made before the field, a text to read and a choice that may be switched off.
class ButtonsFirstDialog final : public FormDialog {
 public:
  ButtonsFirstDialog() : FormDialog("Prova", nullptr) {
    QDialogButtonBox* buttons = makeButtons();
    auto* column = new QVBoxLayout(this);
    column->addWidget(shown);
    column->addWidget(again);
    column->addWidget(field);
    column->addWidget(buttons);
    shown->setReadOnly(true);
  }
  QLineEdit* shown = named(new QLineEdit, "txtLetto", "Letto");
  QCheckBox* again = named(new QCheckBox, "chkAncora", "Ancora");
  QLineEdit* field = named(new QLineEdit, "txtCampo", "Campo");
};

class DialogFocus : public DialogFixture {};

TEST_F(DialogFocus, BeginsInTheFirstFieldAndElseOnTheDefaultButton) {
  ButtonsFirstDialog dialog;
  show(dialog);
  EXPECT_EQ(dialog.focusWidget(), dialog.field);
  ButtonsFirstDialog question;
  question.field->setEnabled(false);
  show(question);
  EXPECT_EQ(question.focusWidget(), control<QPushButton>(question, "cmdOK"));
}

TEST_F(DialogFocus, AfterARefusalOfAnyOtherButtonItIsInTheFieldToo) {
  SayingDialog dialog;
  show(dialog);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  const auto pressFromField = [&](QPushButton* button) {
    dialog.field->setFocus();
    button->setFocus(Qt::TabFocusReason);
    whenModal([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
    QTest::keyClick(button, Qt::Key_Space);
    QApplication::processEvents();
    return dialog.focusWidget();
  };
  EXPECT_EQ(pressFromField(dialog.refuse), dialog.field);
  EXPECT_EQ(pressFromField(dialog.tell), dialog.tell) << "who was only told something may press again";
}

TEST_F(DialogFocus, AfterARefusalItIsInTheFieldThatWasTypedIn) {
  RefusingDialog dialog(false);
  show(dialog);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  for (QLineEdit* field : {dialog.second, dialog.first}) {
    field->setFocus();
    click(dialog, "cmdOK");
    QApplication::processEvents();
    EXPECT_TRUE(field->hasFocus());
  }
  EXPECT_EQ(dialog.refusals, 2);
}

TEST_F(DialogFocus, ADialogThatPointsToAFieldIsFollowed) {
  RefusingDialog dialog(true);
  show(dialog);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  dialog.first->setFocus();
  click(dialog, "cmdOK");
  QApplication::processEvents();
  EXPECT_TRUE(dialog.second->hasFocus());
}

}  // namespace
}  // namespace kv::test
