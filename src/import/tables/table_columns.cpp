#include "import/tables/table_columns.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace kv {
namespace {

TableColumn sheetColumn(std::string name, std::string italian, std::string english, CellField field) {
  return {name, std::move(italian), std::move(english), field, std::move(name)};
}
TableColumn storedAs(TableColumn column, std::string_view stored) {
  column.stored = stored;
  return column;
}
TableColumn unusual(TableColumn column) {
  column.isUsual = false;
  return column;
}
TableColumn withSign(TableColumn column) {
  column.isSigned = true;
  return column;
}

void add(std::vector<TableColumn>& to, std::vector<TableColumn> columns) {
  std::ranges::move(columns, std::back_inserter(to));
}

/// The same column in each language.
std::vector<TableColumn> inLanguages(const TableColumn& column) {
  std::vector<TableColumn> columns;
  for (int language = 1; language <= maxLanguages; ++language) {
    TableColumn each = column;
    const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(language - 1)];
    each.name += suffix;
    each.stored += suffix;
    each.language = language;
    if (language > 1) {
      each.formerItalian = each.italian + " lingua " + std::to_string(language);
      each.english += " language " + std::to_string(language);
    }
    columns.push_back(std::move(each));
  }
  return columns;
}

/// The same column in each price list.
std::vector<TableColumn> inLists(const TableColumn& column) {
  std::vector<TableColumn> columns;
  for (std::size_t listino = 0; listino < listinoSuffixes.size(); ++listino) {
    TableColumn each = column;
    each.name += listinoSuffixes[listino];
    each.stored += listinoSuffixes[listino];
    if (listino > 0) {
      each.italian += " listino " + std::to_string(listino);
      each.english += " list " + std::to_string(listino);
    }
    columns.push_back(std::move(each));
  }
  return columns;
}

std::vector<TableColumn> slotColumns() {
  std::vector<TableColumn> columns;
  for (int listino = 0; listino < listini; ++listino) {
    for (int slot = 1; slot <= 4; ++slot) {
      const std::string list = listino == 0 ? "" : " " + std::to_string(listino), number = std::to_string(slot);
      columns.push_back(sheetColumn(variantColumn(slot, listino),
                                    "Variante " + number + (list.empty() ? "" : " listino" + list),
                                    "Variant " + number + (list.empty() ? "" : " list" + list), CellField::Variant));
    }
  }
  return columns;
}

SheetTable articles() {
  using enum CellField;
  SheetTable table{"articoli",
                   "Articoli",
                   "articoli",
                   "articoli",
                   "ID",
                   "catID, ordinamento, ID",
                   {{"codice", "Codice", {"codice"}},
                    {"id", "ID", {"ID"}},
                    {"codice-reparto", "Codice e reparto", {"codice", "reparto"}}},
                   {sheetColumn("ID", "ID", "ID", RowKey), sheetColumn("codice", "Codice", "Code", Text),
                    storedAs(sheetColumn("reparto", "Reparto", "Department", Department), "catID")}};
  auto& to = table.columns;
  add(to, inLanguages(sheetColumn("titolo", "Titolo", "Title", Text)));
  add(to, inLanguages(sheetColumn("sottotitolo", "Sottotitolo", "Subtitle", Text)));
  add(to, inLanguages(sheetColumn("descrizione", "Descrizione", "Description", Lines)));
  add(to, inLanguages(sheetColumn("note", "Note", "Notes", Lines)));
  add(to, inLists(sheetColumn("prezzo", "Prezzo", "Price", Money)));
  add(to, inLists(sheetColumn("offerta", "In offerta", "On offer", Flag)));
  add(to, inLists(sheetColumn("offertaprezzo", "Prezzo in offerta", "Offer price", Money)));
  add(to, inLists(sheetColumn("scq", "Sconto per quantità", "Quantity discount", Flag)));
  add(to, {sheetColumn("scqart0", "Da pezzi (1)", "From pieces (1)", Whole),
           sheetColumn("scqperc0", "Sconto (1)", "Discount (1)", Percent),
           sheetColumn("scqart1", "Da pezzi (2)", "From pieces (2)", Whole),
           sheetColumn("scqperc1", "Sconto (2)", "Discount (2)", Percent)});
  add(to, slotColumns());
  add(to, {sheetColumn("correlazione", "Articoli correlati", "Related word", Text),
           sheetColumn("peso", "Peso", "Weight", Number), sheetColumn("link", "Link", "Link", Text),
           sheetColumn("linkesterno", "Link in nuova finestra", "Link in new window", Flag),
           sheetColumn("novita", "Novità", "New", Flag), sheetColumn("inelenco", "In vetrina", "In showcase", Flag),
           sheetColumn("popup", "Immagine in finestra", "Picture in window", Flag),
           sheetColumn("fuoricatalogo", "Fuori catalogo", "Not listed", Flag),
           sheetColumn("immagine0", "Immagine 1", "Picture 1", Picture),
           sheetColumn("immagine1", "Immagine 2", "Picture 2", Picture),
           sheetColumn("immagine2", "Immagine piccola", "Small picture", Picture),
           unusual(sheetColumn("ordinamento", "Ordine", "Order", Whole))});
  return table;
}

