#include "store/catalogue/frm_cronologia.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <utility>

#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr std::string_view historyTitle = "Korvane - Cronologia";
constexpr std::string_view historyHelp = "pagine/cronologia.htm";
constexpr std::string_view noSteps = "Non è ancora stata annotata alcuna modifica.";
constexpr std::string_view notKeptStep = "Di questo passo sono conservati soltanto il nome e la data.";

QTableWidgetItem* cellOfStep(std::string_view text) { return new QTableWidgetItem(toQt(text)); }

}  // namespace

frmCronologia::frmCronologia(HistoryActions actions, UserPort& user, QWidget* parent)
    : FormDialog(historyTitle, parent), actions_(std::move(actions)), user_(user), steps_(actions_.steps()) {
  auto* column = new QVBoxLayout(this);
  QDialogButtonBox* buttons = makeButtons("&Torna a prima di questo", "Chiudi");
  cmdTorna_ = named(buttons->button(QDialogButtonBox::Ok), "cmdTorna");
  txtDettagli_ = named(new QPlainTextEdit(), "txtDettagli");
  txtDettagli_->setReadOnly(true);
  txtDettagli_->setTabChangesFocus(true);
  txtDettagli_->setLineWrapMode(QPlainTextEdit::NoWrap);
  column->addWidget(makeList(), 2);
  if (!actions_.notice.empty()) column->addWidget(makeNotice());
  if (steps_.empty()) column->addWidget(named(new QLabel(toQt(noSteps)), "lblNessuno"));
  column->addWidget(labelFor("&Che cosa ha cambiato:", txtDettagli_));
  column->addWidget(txtDettagli_, 1);
  column->addWidget(buttons);
  addHelp(buttons, actions_.help, historyHelp);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmCronologia::goBack);
  connect(lstPassi_, &QTableWidget::currentCellChanged, this, &frmCronologia::showStep);
  sizeInCharacters(92, 30);
  showStep();
  lstPassi_->setFocus();
}

QWidget* frmCronologia::makeList() {
  lstPassi_ = named(new QTableWidget(static_cast<int>(steps_.size()), 3), "lstPassi", "Passi della cronologia");
  lstPassi_->setHorizontalHeaderLabels({"Quando", "Passo", "Stato"});
  lstPassi_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstPassi_->setSelectionMode(QAbstractItemView::SingleSelection);
  lstPassi_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstPassi_->setTabKeyNavigation(false);
  lstPassi_->verticalHeader()->hide();
  lstPassi_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 8);
  lstPassi_->horizontalHeader()->setHighlightSections(false);
  int row = 0;
  for (const LoggedStep& step : steps_) {
    lstPassi_->setItem(row, 0, cellOfStep(formatTime(step.madeAt)));
    lstPassi_->setItem(row, 1, cellOfStep(step.name));
    lstPassi_->setItem(row, 2, cellOfStep(stateText(step.state)));
    ++row;
  }
  lstPassi_->setColumnWidth(0, fontMetrics().averageCharWidth() * 22);
  lstPassi_->setColumnWidth(1, fontMetrics().averageCharWidth() * 44);
  lstPassi_->horizontalHeader()->setStretchLastSection(true);
  if (row > 0) lstPassi_->setCurrentCell(0, 0);
  return lstPassi_;
}

QWidget* frmCronologia::makeNotice() {
  auto* notice = named(new QLabel(toQt(actions_.notice)), "lblNonScritti");
  notice->setTextFormat(Qt::PlainText);
  notice->setWordWrap(true);
  return notice;
}

void frmCronologia::showStep() {
  const int row = lstPassi_->currentRow();
  cmdTorna_->setEnabled(row >= 0 && steps_[static_cast<std::size_t>(row)].state == StepState::Done);
  if (row < 0) return txtDettagli_->clear();
  const LoggedStep& step = steps_[static_cast<std::size_t>(row)];
  if (!step.hasImages) return txtDettagli_->setPlainText(toQt(notKeptStep));
  const auto lines = actions_.describe(step.ID);
  if (!lines) return txtDettagli_->setPlainText(toQt(unreadableStepText(lines.error())));
  std::string text;
  for (const std::string& line : *lines) text += (text.empty() ? "" : "\n") + line;
  txtDettagli_->setPlainText(toQt(text));
}

void frmCronologia::goBack() {
  const int row = lstPassi_->currentRow();
  if (row < 0) return;
  const LoggedStep& step = steps_[static_cast<std::size_t>(row)];
  auto way = [&] {
    const WaitCursor busy;
    return actions_.plan(step.ID);
  }();
  if (!way) return user_.message(failureText(way.error()), Icon::Critical);
  if (!way->isThere()) return user_.message(noWayBack(*way), Icon::Exclamation);
  if (user_.question(wayBackQuestion(*way)) != Answer::Yes) return;
  chosen_ = std::move(*way);
  finish("OK");
}

}  // namespace kv
