#pragma once
// The options of the commands that change many rows, as they are read from the arguments.

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "commerce/prices/price_survey.h"
#include "platform/ports/result.h"

namespace kv {

/// What the options of one run say. Each command reads its own.
struct BulkOptions {
  bool dryRun = false;          ///< the preview is printed, and nothing changes
  std::string percent;          ///< as typed; empty: not given
  PriceLists lists{};           ///< --list
  std::string department;       ///< ID; empty: all
  int from = -1;                ///< price list or language; -1: not given
  PriceLists to{};              ///< price lists, or the one language
  std::array<bool, 4> parts{};  ///< --what, in the order of the boxes of the dialog
  bool offers = false;
  bool variants = false;
  bool round = false;
  bool quantityDiscounts = false;
  bool departmentDiscounts = false;
  bool restrictions = false;
  bool onlyEmpty = false;
};

/// One option: which of the commands know it, and how it is read.
struct BulkOption {
  std::string_view name;  ///< "--percent"
  bool hasValue = false;
  std::string_view commands;  ///< their names, each between spaces
  /// Takes the value; false when it is none.
  bool (*take)(BulkOptions& options, std::string_view value) = nullptr;
};

/// The option of this name; null when there is none.
const BulkOption* bulkOption(std::string_view name);
/// Whether a command knows an option.
bool knowsOption(std::string_view command, const BulkOption& option);
/// The options of a command as they are typed, those with a value with "=" at the end.
std::vector<std::string> bulkOptionsOf(std::string_view command);
/// What is missing for a command, in Italian; empty when nothing is.
std::string missingOption(std::string_view command, const BulkOptions& options);

}  // namespace kv
