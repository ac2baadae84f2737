#pragma once
// What an export tells at its end.

#include <string>
#include <vector>

namespace kv {

/// What went along with the database.
struct MovedPieces {
  std::vector<std::string> pieces;   ///< "il template" and so on, in the order of telling
  std::vector<std::string> scripts;  ///< the scripts exported, by their paths in the shop folder
};

/// The message for an export into `folder`, lines separated by "\n".
std::string exportMessage(const std::string& folder, const MovedPieces& report);

}  // namespace kv
