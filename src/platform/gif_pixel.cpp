// The first pixel of a GIF. The first code of its data that isn't "clear" stands for one pixel as it is, so that
// no table of codes has to be built and a damaged or huge picture costs nothing.
// Source: GIF89a (CompuServe, 1990), sections 18 to 22 and appendix F.
#include "platform/byte_reader.h"
#include "platform/image.h"

namespace kv {
namespace {

constexpr std::uint32_t mostPixels = 64U * 1000U * 1000U;
constexpr std::uint32_t tableFlag = 0x80, tableSizeBits = 0x07;

tl::unexpected<Error> malformed(const char* what) { return fail(ErrorKind::Malformed, "picture", what); }

// The colour table that follows a header with these flags; empty when none does.
std::string_view takeTable(ByteReader& reader, std::uint32_t flags) {
  if ((flags & tableFlag) == 0) return {};
  return reader.take(std::size_t{3} << ((flags & tableSizeBits) + 1));
}

Result<Colour> colourIn(std::string_view table, std::uint32_t index) {
  ByteReader reader(table);
  reader.skip(std::size_t{3} * index);
  Colour colour;
  colour.red = static_cast<std::uint8_t>(reader.u8());
  colour.green = static_cast<std::uint8_t>(reader.u8());
  colour.blue = static_cast<std::uint8_t>(reader.u8());
  if (reader.failed()) return malformed("The GIF has no such colour");
  return colour;
}

void skipExtension(ByteReader& reader) {
  reader.skip(1);
  while (const std::uint32_t length = reader.u8()) reader.skip(length);
}

// Codes out of the pieces that the data of a frame come in, lowest bit first.
class CodeReader {
 public:
  explicit CodeReader(ByteReader& reader) : reader_(reader) {}

  std::uint32_t next(unsigned width) {
    while (count_ < width && !reader_.failed()) {
      if (left_ == 0) left_ = reader_.u8();
      if (left_ == 0) break;  // the end of the data
      bits_ |= reader_.u8() << count_;
      count_ += 8;
      --left_;
    }
    if (count_ < width) ended_ = true;
    if (ended_) return 0;
    const std::uint32_t code = bits_ & ((1U << width) - 1U);
    bits_ >>= width;
    count_ -= width;
    return code;
  }
  bool ended() const { return ended_ || reader_.failed(); }

 private:
  ByteReader& reader_;
  std::uint32_t left_ = 0;  // bytes of the piece
  std::uint32_t bits_ = 0;
  unsigned count_ = 0;
  bool ended_ = false;
};

Result<std::uint32_t> firstIndex(ByteReader& reader) {
  const std::uint32_t codeSize = reader.u8();
  if (codeSize < 1 || codeSize > 8) return malformed("The GIF has no such code size");
  const std::uint32_t clear = 1U << codeSize;
  CodeReader codes(reader);
  std::uint32_t code = clear;
  while (code == clear && !codes.ended()) code = codes.next(codeSize + 1);
  if (codes.ended() || code > clear) return malformed("The GIF has no first pixel");
  return code;
}

// Reads a frame from behind its mark. `screen` tells what stands where the frame doesn't reach.
struct Screen {
  std::string_view table;
  std::uint32_t background = 0;
};
Result<Colour> cornerOfFrame(ByteReader& reader, const Screen& screen) {
  const std::uint32_t left = reader.u16Little(), top = reader.u16Little();
  const std::uint32_t width = reader.u16Little(), height = reader.u16Little();
  const std::string_view own = takeTable(reader, reader.u8());
  if (reader.failed() || width == 0 || height == 0) return malformed("The GIF has a frame without a size");
  if (width * height > mostPixels) return malformed("The GIF is too large");
  const auto index = firstIndex(reader);
  if (!index) return fail(index.error());
  if (left != 0 || top != 0) return colourIn(screen.table, screen.background);
  return colourIn(own.empty() ? screen.table : own, *index);
}

}  // namespace

Result<Colour> firstPixelOf(std::string_view bytes) {
  if (!bytes.starts_with("GIF87a") && !bytes.starts_with("GIF89a")) return malformed("No GIF");
  ByteReader reader(bytes);
  reader.skip(6);
  const std::uint32_t width = reader.u16Little(), height = reader.u16Little();
  if (width == 0 || height == 0) return malformed("The GIF has no size");
  if (width * height > mostPixels) return malformed("The GIF is too large");
  const std::uint32_t flags = reader.u8();
  Screen screen;
  screen.background = reader.u8();
  reader.skip(1);
  screen.table = takeTable(reader, flags);
  while (!reader.failed()) {
    constexpr std::uint32_t frame = 0x2C, extension = 0x21;
    const std::uint32_t mark = reader.u8();
    if (mark == frame) return cornerOfFrame(reader, screen);
    if (mark != extension) break;
    skipExtension(reader);
  }
  return malformed("The GIF has no frame");
}

}  // namespace kv
