// Where the focus is after a dialog has refused what was typed.

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QVBoxLayout>

#include "forms/dialog_fixture.h"

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

class DialogFocus : public DialogFixture {};

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
