// Each rule is a query for the rows that break it; the tree and the pictures need a look at each row.
#include "catalogue_check.h"

#include <array>

#include "platform/files/files.h"
#include "platform/image/image.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

/// A rule as the query of its offenders: the first column says which row.
struct Rule {
  std::string sql;
  std::string complaint;
};

std::vector<Rule> oneRowRules() {
  std::vector<Rule> rules;
  const auto add = [&](const std::string& table) {
    rules.push_back(
        {"SELECT COUNT(*) FROM " + table + " HAVING COUNT(*) <> 1", table + " must have one row, rows found:"});
  };
  for (const char* table : {"generale", "pagamento", "lingue"}) add(table);
  for (int zone = 1; zone <= 8; ++zone) add("zona" + std::to_string(zone));
  return rules;
}

std::vector<Rule> treeRules() {
  return {
      {"SELECT 'none' FROM generale WHERE (SELECT COUNT(*) FROM categorie) = 0", "departments:"},
      {"SELECT ID FROM categorie WHERE ID <> printf('cat%03d', contatore) OR pagina <> ID",
       "ID or pagina does not follow from contatore:"},
      {"SELECT ID FROM categorie WHERE genitore IS NULL OR (genitore <> '###' AND genitore NOT IN (SELECT ID FROM "
       "categorie))",
       "department without its parent:"},
      {"SELECT ID FROM categorie WHERE genitore = '###' AND livello <> 1", "top department whose livello is not 1:"},
      {"SELECT c.ID FROM categorie c JOIN categorie p ON c.genitore = p.ID WHERE c.livello <> p.livello + 1",
       "department whose livello is not that of the parent plus 1:"},
      {"SELECT ID FROM categorie WHERE hafigli <> (ID IN (SELECT genitore FROM categorie))",
       "department whose hafigli is wrong:"},
      {"SELECT codice FROM articoli WHERE catID IS NULL OR catID NOT IN (SELECT ID FROM categorie)",
       "article without a department:"},
      {"SELECT codice FROM articoli GROUP BY codice HAVING COUNT(*) > 1", "article code used twice:"},
  };
}

std::vector<Rule> variantRules() {
  std::vector<Rule> rules{
      {"SELECT 'opzioni' FROM generale WHERE NOT EXISTS (SELECT 1 FROM opzioni WHERE ID = 1 AND nome = '(nessuna)')",
       "row 1 is not \"(nessuna)\":"},
      {"SELECT testo FROM dettagliop WHERE OpID IS NULL OR OpID NOT IN (SELECT ID FROM opzioni)",
       "option without a variant:"},
      {"SELECT OpID FROM dettagliop WHERE selezionato = '.' GROUP BY OpID HAVING COUNT(*) > 1",
       "variant with more than one default:"},
      {"SELECT nome FROM opzioni WHERE ID > 1 AND ID NOT IN (SELECT OpID FROM dettagliop)", "variant without options:"},
  };
  for (int listino = 0; listino < listini; ++listino)
    for (int slot = 1; slot <= 4; ++slot) {
      const std::string column = variantColumn(slot, listino);
      rules.push_back(
          {"SELECT codice FROM articoli WHERE " + column + " > 0 AND " + column + " NOT IN (SELECT ID FROM opzioni)",
           column + " names no variant:"});
    }
  return rules;
}

std::vector<Rule> shippingRules() {
  std::vector<Rule> rules{
      {"SELECT paese FROM paesi WHERE zona NOT BETWEEN 1 AND 8 OR strID <> CAST(ID AS TEXT)",
       "country with a wrong zone or strID:"},
      {"SELECT paesesel FROM pagamento WHERE NOT EXISTS (SELECT 1 FROM paesi WHERE strID = paesesel AND zona = "
       "zonasel)",
       "the preselected country is not there, or zonasel is not its zone:"},
      {"SELECT selezionato FROM pagamento WHERE selezionato NOT BETWEEN 1 AND 4", "preselected method:"},
  };
  for (int method = 1; method <= 4; ++method) {
    const std::string n = std::to_string(method);
    rules.push_back({"SELECT selezionato FROM pagamento WHERE selezionato = " + n + " AND NOT attivo" + n,
                     "the preselected method is not active:"});
    rules.push_back(
        {"SELECT metodo" + n + " FROM pagamento WHERE attivo" + n + " AND COALESCE(metodo" + n + ", '') = ''",
         "active method without a module:"});
    for (int zone = 1; zone <= 8; ++zone)
      rules.push_back({"SELECT zonasel FROM pagamento, zona" + std::to_string(zone) + " WHERE selezionato = " + n +
                           " AND zonasel = " + std::to_string(zone) + " AND NOT pag" + n,
                       "the preselected method is not available in the preselected zone:"});
  }
  return rules;
}

