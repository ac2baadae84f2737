#pragma once
// The tables of every database of a shop, and the language view through which they are read. Languages 2 to 4 of a
// text are in columns with the suffixes _l2 to _l4, price lists (listini) 1 to 9 in columns with that digit after the
// name; both families are made by loops over the suffix tables below.

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/table_info.h"

namespace kv {

/// The most languages of a shop.
constexpr int maxLanguages = 4;
/// The number of price lists (listini), counted from 0.
constexpr int listini = 10;

/// Suffixes of the language columns and files, language 1 first.
inline constexpr std::array<std::string_view, maxLanguages> languageSuffixes{"", "_l2", "_l3", "_l4"};
/// Suffixes of the price-list columns, listino 0 first.
inline constexpr std::array<std::string_view, listini> listinoSuffixes{"", "1", "2", "3", "4", "5", "6", "7", "8", "9"};

/// The column of variant slot 1..4 in a listino: "opzione1", "opzione1_3".
std::string variantColumn(int slot, int listino);

/// catalog.mdb, all tables in the order of creation.
std::vector<TableInfo> catalogueTables();
/// source.new: `categoria` (the page tag row) and `articoli` (the derived article rows).
std::vector<TableInfo> tagDatabaseTables();
/// new.mdb: categorie, opcodici, opzioni and articoli of each language, dettaglio, ordinamento. `ID` has an index of
/// its own in each; no column needs a default; no name is a reserved word of MySQL; text is only as wide as needed,
/// so that InnoDB accepts a row. Every language-dependent column of the derived row is in articoli<suffix>, every
/// other one in dettaglio or ordinamento; only ID is in more than one of the three.
std::vector<TableInfo> buildDatabaseTables();
/// kv_offerte: which articles are on offer at their list price where their department has a discount, by `ID`; bit n of
/// `offerte` is listino n. In a build database only where there is such an article: the prices in `ordinamento` don't
/// tell one from no offer at all, and no discount is taken off an offer.
TableInfo levelOffersTable();
/// kvftp.mdb: the table `file`, one row for each file of the site.
std::vector<TableInfo> transferTables();

/// The 97 columns of the page tag row, in order.
std::span<const std::string_view> pageTagColumns();
/// The columns of the derived article row, in order, with their types.
std::vector<ColumnInfo> derivedArticleColumns();

/// The language number 1 to 4 of a suffix ("" is 1); any other value counts as 1.
int languageOfSuffix(std::string_view suffix);

/// SelezionaLingua (language view): the SELECT with which a reader sees a table in one language, language columns
/// under their names without suffix. `rest` follows after one space when not empty. For language 1 it is "SELECT * FROM
/// table"; for 2 to 4 and a table other than articoli, categorie, opzioni, dettagliop, pagamento, generale the result
/// is empty: there is no such view. A language other than 1 to 4 counts as 1.
std::string SelezionaLingua(std::string_view table, int language, std::string_view rest = "");
/// The same, the language given by its suffix.
std::string SelezionaLingua(std::string_view table, std::string_view suffix, std::string_view rest = "");

/// Creates a database file with these tables. Exists when the file is there; after any other failure it is removed.
Result<> createDatabase(const std::string& path, std::span<const TableInfo> tables);

}  // namespace kv
