#include "publish/orders/desk/frm_ordini.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "platform/qt/frm_note.h"
#include "publish/orders/desk/frm_order_model.h"
#include "publish/orders/desk/frm_stock_panel.h"
#include "publish/orders/desk/order_list.h"
#include "store/shop/backup_copies.h"

namespace kv {
namespace {

constexpr std::string_view ordersTitle = "Korvane - Ordini";
constexpr int dayCharacters = 12;
constexpr int listShare = 620, panelShare = 380;  // of the width, in proportion

}  // namespace

frmOrdini::frmOrdini(OrderDesk& desk, UserPort& user, OrderTools tools, HelpOpener help, QWidget* parent)
    : FormDialog(ordersTitle, parent),
      desk_(desk),
      user_(user),
      tools_(std::move(tools)),
      help_(std::move(help)),
      model_(new OrderModel(this)) {
  desk_.waitWith([this] {
    if (pump_.isDue()) pump_.processEvents(true);
    return !stopped_;
  });
  tabPagine_ = named(new QTabWidget(), "tabPagine", "Pagine");
  tabPagine_->addTab(makeOrders(), QStringLiteral("&Ordini"));
  StockPanelActions stock;
  stock.find = [this](const StockQuery& query) {
    std::optional<StockAnswer> found;
    working([&] { found = desk_.stock(query); });
    return found;
  };
  stock.set = [this](const StockChange& change, const std::string& name) {
    std::optional<std::string> level;
    working([&] { level = desk_.setStock(change, name); });
    return level;
  };
  tabPagine_->addTab(new StockPanel(std::move(stock)), QStringLiteral("S&corte"));
  auto* column = new QVBoxLayout(this);
  column->addWidget(tabPagine_, 1);
  column->addWidget(makeCommands());
  sizeInCharacters(160, 40);
  desk_.open();
  reload();
  lstOrdini_->setFocus();
}

frmOrdini::~frmOrdini() = default;

QWidget* frmOrdini::makeOrders() {
  OrderPanelActions actions;
  actions.changeState = [this](const StateChange& change) {
    bool changed = false;
    working([&] { changed = desk_.changeState(change); });
    if (changed) reload();
  };
  actions.addNote = [this](const std::string& text) {
    bool added = false;
    working([&] { added = desk_.addNote({panel_->order()->code, text}); });
    if (added) reload();
    return added;
  };
  panel_ = new OrderPanel(std::move(actions));
  auto* sides = new QSplitter();
  sides->addWidget(makeList());
  sides->addWidget(panel_);
  sides->setStretchFactor(0, 1);
  sides->setChildrenCollapsible(false);
  sides->setSizes({listShare, panelShare});
  auto* page = new QWidget();
  auto* column = new QVBoxLayout(page);
  column->addWidget(makeFilters());
  column->addWidget(sides, 1);
  column->addWidget(makeFoot());
  return page;
}

QWidget* frmOrdini::makeFilters() {
  txtCerca_ = named(new QLineEdit(), "txtCerca");
  cboStato_ = named(new QComboBox(), "cboStato");
  for (const std::string& choice : orderStateChoices()) cboStato_->addItem(toQt(choice));
  txtDal_ = named(new QLineEdit(), "txtDal");
  txtAl_ = named(new QLineEdit(), "txtAl");
  for (QLineEdit* day : {txtDal_, txtAl_}) {
    day->setPlaceholderText(QStringLiteral("gg/mm/aaaa"));
    day->setMaximumWidth(fontMetrics().averageCharWidth() * (dayCharacters + 4));
    connect(day, &QLineEdit::editingFinished, this, [day] { showNote(*day, toQt(dayNote(fromQt(day->text())))); });
    connect(day, &QLineEdit::textChanged, this, &frmOrdini::reload);
  }
  auto* filters = new QWidget();
  auto* row = new QHBoxLayout(filters);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("Contien&e:", txtCerca_));
  row->addWidget(txtCerca_, 1);
  row->addWidget(labelFor("&Stato:", cboStato_));
  row->addWidget(cboStato_);
  row->addWidget(labelFor("&Dal:", txtDal_));
  row->addWidget(txtDal_);
  row->addWidget(labelFor("A&l:", txtAl_));
  row->addWidget(txtAl_);
  connect(txtCerca_, &QLineEdit::textChanged, this, &frmOrdini::reload);
  connect(cboStato_, &QComboBox::currentIndexChanged, this, &frmOrdini::reload);
  return filters;
}

