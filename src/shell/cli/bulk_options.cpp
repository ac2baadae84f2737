#include "shell/cli/bulk_options.h"

#include <algorithm>

namespace kv {
namespace {

constexpr std::string_view prices = " prices ";
constexpr std::string_view lists = " replicate-list ";
constexpr std::string_view languages = " replicate-language ";
constexpr std::string_view pricesAndLists = " prices replicate-list ";
constexpr std::string_view both = " replicate-list replicate-language ";
constexpr std::string_view all = " prices replicate-list replicate-language upgrade ";

constexpr std::array<std::string_view, 4> partNames{"shop", "departments", "articles", "variants"};

/// Calls `take` with each part of "0,3,7"; false when one is refused, or empty.
template <class Take>
bool eachPart(std::string_view text, const Take& take) {
  for (;;) {
    const std::size_t comma = text.find(',');
    if (!take(text.substr(0, comma))) return false;
    if (comma == std::string_view::npos) return true;
    text.remove_prefix(comma + 1);
  }
}

bool takeLists(PriceLists& ticked, std::string_view value) {
  return eachPart(value, [&](std::string_view part) {
    if (part.size() != 1 || part[0] < '0' || part[0] > '9') return false;
    ticked[static_cast<std::size_t>(part[0] - '0')] = true;
    return true;
  });
}

bool takeParts(BulkOptions& options, std::string_view value) {
  return eachPart(value, [&](std::string_view part) {
    const auto found = std::ranges::find(partNames, part);
    if (found == partNames.end()) return false;
    options.parts[static_cast<std::size_t>(found - partNames.begin())] = true;
    return true;
  });
}

bool takeFrom(BulkOptions& options, std::string_view value) {
  if (value.size() != 1 || value[0] < '0' || value[0] > '9') return false;
  options.from = value[0] - '0';
  return true;
}

template <bool BulkOptions::*flag>
bool takeFlag(BulkOptions& options, std::string_view /*value*/) {
  options.*flag = true;
  return true;
}

template <std::string BulkOptions::*text>
bool takeText(BulkOptions& options, std::string_view value) {
  options.*text = value;
  return true;
}

constexpr BulkOption known[] = {
    {"--dry-run", false, all, takeFlag<&BulkOptions::dryRun>},
    {"--percent", true, pricesAndLists, takeText<&BulkOptions::percent>},
    {"--list", true, prices,
     [](BulkOptions& options, std::string_view value) { return takeLists(options.lists, value); }},
    {"--department", true, prices, takeText<&BulkOptions::department>},
    {"--from", true, both, takeFrom},
    {"--to", true, both, [](BulkOptions& options, std::string_view value) { return takeLists(options.to, value); }},
    {"--what", true, languages, takeParts},
    {"--offers", false, pricesAndLists, takeFlag<&BulkOptions::offers>},
    {"--variants", false, pricesAndLists, takeFlag<&BulkOptions::variants>},
    {"--round", false, pricesAndLists, takeFlag<&BulkOptions::round>},
    {"--quantity-discounts", false, lists, takeFlag<&BulkOptions::quantityDiscounts>},
    {"--department-discounts", false, lists, takeFlag<&BulkOptions::departmentDiscounts>},
    {"--restrictions", false, lists, takeFlag<&BulkOptions::restrictions>},
    {"--only-empty", false, languages, takeFlag<&BulkOptions::onlyEmpty>}};

bool isCommand(std::string_view command, std::string_view commands) {
  return commands.find(" " + std::string(command) + " ") != std::string_view::npos;
}

}  // namespace

const BulkOption* bulkOption(std::string_view name) {
  const auto* const found = std::ranges::find(known, name, &BulkOption::name);
  return found == std::end(known) ? nullptr : found;
}

bool knowsOption(std::string_view command, const BulkOption& option) { return isCommand(command, option.commands); }

std::vector<std::string> bulkOptionsOf(std::string_view command) {
  std::vector<std::string> spellings;
  for (const BulkOption& option : known) {
    if (knowsOption(command, option)) spellings.push_back(std::string(option.name) + (option.hasValue ? "=" : ""));
  }
  return spellings;
}

std::string missingOption(std::string_view command, const BulkOptions& options) {
  if (isCommand(command, prices)) {
    if (options.percent.empty()) return "--percent";
    return options.lists == PriceLists{} ? "--list" : "";
  }
  if (!isCommand(command, both)) return {};
  if (options.from < 0) return "--from";
  if (options.to == PriceLists{}) return "--to";
  return isCommand(command, languages) && options.parts == std::array<bool, 4>{} ? "--what" : "";
}

}  // namespace kv
