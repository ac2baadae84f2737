#include "shell/sheet/price_step.h"

#include <algorithm>
#include <map>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "shell/workbench/fields/field_forms.h"

namespace kv {
namespace {

std::optional<PriceStep> productOf(double factor, bool whole) {
  if (factor < 0) return std::nullopt;
  return PriceStep{PriceRule{static_cast<float>(factor), whole}, {}, whole};
}

}  // namespace

std::optional<PriceStep> readPriceStep(std::string_view text, bool whole) {
  std::string typed = replaceAll(replaceAll(text, " ", ""), ",", ".");
  if (typed.size() < 2) return std::nullopt;
  if (typed.ends_with('%')) {
    typed.pop_back();
    const auto percentage = readPercentage(typed);
    if (!percentage) return std::nullopt;
    return PriceStep{ruleOfPercentage(*percentage, whole), {}, whole};
  }
  const char sign = typed.front();
  if (sign == 'x' || sign == 'X' || sign == '*') {
    const auto factor = toNumber(std::string_view(typed).substr(1));
    return factor ? productOf(*factor, whole) : std::nullopt;
  }
  if (sign != '+' && sign != '-') return std::nullopt;
  const auto amount = Money::parse(std::string_view(typed).substr(1));
  if (!amount || *amount < Money()) return std::nullopt;
  return PriceStep{std::nullopt, Money::ofTenThousandths((sign == '-' ? -1 : 1) * amount->tenThousandths()), whole};
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
  std::map<std::size_t, Statement> readers;
  for (const CellText& cell : cells) {
    const SheetColumn& column = columns[cell.column];
    if (column.kind != SheetKind::Price) continue;
    if (!readers.contains(cell.column)) {
      auto made = session.catalogue.prepare("SELECT " + column.name + " FROM articoli WHERE ID = ?1");
      if (!made) return fail(made.error());
      readers.emplace(cell.column, std::move(*made));
    }
    Statement& reader = readers.at(cell.column);
    reader.bind(1, cell.article);
    const auto found = reader.step();
    if (!found) return fail(found.error());
    const Value stored = *found ? reader.value(0) : Value(Null{});
    reader.reset();
    if (isNull(stored)) continue;
    const auto after = steppedPrice(asMoney(stored), step);
    CellChange change{
        cell.article, cell.column, shownValue(*column.editor, column.stored, stored, decimalSeparator), {}, {}};
    change.after = after ? shownValue(*column.editor, column.stored, Value(*after), decimalSeparator) : change.before;
    if (!after) change.why = "Il prezzo supererebbe il valore massimo consentito.";
    if (!after || *after != asMoney(stored)) changes.push_back(std::move(change));
  }
  return changes;
}

}  // namespace kv
