#include "store/exchange/primo_rows.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "store/catalogue/side_fields.h"
#include "store/exchange/primo_settings.h"
#include "store/schema/schema.h"
#include "store/shop/staged_pictures.h"

namespace kv {
namespace {

constexpr std::array<std::string_view, 10> wholeTables{"articoli", "categorie", "lingue", "paesi", "pagamento",
                                                       "zona1",    "zona2",     "zona3",  "zona4", "opzioni"};
constexpr std::array<std::string_view, 4> newZones{"zona5", "zona6", "zona7", "zona8"};
constexpr int oldOptions = 15;
constexpr std::string_view noVariant = "(nessuna)";

Result<> replaceRows(Database& catalogue, std::string_view table, const SharedColumns& columns) {
  const std::string name(table), source = " FROM " + std::string(primoSchema) + "." + name;
  if (auto emptied = catalogue.execute("DELETE FROM main." + name); !emptied) return emptied;
  // The engine copies whole pages' worth of rows this way, where it can.
  if (columns.areAll) return catalogue.execute("INSERT INTO main." + name + " SELECT *" + source);
  std::string list;
  for (const std::string& column : columns.shared) list += (list.empty() ? "\"" : ", \"") + column + "\"";
  return catalogue.execute("INSERT INTO main." + name + " (" + list + ") SELECT " + list + source);
}

/// The four texts of an option: "opzione3", "opzione3_l2" and so on.
std::vector<std::string> optionTexts(int option) {
  std::vector<std::string> names;
  names.reserve(languageSuffixes.size());
  for (const std::string_view suffix : languageSuffixes) {
    names.push_back("opzione" + std::to_string(option) + std::string(suffix));
  }
  return names;
}

/// Whether an option has any text, as SQL.
std::string hasText(int option, const std::string& row = {}) {
  std::string isAny;
  for (const std::string& text : optionTexts(option)) {
    isAny += (isAny.empty() ? "" : " OR ") + ("COALESCE(" + row + text + ", '') <> ''");
  }
  return isAny;
}

/// The values of an option one after the other, as SQL; a sign that no text has comes between them.
std::string optionDigest(const std::vector<std::string>& texts, const std::string& weight, const std::string& price,
                         const std::string& selected) {
  std::string digest = "(COALESCE(" + weight + ", 0) + 0.0) || '|' || COALESCE(" + price + ", 0) || '|' || " + selected;
  for (const std::string& text : texts) digest += " || char(31) || COALESCE(" + text + ", '')";
  return "(" + digest + " || char(30))";
}

/// The rows that one of the fifteen options of all variants becomes.
std::string optionRows(int option) {
  const std::string number = std::to_string(option);
  std::string list;
  for (const std::string& text : optionTexts(option)) list += ", " + text;
  return "SELECT ID, " + number + ", peso" + number + ", prezzo" + number + ", CASE WHEN selezionato = " + number +
         " THEN '.' ELSE ' ' END" + list + " FROM opzioni WHERE " + hasText(option);
}

/// An option was five columns of its variant; it is a row of its own now.
Result<> convertOptions(Database& catalogue) {
  std::string all;
  for (int option = 1; option <= oldOptions; ++option) all += (all.empty() ? "" : " UNION ALL ") + optionRows(option);
  return catalogue.execute(
      "WITH old (OpID, number, peso, prezzo, selezionato, testo, testo_l2, testo_l3, testo_l4) AS (" + all +
      ") INSERT INTO dettagliop (OpID, peso, prezzo, selezionato, testo, testo_l2, testo_l3, testo_l4)"
      " SELECT OpID, peso, prezzo, selezionato, testo, testo_l2, testo_l3, testo_l4 FROM old ORDER BY OpID, number");
}

Result<> emptyOptions(Database& catalogue) {
  std::string changes;
  for (int option = 1; option <= oldOptions; ++option) {
    for (const std::string& text : optionTexts(option)) changes += (changes.empty() ? "" : ", ") + text + " = ''";
  }
  return catalogue.execute("UPDATE opzioni SET " + changes);
}

Result<> convertVariants(Database& catalogue) {
  Result<> done = catalogue.execute("DELETE FROM dettagliop");
  if (done) done = convertOptions(catalogue);
  if (done) done = emptyOptions(catalogue);
  // An article without variants names variant 1.
  if (done) {
    done = catalogue.execute("INSERT OR IGNORE INTO opzioni (ID, nome) VALUES (1, '" + std::string(noVariant) + "')");
  }
  return done;
}

Result<> emptyZone(Database& catalogue, std::string_view zone) {
  const auto table = catalogue.table(zone);
  if (!table) return fail(table.error());
  std::string changes;
  for (const ColumnInfo& column : table->columns) changes += (changes.empty() ? "\"" : ", \"") + column.name + "\" = 0";
  return catalogue.execute("UPDATE " + std::string(zone) + " SET " + changes);
}

/// What each table takes over, found before the source is attached: an attached file has no schema view.
struct PrimoPlan {
  std::vector<std::pair<std::string_view, SharedColumns>> tables;
  std::vector<std::string> settings;
};

Result<PrimoPlan> planOf(Database& catalogue, const std::string& source) {
  auto opened = Database::open(source, OpenMode::ReadOnly);
  if (!opened) return fail(opened.error());
  PrimoPlan plan;
  for (const std::string_view table : wholeTables) {
    auto columns = sharedColumns(catalogue, *opened, table);
    if (!columns) return fail(columns.error());
    plan.tables.emplace_back(table, std::move(*columns));
  }
  auto settings = sharedColumns(catalogue, *opened, "generale");
  if (!settings) return fail(settings.error());
  plan.settings = std::move(settings->shared);
  return plan;
}

Result<> takeAll(Database& catalogue, const PrimoPlan& plan) {
  Result<> done;
  for (const auto& [table, columns] : plan.tables) {
    if (done) done = replaceRows(catalogue, table, columns);
  }
  if (done) done = convertVariants(catalogue);
  for (const std::string_view zone : newZones) {
    if (done) done = emptyZone(catalogue, zone);
  }
  if (done) done = takePrimoSettings(catalogue, plan.settings);
  // What was copied before names departments of the catalogue that is gone.
  if (done) done = catalogue.execute("DELETE FROM clipcategorie; DELETE FROM cliparticoli");
  if (done) done = clearSideFields(catalogue);
  if (done) done = catalogue.execute(importIsDue);
  return done;
}

}  // namespace

std::vector<std::string_view> primoTables() { return {wholeTables.begin(), wholeTables.end()}; }

bool isOptionText(const std::string& column) {
  for (int option = 1; option <= oldOptions; ++option) {
    const auto texts = optionTexts(option);
    if (std::ranges::any_of(texts, [&](const std::string& text) { return equalsIgnoringCase(text, column); })) {
      return true;
    }
  }
  return false;
}

std::string sameOptions() {
  std::string theirs = "''";
  for (int option = 1; option <= oldOptions; ++option) {
    const std::string number = std::to_string(option);
    std::vector<std::string> texts = optionTexts(option);
    for (std::string& text : texts) text.insert(0, "s.");
    theirs += " || CASE WHEN " + hasText(option, "s.") + " THEN " +
              optionDigest(texts, "s.peso" + number, "s.prezzo" + number,
                           "(CASE WHEN s.selezionato = " + number + " THEN '.' ELSE ' ' END)") +
              " ELSE '' END";
  }
  const std::vector<std::string> texts{"testo", "testo_l2", "testo_l3", "testo_l4"};
  return "COALESCE((SELECT group_concat(digest, '') FROM (SELECT " +
         optionDigest(texts, "peso", "prezzo", "COALESCE(selezionato, '')") +
         " AS digest FROM main.dettagliop WHERE OpID = m.ID ORDER BY ID)), '') COLLATE BINARY = (" + theirs + ")";
}

Result<SharedColumns> sharedColumns(Database& catalogue, Database& source, std::string_view table) {
  const auto ours = catalogue.table(table);
  if (!ours) return fail(ours.error());
  const auto theirs = source.table(table);
  if (!theirs) return fail(theirs.error());
  SharedColumns columns;
  for (const ColumnInfo& column : ours->columns) {
    if (theirs->columnIndex(column.name) >= 0) columns.shared.push_back(column.name);
  }
  for (const ColumnInfo& column : theirs->columns) {
    if (ours->columnIndex(column.name) < 0) columns.leftOut.push_back(column.name);
  }
  columns.areAll = std::ranges::equal(ours->columns, theirs->columns, [](const ColumnInfo& a, const ColumnInfo& b) {
    return equalsIgnoringCase(a.name, b.name);
  });
  return columns;
}

Result<> takePrimoRows(Database& catalogue, const std::string& source) {
  const auto plan = planOf(catalogue, source);
  if (!plan) return fail(plan.error());
  if (auto attached = catalogue.attach(source, primoSchema); !attached) return attached;
  Result<> done = catalogue.begin();
  if (done) {
    done = takeAll(catalogue, *plan);
    if (done) {
      done = catalogue.commit();
    } else {
      catalogue.rollback();
    }
  }
  ignore(catalogue.detach(primoSchema), "the session is closed after an import");
  return done;
}

Result<bool> isFirstVariantTaken(Database& catalogue) {
  const auto name = catalogue.scalar("SELECT nome FROM opzioni WHERE ID = 1");
  if (!name) return fail(name.error());
  return !equalsIgnoringCase(asText(*name), noVariant);
}

}  // namespace kv
