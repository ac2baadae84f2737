#pragma once
// What an import of the earlier product line would do, before anything is written.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// One table of the import.
struct PrimoTable {
  std::string name;
  std::int64_t present = 0;          ///< rows that would be replaced
  std::int64_t coming = 0;           ///< rows that would replace them
  std::vector<std::string> leftOut;  ///< columns of the source that the catalogue lacks
};

/// The tables of an import and its reservations, if any. Missing when the source lacks a table, Malformed when its
/// version is not 200 to 299; others as Database::open. The source is only read.
struct PrimoPreview {
  int version = 0;
  std::vector<PrimoTable> tables;
  std::vector<std::string> keptSettings;  ///< columns of `generale` whose present value stays
};
Result<PrimoPreview> previewPrimo(Database& catalogue, const std::string& path);

/// The preview as lines of text in Italian, each closed.
std::string previewText(const PrimoPreview& preview);

/// The preview of the shop in `folder` as text, or why there is none; empty for an empty path.
std::string previewOfShop(Database& catalogue, const std::string& folder);

}  // namespace kv
