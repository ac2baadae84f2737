#include "commerce/prices/price_survey.h"

#include <algorithm>
#include <set>

namespace kv {
namespace {

constexpr int slots = 4;

/// A price of an article's row and its column there.
struct PriceColumn {
  std::uint8_t listino;
  PriceKind kind;
  std::string name;
};

std::vector<PriceColumn> priceColumns(const PriceSelection& selection) {
  std::vector<PriceColumn> columns;
  for (std::size_t i = 0; i < selection.lists.size(); ++i) {
    if (!selection.lists[i]) continue;
    const auto listino = static_cast<std::uint8_t>(i);
    const std::string suffix(listinoSuffixes[i]);
    columns.push_back({listino, PriceKind::Price, "prezzo" + suffix});
    if (selection.offers) columns.push_back({listino, PriceKind::Offer, "offertaprezzo" + suffix});
  }
  return columns;
}

std::optional<Money> priceOf(const Statement& row, int column) {
  if (row.isNull(column)) return std::nullopt;
  return row.money(column);
}

std::string articlesQuery(const PriceSelection& selection, const std::vector<PriceColumn>& columns, OwnerTexts texts) {
  std::string query = texts == OwnerTexts::Read ? "SELECT ID, codice, titolo" : "SELECT ID, NULL, NULL";
  for (const PriceColumn& column : columns) query += ", " + column.name;
  return query + " FROM articoli" + (selection.department.empty() ? "" : " WHERE catID = ?1") + " ORDER BY ID";
}

Result<> surveyArticles(Database& catalogue, const PriceSelection& selection, OwnerTexts texts, PriceSurvey& survey) {
  const std::vector<PriceColumn> columns = priceColumns(selection);
  if (columns.empty()) return {};
  auto rows = catalogue.prepare(articlesQuery(selection, columns, texts));
  if (!rows) return fail(rows.error());
  if (!selection.department.empty()) rows->bind(1, selection.department);
  for (;;) {
    const auto found = rows->step();
    if (!found) return fail(found.error());
    if (!*found) return {};
    const auto owner = static_cast<std::uint32_t>(survey.owners.size());
    survey.owners.push_back({rows->integer(0), std::string(rows->text(1)), std::string(rows->text(2))});
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const auto before = priceOf(*rows, static_cast<int>(i) + 3);
      survey.prices.push_back({owner, columns[i].listino, columns[i].kind, before});
    }
  }
}

Result<> surveyOptions(Database& catalogue, const std::vector<std::int64_t>& variants, PriceSurvey& survey) {
  auto rows = catalogue.prepare(
      "SELECT dettagliop.ID, dettagliop.codice, opzioni.nome, dettagliop.testo, dettagliop.prezzo FROM dettagliop"
      " INNER JOIN opzioni ON opzioni.ID = dettagliop.OpID WHERE dettagliop.OpID = ?1 ORDER BY dettagliop.ID");
  if (!rows) return fail(rows.error());
  for (const std::int64_t variant : variants) {
    rows->bind(1, variant);
    for (;;) {
      const auto found = rows->step();
      if (!found) return fail(found.error());
      if (!*found) break;
      const auto owner = static_cast<std::uint32_t>(survey.owners.size());
      std::string title = std::string(rows->text(2)) + ": " + std::string(rows->text(3));
      survey.owners.push_back({rows->integer(0), std::string(rows->text(1)), std::move(title)});
      survey.prices.push_back({owner, 0, PriceKind::Option, priceOf(*rows, 4)});
    }
  }
  return {};
}

/// Which variants the articles use, and where.
struct SlotUses {
  std::set<std::int64_t> selected, otherLists, otherDepartments;
};

/// The forty slots of one row. `here`: its department is the selected one; `elsewhere`: another one.
void noteSlots(const Statement& row, const PriceLists& lists, bool here, bool elsewhere, SlotUses& uses) {
  for (int column = 0; column < listini * slots; ++column) {
    const std::int64_t variant = row.integer(column + 1);
    if (variant <= 1) continue;
    const bool isListed = lists[static_cast<std::size_t>(column / slots)];
    if (isListed && here) uses.selected.insert(variant);
    if (!isListed) uses.otherLists.insert(variant);
    if (elsewhere) uses.otherDepartments.insert(variant);
  }
}

/// Whether an article is in the selected department, Null without one, and its forty slots.
std::string slotsQuery(bool all) {
  std::string query = all ? "SELECT NULL" : "SELECT catID = ?1";
  for (int listino = 0; listino < listini; ++listino) {
    for (int slot = 1; slot <= slots; ++slot) query += ", " + variantColumn(slot, listino);
  }
  return query + " FROM articoli";
}

Result<SlotUses> slotUses(Database& catalogue, const PriceSelection& selection) {
  const bool all = selection.department.empty();
  auto rows = catalogue.prepare(slotsQuery(all));
  if (!rows) return fail(rows.error());
  if (!all) rows->bind(1, selection.department);
  SlotUses uses;
  for (;;) {
    const auto found = rows->step();
    if (!found) return fail(found.error());
    if (!*found) return uses;
    const bool elsewhere = !rows->isNull(0) && !rows->flag(0);
    noteSlots(*rows, selection.lists, all || rows->flag(0), elsewhere, uses);
  }
}

bool share(const std::vector<std::int64_t>& chosen, const std::set<std::int64_t>& others) {
  return std::ranges::any_of(chosen, [&](std::int64_t ID) { return others.contains(ID); });
}

std::int64_t sizeOfChange(const SurveyedPrice& price, Money after) {
  const std::int64_t change = after.tenThousandths() - price.before.value_or(Money()).tenThousandths();
  return change < 0 ? -change : change;
}

}  // namespace

