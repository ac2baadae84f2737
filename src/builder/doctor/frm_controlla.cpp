#include "builder/doctor/frm_controlla.h"

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "platform/ports/failure_text.h"
#include "platform/qt/frm_plain_tip.h"

namespace kv {
namespace {

constexpr std::string_view doctorTitle = "Korvane - Controlla il negozio";
constexpr std::string_view doctorHelp = "pagine/controllo.htm";
constexpr std::string_view allSubjects = "Tutto";

}  // namespace

/// The findings that are shown, as rows of severity and sentence.
class FindingModel final : public QAbstractTableModel {
 public:
  explicit FindingModel(const DoctorList& list, QObject* parent) : QAbstractTableModel(parent), list_(list) {}

  void refresh() {
    beginResetModel();
    rows_ = list_.shown();
    endResetModel();
  }
  const Finding& finding(int row) const { return list_.examination.findings[rows_[static_cast<std::size_t>(row)]]; }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
  }
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 2; }
  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid()) return {};
    if (role == Qt::ToolTipRole && index.column() == 1) return plainTip(toQt(finding(index.row()).text));
    if (role != Qt::DisplayRole) return {};
    const Finding& one = finding(index.row());
    return index.column() == 0 ? toQt(severityName(one.severity)) : toQt(one.text);
  }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
    return section == 0 ? QStringLiteral("Gravità") : QStringLiteral("Che cosa troverebbe un visitatore");
  }

 private:
  const DoctorList& list_;
  std::vector<std::size_t> rows_;
};

frmControlla::frmControlla(DoctorActions actions, UserPort& user, QWidget* parent)
    : FormDialog(doctorTitle, parent),
      actions_(std::move(actions)),
      user_(user),
      model_(new FindingModel(list_, this)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeFilters());
  column->addWidget(makeFindings(), 1);
  column->addWidget(makeCommands());
  sizeInCharacters(104, 30);
  examine();
  lstAvvisi_->setFocus();
}

frmControlla::~frmControlla() = default;

QWidget* frmControlla::makeFilters() {
  cboTema_ = named(new QComboBox(), "cboTema");
  cboTema_->addItem(toQt(allSubjects));
  for (const std::string_view subject : doctorSubjects()) cboTema_->addItem(toQt(subject));
  txtFiltro_ = named(new QLineEdit(), "txtFiltro");
  chkErrori_ = named(new QCheckBox(QStringLiteral("Solo gli &errori")), "chkErrori");
  auto* filters = new QWidget();
  auto* row = new QHBoxLayout(filters);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("&Mostra:", cboTema_));
  row->addWidget(cboTema_);
  row->addWidget(labelFor("Con&tiene:", txtFiltro_));
  row->addWidget(txtFiltro_, 1);
  row->addWidget(chkErrori_);
  const auto filter = [this] {
    list_.subject = cboTema_->currentIndex() == 0 ? std::string() : fromQt(cboTema_->currentText());
    list_.search = fromQt(txtFiltro_->text());
    list_.errorsOnly = chkErrori_->isChecked();
    show(0);
  };
  connect(cboTema_, &QComboBox::currentIndexChanged, this, filter);
  connect(txtFiltro_, &QLineEdit::textChanged, this, filter);
  connect(chkErrori_, &QCheckBox::toggled, this, filter);
  return filters;
}

