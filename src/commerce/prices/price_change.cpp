#include "commerce/prices/price_change.h"

#include "platform/database/changes/written_columns.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view otherLists =
    "- alcune varianti dei listini selezionati sono presenti anche in altri listini";
constexpr std::string_view otherDepartments =
    "- alcune varianti del reparto selezionato sono presenti anche in altri reparti";
constexpr std::size_t mostNames = 10;
constexpr std::size_t namesInSummary = 3;

std::string columnOf(const SurveyedPrice& price) {
  if (price.kind == PriceKind::Option) return "prezzo";
  return (price.kind == PriceKind::Offer ? "offertaprezzo" : "prezzo") + std::string(listinoSuffixes[price.listino]);
}

/// The statement that writes all prices of one owner: "?1" is its ID. The layout of all articles is the same.
Result<Statement> writerOf(Database& catalogue, std::span<const SurveyedPrice> prices) {
  const bool isOption = prices.front().kind == PriceKind::Option;
  std::string statement = std::string("UPDATE ") + (isOption ? "dettagliop" : "articoli") + " SET ";
  int index = 1;
  for (const SurveyedPrice& price : prices) {
    if (index > 1) statement += ", ";
    statement += columnOf(price) + " = ?" + std::to_string(++index);
  }
  return catalogue.prepare(statement + " WHERE ID = ?1");
}

/// The prices of the owner of `prices.front()`.
std::span<const SurveyedPrice> firstOwner(std::span<const SurveyedPrice> prices) {
  std::size_t count = 1;
  while (count < prices.size() && prices[count].owner == prices.front().owner) ++count;
  return prices.first(count);
}

Result<> writeOwner(Statement& writer, std::span<const SurveyedPrice> prices, std::int64_t ID, const PriceRule& rule) {
  bool changes = false;
  int index = 1;
  writer.bind(index, ID);
  for (const SurveyedPrice& price : prices) {
    const Money after = Trasforma(price.before, rule);
    changes = changes || price.before != after;
    writer.bind(++index, after);
  }
  return changes ? writer.execute() : Result<>();
}

Result<> writePrices(Database& catalogue, const PriceSurvey& survey, const PriceRule& rule) {
  std::span<const SurveyedPrice> rest = survey.prices;
  std::optional<Statement> articles;
  std::optional<Statement> options;
  while (!rest.empty()) {
    const auto prices = firstOwner(rest);
    std::optional<Statement>& writer = prices.front().kind == PriceKind::Option ? options : articles;
    if (!writer) {
      auto made = writerOf(catalogue, prices);
      if (!made) return fail(made.error());
      writer = std::move(*made);
    }
    if (auto done = writeOwner(*writer, prices, survey.owners[prices.front().owner].ID, rule); !done) return done;
    rest = rest.subspan(prices.size());
  }
  return {};
}

/// "Vaso, Listino 3" for each.
std::vector<std::string> titlesOf(const PriceSurvey& survey, const std::vector<std::uint32_t>& indexes) {
  std::vector<std::string> names;
  for (const std::uint32_t index : indexes) {
    const SurveyedPrice& price = survey.prices[index];
    names.push_back(survey.owners[price.owner].title + ", " + priceName(price));
  }
  return names;
}

/// "Vaso (Listino 3): 12,00" for each.
std::vector<std::string> namesOf(const PriceSurvey& survey, const std::vector<std::uint32_t>& indexes) {
  std::vector<std::string> names;
  for (const std::uint32_t index : indexes) {
    const SurveyedPrice& price = survey.prices[index];
    const PriceOwner& owner = survey.owners[price.owner];
    names.push_back(owner.title + " (" + priceName(price) + "): " + shownPrice(price.before));
  }
  return names;
}

/// Step one: false when the user wants no change.
Result<bool> isAgreed(Database& catalogue, const PriceChange& change, UserPort& user) {
  if (!change.selection.variants) return true;
  const auto use = surveyVariants(catalogue, change.selection);
  if (!use) return fail(use.error());
  const Question question = variantQuestion(*use);
  return question.text.empty() || user.question(question) == Answer::Yes;
}

/// The price columns of articles that a survey has.
std::vector<std::string> articleColumns(const PriceSurvey& survey) {
  std::vector<std::string> columns;
  if (survey.prices.empty()) return columns;
  for (const SurveyedPrice& price : firstOwner(survey.prices)) columns.push_back(columnOf(price));
  return columns;
}

/// The prices to write, without codes and titles; nothing when the user was told why none is written.
Result<std::optional<PriceSurvey>> pricesToWrite(Database& catalogue, const PriceSelection& selection,
                                                 const PriceRule& rule, UserPort& user) {
  auto survey = surveyPrices(catalogue, selection, OwnerTexts::LeaveEmpty);
  if (!survey) return fail(survey.error());
  if (!holdsPriceBeyond(*survey, rule)) return std::move(*survey);
  survey = surveyPrices(catalogue, selection);
  if (!survey) return fail(survey.error());
  showBeyondRange(user, namesOf(*survey, previewPrices(*survey, rule).beyond));
  return std::nullopt;
}

