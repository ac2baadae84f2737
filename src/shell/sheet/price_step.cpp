#include "shell/sheet/price_step.h"

#include <algorithm>
#include <map>

#include "platform/numbers/number_format.h"
#include "platform/numbers/number_reading.h"
#include "platform/text/text.h"
#include "shell/workbench/fields/field_forms.h"

namespace kv {
namespace {

std::optional<PriceStep> productOf(std::optional<double> factor, bool whole) {
  if (!factor || *factor < 0) return std::nullopt;
  return PriceStep{PriceRule{static_cast<float>(*factor), whole}, {}, whole};
}

std::optional<PriceStep> sumOf(std::string_view text, int sign, bool whole, char decimalSeparator) {
  const NumberReading number = readNumber(text, decimalSeparator);
  const auto amount = number.isNumber ? Money::parse(replaceAll(number.text, ",", ".")) : std::nullopt;
  if (!amount) return std::nullopt;
  return PriceStep{std::nullopt, Money::ofTenThousandths(sign * amount->tenThousandths()), whole};
}

/// The stored prices of single cells; null where there is no article.
class CellPrices {
 public:
  explicit CellPrices(Database& catalogue) : catalogue_(catalogue) {}

  Result<Value> read(const std::string& column, std::int64_t article) {
    auto reader = readers_.find(column);
    if (reader == readers_.end()) {
      auto made = catalogue_.prepare("SELECT " + column + " FROM articoli WHERE ID = ?1");
      if (!made) return fail(made.error());
      reader = readers_.emplace(column, std::move(*made)).first;
    }
    Statement& row = reader->second;
    row.bind(1, article);
    const auto found = row.step();
    if (!found) return fail(found.error());
    Value stored = *found ? row.value(0) : Value(Null{});
    row.reset();
    return stored;
  }

 private:
  Database& catalogue_;
  std::map<std::string, Statement> readers_;
};

}  // namespace

std::optional<PriceStep> readPriceStep(std::string_view text, bool whole, char decimalSeparator) {
  std::string typed = replaceAll(replaceAll(text, " ", ""), ",", ".");
  if (typed.size() < 2) return std::nullopt;
  if (typed.ends_with('%')) {
    typed.pop_back();
    const auto percentage = readPercentage(typed);
    if (!percentage) return std::nullopt;
    return PriceStep{ruleOfPercentage(*percentage, whole), {}, whole};
  }
  const std::string_view number = std::string_view(typed).substr(1), amount = trim(text).substr(1);
  switch (typed.front()) {
    case 'x':
    case 'X':
    case '*':
      return productOf(toNumber(number), whole);
    case '+':
      return sumOf(amount, 1, whole, decimalSeparator);
    case '-':
      return sumOf(amount, -1, whole, decimalSeparator);
    default:
      return std::nullopt;
  }
}

std::optional<Money> steppedPrice(Money price, const PriceStep& step) {
  if (step.product) {
    if (isBeyondMoney(price, *step.product)) return std::nullopt;
    return Trasforma(price, *step.product);
  }
  std::int64_t sum = 0;
  if (__builtin_add_overflow(price.tenThousandths(), step.added.tenThousandths(), &sum)) return std::nullopt;
  return roundedPrice(Money::ofTenThousandths(std::max<std::int64_t>(sum, 0)), step.whole);
}

Result<std::vector<CellChange>> priceChanges(Session& session, std::span<const SheetColumn> columns,
                                             std::span<const CellText> cells, const PriceStep& step,
                                             char decimalSeparator) {
  std::vector<CellChange> changes;
  CellPrices prices(session.catalogue);
  for (const CellText& cell : cells) {
    const SheetColumn& column = columns[cell.column];
    if (column.kind != SheetKind::Price) continue;
    const auto stored = prices.read(column.name, cell.article);
    if (!stored) return fail(stored.error());
    if (isNull(*stored)) continue;
    const auto after = steppedPrice(asMoney(*stored), step);
    CellChange change{
        cell.article, cell.column, shownValue(*column.editor, column.stored, *stored, decimalSeparator), {}, {}};
    change.after = after ? shownValue(*column.editor, column.stored, Value(*after), decimalSeparator) : change.before;
    if (!after) change.why = "Il prezzo supererebbe il valore massimo consentito.";
    if (!after || *after != asMoney(*stored)) changes.push_back(std::move(change));
  }
  return changes;
}

}  // namespace kv