/// Titles and descriptions in each language that the shop has.
std::vector<Rule> languageRules(int languages) {
  std::vector<Rule> rules;
  for (int i = 0; i < languages; ++i) {
    const std::string suffix(languageSuffixes[static_cast<std::size_t>(i)]);
    for (const char* table : {"articoli", "categorie"})
      for (const char* stem : {"titolo", "descrizione"}) {
        const std::string column = stem + suffix;
        rules.push_back(
            {"SELECT COALESCE(titolo, ID) FROM " + std::string(table) + " WHERE COALESCE(" + column + ", '') = ''",
             std::string(table) + " without " + column + ":"});
      }
    rules.push_back({"SELECT ID FROM opzioni WHERE ID > 1 AND COALESCE(nome" + suffix + ", '') = ''",
                     "opzioni without nome" + suffix + ":"});
    rules.push_back({"SELECT ID FROM dettagliop WHERE COALESCE(testo" + suffix + ", '') = ''",
                     "dettagliop without testo" + suffix + ":"});
  }
  return rules;
}

class Checker {
 public:
  Checker(Database& catalogue, const std::string& pictures) : catalogue_(catalogue), pictures_(pictures) {}

  Result<> rules(const std::vector<Rule>& rules) {
    for (const Rule& rule : rules) {
      Result<Statement> offenders = catalogue_.prepare(rule.sql);
      if (!offenders) return fail(offenders.error());
      for (;;) {
        const Result<bool> row = offenders->step();
        if (!row) return fail(row.error());
        if (!*row) break;
        complaints_.push_back(rule.complaint + " " + std::string(offenders->text(0)));
      }
    }
    return {};
  }

  Result<> pictures(const std::string& table) {
    Result<TableInfo> info = catalogue_.table(table);
    if (!info) return fail(info.error());
    for (const ColumnInfo& column : info->columns) {
      if (!column.name.starts_with("immagine")) continue;
      const std::string rest = column.name.substr(std::string_view("immagine").size());
      std::string sql = "SELECT DISTINCT ";
      sql += column.name + ", imgX" + rest + ", imgY" + rest + " FROM " + table;
      Result<Statement> rows = catalogue_.prepare(sql + " WHERE COALESCE(" + column.name + ", '') <> ''");
      if (!rows) return fail(rows.error());
      for (;;) {
        const Result<bool> row = rows->step();
        if (!row) return fail(row.error());
        if (!*row) break;
        checkPicture(*rows, table + "." + column.name);
      }
    }
    return {};
  }

  Result<int> languages() {
    int count = 0;
    for (int i = 1; i <= maxLanguages; ++i) {
      const Result<Value> code = catalogue_.scalar("SELECT lingua" + std::to_string(i) + " FROM lingue");
      if (!code) return fail(code.error());
      if (asText(*code).empty()) break;
      ++count;
    }
    return count;
  }

  std::vector<std::string> complaints() { return std::move(complaints_); }

 private:
  void checkPicture(const Statement& row, const std::string& where) {
    const std::string name(row.text(0));
    const Result<ImageSize> size = imageSize(joinPath(pictures_, name));
    if (!size)
      complaints_.push_back(where + " names a picture that can't be read: " + name);
    else if (size->width != row.integer(1) || size->height != row.integer(2))
      complaints_.push_back(where + " has another size than its picture: " + name);
  }

  Database& catalogue_;
  const std::string& pictures_;
  std::vector<std::string> complaints_;
};

}  // namespace

Result<std::vector<std::string>> complaintsAbout(Database& catalogue, const std::string& pictures) {
  Checker checker(catalogue, pictures);
  const Result<int> languages = checker.languages();
  if (!languages) return fail(languages.error());
  for (const auto& rules : {oneRowRules(), treeRules(), variantRules(), shippingRules(), languageRules(*languages)})
    if (Result<> done = checker.rules(rules); !done) return fail(done.error());
  const Rule showcase{"SELECT codice FROM articoli WHERE inelenco AND COALESCE(immagine2, '') = ''",
                      "showcase article without its small picture:"};
  if (Result<> done = checker.rules({showcase}); !done) return fail(done.error());
  for (const char* table : {"generale", "categorie", "articoli"})
    if (Result<> done = checker.pictures(table); !done) return fail(done.error());
  return checker.complaints();
}

}  // namespace kv