SheetTable departmentRows() {
  using enum CellField;
  SheetTable table{
      "reparti",
      "Reparti",
      "reparti",
      "categorie",
      "contatore",
      "livello, ordinamento, contatore",
      {{"percorso", "Percorso", {"percorso"}}, {"id", "ID", {"ID"}}},
      {sheetColumn("ID", "ID", "ID", RowKey), storedAs(sheetColumn("percorso", "Percorso", "Path", OwnPath), "ID")}};
  auto& to = table.columns;
  add(to, inLanguages(sheetColumn("titolo", "Titolo", "Title", Text)));
  add(to, inLanguages(sheetColumn("descrizione", "Descrizione", "Description", Lines)));
  add(to, inLanguages(sheetColumn("note", "Note", "Notes", Lines)));
  add(to, {sheetColumn("template", "Modello di pagina", "Page model", Text),
           sheetColumn("maxarticoli", "Articoli per pagina", "Articles per page", Whole),
           sheetColumn("affiancati", "Articoli affiancati", "Side by side", Text),
           sheetColumn("iva", "IVA", "VAT", Percent), sheetColumn("nascosto", "Nascosto", "Hidden", Flag)});
  add(to, inLists(sheetColumn("sconto", "Sconto", "Discount", Percent)));
  add(to, inLists(sheetColumn("inaccessibile", "Non accessibile", "Closed", Flag)));
  add(to, {sheetColumn("immagine0", "Immagine", "Picture", Picture)});
  add(to, inLanguages(sheetColumn("immagine1", "Pulsante", "Button", Picture)));
  return table;
}

SheetTable variantNames() {
  SheetTable table{"varianti",
                   "Varianti",
                   "varianti",
                   "opzioni",
                   "ID",
                   "ID",
                   {{"nome", "Nome", {"nome"}}, {"id", "ID", {"ID"}}},
                   {sheetColumn("ID", "ID", "ID", CellField::RowKey)}};
  add(table.columns, inLanguages(sheetColumn("nome", "Nome", "Name", CellField::Text)));
  return table;
}

SheetTable variantValues() {
  using enum CellField;
  SheetTable table{"valori",
                   "Valori delle varianti",
                   "valori",
                   "dettagliop",
                   "ID",
                   "OpID, ID",
                   {{"variante-codice", "Variante e codice", {"variante", "codice"}},
                    {"variante-testo", "Variante e testo", {"variante", "testo"}},
                    {"id", "ID", {"ID"}}},
                   {sheetColumn("ID", "ID", "ID", RowKey),
                    storedAs(sheetColumn("variante", "Variante", "Variant", OwnVariant), "OpID"),
                    sheetColumn("codice", "Codice", "Code", Text)}};
  add(table.columns, inLanguages(sheetColumn("testo", "Testo", "Text", Text)));
  add(table.columns, {withSign(sheetColumn("prezzo", "Differenza di prezzo", "Price difference", Money)),
                      withSign(sheetColumn("peso", "Differenza di peso", "Weight difference", Number)),
                      sheetColumn("selezionato", "Predefinito", "Default", Mark)});
  return table;
}

SheetTable countryRows() {
  using enum CellField;
  return {"paesi",
          "Paesi",
          "paesi",
          "paesi",
          "ID",
          "ID",
          {{"paese", "Paese", {"paese"}}, {"sigla", "Sigla", {"strID"}}, {"id", "ID", {"ID"}}},
          {sheetColumn("ID", "ID", "ID", RowKey), sheetColumn("paese", "Paese", "Country", Text),
           sheetColumn("strID", "Sigla", "Country code", Text), sheetColumn("zona", "Zona", "Zone", Whole)}};
}

/// The tables of the zones as one, a row for each.
SheetTable shippingRows(const TableInfo& zone) {
  SheetTable table{"spedizione",
                   "Spese di spedizione",
                   "zone",
                   "(",
                   "zona",
                   "zona",
                   {{"zona", "Zona", {"zona"}}},
                   {sheetColumn("zona", "Zona", "Zone", CellField::RowKey)},
                   false};
  constexpr int zones = 8;
  for (int i = 1; i <= zones; ++i) {
    table.from +=
        (i > 1 ? " UNION ALL " : "") + ("SELECT " + std::to_string(i) + " AS zona, * FROM zona") + std::to_string(i);
  }
  table.from += ")";
  for (const ColumnInfo& column : zone.columns) {
    const CellField field = column.type == ColumnType::Bool    ? CellField::Flag
                            : column.type == ColumnType::Money ? CellField::Money
                                                               : CellField::Number;
    table.columns.push_back(sheetColumn(column.name, column.name, column.name, field));
  }
  return table;
}

