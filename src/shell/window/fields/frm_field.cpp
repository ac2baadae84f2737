#include "shell/window/fields/frm_field.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <memory>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_field_mark.h"
#include "platform/qt/frm_reference_note.h"
#include "platform/text/single_line.h"
#include "platform/text/text.h"

namespace kv {

FieldFilter::FieldFilter(FieldKind kind, char decimalSeparator, QLineEdit* line)
    : QValidator(line), kind_(kind), separator_(decimalSeparator) {
  connect(line, &QLineEdit::textChanged, this, [this](const QString& text) { held_ = text; });
}

QString FieldFilter::filtered(const QString& fresh) const {
  const std::string typed = fromQt(key_ ? fresh : toQt(singleLine(fromQt(fresh))));
  // Of a folder a paste keeps what no key types.
  const bool isKey = key_ && typed.size() == firstCharacters(typed, 1).size();
  const QString kept = toQt(isKey ? keyTyped(kind_, typed, separator_).inserted : pasted(kind_, typed, separator_));
  if (!note || fresh.isEmpty()) return kept;
  const std::string refused =
      isKey ? (kept.isEmpty() ? refusedKeyNote(kind_, typed) : std::string()) : droppedNote(kind_, typed, separator_);
  if (!refused.empty()) note(toQt(refused));
  return kept;
}

QString FieldFilter::numberOf(const QString& text) const {
  const NumberReading reading = pastedNumber(kind_, fromQt(text), separator_);
  if (!reading.note.empty() && note) note(toQt(reading.note));
  return reading.isNumber ? toQt(reading.text) : held_;
}

QValidator::State FieldFilter::validate(QString& text, int& position) const {
  if (text == held_) return Acceptable;
  if (!key_ && isNumberKind(kind_)) {
    const QString number = numberOf(text);
    if (number != text) position = static_cast<int>(number.size());
    text = number;
    return Acceptable;
  }
  // What is new is between what has stayed at the start and what has stayed at the end.
  const qsizetype most = std::min(text.size(), held_.size());
  qsizetype front = 0;
  while (front < most && text[front] == held_[front]) ++front;
  qsizetype back = 0;
  while (back < most - front && text[text.size() - 1 - back] == held_[held_.size() - 1 - back]) ++back;
  const QString fresh = text.mid(front, text.size() - front - back);
  const QString kept = filtered(fresh);
  if (kept == fresh) return Acceptable;
  text = text.left(front) + kept + text.right(back);
  position = static_cast<int>(front + kept.size());
  return Acceptable;
}

FieldLine::FieldLine(FieldKind kind, char decimalSeparator, QWidget* parent)
    : QLineEdit(parent),
      filter_(new FieldFilter(kind, decimalSeparator, this)),
      kind_(kind),
      separator_(decimalSeparator) {
  setValidator(filter_);
  filter_->note = [this](const QString& note) { emit noted(note); };
  connect(this, &QLineEdit::textEdited, this, &FieldLine::applyChange);
}

void FieldLine::load(const QString& text) {
  filter_->hold(text);
  lastGood_ = text;
  if (this->text() != text) setText(text);
  setCursorPosition(0);
}

void FieldLine::applyChange(const QString& typed) {
  const QString wanted = toQt(changedText(kind_, fromQt(typed), fromQt(lastGood_), separator_));
  if (wanted != typed) {
    if (kind_ == FieldKind::Amount && filter_->note) {
      filter_->note(QStringLiteral("\"%1\" non è un numero: è rimasto il valore precedente.").arg(typed));
    }
    const int position = cursorPosition();
    filter_->hold(wanted);
    setText(wanted);
    setCursorPosition(std::min(position, static_cast<int>(wanted.size())));
  }
  lastGood_ = wanted;
}

void FieldLine::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
    emit givenUp();
    return;
  }
  const bool isDecimalKey = event->modifiers().testFlag(Qt::KeypadModifier) &&
                            (event->key() == Qt::Key_Period || event->key() == Qt::Key_Comma);
  const bool isCommand = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
  filter_->expectKey(!isCommand && !event->text().isEmpty() && event->text().front().isPrint());
  if (isDecimalKey && isDecimalKind(kind_)) {
    QKeyEvent separator(QEvent::KeyPress, event->key(), Qt::NoModifier, QString(QLatin1Char(separator_)));
    QLineEdit::keyPressEvent(&separator);
  } else {
    QLineEdit::keyPressEvent(event);
  }
  filter_->expectKey(false);
}

