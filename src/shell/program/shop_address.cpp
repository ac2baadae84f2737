#include "shell/program/shop_address.h"

#include "builder/values/link_naming.h"

namespace kv {

std::string shopAddress(Session& session) {
  const auto generale = firstRow(session.catalogue, "SELECT * FROM generale");
  return generale ? URLNegozio(*generale) : std::string();
}

}  // namespace kv
