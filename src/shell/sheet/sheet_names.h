#pragma once
// What the cells of departments and variants say: a department by its path, "Vasi > Piccoli", a variant by its name in
// language 1. What several have in common is followed by the ID, "Colore [7]", so that each text means one row.

#include "import/tables/catalogue_names.h"

namespace kv {

/// A text of a cell as the row that it means.
struct MeantRow {
  std::string why;  ///< why it means none, in Italian; empty: it does
  Value ID;         ///< as the column of `articoli` stores it
};

/// The names of a catalogue as they were when they were read.
class SheetNames {
 public:
  SheetNames() = default;
  /// Failures as Database::prepare.
  static Result<SheetNames> read(Database& catalogue);

  /// What a cell shows of an ID; empty for an unknown one.
  std::string department(std::string_view ID) const;
  std::string variant(std::int64_t ID) const;

  /// The department of a text: what its cell shows, a path or an ID; case and spaces around ">" don't count.
  MeantRow departmentOf(std::string_view text) const;
  /// The variant of a text: what its cell shows, or a name. No text is the variant that means none.
  MeantRow variantOf(std::string_view text) const;

 private:
  CatalogueNames names_;
};

}  // namespace kv
