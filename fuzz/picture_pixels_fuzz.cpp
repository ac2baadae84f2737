// Pictures of any bytes: their pixels come out whole and of the size that was announced, or not at all.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/image/pixels.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto announced = kv::shownSizeOf(bytes);
  // Large announcements are refused or decoded alike; a fuzzer's time is better spent on small pictures.
  constexpr int mostSide = 512;
  if (announced && (announced->width > mostSide || announced->height > mostSide)) return 0;
  const auto pixels = kv::readPixels(bytes);
  if (!pixels && pixels.error().kind != kv::ErrorKind::Malformed) std::abort();
  if (pixels && (!announced || pixels->size() != *announced)) std::abort();
  return 0;
}
