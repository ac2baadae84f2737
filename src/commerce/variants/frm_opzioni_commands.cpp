// What the commands and the grids of the dialog of variants do.

#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "commerce/variants/frm_opzioni.h"
#include "commerce/variants/frm_variant_grid.h"

namespace kv {
namespace {

constexpr int languagePanelTime = 4000;     // milliseconds
constexpr std::size_t longestUseList = 30;  // articles in the menu of uses

}  // namespace

void frmOpzioni::addVariant() {
  const auto ID = editor_.addVariant();
  if (!ID) return;
  showVariants(*ID);
  DBGrid1_->setFocus();
}

void frmOpzioni::deleteVariant() {
  const std::int64_t ID = currentID();
  if (!editor_.deleteVariant(ID)) return;
  unsavedNames_.erase(ID);
  for (const OptionRow& option : options_) forgetCells(option.ID);
  showVariants(0);
}

void frmOpzioni::duplicateVariant() {
  if (const auto ID = editor_.duplicateVariant(currentID())) showVariants(*ID);
}

void frmOpzioni::variantEdited(int row) {
  VariantRow& variant = variants_[static_cast<std::size_t>(row)];
  const std::string typed = DBGrid1_->cell(row, 0);
  if (editor_.rename(variant.ID, typed)) {
    variant.nome = typed;
    unsavedNames_.erase(variant.ID);
  } else {
    unsavedNames_[variant.ID] = {typed, "Non salvato. " + editor_.failure()};
  }
  showName(row);
  if (lblLingue_->isVisible()) translate(*DBGrid1_, row);
}

void frmOpzioni::showName(int row) {
  const VariantRow& variant = variants_[static_cast<std::size_t>(row)];
  const auto unsaved = unsavedNames_.find(variant.ID);
  if (unsaved != unsavedNames_.end()) {
    return DBGrid1_->setUnsaved(row, 0, unsaved->second.text, unsaved->second.reason);
  }
  DBGrid1_->setCell(row, 0, variant.nome, VariantEditor::canRename(variant));
}

void frmOpzioni::storeCell(std::int64_t ID, int column, const std::string& typed) {
  const bool stored = editor_.setOption(ID, static_cast<OptionCell>(column), typed);
  if (stored || editor_.failure().empty()) {  // no number: the former one stays
    unsavedCells_.erase({ID, column});
  } else {
    unsavedCells_[{ID, column}] = {typed, "Non salvato. " + editor_.failure()};
  }
}

void frmOpzioni::forgetCells(std::int64_t option) {
  std::erase_if(unsavedCells_, [option](const auto& one) { return one.first.first == option; });
}

void frmOpzioni::addOption() {
  if (!editor_.addOption(currentID())) return;
  showOptions(static_cast<int>(options_.size()));
  DBGrid2_->goTo(DBGrid2_->currentRow(), 0);
  DBGrid2_->setFocus();
}

void frmOpzioni::deleteOption() {
  const int row = DBGrid2_->currentRow();
  const std::int64_t ID = optionID();
  if (ID == 0 || !editor_.deleteOption(ID)) return;
  forgetCells(ID);
  showOptions(std::max(VariantEditor::afterDeletion(row, static_cast<int>(options_.size()) - 1), 0));
}

void frmOpzioni::optionEdited(int row, int column) {
  storeCell(options_[static_cast<std::size_t>(row)].ID, column, DBGrid2_->cell(row, column));
  const bool isTranslated = lblLingue_->isVisible();
  showOptions(row);
  if (isTranslated) translate(*DBGrid2_, row);
}

void frmOpzioni::mark(int row) {
  if (row < 0 || row >= static_cast<int>(options_.size())) return;
  ignore(editor_.markOption(currentID(), options_[static_cast<std::size_t>(row)].ID), "the mark shows what is stored");
  showOptions(row);
}

void frmOpzioni::paste(const std::string& text) {
  if (editor_.pasteOptions(currentID(), text)) showOptions(static_cast<int>(options_.size()));
}

void frmOpzioni::showUses() {
  QMenu menu(this);
  menu.setObjectName(QStringLiteral("mnuUso"));
  const std::vector<ArticleUse> uses = editor_.uses(currentID());
  for (std::size_t i = 0; i < uses.size() && i < longestUseList; ++i) {
    const std::string title = uses[i].titolo.empty() ? "Articolo " + std::to_string(uses[i].ID) : uses[i].titolo;
    menu.addAction(toQt(title).replace(QLatin1Char('&'), QLatin1String("&&")))
        ->setData(static_cast<qlonglong>(uses[i].ID));
  }
  const QAction* chosen = menu.exec(cmdUso_->mapToGlobal(cmdUso_->rect().bottomLeft()));
  if (chosen == nullptr || !storeUnsaved() || !editor_.accept()) return;
  jump_ = chosen->data().toLongLong();
  chosen_ = initial_ == 0 ? noVariantID : initial_;
  finish("OK");
}

void frmOpzioni::translate(VariantGrid& grid, int row) {
  if (!cmdLingue_->isChecked() || row < 0) return;
  const bool ofVariants = &grid == DBGrid1_;
  const std::size_t count = ofVariants ? variants_.size() : options_.size();
  const auto index = static_cast<std::size_t>(row);
  if (index >= count) return;
  const std::string lines =
      ofVariants ? editor_.TraduciVariante(variants_[index].ID) : editor_.TraduciOpzione(options_[index].ID);
  lblLingue_->setText(toQt(lines));
  lblLingue_->adjustSize();
  const QPoint beside(grid.viewport()->width() / 2, grid.rowViewportPosition(row) + grid.rowHeight(row));
  lblLingue_->move(grid.viewport()->mapToGlobal(beside));
  lblLingue_->show();
  hiding_->start(languagePanelTime);
}

bool frmOpzioni::storeUnsaved() {
  const auto names = unsavedNames_;
  for (const auto& [ID, unsaved] : names) {
    if (editor_.rename(ID, unsaved.text)) unsavedNames_.erase(ID);
  }
  const auto cells = unsavedCells_;
  for (const auto& [cell, unsaved] : cells) storeCell(cell.first, cell.second, unsaved.text);
  return unsavedNames_.empty() && unsavedCells_.empty();
}

void frmOpzioni::accepted() {
  // A cell that is being typed into is stored when the focus leaves it.
  setFocus();
  if (!storeUnsaved() || !editor_.accept()) return;
  chosen_ = currentID() == 0 ? noVariantID : currentID();
  finish("OK");
}

}  // namespace kv
