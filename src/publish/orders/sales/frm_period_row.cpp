#include "publish/orders/sales/frm_period_row.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

const QString dayFormat = QStringLiteral("dd/MM/yyyy");

QDate dateOf(const std::string& day) { return QDate::fromString(toQt(day), Qt::ISODate); }

QDateEdit* dayField(std::string_view name, std::string_view meaning, const QDate& day) {
  auto* field = named(new QDateEdit(day), name, meaning);
  field->setDisplayFormat(dayFormat);
  field->setCalendarPopup(true);
  field->setToolTip(toQt(meaning));
  return field;
}

}  // namespace

PeriodRow::PeriodRow(SalesPeriod period, std::chrono::sys_days today, QWidget* parent)
    : QWidget(parent), today_(today) {
  cboPeriodo_ = named(new QComboBox(), "cboPeriodo");
  for (int i = 0; i <= static_cast<int>(SalesPeriod::Chosen); ++i) {
    cboPeriodo_->addItem(toQt(periodName(static_cast<SalesPeriod>(i))));
  }
  const QDate day = dateOf(dayText(today));
  dtDa_ = dayField("dtDa", "Dal giorno", day);
  dtA_ = dayField("dtA", "Al giorno", day);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("&Periodo:", cboPeriodo_));
  row->addWidget(cboPeriodo_);
  row->addWidget(labelFor("&dal:", dtDa_));
  row->addWidget(dtDa_);
  row->addWidget(labelFor("&al:", dtA_));
  row->addWidget(dtA_);
  row->addStretch();
  cboPeriodo_->setCurrentIndex(static_cast<int>(period));
  showPeriod();
  connect(cboPeriodo_, &QComboBox::currentIndexChanged, this, [this] {
    showPeriod();
    emit changed();
  });
  for (QDateEdit* field : {dtDa_, dtA_}) connect(field, &QDateEdit::dateChanged, this, &PeriodRow::changed);
}

void PeriodRow::showPeriod() {
  const auto period = static_cast<SalesPeriod>(cboPeriodo_->currentIndex());
  for (QDateEdit* field : {dtDa_, dtA_}) field->setEnabled(period == SalesPeriod::Chosen);
  const SalesSpan span = spanOf(period, today_);
  if (span.from.empty()) return;
  // The days of the usual periods are shown, and are what a choice of one's own begins with.
  const QSignalBlocker quietFrom(dtDa_), quietTo(dtA_);
  dtDa_->setDate(dateOf(span.from));
  dtA_->setDate(dateOf(span.to));
}

SalesSpan PeriodRow::span() const {
  const auto period = static_cast<SalesPeriod>(cboPeriodo_->currentIndex());
  if (period != SalesPeriod::Chosen) return spanOf(period, today_);
  return {fromQt(dtDa_->date().toString(Qt::ISODate)), fromQt(dtA_->date().toString(Qt::ISODate))};
}

std::chrono::sys_days dayHere(double seconds) {
  const QDate day = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(seconds)).date();
  return std::chrono::year_month_day(std::chrono::year(day.year()),
                                     std::chrono::month(static_cast<unsigned>(day.month())),
                                     std::chrono::day(static_cast<unsigned>(day.day())));
}

}  // namespace kv
