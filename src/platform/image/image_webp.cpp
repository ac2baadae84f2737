// WebP by libwebp: size and pixels. The container is opened first, because an animation is a row of whole pictures.
#include <webp/decode.h>
#include <webp/demux.h>
#include <webp/encode.h>

#include <algorithm>
#include <memory>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

struct DemuxEnd {
  void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};
struct PixelsEnd {
  void operator()(std::uint8_t* pixels) const { WebPFree(pixels); }
};

/// A frame of the container, let go of at the end.
struct FirstFrame {
  WebPIterator at{};
  FirstFrame() = default;
  FirstFrame(const FirstFrame&) = delete;
  FirstFrame& operator=(const FirstFrame&) = delete;
  ~FirstFrame() { WebPDemuxReleaseIterator(&at); }
};

const std::uint8_t* webpData(std::string_view bytes) { return reinterpret_cast<const std::uint8_t*>(bytes.data()); }

void makeWhite(PixelBuffer& pixels) { std::fill_n(pixels.data(), pixels.byteCount(), std::uint8_t{255}); }

/// Lays the frame where it belongs on the canvas, cut at its edges.
void layFrame(const WebPIterator& frame, const std::uint8_t* from, PixelBuffer& canvas) {
  const ImageSize size = canvas.size();
  const int width = std::min(frame.width, size.width - frame.x_offset);
  const int height = std::min(frame.height, size.height - frame.y_offset);
  if (width < 1) return;
  for (int y = 0; y < height; ++y) {
    const std::size_t at = static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.width) * 4;
    layOnWhite(from + at, width, canvas.row(frame.y_offset + y) + static_cast<std::ptrdiff_t>(frame.x_offset) * 3);
  }
}

}  // namespace

Result<ImageSize> webpSize(std::string_view bytes) {
  WebPBitstreamFeatures features;
  if (WebPGetFeatures(webpData(bytes), bytes.size(), &features) != VP8_STATUS_OK || features.width < 1 ||
      features.height < 1) {
    return badPicture("The WebP's header is damaged or cut off");
  }
  return ImageSize{features.width, features.height};  // each at most 2 to the power of 24
}

Result<PixelBuffer> webpPixels(std::string_view bytes) {
  const auto size = webpSize(bytes);
  if (!size) return fail(size.error());
  auto canvas = PixelBuffer::create(*size);
  if (!canvas) return canvas;
  const WebPData data{webpData(bytes), bytes.size()};
  const std::unique_ptr<WebPDemuxer, DemuxEnd> demuxer(WebPDemux(&data));
  FirstFrame frame;
  if (!demuxer || WebPDemuxGetFrame(demuxer.get(), 1, &frame.at) == 0 || frame.at.complete == 0) {
    return badPicture("The WebP is damaged or cut off");
  }
  ImageSize decoded;
  const std::unique_ptr<std::uint8_t, PixelsEnd> pixels(
      WebPDecodeBGRA(frame.at.fragment.bytes, frame.at.fragment.size, &decoded.width, &decoded.height));
  if (!pixels || decoded.width != frame.at.width || decoded.height != frame.at.height) {
    return badPicture("The WebP is damaged or cut off");
  }
  makeWhite(*canvas);
  layFrame(frame.at, pixels.get(), *canvas);
  return canvas;
}

// libwebp reads rows from the top down; a step backwards from the last row in memory does so.
Result<std::string> webpOf(const PixelBuffer& pixels, int quality) {
  if (pixels.isEmpty()) return badPicture("There is no picture to write");
  std::uint8_t* made = nullptr;
  const std::size_t count = WebPEncodeBGR(pixels.row(0), pixels.size().width, pixels.size().height,
                                          -static_cast<int>(pixels.rowBytes()), static_cast<float>(quality), &made);
  const std::unique_ptr<std::uint8_t, PixelsEnd> held(made);
  if (count == 0) return badPicture("The picture can't be written as a WebP");
  return std::string(reinterpret_cast<const char*>(made), count);
}

bool isOpaqueStillWebp(std::string_view bytes) {
  WebPBitstreamFeatures features;
  if (WebPGetFeatures(webpData(bytes), bytes.size(), &features) != VP8_STATUS_OK) return false;
  return features.has_alpha == 0 && features.has_animation == 0;
}

}  // namespace kv
