#include "platform/frm_dialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTextDocument>
#include <utility>

namespace kv {

QString toQt(std::string_view utf8) { return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())); }

std::string fromQt(const QString& text) { return text.toStdString(); }

std::string textOf(const QPlainTextEdit& field) {
  QString text = field.document()->toRawText();
  text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
  text.replace(QChar::LineSeparator, QLatin1Char('\n'));
  return fromQt(text);
}

FormDialog::FormDialog(std::string_view title, QWidget* parent) : QDialog(parent) { setWindowTitle(toQt(title)); }

void FormDialog::finish(std::string tag) {
  tag_ = std::move(tag);
  done(tag_.empty() ? Rejected : Accepted);
}

void FormDialog::reject() {
  tag_.clear();
  QDialog::reject();
}

QDialogButtonBox* FormDialog::makeButtons(std::string_view accept, std::string_view leave) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setText(toQt(accept));
  ok->setDefault(true);
  named(ok, "cmdOK");
  buttons->button(QDialogButtonBox::Cancel)->setText(toQt(leave));
  named(buttons->button(QDialogButtonBox::Cancel), "cmdAnnulla");
  connect(buttons, &QDialogButtonBox::rejected, this, &FormDialog::reject);
  return buttons;
}

QDialogButtonBox* FormDialog::makeClose(std::string_view caption) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* close = buttons->button(QDialogButtonBox::Close);
  close->setText(toQt(caption));
  named(close, "cmdChiudi");
  connect(buttons, &QDialogButtonBox::rejected, this, &FormDialog::reject);
  return buttons;
}

void FormDialog::addHelp(QDialogButtonBox* buttons, HelpOpener help, std::string_view page) {
  if (!help) return;
  auto open = [help = std::move(help), page = std::string(page)] { help(page); };
  QPushButton* button = named(buttons->addButton(QStringLiteral("?"), QDialogButtonBox::HelpRole), "cmdGuida", "Guida");
  button->setToolTip(toQt("Guida (F1)"));
  connect(button, &QPushButton::clicked, this, open);
  connect(new QShortcut(Qt::Key_F1, this), &QShortcut::activated, this, open);
}

void FormDialog::sizeInLetters(int columns, int lines) {
  const QFontMetrics letters = fontMetrics();
  resize(sizeHint().expandedTo({letters.averageCharWidth() * columns, letters.lineSpacing() * lines}));
}

QLabel* labelFor(std::string_view text, QWidget* field) {
  auto* label = new QLabel(toQt(text));
  label->setBuddy(field);
  QString name = label->text();
  name.remove(QLatin1Char('&'));
  if (name.endsWith(QLatin1Char(':'))) name.chop(1);
  if (field->accessibleName().isEmpty()) field->setAccessibleName(name);
  return label;
}

QLabel* wrappedText(std::string_view text) {
  auto* label = new QLabel(toQt(text));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

BusyPointer::BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
BusyPointer::~BusyPointer() { QApplication::restoreOverrideCursor(); }

}  // namespace kv
