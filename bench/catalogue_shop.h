#pragma once
// A shop whose catalogue alone is measured: every measurement gets a copy of it.

#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv::bench {

/// What fails ends the program, since nothing could be measured then.
class CatalogueShop {
 public:
  /// Makes a shop of four languages below `folder`, and executes statements in its catalogue.
  CatalogueShop(std::string folder, int articles, const std::string& statements);

  /// The folder of the shop.
  std::string shop() const { return folder_ + "/shop"; }
  /// A copy of the catalogue as it was made, open.
  Database fresh() const;
  /// The seconds of bare statements in one transaction on such a copy.
  double bareSeconds(std::string_view statements) const;

 private:
  std::string folder_;
};

}  // namespace kv::bench
