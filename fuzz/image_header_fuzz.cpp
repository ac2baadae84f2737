// Pictures of any bytes: sizes and the first pixel come out in range or not at all.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/image/image.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto found = kv::imageSizeOf(bytes);
  if (found && (found->width < 1 || found->height < 1)) std::abort();
  if (!found && found.error().kind != kv::ErrorKind::Malformed) std::abort();
  const auto colour = kv::firstPixelOf(bytes);
  // A picture whose pixel can be read has a size.
  if (colour && !found) std::abort();
  return 0;
}