QWidget* frmOrdini::makeList() {
  lstOrdini_ = named(new QTableView(), "lstOrdini", "Ordini");
  lstOrdini_->setModel(model_);
  lstOrdini_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstOrdini_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  lstOrdini_->setTabKeyNavigation(false);
  lstOrdini_->setWordWrap(false);
  lstOrdini_->verticalHeader()->hide();
  lstOrdini_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  lstOrdini_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 8);
  lstOrdini_->horizontalHeader()->setHighlightSections(false);
  lstOrdini_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  lstOrdini_->horizontalHeader()->setSectionResizeMode(orderNameColumn, QHeaderView::Stretch);
  connect(lstOrdini_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmOrdini::showCurrent);
  connect(lstOrdini_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &frmOrdini::updateCommands);
  return lstOrdini_;
}

QWidget* frmOrdini::makeFoot() {
  lblRiepilogo_ = named(new QLabel(), "lblRiepilogo");
  chkAvvisa_ =
      named(new QCheckBox(QStringLiteral("All'&apertura del negozio dire quanti ordini sono nuovi")), "chkAvvisa");
  connect(chkAvvisa_, &QCheckBox::clicked, this, [this](bool notifies) {
    const auto set = desk_.store().setNotifiesAtStart(notifies);
    if (!set) showStoreError(set.error());
  });
  auto* foot = new QWidget();
  auto* row = new QHBoxLayout(foot);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(lblRiepilogo_, 1);
  row->addWidget(chkAvvisa_);
  return foot;
}

OrderLookup frmOrdini::lookup() const {
  OrderFields fields;
  fields.search = fromQt(txtCerca_->text());
  fields.state = cboStato_->currentIndex();
  // A day that is being typed doesn't restrict yet.
  for (const auto& [day, text] : {std::pair{txtDal_, &fields.from}, {txtAl_, &fields.to}}) {
    if (typedDay(fromQt(day->text()))) *text = fromQt(day->text());
  }
  return orderLookup(fields).value_or(OrderLookup{});
}

void frmOrdini::showStoreError(const Error& error) { user_.message(orderStoreFailureText(error), Icon::Critical); }

void frmOrdini::reload() {
  const int row = lstOrdini_->currentIndex().row();
  const std::int64_t current = row >= 0 ? model_->orders()[static_cast<std::size_t>(row)].row : 0;
  auto listed = desk_.store().list(lookup());
  if (!listed) return showStoreError(listed.error());
  const auto fresh = desk_.store().countNew();
  const auto asked = desk_.store().askedAt();
  const OrderCounts counts{listed->size(), fresh.value_or(0), asked.value_or(0) > 0 ? formatTime(*asked) : ""};
  model_->setOrders(std::move(*listed));
  if (model_->rowCount() > 0) {
    const int kept = model_->rowOf(current);
    lstOrdini_->selectRow(kept >= 0 ? kept : std::clamp(row, 0, model_->rowCount() - 1));
  }
  lblRiepilogo_->setText(toQt(orderSummaryLine(counts)));
  chkAvvisa_->setEnabled(desk_.store().isOpen());
  chkAvvisa_->setChecked(desk_.store().isOpen() && desk_.store().notifiesAtStart().value_or(true));
  showCurrent();
}

void frmOrdini::showCurrent() {
  const QModelIndex index = lstOrdini_->currentIndex();
  if (!index.isValid()) {
    panel_->showOrder(std::nullopt);
  } else {
    auto order = desk_.store().order(model_->orders()[static_cast<std::size_t>(index.row())].row);
    if (!order) showStoreError(order.error());
    panel_->showOrder(order ? std::optional(std::move(*order)) : std::nullopt);
  }
  updateCommands();
}

}  // namespace kv
