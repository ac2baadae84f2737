// Photos of any bytes: what is left of one without its location tells none, and shows what it showed before.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/image/photo_location.h"
#include "platform/image/pixels.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto plain = kv::withoutLocation(bytes);
  if (!plain) return 0;
  if (kv::tellsLocation(*plain)) std::abort();
  // A note of any length goes; one of 36 bytes may be added for the turn.
  if (plain->size() > size + 36) std::abort();
  const auto before = kv::shownSizeOf(bytes), after = kv::shownSizeOf(*plain);
  if (before && after && *before != *after) std::abort();
  return 0;
}
