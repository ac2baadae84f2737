#include "shell/dialogs/frm_search.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>
#include <QValidator>
#include <utility>
#include "platform/ports/failure_text.h"

#include "platform/qt/frm_note.h"

namespace kv {
namespace {

constexpr std::string_view searchTitle = "Korvane - Cerca articoli";
constexpr std::string_view noHits = "Nessun articolo trovato";
constexpr int columnsShown = 2;

/// The field of the text: a character that can't be typed is swallowed, and it is said beside the field.
class SearchLine final : public QLineEdit {
 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const QString text = event->text();
    const bool isCharacter = text.size() == 1 && text.front().isPrint() &&
                             (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
    if (isCharacter && !isSearchCharacter(fromQt(text))) {
      showNote(*this, toQt(refusedSearchKey(fromQt(text))));
      return event->accept();
    }
    if (isCharacter) showNote(*this, {});
    QLineEdit::keyPressEvent(event);
  }
};

/// Lets search characters alone into a field, and of what is pasted two more; others vanish.
class SearchCharacters final : public QValidator {
 public:
  using QValidator::QValidator;
  State validate(QString& text, int& position) const override {
    QString kept;
    int index = position;
    for (int i = 0; i < text.size(); ++i) {
      if (isPastedSearchCharacter(fromQt(QString(text.at(i))))) {
        kept += text.at(i);
      } else if (i < position) {
        --index;
      }
    }
    position = index;
    text = kept;
    return Acceptable;
  }
};

}  // namespace

/// The hits as rows of code and title.
class HitModel final : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  void show(std::vector<ArticleHit> hits) {
    beginResetModel();
    hits_ = std::move(hits);
    endResetModel();
  }
  const ArticleHit& hit(int row) const { return hits_[static_cast<std::size_t>(row)]; }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(hits_.size());
  }
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : columnsShown; }
  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid() || role != Qt::DisplayRole) return {};
    const ArticleHit& shown = hit(index.row());
    return toQt(index.column() == 0 ? shown.codice : shown.titolo);
  }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
    return section == 0 ? QStringLiteral("Codice") : QStringLiteral("Titolo");
  }

 private:
  std::vector<ArticleHit> hits_;
};

frmSearch::frmSearch(Session& session, Environment& env, QWidget* parent)
    : FormDialog(searchTitle, parent), session_(session), env_(env), model_(new HitModel(this)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeQuestion());
  column->addWidget(makeAnswer(), 1);
  QDialogButtonBox* buttons = makeClose();
  cmdMostra_ = named(buttons->addButton(QStringLiteral("&Mostra"), QDialogButtonBox::AcceptRole), "cmdMostra");
  cmdMostra_->setEnabled(false);
  cmdCerca_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmSearch::showArticle);
  column->addWidget(buttons);
  // Enter searches from the question and shows from the answer.
  connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, const QWidget* now) {
    if (now == lstArticoli_) cmdMostra_->setDefault(true);
    if (now == txtTesto_) cmdCerca_->setDefault(true);
  });
  sizeInCharacters(84, 30);
  txtTesto_->setFocus();
}

// The focus moves once more while the fields go, when there is no default button to set any longer.
frmSearch::~frmSearch() { disconnect(qApp, nullptr, this, nullptr); }

QWidget* frmSearch::makeQuestion() {
  txtTesto_ = named(new SearchLine(), "txtTesto");
  txtTesto_->setValidator(new SearchCharacters(txtTesto_));
  cmdCerca_ = named(new QPushButton(QStringLiteral("&Cerca")), "cmdCerca");
  auto* row = new QHBoxLayout();
  row->addWidget(labelFor("&Testo:", txtTesto_));
  row->addWidget(txtTesto_, 1);
  row->addWidget(cmdCerca_);
  auto* fields = new QGroupBox(QStringLiteral("Cerca nel campo"));
  auto* choices = new QGridLayout(fields);
  optCampo_ = new QButtonGroup(this);
  int id = 0;
  for (const SearchColumn& one : searchColumns()) {
    auto* button = named(new QRadioButton(toQt(one.label)), "opt_" + std::string(one.column));
    button->setChecked(id == 0);
    optCampo_->addButton(button, id);
    choices->addWidget(button, id / 3, id % 3);
    ++id;
  }
  chkParole_ = named(new QCheckBox(QStringLiteral("Solo &parole intere")), "chkParole");
  auto* question = new QWidget();
  auto* column = new QVBoxLayout(question);
  column->setContentsMargins(0, 0, 0, 0);
  column->addLayout(row);
  column->addWidget(fields);
  column->addWidget(chkParole_);
  connect(cmdCerca_, &QPushButton::clicked, this, &frmSearch::search);
  return question;
}

QWidget* frmSearch::makeAnswer() {
  lstArticoli_ = named(new QTableView(), "lstArticoli");
  lstArticoli_->setModel(model_);
  lstArticoli_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstArticoli_->setSelectionMode(QAbstractItemView::SingleSelection);
  lstArticoli_->setTabKeyNavigation(false);
  lstArticoli_->setWordWrap(false);
  lstArticoli_->verticalHeader()->hide();
  lstArticoli_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  lstArticoli_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 8);
  lstArticoli_->horizontalHeader()->setStretchLastSection(true);
  lstArticoli_->horizontalHeader()->setHighlightSections(false);
  lstArticoli_->setColumnWidth(0, fontMetrics().averageCharWidth() * 22);
  lblNessuno_ = named(new QLabel(toQt(noHits)), "lblNessuno");
  lblNessuno_->setVisible(false);
  auto* answer = new QWidget();
  auto* column = new QVBoxLayout(answer);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Articoli trovati:", lstArticoli_));
  column->addWidget(lstArticoli_, 1);
  column->addWidget(lblNessuno_);
  connect(lstArticoli_, &QTableView::doubleClicked, this, &frmSearch::showArticle);
  connect(lstArticoli_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmSearch::updateMostra);
  return answer;
}

void frmSearch::search() {
  const SearchColumn& field = searchColumns()[static_cast<std::size_t>(optCampo_->checkedId())];
  auto hits = [&] {
    const WaitCursor busy;
    return findArticles(session_, field.column, fromQt(txtTesto_->text()), chkParole_->isChecked());
  }();
  if (!hits) {
    env_.user.message(failureText(hits.error()), Icon::Critical);
    txtTesto_->setFocus();
    return;
  }
  showHits(std::move(*hits));
}

void frmSearch::showHits(std::vector<ArticleHit> hits) {
  const bool any = !hits.empty();
  model_->show(std::move(hits));
  lblNessuno_->setVisible(!any);
  if (any) {
    lstArticoli_->setCurrentIndex(model_->index(0, 0));
    lstArticoli_->setFocus();
  } else {
    txtTesto_->setFocus();
    txtTesto_->selectAll();
  }
  updateMostra();
}

void frmSearch::updateMostra() { cmdMostra_->setEnabled(lstArticoli_->currentIndex().isValid()); }

void frmSearch::showArticle() {
  const QModelIndex current = lstArticoli_->currentIndex();
  if (!current.isValid()) return;
  chosen_ = model_->hit(current.row()).ID;
  finish(std::to_string(chosen_));
}

}  // namespace kv
