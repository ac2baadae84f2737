#include "import/accounting/accounting_plan.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "import/accounting/accounting_price.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr std::string_view keyStart = "dgf";
constexpr std::size_t departmentTitle = 99, articleTitle = 199;  // one less than the columns, for the mark
constexpr double percents = 100;

std::string fieldText(const Value& value) { return std::string(trim(asText(value))); }
std::string keyOf(const Value& number) { return std::string(keyStart) + fieldText(number); }

std::string titleOf(const Value& text, std::size_t most, bool mark) {
  const std::string whole = asText(text);
  return (mark ? "*" : "") + std::string(firstCharacters(whole, most));
}

/// `Codice` as it is; where there is none, "OG" and the number of at least five digits.
std::string codeOf(const Value& code, const Value& number) {
  std::string text = asText(code);
  if (!text.empty()) return text;
  const std::string digits = fieldText(number);
  constexpr std::size_t most = 15;  // digits that a number holds exactly
  if (!isNumeric(digits) || digits.size() > most) return "OG" + digits;
  return "OG" + formatNumber(static_cast<std::int64_t>(leadingNumber(digits)), "00000");
}

/// An article of the catalogue, or one that the plan adds.
struct KnownArticle {
  std::size_t of = 0;
  std::string codice, titolo;
  Money prezzo, offertaprezzo;
  double iva = 0;
};

/// Where the fields of a source row are.
enum SourceField : std::size_t { Id, IdCategoria, Codice, Descrizione, Iva, Prezzo, Offerta };

/// The making of a plan.
class Planner {
 public:
  Planner(Database& catalogue, const AccountingTarget& target)
      : catalogue_(catalogue), options_(target.options), generation_(target.generation) {}

  Result<AccountingPlan> plan(const AccountingSource& source) {
    const auto categories = source.rows("Categoria", {"Id", "Nome"});
    if (!categories) return fail(categories.error());
    const auto articles = source.rows("Articoli", articleColumns());
    if (!articles) return fail(articles.error());
    if (auto read = readCatalogue(); !read) return fail(read.error());
    for (const AccountingRow& row : *categories) planDepartment(row);
    plan_.articles.reserve(articles->size());
    for (const AccountingRow& row : *articles) planArticle(row);
    return std::move(plan_);
  }

 private:
  std::vector<std::string> articleColumns() {
    std::vector<std::string> columns{"Id",          "IdCategoria", "Codice",
                                     "Descrizione", "iva",         "Vendita" + std::to_string(options_.price)};
    if (options_.offer > 0) columns.push_back("Vendita" + std::to_string(options_.offer));
    if (generation_ > 2) {
      visible_ = columns.size();
      columns.emplace_back("Vista");
    }
    return columns;
  }

  Result<> readCatalogue() {
    const auto info = catalogue_.table("articoli");
    if (!info) return fail(info.error());
    plan_.hasVat = info->columnIndex("iva") >= 0;
    codeSize_ = static_cast<std::size_t>(info->columns[static_cast<std::size_t>(info->columnIndex("codice"))].size);
    auto departments = catalogue_.prepare("SELECT ID FROM categorie");
    if (!departments) return fail(departments.error());
    for (;;) {
      const auto row = departments->step();
      if (!row) return fail(row.error());
      if (!*row) break;
      departments_.insert(foldCase(departments->text(0)));
    }
    return readArticles();
  }

  Result<> readArticles() {
    const std::string suffix(listinoSuffixes[static_cast<std::size_t>(options_.listino)]);
    auto rows = catalogue_.prepare("SELECT ID, codice, titolo, prezzo" + suffix + ", offertaprezzo" + suffix +
                                   (plan_.hasVat ? ", iva" : ", 0") + " FROM articoli ORDER BY ID");
    if (!rows) return fail(rows.error());
    constexpr int price = 3, offer = 4, vat = 5;
    for (;;) {
      const auto row = rows->step();
      if (!row) return fail(row.error());
      if (!*row) return {};
      KnownArticle known{plan_.keys.size(),  std::string(rows->text(1)), std::string(rows->text(2)),
                         rows->money(price), rows->money(offer),         rows->number(vat)};
      // A null price takes the value 0 all the same.
      if (rows->isNull(price)) known.prezzo = Money::ofTenThousandths(-1);
      if (rows->isNull(offer)) known.offertaprezzo = Money::ofTenThousandths(-1);
      // The first of several articles of one code is the one that is found.
      if (articles_.try_emplace(foldCase(known.codice), known).second) plan_.keys.push_back(rows->integer(0));
    }
  }

  void planDepartment(const AccountingRow& row) {
    PlannedDepartment department;
    department.ID = keyOf(row[0]);
    department.titolo = titleOf(row[1], departmentTitle, options_.mark);
    department.descrizione = asText(row[1]);
    if (!departments_.insert(foldCase(department.ID)).second) department.fate = RowFate::Same;
    plan_.departments.push_back(std::move(department));
  }

  void planArticle(const AccountingRow& row) {
    PlannedArticle article;
    article.catID = keyOf(row[IdCategoria]);
    article.codice = codeOf(row[Codice], row[Id]);
    article.titolo = titleOf(row[Descrizione], articleTitle, options_.mark);
    article.reason = refusal(row, article);
    if (article.reason.empty()) article.reason = takePrices(row, article);
    if (article.reason.empty()) {
      decideFate(article);
    } else {
      article.fate = RowFate::LeftOut;
    }
    plan_.articles.push_back(std::move(article));
  }

