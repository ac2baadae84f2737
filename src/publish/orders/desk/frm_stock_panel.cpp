#include "publish/orders/desk/frm_stock_panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_note.h"
#include "publish/orders/desk/frm_enter_key.h"
#include "publish/orders/desk/order_desk.h"
#include "publish/orders/desk/order_list.h"

namespace kv {
namespace {

constexpr int nameColumn = 1, levelColumn = 2, stockColumns = 3;
constexpr int longestPieces = 7;

QTableWidgetItem* stockCell(const std::string& text) { return new QTableWidgetItem(toQt(text)); }

}  // namespace

StockPanel::StockPanel(StockPanelActions actions, QWidget* parent) : QWidget(parent), actions_(std::move(actions)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeSearch());
  column->addWidget(makeList(), 1);
  column->addWidget(makeLevel());
  showLevel();
}

QWidget* StockPanel::makeSearch() {
  cboTipo_ = named(new QComboBox(), "cboTipo");
  cboTipo_->addItems({QStringLiteral("Articoli"), QStringLiteral("Valori delle varianti")});
  txtCercaScorte_ = named(new QLineEdit(), "txtCercaScorte");
  cmdCercaScorte_ = named(new QPushButton(QStringLiteral("&Leggi dal server")), "cmdCercaScorte");
  auto* search = new QWidget();
  auto* row = new QHBoxLayout(search);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("&Elenco:", cboTipo_));
  row->addWidget(cboTipo_);
  row->addWidget(labelFor("Con&tiene:", txtCercaScorte_));
  row->addWidget(txtCercaScorte_, 1);
  row->addWidget(cmdCercaScorte_);
  connect(cmdCercaScorte_, &QPushButton::clicked, this, [this] { find(false); });
  onEnter(*txtCercaScorte_, [this] { find(false); });
  return search;
}

QWidget* StockPanel::makeList() {
  lstScorte_ = named(new QTableWidget(0, stockColumns), "lstScorte", "Disponibilità");
  lstScorte_->setHorizontalHeaderLabels(
      {QStringLiteral("Codice"), QStringLiteral("Nome"), QStringLiteral("Disponibilità")});
  lstScorte_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstScorte_->setSelectionMode(QAbstractItemView::SingleSelection);
  lstScorte_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstScorte_->setTabKeyNavigation(false);
  lstScorte_->verticalHeader()->hide();
  lstScorte_->horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
  lstScorte_->setColumnWidth(0, fontMetrics().averageCharWidth() * 22);
  lstScorte_->setColumnWidth(levelColumn, fontMetrics().averageCharWidth() * 20);
  lblScorte_ = named(wrappedText("Le quantità sono quelle del server: sceglierne l'elenco e leggerle."), "lblScorte");
  cmdAltre_ = named(new QPushButton(QStringLiteral("&Altre voci")), "cmdAltre");
  cmdAltre_->setEnabled(false);
  auto* list = new QWidget();
  auto* column = new QVBoxLayout(list);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(lstScorte_, 1);
  auto* row = new QHBoxLayout();
  row->addWidget(lblScorte_, 1);
  row->addWidget(cmdAltre_);
  column->addLayout(row);
  connect(cmdAltre_, &QPushButton::clicked, this, [this] { find(true); });
  connect(lstScorte_, &QTableWidget::currentCellChanged, this, &StockPanel::showLevel);
  return list;
}

QWidget* StockPanel::makeLevel() {
  chkDisponibile_ = named(new QCheckBox(QStringLiteral("Si p&uò ordinare")), "chkDisponibile");
  txtPezzi_ = named(new QLineEdit(), "txtPezzi");
  txtPezzi_->setMaxLength(longestPieces);
  txtPezzi_->setPlaceholderText(QStringLiteral("vuoto: senza limite"));
  cmdImposta_ = named(new QPushButton(QStringLiteral("I&mposta")), "cmdImposta");
  auto* level = new QWidget();
  auto* row = new QHBoxLayout(level);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(chkDisponibile_);
  row->addWidget(labelFor("Pe&zzi:", txtPezzi_));
  row->addWidget(txtPezzi_);
  row->addWidget(cmdImposta_);
  row->addStretch(1);
  connect(cmdImposta_, &QPushButton::clicked, this, &StockPanel::set);
  onEnter(*txtPezzi_, [this] { set(); });
  return level;
}

std::string StockPanel::itemCount(std::size_t count, bool more) {
  if (count == 0) return "Nessuna voce";
  return std::to_string(count) + (count == 1 ? " voce" : " voci") + (more ? ", ce ne sono altre" : "");
}

void StockPanel::find(bool more) {
  if (!more) {
    query_.kind = cboTipo_->currentIndex() == 0 ? StockKind::Articles : StockKind::Values;
    query_.search = fromQt(txtCercaScorte_->text().trimmed());
    query_.from = 0;
  }
  const auto found = actions_.find(query_);
  if (!found) return;
  if (!more) items_.clear();
  for (const StockItem& item : found->items) items_.push_back(item);
  query_.from = static_cast<int>(items_.size());
  lstScorte_->setRowCount(static_cast<int>(items_.size()));
  for (std::size_t i = 0; i < items_.size(); ++i) showRow(static_cast<int>(i), items_[i]);
  cmdAltre_->setEnabled(found->more);
  lblScorte_->setText(toQt(itemCount(items_.size(), found->more)));
  if (!items_.empty() && lstScorte_->currentRow() < 0) lstScorte_->setCurrentCell(0, 0);
  showLevel();
}

void StockPanel::showRow(int row, const StockItem& item) {
  lstScorte_->setItem(row, 0, stockCell(item.code));
  lstScorte_->setItem(row, nameColumn, stockCell(item.name));
  lstScorte_->setItem(row, levelColumn, stockCell(stockLevelText(item.level)));
}

void StockPanel::showLevel() {
  const int row = lstScorte_->currentRow();
  const bool isThere = row >= 0 && static_cast<std::size_t>(row) < items_.size();
  for (QWidget* control :
       {static_cast<QWidget*>(chkDisponibile_), static_cast<QWidget*>(txtPezzi_), static_cast<QWidget*>(cmdImposta_)}) {
    control->setEnabled(isThere);
  }
  const std::string level = isThere ? items_[static_cast<std::size_t>(row)].level : std::string("0|");
  chkDisponibile_->setChecked(level.starts_with('1'));
  txtPezzi_->setText(toQt(level.substr(2)));
}

void StockPanel::set() {
  const int row = lstScorte_->currentRow();
  if (row < 0 || static_cast<std::size_t>(row) >= items_.size()) return;
  const auto level = typedStock(chkDisponibile_->isChecked(), fromQt(txtPezzi_->text()));
  if (!level) return showNote(*txtPezzi_, QStringLiteral("Un numero intero, o niente per nessun limite"));
  showNote(*txtPezzi_, {});
  StockItem& item = items_[static_cast<std::size_t>(row)];
  if (*level == item.level) return;
  const std::string name = item.code.empty() ? item.name : item.code;
  const auto now = actions_.set({query_.kind, item.key, item.level, *level}, name);
  if (!now) return;
  item.level = *now;
  showRow(row, item);
  showLevel();
}

}  // namespace kv
