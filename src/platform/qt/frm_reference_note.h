#pragma once
// Says beside a field, while it is typed into, which characters the files of the shop hold only as references.

#include <QString>

class QLineEdit;
class QPlainTextEdit;

namespace kv {

class FieldMark;

/// What is said of the text of one field. The mark of the field may say other things too: only its own reason is taken
/// away again.
class ReferenceNote {
 public:
  /// The field now holds this text, by a change of the user's. The mark is shown when there are other such characters
  /// than before, and hidden when there are none left.
  void typed(const QString& text, FieldMark& mark);
  /// The field shows a text that was not typed; the next change is said as a new one.
  void forget() { said_.clear(); }
  /// What was said last; empty when the text held no such character.
  const QString& said() const { return said_; }

 private:
  QString said_;
};

/// Watches a field that has no mark of its own; the mark that it has then. The field owns what watches it.
FieldMark* noteReferences(QLineEdit* line);
FieldMark* noteReferences(QPlainTextEdit* text);

}  // namespace kv
