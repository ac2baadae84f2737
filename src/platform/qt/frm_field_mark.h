#pragma once
// The mark beside a field whose text was not taken as it was typed: a picture at the field's end, the reason as its
// tip and, for a while, as the note of the window (frm_note.h).

#include <QLabel>
#include <QObject>
#include <QString>

namespace kv {

/// The mark of one field, hidden at first. Screen readers find the reason as the description of the field.
class FieldMark final : public QObject {
  Q_OBJECT
 public:
  /// The field owns the mark. Its tip and description are those it has when the mark is shown.
  explicit FieldMark(QWidget* field);
  /// Shows the mark, and its reason as a note below the field.
  void show(const QString& reason);
  /// Hides the mark and its note; the field has its own tip and description again.
  void clear();
  /// Why the mark is shown; empty while it is hidden.
  const QString& reason() const { return reason_; }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void moveToEnd();

  QWidget* field_;
  QLabel* picture_;
  QString reason_;
  QString usualTip_, usualDescription_;
};

}  // namespace kv