using LanguageNames = std::array<std::string, maxLanguages>;

/// The names of the languages; empty where there is none, or where two are written alike.
Result<LanguageNames> languageNamesOf(Database& catalogue) {
  LanguageNames names, plain;
  auto row = catalogue.prepare("SELECT lingua1, lingua2, lingua3, lingua4 FROM lingue");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  if (!*found) return names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    names.at(i) = row->text(static_cast<int>(i));
    plain.at(i) = foldCase(trim(names.at(i)));
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (std::ranges::count(plain, plain.at(i)) > 1) names.at(i).clear();
  }
  return names;
}

/// Gives the columns of the other languages their headers.
void nameLanguages(SheetTable& table, const LanguageNames& names) {
  for (TableColumn& column : table.columns) {
    if (column.language <= 1) continue;
    const std::string& name = names.at(static_cast<std::size_t>(column.language - 1));
    column.italian = name.empty() ? column.formerItalian : column.italian + " (" + name + ")";
  }
}

/// Types and widths as the catalogue has them; columns that it hasn't go.
void keepStored(SheetTable& table, const TableInfo& info, int languageCount) {
  std::erase_if(table.columns, [&](TableColumn& column) {
    const int index = info.columnIndex(column.stored);
    if (index < 0) return column.stored != "zona";
    const ColumnInfo& stored = info.columns[static_cast<std::size_t>(index)];
    column.type = stored.type;
    column.size = static_cast<std::size_t>(stored.type == ColumnType::Text ? stored.size : 0);
    column.isUsual = column.isUsual && column.language <= languageCount;
    return false;
  });
}

}  // namespace

std::optional<std::size_t> SheetTable::columnIndex(std::string_view column) const {
  const auto found =
      std::ranges::find_if(columns, [&](const auto& each) { return equalsIgnoringCase(each.name, column); });
  if (found == columns.end()) return std::nullopt;
  return static_cast<std::size_t>(found - columns.begin());
}

const TableKey* SheetTable::key(std::string_view key) const {
  const auto found = std::ranges::find(keys, key, &TableKey::name);
  return found == keys.end() ? nullptr : &*found;
}

std::vector<std::string> sheetTableNames() {
  return {"articoli", "reparti", "varianti", "valori", "paesi", "spedizione"};
}

Result<std::vector<SheetTable>> sheetTables(Database& catalogue, int languageCount) {
  const auto zone = catalogue.table("zona1");
  if (!zone) return fail(zone.error());
  const auto names = languageNamesOf(catalogue);
  if (!names) return fail(names.error());
  std::vector<SheetTable> tables{articles(),      departmentRows(), variantNames(),
                                 variantValues(), countryRows(),    shippingRows(*zone)};
  for (SheetTable& table : tables) {
    const auto info = table.canAdd ? catalogue.table(table.from) : zone;
    if (!info) return fail(info.error());
    keepStored(table, *info, languageCount);
    nameLanguages(table, *names);
  }
  return tables;
}

Result<SheetTable> sheetTable(Database& catalogue, int languageCount, std::string_view name) {
  auto tables = sheetTables(catalogue, languageCount);
  if (!tables) return fail(tables.error());
  const auto found = std::ranges::find(*tables, name, &SheetTable::name);
  if (found == tables->end()) return fail(ErrorKind::Missing, std::string(name), "no such table");
  return std::move(*found);
}

std::vector<std::string_view> exportHeaders(std::string_view column) {
  struct Headers {
    std::string_view column;
    std::vector<std::string_view> others;
  };
  static const std::vector<Headers> rows{
      {"codice",
       {"sku", "variant sku", "reference", "reference #", "codice articolo", "cod.", "cod. art.", "cod. articolo",
        "mpn", "item number"}},
      {"titolo", {"name", "name *", "product name", "nome", "nome prodotto", "nome articolo", "denominazione"}},
      {"sottotitolo", {"short description", "summary", "breve descrizione", "descrizione breve"}},
      {"descrizione", {"body (html)", "body html", "long description", "product description"}},
      {"reparto",
       {"categories", "category", "product category", "product type", "type", "categoria", "categorie",
        "categories (x,y,z...)"}},
      {"prezzo",
       {"regular price", "variant price", "price tax included", "price tax included. (ti)", "price tax excluded",
        "unit price", "prezzo unitario", "prezzo €", "prezzo di vendita", "prezzo al pubblico", "listino"}},
      {"offertaprezzo", {"sale price", "discounted price", "special price"}},
      {"peso", {"weight (kg)", "peso (kg)", "peso kg", "package weight", "shipping weight"}},
      {"immagine0", {"images", "image", "image src", "image url", "image link", "image urls (x,y,z...)", "immagine"}},
      {"link", {"external url", "url"}}};
  const auto found = std::ranges::find(rows, column, &Headers::column);
  return found == rows.end() ? std::vector<std::string_view>{} : found->others;
}

}  // namespace kv
