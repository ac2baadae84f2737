// JPEG by libjpeg-turbo: size, pixels and writing.
#include <algorithm>
#include <cstdlib>
#include <memory>

#include "platform/image/image_codecs.h"
#include "platform/image/jpeg_failures.h"

namespace kv {
namespace {

// A file of a few kilobytes can ask for a picture to be refined thousands of times; cameras and editors use about ten.
constexpr int mostScans = 100;
constexpr int inksPerPixel = 4;

// No object in the routines with setjmp may need a destructor.

bool readJpegHeader(const unsigned char* bytes, unsigned long count, ImageSize* size) {
  jpeg_decompress_struct jpeg;
  JpegFailing failing;
  jpeg.err = prepare(failing);
  if (setjmp(failing.back) != 0) {
    jpeg_destroy_decompress(&jpeg);
    return false;
  }
  openJpeg(jpeg, bytes, count);
  jpeg_read_header(&jpeg, TRUE);
  *size = {static_cast<int>(jpeg.image_width), static_cast<int>(jpeg.image_height)};  // each at most 65500
  jpeg_destroy_decompress(&jpeg);
  return true;
}

void refuseManyScans(j_common_ptr jpeg) {
  if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > mostScans) leaveJpeg(jpeg);
}

// A marker where data should be: libjpeg would fill what is missing with grey.
void refuseMissingData(j_common_ptr jpeg, int) {
  if (jpeg->err->msg_code == JWRN_HIT_MARKER) leaveJpeg(jpeg);
}

// Inks to colours without a profile: paper times ink times black. Files by the maker of the four-ink form hold the
// inks inverted, and say so by a marker of their own.
void inksToColours(const std::uint8_t* inks, int width, bool inverted, std::uint8_t* to) {
  for (int x = 0; x < width; ++x, inks += inksPerPixel, to += 3) {
    for (int channel = 0; channel < 3; ++channel) {
      const int ink = inverted ? inks[2 - channel] : 255 - inks[2 - channel];
      const int black = inverted ? inks[3] : 255 - inks[3];
      to[channel] = static_cast<std::uint8_t>((ink * black + 127) / 255);
    }
  }
}

/// One decoding: the bytes, where the pixels go, and a row of inks for pictures of four of them.
struct JpegRun {
  const unsigned char* bytes;
  unsigned long count;
  PixelBuffer* into;
  std::uint8_t* inks;
};

void readRows(jpeg_decompress_struct& jpeg, const JpegRun& run) {
  const bool isInks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
  jpeg.out_color_space = isInks ? JCS_CMYK : JCS_EXT_BGR;
  jpeg_start_decompress(&jpeg);
  while (jpeg.output_scanline < jpeg.output_height) {
    const int y = static_cast<int>(jpeg.output_scanline);
    JSAMPROW row = isInks ? run.inks : run.into->row(y);
    jpeg_read_scanlines(&jpeg, &row, 1);
    if (isInks) inksToColours(run.inks, run.into->size().width, jpeg.saw_Adobe_marker != 0, run.into->row(y));
  }
}

bool decodeJpeg(const JpegRun& run) {
  jpeg_decompress_struct jpeg;
  JpegFailing failing;
  jpeg_progress_mgr watching{};
  watching.progress_monitor = refuseManyScans;
  jpeg.err = prepare(failing);
  failing.calls.emit_message = refuseMissingData;
  if (setjmp(failing.back) != 0) {
    jpeg_destroy_decompress(&jpeg);
    return false;
  }
  openJpeg(jpeg, run.bytes, run.count);
  jpeg.progress = &watching;
  jpeg_read_header(&jpeg, TRUE);
  readRows(jpeg, run);
  jpeg_destroy_decompress(&jpeg);
  return true;
}

/// The bytes that libjpeg has written; it allocates them by malloc.
struct JpegBytes {
  unsigned char* bytes = nullptr;
  unsigned long count = 0;
};

bool encodeJpeg(const PixelBuffer& pixels, int quality, JpegBytes& made) {
  jpeg_compress_struct jpeg;
  JpegFailing failing;
  jpeg.err = prepare(failing);
  if (setjmp(failing.back) != 0) {
    jpeg_destroy_compress(&jpeg);
    return false;
  }
  jpeg_create_compress(&jpeg);
  jpeg_mem_dest(&jpeg, &made.bytes, &made.count);
  jpeg.image_width = static_cast<JDIMENSION>(pixels.size().width);
  jpeg.image_height = static_cast<JDIMENSION>(pixels.size().height);
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_EXT_BGR;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, quality, TRUE);
  jpeg_start_compress(&jpeg, TRUE);
  for (int y = 0; y < pixels.size().height; ++y) {
    auto* row = const_cast<JSAMPROW>(pixels.row(y));  // libjpeg reads it only
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  return true;
}

const unsigned char* unsignedBytes(std::string_view bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

}  // namespace

Result<ImageSize> jpegSize(std::string_view bytes) {
  ImageSize size;
  if (!readJpegHeader(unsignedBytes(bytes), bytes.size(), &size)) {
    return badPicture("The JPEG's header is damaged or cut off");
  }
  return size;
}

Result<PixelBuffer> jpegPixels(std::string_view bytes) {
  const auto size = jpegSize(bytes);
  if (!size) return fail(size.error());
  auto pixels = PixelBuffer::create(*size);
  if (!pixels) return pixels;
  std::vector<std::uint8_t> inks(static_cast<std::size_t>(size->width) * inksPerPixel);
  if (!decodeJpeg({unsignedBytes(bytes), bytes.size(), &*pixels, inks.data()})) {
    return badPicture("The JPEG is damaged or cut off");
  }
  return pixels;
}

Result<std::string> jpegOf(const PixelBuffer& pixels, int quality) {
  if (pixels.isEmpty()) return badPicture("There is no picture to write");
  JpegBytes made;
  const bool isMade = encodeJpeg(pixels, quality, made);
  const std::unique_ptr<unsigned char, decltype(&std::free)> held(made.bytes, std::free);
  if (!isMade) return badPicture("The picture can't be written as a JPEG");
  return std::string(reinterpret_cast<const char*>(made.bytes), made.count);
}

}  // namespace kv
