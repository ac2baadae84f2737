// What the tools of the sheet do with the selected cells.

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <algorithm>

#include "shell/sheet/frm_foglio.h"
#include "shell/sheet/frm_passo_prezzi.h"
#include "shell/sheet/frm_sheet_model.h"
#include "shell/sheet/frm_sostituisci.h"
#include "shell/window/fields/frm_text.h"

namespace kv {

std::vector<std::vector<CellText>> frmFoglio::selectedBlock() const {
  QModelIndexList chosen = lstFoglio_->selectionModel()->selectedIndexes();
  const QHeaderView* header = lstFoglio_->horizontalHeader();
  std::ranges::sort(chosen, {},
                    [&](const QModelIndex& one) { return std::pair(one.row(), header->visualIndex(one.column())); });
  std::vector<std::vector<CellText>> block;
  int row = -1;
  for (const QModelIndex& one : chosen) {
    if (one.row() != row) block.emplace_back();
    row = one.row();
    block.back().push_back(model_->cell(one));
  }
  return block;
}

std::vector<CellText> frmFoglio::selectedCells() const {
  std::vector<CellText> cells;
  for (auto& row : selectedBlock()) std::ranges::move(row, std::back_inserter(cells));
  return cells;
}

void frmFoglio::copy() {
  std::vector<std::vector<std::string>> texts;
  for (const auto& row : selectedBlock()) {
    texts.emplace_back();
    for (const CellText& cell : row) texts.back().push_back(cell.text);
  }
  if (!texts.empty()) QGuiApplication::clipboard()->setText(toQt(copiedBlock(texts)));
}

void frmFoglio::paste() {
  const auto block = pastedBlock(fromQt(QGuiApplication::clipboard()->text()));
  if (block.empty()) return;
  // One text fills all that is selected; a block goes to the right and down from the first selected cell.
  if (block.size() == 1 && block.front().size() == 1) {
    std::vector<CellText> cells = selectedCells();
    for (CellText& cell : cells) cell.text = block.front().front();
    return write("Incolla nel foglio", std::move(cells));
  }
  const auto chosen = selectedBlock();
  if (chosen.empty()) return;
  const QHeaderView* header = lstFoglio_->horizontalHeader();
  const auto& shown = model_->shownColumns();
  const auto first = std::ranges::find(shown, chosen.front().front().column) - shown.begin();
  const int left = header->visualIndex(static_cast<int>(first));
  const int top = model_->rowOf(chosen.front().front().article);
  const auto rows = static_cast<std::size_t>(model_->rowCount() - top);
  const auto columns = static_cast<std::size_t>(model_->columnCount() - left);
  std::vector<CellText> cells;
  std::size_t outside = 0;
  for (std::size_t i = 0; i < block.size(); ++i) {
    const std::size_t width = i < rows ? std::min(block[i].size(), columns) : 0;
    outside += block[i].size() - width;
    for (std::size_t j = 0; j < width; ++j) {
      const int section = header->logicalIndex(left + static_cast<int>(j));
      CellText cell = model_->cell(model_->index(top + static_cast<int>(i), section));
      cell.text = block[i][j];
      cells.push_back(std::move(cell));
    }
  }
  write("Incolla nel foglio", std::move(cells), outside);
}

void frmFoglio::fillDown() {
  const auto block = selectedBlock();
  if (block.size() < 2) return;
  std::vector<CellText> cells;
  for (std::size_t i = 1; i < block.size(); ++i) {
    for (CellText cell : block[i]) {
      const auto source = std::ranges::find(block.front(), cell.column, &CellText::column);
      if (source == block.front().end()) continue;
      cell.text = source->text;
      cells.push_back(std::move(cell));
    }
  }
  write("Riempi in basso", std::move(cells));
}

void frmFoglio::sameValue() {
  const QModelIndex current = lstFoglio_->currentIndex();
  if (!current.isValid()) return;
  const CellText source = model_->cell(current);
  std::vector<CellText> cells = selectedCells();
  for (CellText& cell : cells) cell.text = source.text;
  std::erase_if(cells,
                [&](const CellText& cell) { return columns_[cell.column].kind != columns_[source.column].kind; });
  write("Stesso valore", std::move(cells));
}

void frmFoglio::replace() {
  frmSostituisci dialog(workbench_.session(), columns_,
                        {model_->articles(), model_->shownColumns(), workbench_.decimalSeparator()}, help_, this);
  dialog.exec();
  if (!dialog.tag().empty()) write("Trova e sostituisci", cellsOf(dialog.chosen()));
}

void frmFoglio::changePrices() {
  frmPassoPrezzi dialog(workbench_.session(), columns_, selectedCells(), workbench_.decimalSeparator(), help_, this);
  dialog.exec();
  if (!dialog.tag().empty()) write("Prezzi selezionati", cellsOf(dialog.chosen()));
}

void frmFoglio::travel(std::string_view command) {
  const Command* row = workbench_.commands().table().named(command);
  if (row == nullptr || !workbench_.commands().isEnabled(*row)) return;
  const std::string step = command == "undo" ? workbench_.history().undoName() : workbench_.history().redoName();
  workbench_.commands().choose(*row);
  isChanged_ = true;
  refresh();
  lblStato_->setText(toQt((command == "undo" ? "Annullato: " : "Ripetuto: ") + step));
}

void frmFoglio::undo() { travel("undo"); }
void frmFoglio::redo() { travel("redo"); }

void frmFoglio::showArticle() {
  const QModelIndex current = lstFoglio_->currentIndex();
  if (!current.isValid()) return;
  jump_ = model_->cell(current).article;
  finish("OK");
}

void frmFoglio::openText(const QModelIndex& index) {
  if (!index.isValid() || model_->column(index.column()).kind != SheetKind::Lines) return;
  const CellText cell = model_->cell(index);
  frmTesto dialog(toQt(columns_[cell.column].heading), toQt(cell.text), this);
  dialog.exec();
  if (!dialog.tag().empty()) model_->setData(index, dialog.text(), Qt::EditRole);
}

}  // namespace kv
