// What is done once for all languages, before the first page.

#include <map>
#include <optional>
#include <utility>

#include "builder/run/build_messages.h"
#include "builder/run/build_phases.h"
#include "commerce/shipping/currency_form.h"
#include "platform/database/rows.h"
#include "platform/files/files.h"
#include "store/schema/schema.h"

namespace kv {

namespace {

constexpr int tokenLength = 20;
constexpr std::uint32_t lettersOfAlphabet = 26;

std::string newToken(RandomSource& random) {
  std::string token;
  for (int i = 0; i < tokenLength; ++i) token += static_cast<char>('a' + random.below(lettersOfAlphabet));
  return token;
}

Result<> checkLanguageModules(const ShopLanguages& languages, UserPort& user) {
  std::vector<std::string> missing;
  for (int i = 0; i < languages.count; ++i) {
    const std::string& code = languages.codes[static_cast<std::size_t>(i)];
    if (!findEntry(languages.languagesFolder, code + ".lng")) missing.push_back(code);
  }
  if (missing.empty()) return {};
  const std::string message = missingModulesText(missing);
  user.message(message, Icon::Exclamation);
  return fail(ErrorKind::Told, languages.languagesFolder, message);
}

// Columns of `categorie` that a build copies: two for each listino after the first three.
std::vector<std::string> copiedColumns() {
  std::vector<std::string> columns{"ID", "nascosto", "iva"};
  for (const std::string_view suffix : listinoSuffixes) {
    columns.push_back("sconto" + std::string(suffix));
    columns.push_back("inaccessibile" + std::string(suffix));
  }
  return columns;
}

std::string departmentQuery() {
  std::string names;
  for (const std::string& column : copiedColumns()) names.append(names.empty() ? "" : ", ").append(column);
  return "SELECT " + names + " FROM categorie ORDER BY livello, ordinamento";
}

// What the discount of a row of departmentQuery, or else the shop's, leaves of a price of a listino.
float departmentFactor(const Statement& department, int listino, float shopFactor) {
  const int column = 3 + 2 * listino;
  return department.isNull(column) ? shopFactor : discountFactor(department.single(column), shopFactor);
}

// A department with its VAT as a fraction and, for each listino, its discount factor and its lock.
void bindDepartment(const Statement& department, float shopFactor, Statement& row) {
  row.bind(1, department.text(0));
  row.bind(2, department.flag(1));
  row.bind(3, static_cast<double>(department.single(2) / 100.0F));
  for (int n = 0; n < listini; ++n) {
    const int column = 3 + 2 * n;
    row.bind(column + 1, static_cast<double>(departmentFactor(department, n, shopFactor)));
    row.bind(column + 2, department.flag(column + 1));
  }
}

Result<> copyDepartments(Database& catalogue, float shopFactor, BuildOutput& output) {
  auto departments = catalogue.prepare(departmentQuery());
  if (!departments) return fail(departments.error());
  auto row = output.insertInto("categorie", copiedColumns());
  if (!row) return fail(row.error());
  auto more = departments->step();
  for (; more && *more; more = departments->step()) {
    bindDepartment(*departments, shopFactor, *row);
    if (auto written = row->execute(); !written) return written;
  }
  if (!more) return fail(more.error());
  return {};
}

// The option codes of the variants in the first slot of some listino; those of the other slots alone are not looked
// for.
Result<> copyOptionCodes(Database& catalogue, const ArticleSurvey& survey, BuildOutput& output) {
  auto codes = catalogue.prepare("SELECT ID, TRIM(codice), OpID FROM dettagliop WHERE codice <> '' ORDER BY ID");
  if (!codes) return fail(codes.error());
  auto row = output.insertInto("opcodici", {"ID", "codice", "OpID"});
  if (!row) return fail(row.error());
  auto more = codes->step();
  for (; more && *more; more = codes->step()) {
    if (codes->isNull(2) || !survey.inFirstSlots.contains(codes->integer(2))) continue;
    row->bind(1, codes->integer(0));
    row->bind(2, codes->text(1));
    row->bind(3, codes->integer(2));
    if (auto written = row->execute(); !written) return written;
  }
  if (!more) return fail(more.error());
  return {};
}

// Which listini a department's discount, or else the shop's, lowers prices of: bit n for listino n, by key.
using DiscountedListini = std::map<std::string, std::int64_t, std::less<>>;

Result<DiscountedListini> discountedListini(Database& catalogue, float shopFactor) {
  auto departments = catalogue.prepare(departmentQuery());
  if (!departments) return fail(departments.error());
  DiscountedListini found;
  auto more = departments->step();
  for (; more && *more; more = departments->step()) {
    std::int64_t bits = 0;
    for (int n = 0; n < listini; ++n) {
      const float factor = departmentFactor(*departments, n, shopFactor);
      if (factor != 1.0F) bits |= std::int64_t{1} << n;
    }
    found[std::string(departments->text(0))] = bits;
  }
  if (!more) return fail(more.error());
  return found;
}

// Number and department of the articles with an offer at the list price, and the listini that it holds for. A price of
// nothing is left out: no discount changes it.
std::string levelOfferQuery() {
  std::string bits;
  for (std::size_t n = 0; n < listini; ++n) {
    const std::string suffix(listinoSuffixes[n]);
    bits.append(bits.empty() ? "" : " + ")
        .append("COALESCE(offerta" + suffix + " <> 0 AND prezzo" + suffix + " <> 0 AND offertaprezzo" + suffix +
                " = prezzo" + suffix + ", 0) * " + std::to_string(1U << n));
  }
  return "SELECT ID, catID, " + bits +
         " AS bits FROM articoli WHERE COALESCE(fuoricatalogo, 0) = 0 AND bits > 0 ORDER BY ID";
}

// The table is made with the first row.
struct LevelOfferWriter {
  BuildOutput& output;
  std::optional<Statement> row;

