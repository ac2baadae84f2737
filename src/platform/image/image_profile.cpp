// The colours of a picture that brings a profile of its own, brought to those of a screen (sRGB) by Little CMS.
// Browsers do the same; a JPEG that is written here carries no profile, and would show other colours.
#include <lcms2.h>
#include <webp/demux.h>

#include <cstdlib>
#include <memory>

#include "platform/image/image_codecs.h"
#include "platform/image/jpeg_failures.h"

namespace kv {
namespace {

struct ProfileEnd {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileEnd>;
struct TransformEnd {
  void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

constexpr int profileMarker = JPEG_APP0 + 2;
constexpr unsigned longestMarker = 0xFFFF;

/// A profile as libjpeg gives it, allocated by malloc.
struct ProfileBytes {
  JOCTET* bytes = nullptr;
  unsigned count = 0;
};

// No object in the routine with setjmp may need a destructor.
bool readJpegProfile(const unsigned char* bytes, unsigned long count, ProfileBytes& found) {
  jpeg_decompress_struct jpeg;
  JpegFailing failing;
  jpeg.err = prepare(failing);
  if (setjmp(failing.back) != 0) {
    jpeg_destroy_decompress(&jpeg);
    return false;
  }
  openJpeg(jpeg, bytes, count);
  jpeg_save_markers(&jpeg, profileMarker, longestMarker);
  jpeg_read_header(&jpeg, TRUE);
  const bool isRgb = jpeg.num_components == 3;
  const bool isFound = isRgb && jpeg_read_icc_profile(&jpeg, &found.bytes, &found.count) != 0;
  jpeg_destroy_decompress(&jpeg);
  return isFound;
}

std::string jpegProfile(std::string_view bytes) {
  ProfileBytes found;
  const bool isFound = readJpegProfile(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), found);
  const std::unique_ptr<JOCTET, decltype(&std::free)> held(found.bytes, std::free);
  return isFound ? std::string(reinterpret_cast<const char*>(found.bytes), found.count) : std::string();
}

std::string webpProfile(std::string_view bytes) {
  const WebPData data{reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
  const std::unique_ptr<WebPDemuxer, decltype(&WebPDemuxDelete)> demuxer(WebPDemux(&data), WebPDemuxDelete);
  WebPChunkIterator chunk;
  if (!demuxer || WebPDemuxGetChunk(demuxer.get(), "ICCP", 1, &chunk) == 0) return {};
  std::string profile(reinterpret_cast<const char*>(chunk.chunk.bytes), chunk.chunk.size);
  WebPDemuxReleaseChunkIterator(&chunk);
  return profile;
}

std::string profileOf(std::string_view bytes) {
  switch (pictureKind(bytes)) {
    case PictureKind::Jpeg:
      return jpegProfile(bytes);
    case PictureKind::Webp:
      return webpProfile(bytes);
    case PictureKind::Png:
      return pngProfile(bytes);
    default:
      return {};
  }
}

/// Whether a profile says that it is that of screens: a conversion would change colours by rounding alone.
bool isScreenProfile(void* profile) {
  char name[64] = {};
  cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", name, sizeof name);
  return std::string_view(name).find("sRGB") != std::string_view::npos;
}

}  // namespace

void toScreenColours(PixelBuffer& pixels, std::string_view bytes) {
  const std::string own = profileOf(bytes);
  if (own.empty()) return;
  cmsSetLogErrorHandler([](cmsContext, cmsUInt32Number, const char*) {});
  const Profile from(cmsOpenProfileFromMem(own.data(), static_cast<cmsUInt32Number>(own.size())));
  if (!from || cmsGetColorSpace(from.get()) != cmsSigRgbData || isScreenProfile(from.get())) return;
  const Profile to(cmsCreate_sRGBProfile());
  const std::unique_ptr<void, TransformEnd> transform(
      cmsCreateTransform(from.get(), TYPE_BGR_8, to.get(), TYPE_BGR_8, INTENT_RELATIVE_COLORIMETRIC, 0));
  if (!transform) return;
  for (int y = 0; y < pixels.size().height; ++y) {
    cmsDoTransform(transform.get(), pixels.row(y), pixels.row(y), static_cast<cmsUInt32Number>(pixels.size().width));
  }
}

}  // namespace kv
