#pragma once
// What papers and charts of orders need of the catalogue: who the shop is, and where its articles are.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// The shop as it signs its papers.
struct ShopSender {
  std::string name;
  std::vector<std::string> lines;  ///< below the name, none of them empty
  std::string logo;                ///< path of the picture; empty where the shop has none
};

/// The name in the first language, then the signature of its mails without that name at its start; then seat, VAT
/// number and register where the signature doesn't hold them. The logo is the normal one, else the small one. Failures
/// as Database::prepare.
Result<ShopSender> readShopSender(Session& session);

/// Titles of departments by the IDs of articles, in the first language. Failures as Database::prepare.
Result<std::map<std::int64_t, std::string>> readArticleDepartments(Database& catalogue);

}  // namespace kv
