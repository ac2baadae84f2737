#include "builder/facts/article_survey.h"

#include <array>
#include <string>

#include "store/schema/schema.h"

namespace kv {

namespace {

constexpr int variantSlots = 4;
constexpr std::size_t variantColumns = std::size_t{variantSlots} * listini;
constexpr std::int64_t noVariant = 1;  // the fixed variant "(nessuna)"; 0 and null mean the same
constexpr int rowsBetweenYields = 16384;

// What each variant column of the table holds, in the order of the columns.
using VariantSets = std::array<std::set<std::int64_t>, variantColumns>;

std::string surveyQuery() {
  std::string names = "fuoricatalogo";
  for (int slot = 1; slot <= variantSlots; ++slot) {
    for (int n = 0; n < listini; ++n) names += ", " + variantColumn(slot, n);
  }
  return "SELECT " + names + " FROM articoli";
}

void surveyRow(const Statement& row, ArticleSurvey& survey, VariantSets& found) {
  if (!row.flag(0)) ++survey.sellable;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const int column = static_cast<int>(i) + 1;
    const std::int64_t variant = row.integer(column);
    if (variant > noVariant) {
      found[i].insert(variant);
    } else if (i < listini && variant != noVariant && !row.isNull(column)) {
      survey.inFirstSlots.insert(variant);
    }
  }
}

void collectVariants(const VariantSets& found, ArticleSurvey& survey) {
  std::set<std::int64_t> known;
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (i < listini) survey.inFirstSlots.insert(found[i].begin(), found[i].end());
    for (const std::int64_t variant : found[i]) {
      if (known.insert(variant).second) survey.variants.push_back(variant);
    }
  }
}

}  // namespace

// One walk instead of a query for each of the forty variant columns.
Result<ArticleSurvey> surveyArticles(Database& catalogue, const BuildProgress& progress) {
  ArticleSurvey survey;
  VariantSets found;
  auto articles = catalogue.prepare(surveyQuery());
  if (!articles) return fail(articles.error());
  auto more = articles->step();
  for (int row = 1; more && *more; ++row, more = articles->step()) {
    // Some 20 ms of a walk that may last as long as the user waits for an answer.
    if (row % rowsBetweenYields == 0) {
      if (auto go = progress.checkCancel(); !go) return fail(go.error());
    }
    surveyRow(*articles, survey, found);
  }
  if (!more) return fail(more.error());
  collectVariants(found, survey);
  return survey;
}

}  // namespace kv
