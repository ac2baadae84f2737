#pragma once
// What an import of the earlier product line would do, row by row, before anything is written.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// What becomes of a row.
enum class PrimoFate {
  New,      ///< the source has it, the shop does not
  Changed,  ///< both have it, and it takes other values
  Same,     ///< both have it with equal values
  Removed   ///< the shop alone has it, and it goes
};

/// A row of the source or of the shop.
struct PrimoRow {
  PrimoFate fate = PrimoFate::New;
  std::string key;    ///< its ID; empty in a table of one row
  std::string title;  ///< what it is called, if it is called anything
};

/// One table of the import.
struct PrimoTable {
  std::string name;
  std::vector<PrimoRow> rows;        ///< those of the source in the order of their keys, then those that go
  std::vector<std::string> leftOut;  ///< columns of the source that the catalogue lacks

  /// How many rows have a fate.
  std::size_t count(PrimoFate fate) const;
};

/// The tables of an import and its reservations, if any. Missing when the source lacks a table, Malformed when its
/// version is not 200 to 299, `what` being what the merchant reads; others as Database::open and attach. Nothing is
/// written.
struct PrimoPreview {
  int version = 0;
  std::vector<PrimoTable> tables;            ///< those that are taken over whole
  std::vector<std::string> changedSettings;  ///< columns of `generale` that take other values
  std::vector<std::string> keptSettings;     ///< columns of `generale` whose present value stays
  std::vector<std::string> leftOutSettings;  ///< columns of the source's `generale` that the catalogue lacks
};
Result<PrimoPreview> previewPrimo(Database& catalogue, const std::string& path);

/// The preview as lines of text in Italian, each closed: totals of each table, then each row with what becomes of it.
std::string previewText(const PrimoPreview& preview);

/// Why a source can't be imported: its folder holds no catalogue, or one of another version (a line, then what more is
/// known of it).
inline constexpr std::string_view noPrimoShop = "La cartella selezionata non contiene un negozio";
inline constexpr std::string_view otherPrimoVersion =
    "Impossibile importare: la versione del database di origine non è supportata\n";

/// The preview of the shop in `folder` as text, with the number of its pictures; empty for an empty path. Of a failure
/// the text, `what`, is what the merchant reads.
Result<std::string> previewOfShop(Database& catalogue, const std::string& folder);

}  // namespace kv
