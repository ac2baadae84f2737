// PNG by libpng: size and pixels. The rows are read one at a time; only an interlaced picture is held whole before it
// is laid on white.
#include <png.h>

#include <algorithm>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

constexpr std::size_t fourChannels = 4;
constexpr std::size_t interlaceOffset = 28;  // of the file, in the header that comes first

/// One decoding: the bytes that are left, where the pixels go, and rows of four channels.
struct PngRun {
  std::string_view rest;
  PixelBuffer* into;
  std::uint8_t* rows;
  bool isWhole;  ///< `rows` has room for all rows, else for one
};

void takePngBytes(png_structp png, png_bytep to, std::size_t count) {
  auto& run = *static_cast<PngRun*>(png_get_io_ptr(png));
  if (run.rest.size() < count) png_error(png, "cut off");
  std::copy_n(run.rest.begin(), count, to);
  run.rest.remove_prefix(count);
}

[[noreturn]] void leavePng(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void keepPngSilent(png_structp, png_const_charp) {}

// Whatever the file holds, rows come as blue, green, red and opacity, a byte each.
void askForFourBytes(png_structp png) {
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  png_set_bgr(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
}

void readPngRows(png_structp png, png_infop info, const PngRun& run) {
  png_read_info(png, info);
  askForFourBytes(png);
  const int passes = png_set_interlace_handling(png);
  png_read_update_info(png, info);
  const ImageSize size = run.into->size();
  const std::size_t rowBytes = static_cast<std::size_t>(size.width) * fourChannels;
  if (png_get_rowbytes(png, info) != rowBytes || (passes > 1 && !run.isWhole)) png_error(png, "another form");
  for (int pass = 1; pass <= passes; ++pass) {
    for (int y = 0; y < size.height; ++y) {
      std::uint8_t* row = run.isWhole ? run.rows + rowBytes * static_cast<std::size_t>(y) : run.rows;
      png_read_row(png, row, nullptr);
      if (pass == passes) layOnWhite(row, size.width, run.into->row(y));
    }
  }
}

// libpng reports a failure by a jump, on whose way no destructor runs: no object in here may need one.
bool decodePng(PngRun& run) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, leavePng, keepPngSilent);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
  if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &run, takePngBytes);
  readPngRows(png, info, run);
  png_read_end(png, nullptr);  // a file that was cut off after its pixels is cut off
  png_destroy_read_struct(&png, &info, nullptr);
  return true;
}

/// A profile as libpng holds it until the reader is destroyed, copied out before.
struct PngProfile {
  std::string_view rest;
  std::string* into;
};

void takePngStart(png_structp png, png_bytep to, std::size_t count) {
  auto& profile = *static_cast<PngProfile*>(png_get_io_ptr(png));
  if (profile.rest.size() < count) png_error(png, "cut off");
  std::copy_n(profile.rest.begin(), count, to);
  profile.rest.remove_prefix(count);
}

void readPngProfile(PngProfile& profile) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, leavePng, keepPngSilent);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
  if (info != nullptr && setjmp(png_jmpbuf(png)) == 0) {
    png_set_read_fn(png, &profile, takePngStart);
    png_read_info(png, info);
    png_charp name = nullptr;
    png_bytep bytes = nullptr;
    png_uint_32 count = 0;
    int method = 0;
    if (png_get_iCCP(png, info, &name, &method, &bytes, &count) != 0) {
      profile.into->assign(reinterpret_cast<const char*>(bytes), count);
    }
  }
  png_destroy_read_struct(&png, &info, nullptr);
}

}  // namespace

std::string pngProfile(std::string_view bytes) {
  std::string found;
  PngProfile profile{bytes, &found};
  readPngProfile(profile);
  return found;
}

Result<ImageSize> pngSize(std::string_view bytes) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0) {
    return badPicture("The PNG's header is damaged or cut off");
  }
  const ImageSize size{static_cast<int>(png.width), static_cast<int>(png.height)};  // each at most a million
  png_image_free(&png);
  return size;
}

Result<PixelBuffer> pngPixels(std::string_view bytes) {
  const auto size = pngSize(bytes);
  if (!size) return fail(size.error());
  auto pixels = PixelBuffer::create(*size);
  if (!pixels) return pixels;
  const bool isInterlaced = bytes.size() > interlaceOffset && bytes[interlaceOffset] != 0;
  const std::size_t rowCount = isInterlaced ? static_cast<std::size_t>(size->height) : 1;
  std::vector<std::uint8_t> rows(rowCount * static_cast<std::size_t>(size->width) * fourChannels);
  PngRun run{bytes, &*pixels, rows.data(), isInterlaced};
  if (!decodePng(run)) return badPicture("The PNG is damaged or cut off");
  return pixels;
}

}  // namespace kv
