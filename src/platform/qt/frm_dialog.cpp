#include "platform/qt/frm_dialog.h"

#include <cxxabi.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QShortcut>
#include <QShowEvent>
#include <QTextDocument>
#include <QTimer>
#include <QWindow>
#include <cstdlib>
#include <memory>
#include <typeinfo>
#include <utility>

#include "platform/qt/frm_screen.h"

namespace kv {

QString toQt(std::string_view utf8) { return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())); }

std::string fromQt(const QString& text) { return text.toStdString(); }

std::string textOf(const QPlainTextEdit& field) {
  QString text = field.document()->toRawText();
  text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
  text.replace(QChar::LineSeparator, QLatin1Char('\n'));
  return fromQt(text);
}

namespace {

/// A button without a picture, as in the message boxes.
QPushButton* plainButton(QDialogButtonBox& buttons, QDialogButtonBox::StandardButton which, std::string_view caption,
                         std::string_view name) {
  QPushButton* button = buttons.button(which);
  button->setText(toQt(caption));
  button->setIcon(QIcon());
  return named(button, name);
}

const QString memoryName = QStringLiteral("ultimoCampo");

/// Remembers the field of a dialog that had the focus last, and gives it back when the dialog is still open after its
/// button was pressed: what was typed was refused.
class FieldMemory final : public QObject {
 public:
  explicit FieldMemory(QWidget& dialog) : QObject(&dialog), dialog_(dialog) {
    setObjectName(memoryName);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
      const bool isField = now != nullptr && qobject_cast<QPushButton*>(now) == nullptr;
      if (isField && dialog_.isAncestorOf(now)) field_ = now;
    });
  }
  void giveBack() const {
    const bool canTake = field_ != nullptr && field_->isEnabled() && field_->isVisible();
    // A dialog that has named the field itself keeps its choice: the focus is on no button then.
    if (canTake && qobject_cast<QPushButton*>(dialog_.focusWidget()) != nullptr) field_->setFocus();
  }

 private:
  QWidget& dialog_;
  QPointer<QWidget> field_;
};

/// Whether a control takes what somebody opens a dialog for. A check box doesn't count: questions have one too; of
/// choices the one that is made counts.
bool isField(const QWidget& control) {
  if (const auto* line = qobject_cast<const QLineEdit*>(&control)) return !line->isReadOnly();
  if (const auto* text = qobject_cast<const QPlainTextEdit*>(&control)) return !text->isReadOnly();
  if (const auto* choice = qobject_cast<const QRadioButton*>(&control)) return choice->isChecked();
  return qobject_cast<const QComboBox*>(&control) != nullptr ||
         qobject_cast<const QAbstractItemView*>(&control) != nullptr;
}

/// The name of the class of a dialog without its namespace; empty where the compiler's name can't be read.
QString classNameOf(const QDialog& dialog) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(typeid(dialog).name(), nullptr, nullptr, &status), &std::free);
  return status == 0 ? QString::fromLatin1(name.get()).section(QStringLiteral("::"), -1) : QString();
}

/// The first field on the way of Tab; null when there is none.
QWidget* firstField(const QWidget& dialog) {
  for (QWidget* one = dialog.nextInFocusChain(); one != &dialog; one = one->nextInFocusChain()) {
    const bool isReached = one->isEnabled() && one->isVisibleTo(&dialog) && (one->focusPolicy() & Qt::TabFocus) != 0;
    if (isReached && one->window() == &dialog && isField(*one)) return one;
  }
  return nullptr;
}

/// Where a box and the dialog below it close at once, a window manager gives the keyboard to the dialog, which is gone
/// by then, and no window has it. The window below takes it, unless the user has gone to another program.
void keepKeyboard(QWidget& below) {
  constexpr int managerMilliseconds = 200;
  QTimer::singleShot(managerMilliseconds, &below, [&below] {
    if (below.isVisible() && QApplication::activeWindow() == nullptr) below.activateWindow();
  });
}

}  // namespace

void returnToField(QWidget& dialog) {
  const auto* memory = dynamic_cast<FieldMemory*>(dialog.findChild<QObject*>(memoryName, Qt::FindDirectChildrenOnly));
  if (memory != nullptr) memory->giveBack();
}

FormDialog::FormDialog(std::string_view title, QWidget* parent) : QDialog(parent) {
  setWindowTitle(toQt(title));
  new FieldMemory(*this);
}