  /// Why a row is left out; empty when it is not.
  std::string refusal(const AccountingRow& row, const PlannedArticle& article) const {
    if (visible_ != 0 && !isVisible(row[visible_])) return "visibilità non scelta";
    if (!departments_.contains(foldCase(article.catID))) return "reparto " + article.catID + " mancante";
    if (codeSize_ != 0 && characterCount(article.codice) > codeSize_) {
      return "codice più lungo di " + std::to_string(codeSize_) + " caratteri";
    }
    if (!options_.update && articles_.contains(foldCase(article.codice))) return "già presente";
    return {};
  }

  bool isVisible(const Value& vista) const {
    const std::int64_t value = asInteger(vista);
    return value >= 0 && value < static_cast<std::int64_t>(visibilities) &&
           options_.visible.at(static_cast<std::size_t>(value));
  }

  /// Reads the amounts of a row; why they can't be used, or an empty text.
  std::string takePrices(const AccountingRow& row, PlannedArticle& article) const {
    const Value vat = options_.addVat ? row[Iva] : Value(Null{});
    const auto price = importedPrice(row[Prezzo], vat);
    const auto offer = options_.offer > 0 ? importedPrice(row[Offerta], vat) : std::optional(Money());
    if (!price || !offer) return "prezzo non valido";
    article.prezzo = *price;
    article.offertaprezzo = *offer;
    article.iva = asNumber(row[Iva]) / percents;
    return {};
  }

  bool isSame(const KnownArticle& known, const PlannedArticle& article) const {
    const bool offer = options_.offer == 0 || known.offertaprezzo == article.offertaprezzo;
    const bool vat = !plan_.hasVat || static_cast<float>(known.iva) == static_cast<float>(article.iva);
    return known.codice == article.codice && known.titolo == article.titolo && known.prezzo == article.prezzo &&
           offer && vat;
  }

  void decideFate(PlannedArticle& article) {
    const auto [found, added] = articles_.try_emplace(foldCase(article.codice));
    KnownArticle& known = found->second;
    if (added) {
      known.of = plan_.keys.size();
      plan_.keys.push_back(0);
    } else {
      article.fate = isSame(known, article) ? RowFate::Same : RowFate::Changed;
    }
    article.of = known.of;
    known = {known.of, article.codice, article.titolo, article.prezzo, article.offertaprezzo, article.iva};
  }

  Database& catalogue_;
  const AccountingOptions& options_;
  int generation_;
  std::size_t visible_ = 0;   // index of `Vista` in a row; 0: there is none
  std::size_t codeSize_ = 0;  // characters of `codice`
  std::unordered_set<std::string> departments_;
  std::unordered_map<std::string, KnownArticle> articles_;
  AccountingPlan plan_;
};

std::string amountText(Money amount) { return replaceAll(formatNumber(amount, "0.00"), ".", ","); }

template <class Rows>
std::size_t countFate(const Rows& rows, RowFate fate) {
  return static_cast<std::size_t>(std::ranges::count(rows, fate, [](const auto& row) { return row.fate; }));
}

}  // namespace

std::size_t AccountingPlan::countDepartments(RowFate fate) const { return countFate(departments, fate); }
std::size_t AccountingPlan::countArticles(RowFate fate) const { return countFate(articles, fate); }

Result<AccountingPlan> planAccountingImport(Database& catalogue, const AccountingSource& source,
                                            const AccountingTarget& target) {
  return Planner(catalogue, target).plan(source);
}

std::size_t shownRowCount(const AccountingPlan& plan) { return plan.departments.size() + plan.articles.size(); }

ShownPlanRow shownRow(const AccountingPlan& plan, const AccountingOptions& options, std::size_t index) {
  if (index < plan.departments.size()) {
    const PlannedDepartment& row = plan.departments[index];
    return {std::string(fateWord(row.fate)), row.ID, row.titolo, {}, {}, row.reason};
  }
  const PlannedArticle& row = plan.articles[index - plan.departments.size()];
  ShownPlanRow shown{std::string(fateWord(row.fate)), row.codice, row.titolo, {}, {}, row.reason};
  if (row.fate == RowFate::LeftOut) return shown;
  shown.price = amountText(row.prezzo);
  if (options.offer > 0) shown.offer = amountText(row.offertaprezzo);
  return shown;
}

std::string planTotals(const AccountingPlan& plan) {
  const auto count = [](std::size_t number) { return std::to_string(number); };
  return plan.form + "Reparti: " + count(plan.countDepartments(RowFate::New)) + " nuovi, " +
         count(plan.countDepartments(RowFate::Same)) + " invariati\n" +
         "Articoli: " + count(plan.countArticles(RowFate::New)) + " nuovi, " +
         count(plan.countArticles(RowFate::Changed)) + " modificati, " + count(plan.countArticles(RowFate::Same)) +
         " invariati, " + count(plan.countArticles(RowFate::LeftOut)) + " tralasciati\n";
}

std::string planText(const AccountingPlan& plan, const AccountingOptions& options) {
  std::string text = planTotals(plan);
  for (std::size_t i = 0; i < shownRowCount(plan); ++i) {
    const ShownPlanRow row = shownRow(plan, options, i);
    text += row.fate + "\t" + row.code + "\t" + row.title;
    for (const std::string& more : {row.price, row.offer, row.reason}) text += more.empty() ? "" : "\t" + more;
    text += "\n";
  }
  return text;
}

}  // namespace kv
