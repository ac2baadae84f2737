#pragma once
// Typing in a cell of the list of articles, by the rules and with the marks of the field of the same column.

#include <QPointer>
#include <QStyledItemDelegate>

#include "platform/qt/frm_reference_note.h"
#include "shell/workbench/workbench.h"

namespace kv {

class FieldLine;
class FieldMark;

/// Opens the cells of the current article; the workbench stores what is typed, as one step. One cell is open at a time.
class ArticleCells final : public QStyledItemDelegate {
  Q_OBJECT
 public:
  /// The workbench outlives it.
  ArticleCells(Workbench& workbench, QObject* parent);

  /// The field of the cell that is open; null when none is.
  QWidget* cell() const;
  /// Whether something was typed that isn't stored yet.
  bool isUnsaved() const;
  /// Whether the text that was left last was not taken: the cell shows the former value again, with the reason.
  bool isRefused() const { return isRefused_; }
  /// Gives up what was typed.
  void giveUp();

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  /// Shows what the row says, unless something typed still waits to be stored.
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  /// Hands what was typed to the workbench; the row of the list follows from there.
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  /// The cell is closed.
  void destroyEditor(QWidget* editor, const QModelIndex& index) const override;

 signals:
  /// Something was typed.
  void typed() const;

 private:
  /// Takes up what was typed: a mark was about the text before.
  void edited() const;

  Workbench& workbench_;
  // Qt asks for all of it by const routines.
  mutable const Editor* column_ = nullptr;  ///< of the cell that was opened last
  mutable QPointer<FieldLine> line_;
  mutable FieldMark* mark_ = nullptr;  ///< belongs to the line
  mutable ReferenceNote references_;
  mutable bool isRefused_ = false;
  mutable bool isNoted_ = false;   ///< something was said of the text that is being typed
  mutable bool isSaving_ = false;  ///< the workbench has been handed the text
};

}  // namespace kv
