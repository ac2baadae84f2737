#pragma once
// Fields of articles and departments that are kept in tables of their own, which a shop has only once it uses them: the
// content that unit prices are computed from, the maker that product safety asks for, and the time of delivery.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/value.h"

namespace kv {

enum class SideField {
  Content,  ///< `contenuto` of `unita`: an amount, in the measure of the article
  Measure,  ///< `misura` of `unita`: "kg", "l", "m" or "pz"
  Maker,    ///< `produttore` of `sicurezza`: the number of a maker; read and written by its name
  Delivery  ///< `tempo` of `consegna`: a text in each language
};

/// Whether the catalogue has a table; a failure of the store, which must not pass for a missing one.
Result<bool> findSideTable(Database& catalogue, std::string_view table);
/// The same for what is only shown: a failure to look reads as none.
bool hasSideTable(Database& catalogue, std::string_view table);

/// The value of a field; Null where nothing was entered. key: the number of an article, or the ID of a department.
/// language: 1 to 4, of a text that each has. Failures as Database::prepare.
Result<Value> readSideField(Database& catalogue, SideField field, const std::string& key, int language = 1);

/// Makes the table of a field where the shop has none. The creation of a table can't be undone, so this comes before a
/// step of the history begins. Failures as Database::createTable.
Result<> prepareSideField(Database& catalogue, SideField field);

/// Writes a field; Null or an empty text removes it, and a row in which nothing is left goes. A maker of a name that
/// `produttori` doesn't have removes the choice. The table must be there (prepareSideField).
/// language: as for readSideField. Failures as Statement::execute.
Result<> writeSideField(Database& catalogue, SideField field, const std::string& key, const Value& value,
                        int language = 1);

/// Removes what the tables have of articles and departments, for when other ones take their numbers; makers stay.
/// Failures as Database::execute.
Result<> clearSideFields(Database& catalogue);

/// The names of the makers in alphabetical order; none while the shop has no such table.
std::vector<std::string> makerNames(Database& catalogue);

/// A row and its copy, by their numbers.
struct CopiedRow {
  std::int64_t from = 0;
  std::int64_t to = 0;
};
/// Gives articles that are copies what the side tables have for the articles they were made from.
/// Failures as Statement::execute.
Result<> copySideRows(Database& catalogue, const std::vector<CopiedRow>& copies);
/// The same for the clipboard, whose rows have numbers of their own: from articles to its rows, which replace those it
/// had, and from its rows to articles.
Result<> copySideRowsToClipboard(Database& catalogue, const std::vector<CopiedRow>& copies);
Result<> copySideRowsFromClipboard(Database& catalogue, const std::vector<CopiedRow>& copies);

}  // namespace kv
