#include "platform/qt/frm_reference_note.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <memory>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_field_mark.h"
#include "platform/text/typed_notes.h"

namespace kv {

void ReferenceNote::typed(const QString& text, FieldMark& mark) {
  const QString note = toQt(referenceNote(fromQt(text)));
  if (note == said_) return;
  const QString before = std::exchange(said_, note);
  if (!note.isEmpty()) return mark.show(note);
  if (mark.reason() == before) mark.clear();
}

namespace {

/// Says what is to be said of a text that was typed; what was said of the text before is over.
void sayTyped(ReferenceNote& note, const QString& text, FieldMark& mark) {
  if (mark.reason() != note.said()) {
    mark.clear();
    note.forget();
  }
  note.typed(text, mark);
}

}  // namespace

FieldMark* noteReferences(QLineEdit* line) {
  auto* mark = new FieldMark(line);
  const auto note = std::make_shared<ReferenceNote>();
  QObject::connect(line, &QLineEdit::textChanged, mark, [line, mark, note](const QString& text) {
    // A text that the program shows is not said; the line is modified by the user's changes alone.
    if (line->isModified() && line->hasFocus()) return sayTyped(*note, text, *mark);
    note->forget();
    mark->clear();
  });
  return mark;
}

FieldMark* noteReferences(QPlainTextEdit* text) {
  auto* mark = new FieldMark(text);
  const auto note = std::make_shared<ReferenceNote>();
  QObject::connect(text, &QPlainTextEdit::textChanged, mark, [text, mark, note] {
    if (text->hasFocus()) return sayTyped(*note, text->toPlainText(), *mark);
    note->forget();
    mark->clear();
  });
  return mark;
}

}  // namespace kv