void FormDialog::finish(std::string tag) {
  tag_ = std::move(tag);
  done(tag_.empty() ? Rejected : Accepted);
}

void FormDialog::reject() {
  tag_.clear();
  QDialog::reject();
}

int FormDialog::exec() {
  const UsualCursor pointer;
  bool isElsewhere = false;
  const QMetaObject::Connection seen =
      connect(qApp, &QGuiApplication::focusWindowChanged, this, [this, &isElsewhere](const QWindow* now) {
        if (now != nullptr || isVisible()) isElsewhere = now == nullptr;
      });
  const int result = QDialog::exec();
  disconnect(seen);
  if (!isElsewhere && parentWidget() != nullptr) keepKeyboard(*parentWidget()->window());
  return result;
}

void FormDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (event->spontaneous()) return;
  // Titles are repeated and change: the role is what tells the windows of the program apart for those outside it.
  setWindowRole(classNameOf(*this));
  // The row of buttons stands for its first button where Tab comes to the row itself: with several buttons in front of
  // OK it comes there in between, and would never get to OK.
  for (QDialogButtonBox* buttons : findChildren<QDialogButtonBox*>()) buttons->setFocusProxy(nullptr);
  // Else the default button has the focus where the buttons were made before the fields.
  if (QWidget* field = focusWidget() == nullptr ? firstField(*this) : nullptr) field->setFocus(Qt::TabFocusReason);
  bringOnScreen(*this);
  whenFramed(*this, [this, shown = size()] {
    if (size() == shown) bringOnScreen(*this);
  });
}

QDialogButtonBox* FormDialog::makeButtons(std::string_view accept, std::string_view leave) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  plainButton(*buttons, QDialogButtonBox::Ok, accept, "cmdOK")->setDefault(true);
  plainButton(*buttons, QDialogButtonBox::Cancel, leave, "cmdAnnulla");
  connect(buttons, &QDialogButtonBox::rejected, this, &FormDialog::reject);
  // Queued: the dialog class connects its own routine later, which judges the fields and closes the dialog.
  connect(
      buttons, &QDialogButtonBox::accepted, this, [this] { returnToField(*this); }, Qt::QueuedConnection);
  return buttons;
}

QDialogButtonBox* FormDialog::makeClose(std::string_view caption) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  plainButton(*buttons, QDialogButtonBox::Close, caption, "cmdChiudi");
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

void FormDialog::offerHelp(HelpOpener help, std::string_view page) {
  auto* buttons = findChild<QDialogButtonBox*>();
  if (buttons != nullptr) addHelp(buttons, std::move(help), page);
}

void FormDialog::sizeInCharacters(int columns, int lines) {
  const QFontMetrics metrics = fontMetrics();
  constexpr int titleLines = 3;  // that a window manager may put above
  const QSize room = screen()->availableGeometry().size() - QSize(0, metrics.lineSpacing() * titleLines);
  const QSize wanted(metrics.averageCharWidth() * columns, metrics.lineSpacing() * lines);
  resize(sizeHint().expandedTo(wanted).boundedTo(room));
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

void makeReadable(QMessageBox& box) {
  const auto part = [&box](const char* name) { return box.findChild<QLabel*>(QLatin1String(name)); };
  for (const char* name : {"qt_msgbox_label", "qt_msgbox_informativelabel"}) {
    if (QLabel* text = part(name)) text->setFocusPolicy(Qt::NoFocus);
  }
  QLabel* picture = part("qt_msgboxex_icon_label");
  if (picture == nullptr) return;
  switch (box.icon()) {
    case QMessageBox::Information:
      return picture->setAccessibleName(QObject::tr("Informazione"));
    case QMessageBox::Question:
      return picture->setAccessibleName(QObject::tr("Domanda"));
    case QMessageBox::Warning:
      return picture->setAccessibleName(QObject::tr("Attenzione"));
    case QMessageBox::Critical:
      return picture->setAccessibleName(QObject::tr("Errore"));
    case QMessageBox::NoIcon:
      return;
  }
}

WaitCursor::WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
WaitCursor::~WaitCursor() { QApplication::restoreOverrideCursor(); }

UsualCursor::UsualCursor() : busy_(QApplication::overrideCursor() != nullptr) {
  if (busy_) QApplication::setOverrideCursor(Qt::ArrowCursor);
}
UsualCursor::~UsualCursor() {
  if (busy_) QApplication::restoreOverrideCursor();
}

}  // namespace kv
