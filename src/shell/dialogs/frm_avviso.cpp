#include "shell/dialogs/frm_avviso.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace kv {

frmAvviso::frmAvviso(Settings& settings, QWidget* parent) : FormDialog("Korvane", parent), settings_(settings) {
  auto* sign = new QLabel();
  const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
  sign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side, side));
  sign->setAlignment(Qt::AlignTop);
  sign->setAccessibleName(toQt("Attenzione"));
  auto* texts = new QVBoxLayout();
  for (const std::string_view text : {reminderText, reminderReason, reminderQuestion}) {
    texts->addWidget(wrappedText(text));
  }
  texts->setSpacing(fontMetrics().lineSpacing());
  auto* row = new QHBoxLayout();
  row->addWidget(sign);
  row->addLayout(texts, 1);
  row->setSpacing(side / 2);
  chkMai_ = named(new QCheckBox(toQt(reminderNever)), "chkMai");
  QDialogButtonBox* buttons = makeButtons("&Sì", "&No");
  // The close box and Escape leave without a word; the button No remembers the check box.
  disconnect(buttons, &QDialogButtonBox::rejected, this, nullptr);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { answer(true); });
  connect(buttons, &QDialogButtonBox::rejected, this, [this] { answer(false); });
  auto* column = new QVBoxLayout(this);
  column->addLayout(row, 1);
  column->addSpacing(fontMetrics().lineSpacing());
  column->addWidget(chkMai_);
  column->addWidget(buttons);
  sizeInCharacters(72, 15);
}

void frmAvviso::answer(bool yes) {
  ignore(answerReminder(settings_, chkMai_->isChecked()), "a setting that is not stored brings the reminder once more");
  finish(yes ? "OK" : "");
}

}  // namespace kv
