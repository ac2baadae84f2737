#pragma once
// Departments by their paths and variants by their names, as cells of a sheet call them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// What a name means.
struct CatalogueName {
  std::string ID;            ///< empty: there is none of the name
  bool isAmbiguous = false;  ///< several have it
};

/// The names of a catalogue, read once.
class CatalogueNames {
 public:
  /// Reads departments and variants. Failures as Database::prepare.
  static Result<CatalogueNames> read(Database& catalogue);

  /// The path of a department, titles of language 1 from the top, parted by " > "; empty for an unknown ID.
  std::string_view pathOf(std::string_view department) const;
  /// The department of a path or an ID; spaces around ">" and case don't count.
  CatalogueName department(std::string_view path) const;
  /// The name of a variant in language 1; empty for an unknown one.
  std::string_view variantName(std::int64_t ID) const;
  /// Whether a variant of this ID exists.
  bool hasVariant(std::int64_t ID) const { return variantNames_.contains(ID); }
  /// The variant of a name; case doesn't count.
  CatalogueName variant(std::string_view name) const;

  // What is made while a sheet is read is known to the rows after it.
  void addDepartment(const std::string& ID, const std::string& path);
  /// Enters a variant that an import has made.
  void addVariant(std::int64_t ID, const std::string& name);

 private:
  struct NamedPath {
    std::string ID, path;
  };
  std::unordered_map<std::string, NamedPath> paths_;            // folded ID ->
  std::unordered_map<std::string, CatalogueName> departments_;  // folded path -> ID
  std::unordered_map<std::int64_t, std::string> variantNames_;
  std::unordered_map<std::string, CatalogueName> variants_;  // folded name -> ID
};

/// A path as it is compared: one space on both sides of each ">", none at its ends, in lower case.
std::string plainPath(std::string_view path);
/// Whether a department is below another one, both by their plain paths.
bool isBelow(std::string_view plainPath, std::string_view above);
/// The path without its last title, and that title; an empty parent at the top level.
struct SplitPath {
  std::string parent, title;
};
SplitPath splitPath(std::string_view path);

/// "Il reparto "..." non esiste".
std::string missingDepartment(std::string_view path);

}  // namespace kv
