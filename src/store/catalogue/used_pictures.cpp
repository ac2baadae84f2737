#include "store/catalogue/used_pictures.h"

#include <array>
#include <string>
#include <vector>

#include "platform/files/files.h"
#include "platform/files/listing.h"

namespace kv {
namespace {

// One pass over each table reads all its picture columns.
constexpr std::array<std::string_view, 3> pictureQueries{
    "SELECT immagine0, immagine1 FROM generale LIMIT 1",
    "SELECT immagine0, immagine1, immagine1_l2, immagine1_l3, immagine1_l4 FROM categorie",
    "SELECT immagine0, immagine1, immagine2 FROM articoli"};

/// The clipboard is no part of the shop.
Result<std::vector<std::string>> tablesWithTexts(Database& catalogue) {
  std::vector<std::string> names;
  auto rows = catalogue.prepare(
      "SELECT name FROM sqlite_master WHERE type = 'table' AND substr(name, 1, 7) <> 'sqlite_' AND substr(name, 1, 4) "
      "<> 'clip'");
  if (!rows) return fail(rows.error());
  for (;;) {
    const auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) return names;
    names.emplace_back(rows->text(0));
  }
}

Result<> readNames(Database& catalogue, std::string_view query,
                   const std::function<void(std::string_view name)>& read) {
  auto rows = catalogue.prepare(query);
  if (!rows) return fail(rows.error());
  for (;;) {
    const auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) return {};
    for (int column = 0; column < rows->columnCount(); ++column) {
      if (const std::string_view name = rows->text(column); !name.empty()) read(name);
    }
  }
}

}  // namespace

Result<> usedPictures(Database& catalogue, const std::function<void(std::string_view name)>& read) {
  for (const std::string_view query : pictureQueries) {
    if (auto done = readNames(catalogue, query, read); !done) return done;
  }
  return {};
}

Result<> readAllTexts(Database& catalogue, const std::function<void(std::string_view text)>& read) {
  const auto tables = tablesWithTexts(catalogue);
  if (!tables) return fail(tables.error());
  for (const std::string& table : *tables) {
    auto rows = catalogue.prepare("SELECT * FROM \"" + table + "\"");
    if (!rows) return fail(rows.error());
    for (;;) {
      const auto row = rows->step();
      if (!row) return fail(row.error());
      if (!*row) break;
      for (int column = 0; column < rows->columnCount(); ++column) read(rows->text(column));
    }
  }
  return {};
}

Result<> readTemplateTexts(const std::string& package, const std::function<void(std::string_view text)>& read) {
  Result<> all;
  for (const char* pattern : {"*.htm", "*.html", "*.part", "*.php", "*.js", "*.css", "*.ini"}) {
    const auto names = readFileNames(package, pattern);
    if (!names) return fail(names.error());
    for (const std::string& name : *names) {
      const auto text = readBytes(joinPath(package, name));
      text ? read(*text) : void(all = fail(text.error()));
    }
  }
  return all;
}

}  // namespace kv
