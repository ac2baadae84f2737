#include "publish/orders/order_key.h"

#include "store/shop/kept_order_key.h"

namespace kv {
namespace {

constexpr std::string_view keyDigits = "0123456789abcdef";

std::string freshOrderKey(RandomSource& random) {
  std::string key;
  while (key.size() < orderKeyDigits) key += keyDigits[random.below(keyDigits.size())];
  return key;
}

}  // namespace

Result<std::string> orderKey(Session& session) { return readOrderKey(session.catalogue); }

Result<std::string> makeOrderKey(Session& session, RandomSource& random) {
  auto present = readOrderKey(session.catalogue);
  if (!present || !present->empty()) return present;
  const std::string key = freshOrderKey(random);
  if (auto written = writeOrderKey(session.catalogue, key); !written) return fail(written.error());
  return key;
}

}  // namespace kv
