#include "shell/sheet/sheet_names.h"

#include <charconv>

#include "commerce/variants/variant_editor.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view formerKept = ": è rimasto il valore precedente.";

std::string withID(std::string_view name, std::string_view ID) {
  return std::string(name) + (name.empty() ? "[" : " [") + std::string(ID) + "]";
}

/// The ID in the brackets that a text ends with; empty where it has none.
std::string_view bracketedID(std::string_view text) {
  const std::size_t open = text.rfind('[');
  if (open == std::string_view::npos || !text.ends_with(']')) return {};
  return text.substr(open + 1, text.size() - open - 2);
}

std::int64_t numberOf(std::string_view digits) {
  std::int64_t number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return read.ptr == digits.data() + digits.size() ? number : 0;
}

/// Why a name that was looked up means no row; empty where it means one.
std::string whyNot(const CatalogueName& found, const std::string& what) {
  if (found.isAmbiguous) return "C'è più volte " + what + std::string(formerKept);
  return found.ID.empty() ? "Non c'è " + what + std::string(formerKept) : "";
}

}  // namespace

Result<SheetNames> SheetNames::read(Database& catalogue) {
  auto names = CatalogueNames::read(catalogue);
  if (!names) return fail(names.error());
  SheetNames all;
  all.names_ = std::move(*names);
  return all;
}

std::string SheetNames::department(std::string_view ID) const {
  const std::string_view path = names_.pathOf(ID);
  return names_.department(path).isAmbiguous ? withID(path, ID) : std::string(path);
}

std::string SheetNames::variant(std::int64_t ID) const {
  if (!names_.hasVariant(ID)) return {};
  const std::string_view name = names_.variantName(ID);
  return name.empty() || names_.variant(name).isAmbiguous ? withID(name, std::to_string(ID)) : std::string(name);
}

MeantRow SheetNames::departmentOf(std::string_view text) const {
  const std::string_view ID = bracketedID(trim(text));
  if (!ID.empty() && department(ID) == trim(text)) return {{}, std::string(ID)};
  CatalogueName found = names_.department(text);
  return {whyNot(found, "il reparto \"" + std::string(text) + "\""), std::move(found.ID)};
}

MeantRow SheetNames::variantOf(std::string_view text) const {
  text = trim(text);
  if (text.empty()) return {{}, noVariantID};
  const std::int64_t ID = numberOf(bracketedID(text));
  if (ID != 0 && variant(ID) == text) return {{}, ID};
  const CatalogueName found = names_.variant(text);
  return {whyNot(found, "la variante \"" + std::string(text) + "\""), numberOf(found.ID)};
}

}  // namespace kv
