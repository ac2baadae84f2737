#include "store/exchange/primo_settings.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "store/exchange/primo_rows.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr std::array<std::string_view, 17> kept{"url",        "cartella",      "cgisearch", "cgiordine",   "username",
                                                "password",   "searchusescgi", "hostname",  "servernt",    "folderftp",
                                                "foldercgi",  "perl",          "sendmail",  "cartellacgi", "versione",
                                                "merchantid", "estensione"};
constexpr std::string_view discount = "sconto";

/// "name = the source's value of `from`".
std::string taken(const std::string& name, std::string_view from) {
  return "\"" + name + "\" = (SELECT \"" + std::string(from) + "\" FROM " + std::string(primoSchema) +
         ".generale LIMIT 1)";
}

}  // namespace

bool staysInImport(const std::string& column) { return std::ranges::find(kept, foldCase(column)) != kept.end(); }

bool isTakenOver(const std::string& column) {
  const std::string name = foldCase(column);
  const bool isThreshold = name.starts_with("scimp") || name.starts_with("importo");
  return name != "template" && !isThreshold && !staysInImport(name);
}

Result<> takePrimoSettings(Database& catalogue, const std::vector<std::string>& columns) {
  std::string changes = "template = ''";
  bool hasDiscount = false;
  for (const std::string& column : columns) {
    hasDiscount = hasDiscount || equalsIgnoringCase(column, discount);
    if (isTakenOver(column)) changes += ", " + taken(column, column);
  }
  changes += ", " + (hasDiscount ? taken("scimp", discount) : std::string("scimp = 0"));
  for (const std::string_view suffix : listinoSuffixes) {
    changes += ", importo" + std::string(suffix) + " = 0";
    if (!suffix.empty()) changes += ", scimp" + std::string(suffix) + " = 0";
  }
  return catalogue.execute("UPDATE generale SET " + changes);
}

}  // namespace kv