QWidget* frmControlla::makeFindings() {
  lstAvvisi_ = named(new QTableView(), "lstAvvisi", "Avvisi ed errori");
  lstAvvisi_->setModel(model_);
  lstAvvisi_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstAvvisi_->setSelectionMode(QAbstractItemView::SingleSelection);
  lstAvvisi_->setTabKeyNavigation(false);
  lstAvvisi_->setWordWrap(false);
  lstAvvisi_->verticalHeader()->hide();
  lstAvvisi_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  lstAvvisi_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 8);
  lstAvvisi_->horizontalHeader()->setStretchLastSection(true);
  lstAvvisi_->horizontalHeader()->setHighlightSections(false);
  lstAvvisi_->setColumnWidth(0, fontMetrics().averageCharWidth() * 12);
  lblCorrezione_ = named(wrappedText(""), "lblCorrezione");
  lblRiepilogo_ = named(new QLabel(), "lblRiepilogo");
  auto* findings = new QWidget();
  auto* column = new QVBoxLayout(findings);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(lstAvvisi_, 1);
  column->addWidget(lblCorrezione_);
  column->addWidget(lblRiepilogo_);
  connect(lstAvvisi_, &QTableView::doubleClicked, this, &frmControlla::go);
  connect(lstAvvisi_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmControlla::updateCommands);
  return findings;
}

QWidget* frmControlla::makeCommands() {
  QDialogButtonBox* buttons = makeClose();
  const auto add = [buttons](const char* caption, const char* name) {
    return named(buttons->addButton(toQt(caption), QDialogButtonBox::ActionRole), name);
  };
  cmdVai_ = add("&Vai al campo", "cmdVai");
  cmdCorreggi_ = add("&Correggi", "cmdCorreggi");
  cmdSilenzia_ = add("&Non segnalare più", "cmdSilenzia");
  cmdRiattiva_ = add("&Riattiva tutti", "cmdRiattiva");
  cmdRiattiva_->setToolTip(QStringLiteral("Segnala di nuovo ciò che era stato silenziato in questo negozio"));
  cmdVai_->setDefault(true);
  connect(cmdVai_, &QPushButton::clicked, this, &frmControlla::go);
  connect(cmdCorreggi_, &QPushButton::clicked, this, [this] { act(actions_.mend); });
  connect(cmdSilenzia_, &QPushButton::clicked, this, [this] { act(actions_.silence); });
  connect(cmdRiattiva_, &QPushButton::clicked, this, [this] {
    const auto done = actions_.endSilence();
    if (!done) user_.message(failureText(done.error()), Icon::Critical);
    examine();
  });
  addHelp(buttons, actions_.help, doctorHelp);
  return buttons;
}

void frmControlla::examine() {
  auto examination = [&] {
    const WaitCursor busy;
    return actions_.examine();
  }();
  if (!examination) {
    user_.message(failureText(examination.error()), Icon::Critical);
    return;
  }
  const int row = std::max(lstAvvisi_->currentIndex().row(), 0);
  list_.examination = std::move(*examination);
  show(row);
}

void frmControlla::show(int row) {
  model_->refresh();
  if (model_->rowCount() > 0) lstAvvisi_->setCurrentIndex(model_->index(std::min(row, model_->rowCount() - 1), 0));
  lblRiepilogo_->setText(toQt(list_.summary()));
  updateCommands();
}

const Finding* frmControlla::current() const {
  const QModelIndex index = lstAvvisi_->currentIndex();
  return index.isValid() ? &model_->finding(index.row()) : nullptr;
}

void frmControlla::updateCommands() {
  const Finding* finding = current();
  cmdVai_->setEnabled(finding != nullptr && leadsSomewhere(*finding));
  cmdCorreggi_->setEnabled(finding != nullptr && finding->canMend());
  cmdSilenzia_->setEnabled(finding != nullptr);
  cmdRiattiva_->setEnabled(list_.examination.silenced > 0);
  lblCorrezione_->setText(finding == nullptr ? QString() : toQt(mendingLine(*finding)));
}

void frmControlla::act(const std::function<Result<>(const Finding&)>& action) {
  const Finding* finding = current();
  if (finding == nullptr) return;
  const Finding taken = *finding;
  if (const auto done = action(taken); !done) user_.message(failureText(done.error()), Icon::Critical);
  examine();
  lstAvvisi_->setFocus();
}

void frmControlla::go() {
  const Finding* finding = current();
  if (finding == nullptr || !leadsSomewhere(*finding)) return;
  chosen_ = finding->target;
  finish("OK");
}

}  // namespace kv