void markTyping(FieldLine* line) {
  auto* mark = new FieldMark(line);
  struct Said {
    bool isNoted = false;  ///< of the text that is about to change
    ReferenceNote references;
  };
  const auto said = std::make_shared<Said>();
  QObject::connect(line, &FieldLine::noted, mark, [mark, said](const QString& note) {
    said->isNoted = true;
    mark->show(note);
  });
  QObject::connect(line, &QLineEdit::textEdited, mark, [mark, said](const QString& text) {
    if (!said->isNoted) mark->clear();
    said->isNoted = false;
    said->references.typed(text, *mark);
  });
}

namespace {

QString allowed(const QString& text) { return toQt(pasted(FieldKind::PlainText, fromQt(text), ',')); }

QString dropped(const QString& text) { return toQt(droppedNote(FieldKind::PlainText, fromQt(text), ',')); }

}  // namespace

FieldMemo::FieldMemo(QWidget* parent) : QPlainTextEdit(parent) {
  setTabChangesFocus(true);
  setLineWrapMode(QPlainTextEdit::WidgetWidth);
}

QSize FieldMemo::sizeHint() const {
  constexpr int lines = 6;
  constexpr int characters = 30;
  const QFontMetrics metrics = fontMetrics();
  return {metrics.averageCharWidth() * characters, metrics.lineSpacing() * lines + 2 * frameWidth()};
}

void FieldMemo::keyPressEvent(QKeyEvent* event) {
  const QString text = event->text();
  if (text == QLatin1String("|") || text == QLatin1String("[") || text == QLatin1String("]")) {
    emit noted(toQt(refusedKeyNote(FieldKind::PlainText, fromQt(text))));
    event->accept();
    return;
  }
  QPlainTextEdit::keyPressEvent(event);
}

void FieldMemo::inputMethodEvent(QInputMethodEvent* event) {
  const QString note = dropped(event->commitString());
  event->setCommitString(allowed(event->commitString()), event->replacementStart(), event->replacementLength());
  QPlainTextEdit::inputMethodEvent(event);
  if (!note.isEmpty()) emit noted(note);
}

void FieldMemo::insertFromMimeData(const QMimeData* source) {
  if (!source->hasText()) return;
  insertPlainText(allowed(source->text()));
  if (const QString note = dropped(source->text()); !note.isEmpty()) emit noted(note);
}

void FieldMemo::focusOutEvent(QFocusEvent* event) {
  QPlainTextEdit::focusOutEvent(event);
  if (event->reason() != Qt::PopupFocusReason) emit left();
}

FieldList::FieldList(QWidget* parent) : QComboBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setInsertPolicy(QComboBox::NoInsert);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(6);
}

void FieldList::fill(const QStringList& choices) {
  const QSignalBlocker quiet(this);
  const QString typed = currentText();
  clear();
  addItems(choices);
  if (isEditable()) {
    setEditText(typed);
  } else {
    setCurrentIndex(findText(typed));
  }
}

void FieldList::showPopup() {
  if (refill) fill(refill());
  QComboBox::showPopup();
}

void FieldList::wheelEvent(QWheelEvent* event) {
  if (hasFocus()) {
    QComboBox::wheelEvent(event);
  } else {
    event->ignore();
  }
}

}  // namespace kv