Result<VariantUse> surveyVariants(Database& catalogue, const PriceSelection& selection) {
  const auto uses = slotUses(catalogue, selection);
  if (!uses) return fail(uses.error());
  VariantUse use;
  auto known = catalogue.prepare("SELECT 1 FROM opzioni WHERE ID = ?1");
  if (!known) return fail(known.error());
  for (const std::int64_t variant : uses->selected) {
    known->bind(1, variant);
    const auto found = known->step();
    if (!found) return fail(found.error());
    if (*found) use.variants.push_back(variant);
    known->reset();
  }
  use.inOtherLists = share(use.variants, uses->otherLists);
  use.inOtherDepartments = share(use.variants, uses->otherDepartments);
  return use;
}

Result<PriceSurvey> surveyPrices(Database& catalogue, const PriceSelection& selection, OwnerTexts texts) {
  PriceSurvey survey;
  if (auto read = surveyArticles(catalogue, selection, texts, survey); !read) return fail(read.error());
  if (!selection.variants) return survey;
  const auto use = surveyVariants(catalogue, selection);
  if (!use) return fail(use.error());
  if (auto read = surveyOptions(catalogue, use->variants, survey); !read) return fail(read.error());
  return survey;
}

bool holdsPriceBeyond(const PriceSurvey& survey, const PriceRule& rule) {
  if (survey.prices.empty()) return false;
  // Whether a product is in range depends on its size alone, so that two prices tell for all.
  const auto [least, most] =
      std::ranges::minmax(survey.prices, {}, [](const SurveyedPrice& price) { return price.before.value_or(Money()); });
  return isBeyondMoney(least.before, rule) || isBeyondMoney(most.before, rule);
}

PricePreview previewPrices(const PriceSurvey& survey, const PriceRule& rule) {
  PricePreview preview;
  std::int64_t largest = 0;
  for (std::uint32_t i = 0; i < survey.prices.size(); ++i) {
    const SurveyedPrice& price = survey.prices[i];
    if (isBeyondMoney(price.before, rule)) {
      // It has no new price, so it is neither one that becomes 0 nor the one that changes most.
      preview.beyond.push_back(i);
      preview.changed.push_back(i);
      continue;
    }
    const Money after = Trasforma(price.before, rule);
    if (price.before == after) continue;
    preview.changed.push_back(i);
    const std::int64_t change = sizeOfChange(price, after);
    if (after == Money()) ++preview.zeros;
    if (change > largest) {
      largest = change;
      preview.largest = i;
    }
  }
  return preview;
}

}  // namespace kv