BulkEnd write(Database& catalogue, const PriceChange& change, const PriceRule& rule, UserPort& user) {
  const auto interrupted = [&user](const Error& error, BulkEnd end) {
    showInterrupted(user, "La modifica dei prezzi", error);
    return end;
  };
  const auto survey = pricesToWrite(catalogue, change.selection, rule, user);
  if (!survey) return interrupted(survey.error(), BulkEnd::Stay);
  if (!*survey) return BulkEnd::Stay;
  const auto articles = catalogue.table("articoli");
  if (!articles) return interrupted(articles.error(), BulkEnd::Stay);
  const WrittenColumns columns(catalogue, *articles, articleColumns(**survey));
  const auto written = walkKeepingRows(catalogue, [&] { return writePrices(catalogue, **survey, rule); });
  return written ? BulkEnd::Done : interrupted(written.error(), BulkEnd::Interrupted);
}

}  // namespace

BulkEnd ModificaPrezzi(Database& catalogue, const PriceChange& change, UserPort& user) {
  const auto agreed = isAgreed(catalogue, change, user);
  if (!agreed) {
    showInterrupted(user, "La modifica dei prezzi", agreed.error());
    return BulkEnd::Stay;
  }
  if (!*agreed) return BulkEnd::Left;
  const auto percentage = readPercentage(change.percentage);
  if (!percentage) {
    user.message(std::string(invalidPercentage), Icon::Exclamation);
    return BulkEnd::Stay;
  }
  return write(catalogue, change, ruleOfPercentage(*percentage, change.whole), user);
}

Question variantQuestion(const VariantUse& use) {
  std::string lines;
  if (use.inOtherLists) lines += std::string(otherLists);
  if (use.inOtherDepartments) lines += (lines.empty() ? "" : "\n") + std::string(otherDepartments);
  if (lines.empty()) return {};
  return {"Questa operazione può produrre risultati imprevisti nelle varianti:\n\n" + lines +
              "\n\nVerrebbero dunque modificati anche i prezzi di reparti o listini non selezionati."
              "\n\nSi desidera procedere ugualmente?",
          Buttons::YesNo, Answer::No, Icon::Question};
}

Result<> walkKeepingRows(Database& catalogue, const std::function<Result<>()>& walk) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  const auto walked = walk();
  const auto kept = catalogue.commit();
  return walked ? kept : walked;
}

void showInterrupted(UserPort& user, std::string_view what, const Error& error) {
  user.message(std::string(what) +
                   " è stata interrotta da un errore.\nCiò che era già stato modificato rimane: il comando \"Annulla\" "
                   "riporta tutto com'era prima.\n\nDettaglio: " +
                   error.where + ": " + error.what,
               Icon::Critical);
}

void showBeyondRange(UserPort& user, const std::vector<std::string>& names) {
  std::string text = "Alcuni prezzi supererebbero il valore massimo consentito; nulla è stato modificato:\n";
  for (std::size_t i = 0; i < names.size() && i < mostNames; ++i) text += "\n" + names[i];
  if (names.size() > mostNames) text += "\n...e altri " + std::to_string(names.size() - mostNames);
  user.message(text, Icon::Exclamation);
}

std::string priceName(const SurveyedPrice& price) {
  if (price.kind == PriceKind::Option) return "Variante";
  return (price.kind == PriceKind::Offer ? "Offerta " : "Listino ") + std::to_string(price.listino);
}

std::string shownPrice(std::optional<Money> price, char decimalSeparator) {
  if (!price) return "-";
  std::string text = formatNumber(*price, "###,###,###,##0.00##");
  if (decimalSeparator == '.') return text;
  return replaceAll(replaceAll(replaceAll(text, ",", "\1"), ".", ","), "\1", ".");
}

std::string newPrice(std::optional<Money> price, const PriceRule& rule, char decimalSeparator) {
  if (isBeyondMoney(price, rule)) return "oltre il massimo";
  return shownPrice(Trasforma(price, rule), decimalSeparator);
}

std::string emptyPreview(const PriceSelection& selection) {
  if (selection.lists == PriceLists{}) return "Nessun listino è selezionato.";
  if (selection.department.empty()) return {};
  return "Il reparto non ha articoli propri; quelli dei sottoreparti non sono compresi.";
}

std::string beyondSummary(const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string text = "; oltre il massimo consentito: " + std::to_string(names.size()) + " (";
  for (std::size_t i = 0; i < names.size() && i < namesInSummary; ++i) text += (i == 0 ? "" : ", ") + names[i];
  return text + (names.size() > namesInSummary ? ", ...)" : ")");
}

std::string previewSummary(const PriceSurvey& survey, const PricePreview& preview, const PriceRule& rule,
                           char decimalSeparator) {
  std::string text =
      "Prezzi da modificare: " + std::to_string(preview.changed.size()) + " di " + std::to_string(survey.prices.size());
  if (preview.largest) {
    const SurveyedPrice& price = survey.prices[*preview.largest];
    text += "; variazione maggiore: " + shownPrice(price.before, decimalSeparator) + " -> " +
            newPrice(price.before, rule, decimalSeparator) + " (" + survey.owners[price.owner].title + ", " +
            priceName(price) + ")";
  }
  if (preview.zeros > 0) text += "; diventano 0: " + std::to_string(preview.zeros);
  return text + beyondSummary(titlesOf(survey, preview.beyond));
}

}  // namespace kv
