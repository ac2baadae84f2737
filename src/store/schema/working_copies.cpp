#include "store/schema/working_copies.h"

#include <algorithm>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view copyPrefix = "temp";

template <class Tables>
bool holdsCopied(const Tables& tables, std::string_view name) {
  return std::ranges::any_of(tables, [&](std::string_view table) { return equalsIgnoringCase(table, name); });
}

}  // namespace

std::string workingCopyOf(std::string_view table) { return std::string(copyPrefix) + std::string(table); }

bool isWorkingCopy(std::string_view table) {
  if (!startsWithIgnoringCase(table, copyPrefix)) return false;
  const std::string_view original = table.substr(copyPrefix.size());
  return holdsCopied(shippingTables, original) || holdsCopied(variantTables, original);
}

Result<> dropWorkingCopies(Database& catalogue) {
  std::string statements;
  const auto drop = [&](std::string_view table) {
    statements += "DROP TABLE IF EXISTS [" + workingCopyOf(table) + "];";
  };
  std::ranges::for_each(shippingTables, drop);
  std::ranges::for_each(variantTables, drop);
  return catalogue.execute(statements);
}

}  // namespace kv
