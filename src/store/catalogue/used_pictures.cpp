#include "store/catalogue/used_pictures.h"

#include <array>

namespace kv {
namespace {

// One pass over each table reads all its picture columns.
constexpr std::array<std::string_view, 3> pictureQueries{
    "SELECT immagine0, immagine1 FROM generale LIMIT 1",
    "SELECT immagine0, immagine1, immagine1_l2, immagine1_l3, immagine1_l4 FROM categorie",
    "SELECT immagine0, immagine1, immagine2 FROM articoli"};

Result<> addNames(Database& catalogue, std::string_view query, std::vector<std::string>& names) {
  auto rows = catalogue.prepare(query);
  if (!rows) return fail(rows.error());
  for (;;) {
    const auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) return {};
    for (int column = 0; column < rows->columnCount(); ++column) {
      if (const std::string_view name = rows->text(column); !name.empty()) names.emplace_back(name);
    }
  }
}

}  // namespace

Result<std::vector<std::string>> usedPictures(Database& catalogue) {
  std::vector<std::string> names;
  for (const std::string_view query : pictureQueries) {
    if (auto added = addNames(catalogue, query, names); !added) return fail(added.error());
  }
  return names;
}

}  // namespace kv
