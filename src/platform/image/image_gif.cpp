// GIF by giflib, record by record: reading a whole file with it would decode every frame, and one pixel is enough.
#include <gif_lib.h>

#include <algorithm>
#include <memory>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

constexpr std::uint32_t mostPixels = 64U * 1000U * 1000U;

// giflib's reading function: removes bytes from the start of the text that it was opened with.
int takeBytes(GifFileType* gif, GifByteType* to, int count) {
  auto& rest = *static_cast<std::string_view*>(gif->UserData);
  const std::size_t taken = std::min(rest.size(), static_cast<std::size_t>(count));
  std::copy_n(rest.begin(), taken, to);
  rest.remove_prefix(taken);
  return static_cast<int>(taken);
}

struct Closing {
  void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using OpenGif = std::unique_ptr<GifFileType, Closing>;

// Reads up to and with the palette of the whole picture. `rest` must outlive the result.
OpenGif openGif(std::string_view& rest) { return OpenGif(DGifOpen(&rest, takeBytes, nullptr)); }

bool isTooLarge(int width, int height) {  // each at most 65535
  return static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height) > mostPixels;
}

bool skipExtension(GifFileType* gif) {
  int kind = 0;
  GifByteType* piece = nullptr;
  int state = DGifGetExtension(gif, &kind, &piece);
  while (state == GIF_OK && piece != nullptr) state = DGifGetExtensionNext(gif, &piece);
  return state == GIF_OK;
}

// Reads the descriptor of the first frame into gif->Image.
bool findFrame(GifFileType* gif) {
  GifRecordType record = UNDEFINED_RECORD_TYPE;
  while (DGifGetRecordType(gif, &record) == GIF_OK) {
    if (record == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif) == GIF_OK;
    if (record != EXTENSION_RECORD_TYPE || !skipExtension(gif)) return false;
  }
  return false;
}

Result<Colour> colourIn(const ColorMapObject* palette, int index) {
  if (palette == nullptr || index >= palette->ColorCount) return badPicture("The GIF has no such colour");
  const GifColorType& entry = palette->Colors[index];
  return Colour{entry.Red, entry.Green, entry.Blue};
}

/// Why sizes that a file gives can't be right; null when they can.
const char* sizeFault(GifWord width, GifWord height, const char* none) {
  if (width < 1 || height < 1) return none;
  return isTooLarge(width, height) ? "The GIF is too large" : nullptr;
}

}  // namespace

Result<ImageSize> gifSize(std::string_view bytes) {
  const OpenGif gif = openGif(bytes);
  if (!gif) return badPicture("The GIF's header is cut off");
  if (gif->SWidth < 1 || gif->SHeight < 1) return badPicture("The GIF has no size");
  return ImageSize{gif->SWidth, gif->SHeight};
}

Result<Colour> firstPixelOf(std::string_view bytes) {
  if (!bytes.starts_with("GIF87a") && !bytes.starts_with("GIF89a")) return badPicture("No GIF");
  const OpenGif gif = openGif(bytes);
  if (!gif) return badPicture("The GIF's header is cut off");
  if (const char* fault = sizeFault(gif->SWidth, gif->SHeight, "The GIF has no size")) return badPicture(fault);
  if (!findFrame(gif.get())) return badPicture("The GIF has no frame");
  const GifImageDesc& frame = gif->Image;
  if (const char* fault = sizeFault(frame.Width, frame.Height, "The GIF has a frame without a size")) {
    return badPicture(fault);
  }
  // Also where the frame leaves the corner free: a frame without data is damage and not a colour.
  GifPixelType index = 0;
  if (DGifGetLine(gif.get(), &index, 1) != GIF_OK) return badPicture("The GIF has no first pixel");
  if (frame.Left != 0 || frame.Top != 0) return colourIn(gif->SColorMap, gif->SBackGroundColor);
  return colourIn(frame.ColorMap != nullptr ? frame.ColorMap : gif->SColorMap, index);
}

}  // namespace kv