  Result<> add(std::int64_t article, std::int64_t bits) {
    if (!row) {
      const TableInfo table = levelOffersTable();
      if (auto added = output.addTable(table); !added) return added;
      auto insert = output.insertInto(table.name, {"ID", "offerte"});
      if (!insert) return fail(insert.error());
      row = std::move(*insert);
    }
    row->bind(1, article);
    row->bind(2, bits);
    return row->execute();
  }
};

// Only where a discount would be taken is such an offer another thing than none; a shop without one gets no table.
Result<> copyLevelOffers(Database& catalogue, float shopFactor, BuildOutput& output) {
  const auto discounted = discountedListini(catalogue, shopFactor);
  if (!discounted) return fail(discounted.error());
  auto offers = catalogue.prepare(levelOfferQuery());
  if (!offers) return fail(offers.error());
  LevelOfferWriter writer{output, {}};
  return forEachRow(*offers, [&](const Statement& offer) -> Result<> {
    const auto department = discounted->find(offer.text(1));
    const std::int64_t bits = department == discounted->end() ? 0 : department->second & offer.integer(2);
    return bits == 0 ? Result<>() : writer.add(offer.integer(0), bits);
  });
}

}  // namespace

Result<ShopFacts> prepareBuild(Session& session, Environment& env, BuildOutput& output) {
  if (session.languageCount == 0) {
    const std::string message = noLanguageText();
    env.user.message(message, Icon::Exclamation);
    return fail(ErrorKind::Told, "lingue", message);
  }
  const std::string token = newToken(env.random);
  sweepFolders(output.folders());
  writeMarker(output.folders(), token, session.languageCount);
  auto present = checkLanguageModules(shopLanguages(session, env.applicationFolder), env.user);
  if (!present) return fail(present.error());
  auto facts = readShopFacts(session, env, token);
  if (!facts) return facts;
  if (auto opened = output.open(); !opened) return fail(opened.error());
  return facts;
}

Result<ArticleSurvey> copyShopRows(Database& catalogue, const ShopFacts& shop, BuildOutput& output,
                                   const BuildProgress& progress) {
  if (auto copied = copyDepartments(catalogue, shop.factor, output); !copied) return fail(copied.error());
  if (auto go = progress.checkCancel(); !go) return fail(go.error());
  auto survey = surveyArticles(catalogue, progress);
  if (!survey) return survey;
  if (auto copied = copyOptionCodes(catalogue, *survey, output); !copied) return fail(copied.error());
  if (auto copied = copyLevelOffers(catalogue, shop.factor, output); !copied) return fail(copied.error());
  return survey;
}

}  // namespace kv
