#include "shell/window/fields/frm_editors.h"
#include "platform/database/recordset.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_field_mark.h"
#include "shell/window/fields/frm_field.h"
#include "shell/window/fields/frm_picture.h"
#include "shell/window/fields/frm_picture_drop.h"
#include "shell/window/fields/frm_text.h"
#include "shell/workbench/commands/picture_commands.h"
#include "shell/workbench/commands/variant_commands.h"
#include "shell/workbench/fields/further_pictures.h"

namespace kv {
namespace {

constexpr int numberWidth = 12;  // average characters

/// The button "..." beside a field, which opens the dialog of a command.
QToolButton* dialogButton(QAction& action, QWidget* parent) {
  auto* button = new QToolButton(parent);
  button->setDefaultAction(&action);
  button->setText(QStringLiteral("..."));
  button->setAccessibleName(action.iconText());
  button->setFocusPolicy(Qt::StrongFocus);
  QObject::connect(&action, &QAction::changed, button, [button] { button->setText(QStringLiteral("...")); });
  return button;
}

/// Whether any text is typed into an editor, which its pages show.
bool isPlainTyping(const Editor& editor) {
  const bool isTyped =
      editor.control == Control::Line || editor.control == Control::Memo || editor.control == Control::Combo;
  return isTyped && !isNumberKind(editor.kind);
}

QStringList listOf(const std::vector<std::string>& texts) {
  QStringList list;
  for (const std::string& text : texts) list.append(toQt(text));
  return list;
}

}  // namespace

EditorBinding::EditorBinding(const Editor& editor, Workbench& workbench, const CommandActions& actions, QWidget* parent)
    : QObject(parent), editor_(editor), workbench_(workbench), parent_(parent) {
  switch (editor.control) {
    case Control::Line:
    case Control::Password:
      makeLine(editor.control == Control::Password);
      addButton(actions);
      break;
    case Control::Memo:
      makeMemo();
      break;
    case Control::Check:
      makeCheck();
      break;
    case Control::Choice:
      makeChoice();
      break;
    case Control::Pick:
      makePick();
      break;
    case Control::Combo:
      makeCombo();
      break;
    case Control::Picture:
      makePicture(actions);
      break;
    case Control::Variant:
      makeVariant(actions);
      break;
    case Control::Shown:
      makeShown();
      break;
  }
}

/// Names the control for tests, for the guide and for who can't see it.
void EditorBinding::adopt(QWidget* field) {
  field_ = field;
  field->setObjectName(toQt(editor_.column));
  field->setToolTip(toQt(editor_.toolTip));
  field->setAccessibleName(toQt(plainLabel(editor_.label)));
  field->setAccessibleDescription(toQt(editor_.toolTip));
  if (mark_ == nullptr) mark_ = new FieldMark(field);
  if (auto* list = qobject_cast<QComboBox*>(field)) list->view()->setAccessibleName(field->accessibleName());
}

void EditorBinding::addUnit(QWidget* field) {
  if (editor_.unit.empty() && editor_.kind != FieldKind::Price) return;
  unit_ = new QLabel(toQt(editor_.unit), parent_);
  auto* row = new QHBoxLayout;
  row->addWidget(field);
  row->addWidget(unit_);
  row->addStretch();
  row_ = row;
}

void EditorBinding::addButton(const CommandActions& actions) {
  QAction* action = editor_.command.empty() ? nullptr : actions(editor_.command);
  if (action == nullptr) return;
  auto* row = new QHBoxLayout;
  row->addWidget(field_);
  row->addWidget(dialogButton(*action, parent_));
  row_ = row;
}

void EditorBinding::edited() {
  if (loading_) return;
  // What was said while this text was typed stays until it is typed into again: "-5" leaves a 5 that nobody meant.
  if (!dirty_ && !noted_) mark_->clear();
  noted_ = false;
  dirty_ = true;
  if (isPlainTyping(editor_)) references_.typed(read_(), *mark_);
  showBeside();
  emit typed(read_());
}

void EditorBinding::showBeside() {
  if (editor_.kind == FieldKind::Price) unit_->setText(toQt(workbench_.besideField(editor_, fromQt(read_()))));
  if (dirty_ || (editor_.control != Control::Line && editor_.control != Control::Memo)) return;
  const QString first = toQt(workbench_.firstLanguageText(editor_));
  if (auto* line = qobject_cast<QLineEdit*>(field_)) line->setPlaceholderText(first);
  if (auto* memo = qobject_cast<QPlainTextEdit*>(field_)) memo->setPlaceholderText(first);
}

void EditorBinding::makeLine(bool hidden) {
  auto* line = new FieldLine(editor_.kind, workbench_.decimalSeparator(), parent_);
  if (hidden) line->setEchoMode(QLineEdit::Password);
  if (isNumberKind(editor_.kind)) {
    line->setAlignment(Qt::AlignRight);
    line->setMaximumWidth(line->fontMetrics().averageCharWidth() * numberWidth + numberWidth);
  }
  read_ = [line] { return line->text(); };
  write_ = [line](const QString& text) { line->load(text); };
  connect(line, &QLineEdit::textEdited, this, &EditorBinding::edited);
  connect(line, &QLineEdit::editingFinished, this, &EditorBinding::commit);
  connect(line, &QLineEdit::returnPressed, this, &EditorBinding::entered);
  follow(line);
  addUnit(line);
  adopt(line);
}

void EditorBinding::giveUp() {
  dirty_ = false;
  workbench_.giveUpField(editor_);
  mark_->clear();
  references_.forget();
  show();
  emit typed(read_());
}

void EditorBinding::follow(FieldLine* line) {
  mark_ = new FieldMark(line);
  connect(line, &FieldLine::givenUp, this, &EditorBinding::giveUp);
  connect(line, &FieldLine::noted, this, [this](const QString& note) {
    noted_ = true;  // said of the text that is about to change
    mark_->show(note);
  });
}

void EditorBinding::makeMemo() {
  auto* memo = new FieldMemo(parent_);
  constexpr int lines = 5;
  memo->setMinimumHeight(memo->fontMetrics().lineSpacing() * lines);
  memo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  read_ = [memo] { return memo->toPlainText(); };
  write_ = [memo](const QString& text) {
    if (memo->toPlainText() != text) memo->setPlainText(text);
  };
  connect(memo, &QPlainTextEdit::textChanged, this, &EditorBinding::edited);
  connect(memo, &FieldMemo::left, this, &EditorBinding::commit);
  connect(memo, &FieldMemo::noted, this, [this](const QString& note) { mark_->show(note); });
  adopt(memo);
  auto* larger = new QToolButton(parent_);
  larger->setText(QStringLiteral("..."));
  larger->setToolTip(tr("Apri il testo in una finestra più grande (Ctrl+Invio)"));
  larger->setAccessibleName(tr("Ingrandisci ") + memo->accessibleName());
  larger->setFocusPolicy(Qt::TabFocus);
  larger_ = larger;
  connect(larger, &QToolButton::clicked, this, &EditorBinding::enlarge);
  auto* key = new QShortcut(Qt::CTRL | Qt::Key_Return, memo, nullptr, nullptr, Qt::WidgetShortcut);
  connect(key, &QShortcut::activated, this, &EditorBinding::enlarge);
  auto* row = new QHBoxLayout;
  row->addWidget(memo, 1);
  row->addWidget(larger, 0, Qt::AlignTop);
  row_ = row;
}

/// The text goes to the row only when the window is left by OK.
void EditorBinding::enlarge() {
  auto* memo = qobject_cast<QPlainTextEdit*>(field_);
  if (memo == nullptr || !memo->isEnabled()) return;
  frmTesto window(field_->accessibleName(), memo->toPlainText(), field_->window());
  window.exec();
  if (window.tag() != "OK" || window.text() == memo->toPlainText()) return;
  memo->setPlainText(window.text());
  commit();
}

void EditorBinding::makeCheck() {
  auto* check = new QCheckBox(toQt(editor_.label), parent_);
  read_ = [check] { return QString::fromLatin1(check->isChecked() ? "1" : "0"); };
  write_ = [check](const QString& text) { check->setChecked(text == QLatin1String("1")); };
  connect(check, &QCheckBox::toggled, this, [this] {
    edited();
    commit();
  });
  adopt(check);
}

void EditorBinding::makeChoice() {
  auto* list = new FieldList(parent_);
  list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  list->fill(listOf(workbench_.choicesOf(editor_)));
  read_ = [list] { return QString::number(list->currentIndex()); };
  write_ = [list](const QString& text) { list->setCurrentIndex(text.toInt()); };
  connect(list, &QComboBox::currentIndexChanged, this, [this] {
    edited();
    commit();
  });
  adopt(list);
}

void EditorBinding::makePick() {
  auto* list = new FieldList(parent_);
  list->refill = [this] { return listOf(workbench_.choicesOf(editor_)); };
  read_ = [list] { return list->currentText(); };
  write_ = [list](const QString& text) {
    // A name that isn't offered any more is shown all the same.
    if (list->findText(text) < 0) list->addItem(text);
    list->setCurrentIndex(list->findText(text));
  };
  connect(list, &QComboBox::currentIndexChanged, this, [this] {
    edited();
    commit();
  });
  adopt(list);
}

void EditorBinding::makeCombo() {
  auto* list = new FieldList(parent_);
  list->setEditable(true);
  list->setCompleter(nullptr);
  auto* line = new FieldLine(editor_.kind, workbench_.decimalSeparator(), list);
  list->setLineEdit(line);
  line->setAccessibleName(toQt(plainLabel(editor_.label)));
  if (isNumberKind(editor_.kind)) {
    list->setMaximumWidth(list->fontMetrics().averageCharWidth() * numberWidth * 2);
  } else if (editor_.kind == FieldKind::PlainText) {
    list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  }
  list->refill = [this] { return listOf(workbench_.choicesOf(editor_)); };
  read_ = [line] { return line->text(); };
  write_ = [line](const QString& text) { line->load(text); };
  connect(line, &QLineEdit::textEdited, this, &EditorBinding::edited);
  connect(line, &QLineEdit::editingFinished, this, &EditorBinding::commit);
  connect(list, &QComboBox::activated, this, [this] {
    edited();
    commit();
  });
  follow(line);
  addUnit(list);
  adopt(list);
}

void EditorBinding::makePicture(const CommandActions& actions) {
  const PictureCommandNames commands = pictureCommandNames(editor_.set, editor_.number);
  auto* picture =
      new PictureField(toQt(plainLabel(editor_.label)), actions(commands.choose), actions(commands.clear), parent_);
  auto* drops = new PictureDrops(*picture, workbench_, [this](QPoint) {
    return std::optional(RowPicture{editor_.set, editor_.number});
  });
  drops->pasteOn(picture->picture());
  read_ = [] { return QString(); };
  write_ = [this, picture](const QString& name) {
    const std::string path = workbench_.picturePath(editor_);
    picture->showPicture(name, toQt(path));
    picture->showFurther(editor_.set == EditedSet::Articoli ? toQt(furtherPictures(path)) : QString());
  };
  adopt(picture);
}

void EditorBinding::makeVariant(const CommandActions& actions) {
  auto* name = new QLineEdit(parent_);
  name->setReadOnly(true);
  auto* row = new QHBoxLayout;
  row->addWidget(name);
  row->addWidget(dialogButton(*actions(variantCommand(editor_.number)), parent_));
  row_ = row;
  read_ = [name] { return name->text(); };
  write_ = [name](const QString& text) { name->setText(text); };
  adopt(name);
}

void EditorBinding::makeShown() {
  auto* line = new QLineEdit(parent_);
  line->setReadOnly(true);
  line->setFrame(false);
  // It looks like a label, in whatever palette the desktop has, and can be copied from.
  line->setStyleSheet(QStringLiteral("QLineEdit { background: transparent; }"));
  read_ = [line] { return line->text(); };
  write_ = [line](const QString& text) {
    line->setText(text);
    line->setCursorPosition(0);
  };
  adopt(line);
}

void EditorBinding::show() {
  if (dirty_) return;
  if (!saving_) {  // it was about another row, or another text
    mark_->clear();
    references_.forget();
  }
  loading_ = true;
  if (auto* line = qobject_cast<QLineEdit*>(field_); line != nullptr && editor_.control != Control::Variant) {
    const int widest = workbench_.widest(editor_);
    if (widest > 0) line->setMaxLength(widest);
  }
  write_(toQt(workbench_.shown(editor_)));
  loading_ = false;
  showBeside();
}

void EditorBinding::refreshEnabled() {
  const bool enabled = workbench_.isEditorEnabled(editor_);
  field_->setEnabled(enabled);
  if (unit_ != nullptr) unit_->setEnabled(enabled);
  if (larger_ != nullptr) larger_->setEnabled(enabled);
  if (label_ != nullptr) label_->setEnabled(enabled);
}

bool EditorBinding::commit() {
  if (!dirty_) return true;
  if (saving_) return false;  // a message about it is open, and has taken the focus
  saving_ = true;
  dirty_ = false;
  const QString text = read_();
  const Workbench::LeftField left = workbench_.leaveField(editor_, fromQt(text));
  if (!left.saved) {
    preview(text);
    dirty_ = true;
  }
  // How a number was read is worth seeing while it is shown.
  if (!left.mark.empty()) mark_->show(toQt(left.mark));
  saving_ = false;
  if (left.saved) forgetTyping();
  return left.saved;
}

/// What is stored is undone as a step of the catalogue, and no longer as typing of the field.
void EditorBinding::forgetTyping() {
  if (auto* memo = qobject_cast<QPlainTextEdit*>(field_)) return memo->document()->clearUndoRedoStacks();
  auto* line = qobject_cast<QLineEdit*>(field_);
  if (const auto* list = qobject_cast<QComboBox*>(field_)) line = list->lineEdit();
  if (line == nullptr) return;
  const QSignalBlocker quiet(line);
  const int position = line->cursorPosition();
  line->setText(line->text());
  line->setCursorPosition(position);
}

void EditorBinding::preview(const QString& text) {
  if (dirty_) return;
  loading_ = true;
  write_(text);
  loading_ = false;
}

}  // namespace kv
