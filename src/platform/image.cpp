#include "platform/image.h"

#include <limits>

#include "platform/byte_reader.h"
#include "platform/files.h"

namespace kv {
namespace {

constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n";
constexpr std::string_view jpegMark = "\xFF\xD8";

tl::unexpected<Error> malformed(const char* what) { return fail(ErrorKind::Malformed, "picture", what); }

Result<ImageSize> checkedSize(const ByteReader& reader, std::uint32_t width, std::uint32_t height) {
  constexpr auto most = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
  if (reader.failed()) return malformed("The header is cut off");
  if (width == 0 || height == 0 || width > most || height > most) return malformed("The size is out of range");
  return ImageSize{static_cast<int>(width), static_cast<int>(height)};
}

// Source: GIF89a (CompuServe, 1990), section 18.
Result<ImageSize> gifSize(std::string_view bytes) {
  ByteReader reader(bytes);
  reader.skip(6);
  const std::uint32_t width = reader.u16Little();
  const std::uint32_t height = reader.u16Little();
  return checkedSize(reader, width, height);
}

// Source: RFC 2083, section 4.1.1.
Result<ImageSize> pngSize(std::string_view bytes) {
  ByteReader reader(bytes);
  reader.skip(pngMark.size() + 4);
  if (reader.take(4) != "IHDR") return malformed("The PNG has no header");
  const std::uint32_t width = reader.u32Big();
  const std::uint32_t height = reader.u32Big();
  return checkedSize(reader, width, height);
}

// Two kinds of header: 12 bytes with 16-bit sizes, 40 and more with signed 32-bit ones, of which a negative height
// says that the rows come from top to bottom.
Result<ImageSize> bmpSize(std::string_view bytes) {
  constexpr std::uint32_t oldHeader = 12, smallestHeader = 40, signBit = 0x80000000U;
  ByteReader reader(bytes);
  reader.skip(14);
  const std::uint32_t header = reader.u32Little();
  if (header != oldHeader && header < smallestHeader) return malformed("The BMP has no header");
  const bool isOld = header == oldHeader;
  const std::uint32_t width = isOld ? reader.u16Little() : reader.u32Little();
  std::uint32_t height = isOld ? reader.u16Little() : reader.u32Little();
  if ((height & signBit) != 0) height = 0U - height;
  return checkedSize(reader, width, height);
}

bool isFrameHeader(std::uint32_t marker) {
  constexpr std::uint32_t huffmanTables = 0xC4, reserved = 0xC8, arithmeticTables = 0xCC;
  return marker >= 0xC0 && marker <= 0xCF && marker != huffmanTables && marker != reserved &&
         marker != arithmeticTables;
}

// Goes from marker to marker up to the first frame header.
// Source: ITU-T T.81, annex B.
Result<ImageSize> jpegSize(std::string_view bytes) {
  constexpr std::uint32_t scan = 0xDA, imageEnd = 0xD9;
  ByteReader reader(bytes);
  reader.skip(jpegMark.size());
  while (!reader.failed()) {
    if (reader.u8() != 0xFF) break;
    std::uint32_t marker = reader.u8();
    while (marker == 0xFF) marker = reader.u8();
    if (marker == scan || marker == imageEnd) break;
    const bool standsAlone = marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
    if (standsAlone) continue;
    const std::uint32_t length = reader.u16Big();
    if (length < 2) break;
    if (!isFrameHeader(marker)) {
      reader.skip(length - 2);
      continue;
    }
    reader.skip(1);
    const std::uint32_t height = reader.u16Big();
    const std::uint32_t width = reader.u16Big();
    return checkedSize(reader, width, height);
  }
  return malformed("The JPEG has no frame");
}

Error at(const std::string& path, Error error) {
  error.where = path;
  return error;
}

}  // namespace

Result<ImageSize> imageSizeOf(std::string_view bytes) {
  if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a")) return gifSize(bytes);
  if (bytes.starts_with(jpegMark)) return jpegSize(bytes);
  if (bytes.starts_with(pngMark)) return pngSize(bytes);
  if (bytes.starts_with("BM")) return bmpSize(bytes);
  return malformed("Neither GIF, JPEG, PNG nor BMP");
}

Result<ImageSize> imageSize(const std::string& path) {
  const auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  auto size = imageSizeOf(*bytes);
  if (!size) return fail(at(path, size.error()));
  return size;
}

Result<Colour> firstPixel(const std::string& path) {
  const auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  auto colour = firstPixelOf(*bytes);
  if (!colour) return fail(at(path, colour.error()));
  return colour;
}

}  // namespace kv
