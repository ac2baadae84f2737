#include "publish/orders/wire/order_key.h"

#include "platform/files/hexadecimal.h"
#include "store/shop/kept_order_key.h"

namespace kv {
Result<std::string> orderKey(Session& session) { return readOrderKey(session.catalogue); }

Result<std::string> makeOrderKey(Session& session, RandomSource& random) {
  auto present = readOrderKey(session.catalogue);
  if (!present || !present->empty()) return present;
  const std::string key = randomHexadecimal(random, orderKeyDigits);
  if (auto written = writeOrderKey(session.catalogue, key); !written) return fail(written.error());
  return key;
}

}  // namespace kv
