// GIF by giflib, record by record: reading a whole file with it would decode every frame, and one pixel is enough.
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

constexpr int noColour = -1;

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
  return std::int64_t{width} * height > mostPixels;
}

// Reads an extension; `transparent` becomes the index of the colour that is see-through in the frame that follows.
bool readExtension(GifFileType* gif, int& transparent) {
  int kind = 0;
  GifByteType* piece = nullptr;
  int state = DGifGetExtension(gif, &kind, &piece);
  if (state == GIF_OK && piece != nullptr && kind == GRAPHICS_EXT_FUNC_CODE) {
    GraphicsControlBlock control;
    if (DGifExtensionToGCB(piece[0], piece + 1, &control) == GIF_OK) transparent = control.TransparentColor;
  }
  while (state == GIF_OK && piece != nullptr) state = DGifGetExtensionNext(gif, &piece);
  return state == GIF_OK;
}

// Reads the descriptor of the first frame into gif->Image.
bool findFrame(GifFileType* gif, int& transparent) {
  GifRecordType record = UNDEFINED_RECORD_TYPE;
  while (DGifGetRecordType(gif, &record) == GIF_OK) {
    if (record == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif) == GIF_OK;
    if (record != EXTENSION_RECORD_TYPE || !readExtension(gif, transparent)) return false;
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

/// Why screen or frame, once found, can't be right; null when they can.
const char* frameFault(const GifFileType* gif) {
  if (const char* fault = sizeFault(gif->SWidth, gif->SHeight, "The GIF has no size")) return fault;
  return sizeFault(gif->Image.Width, gif->Image.Height, "The GIF has a frame without a size");
}

/// The palette of a frame and the colour of it that is see-through.
struct FrameColours {
  const ColorMapObject* palette = nullptr;
  int transparent = noColour;
};

/// Lays a line of the frame on the row at `y` of the screen, cut at its edges. False for a colour that isn't there.
bool layLine(const std::vector<GifPixelType>& line, const FrameColours& colours, PixelBuffer& screen, ImageSize at) {
  if (at.height >= screen.size().height) return true;
  std::uint8_t* const row = screen.row(at.height);
  const int end = std::min(static_cast<int>(line.size()), screen.size().width - at.width);
  for (int x = 0; x < end; ++x) {
    const int index = line[static_cast<std::size_t>(x)];
    if (index == colours.transparent) continue;
    if (colours.palette == nullptr || index >= colours.palette->ColorCount) return false;
    const GifColorType& colour = colours.palette->Colors[index];
    std::uint8_t* const to = row + static_cast<std::ptrdiff_t>(at.width + x) * 3;
    to[0] = colour.Blue;
    to[1] = colour.Green;
    to[2] = colour.Red;
  }
  return true;
}

/// A pass over the lines of an interlaced frame.
struct Pass {
  int first, step;
};
constexpr std::array<Pass, 4> interlacedPasses{{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
constexpr std::array<Pass, 1> plainPass{{{0, 1}}};

/// Reads the lines of the frame in the order of the file. False when they are damaged or end too early.
bool readFrame(GifFileType* gif, int transparent, PixelBuffer& screen) {
  const GifImageDesc& frame = gif->Image;
  const FrameColours colours{frame.ColorMap != nullptr ? frame.ColorMap : gif->SColorMap, transparent};
  const std::span<const Pass> passes = frame.Interlace ? std::span<const Pass>(interlacedPasses) : plainPass;
  std::vector<GifPixelType> line(static_cast<std::size_t>(frame.Width));
  for (const Pass& pass : passes) {
    for (int y = pass.first; y < frame.Height; y += pass.step) {
      if (DGifGetLine(gif, line.data(), frame.Width) != GIF_OK) return false;
      if (!layLine(line, colours, screen, {frame.Left, frame.Top + y})) return false;
    }
  }
  return true;
}

}  // namespace

Result<ImageSize> gifSize(std::string_view bytes) {
  const OpenGif gif = openGif(bytes);
  if (!gif) return badPicture("The GIF's header is cut off");
  if (gif->SWidth < 1 || gif->SHeight < 1) return badPicture("The GIF has no size");
  return ImageSize{gif->SWidth, gif->SHeight};
}

Result<Colour> firstPixelOf(std::string_view bytes) {
  if (pictureKind(bytes) != PictureKind::Gif) return badPicture("No GIF");
  const OpenGif gif = openGif(bytes);
  if (!gif) return badPicture("The GIF's header is cut off");
  if (const char* fault = sizeFault(gif->SWidth, gif->SHeight, "The GIF has no size")) return badPicture(fault);
  int transparent = noColour;
  if (!findFrame(gif.get(), transparent)) return badPicture("The GIF has no frame");
  const GifImageDesc& frame = gif->Image;
  if (const char* fault = frameFault(gif.get())) return badPicture(fault);
  // Also where the frame leaves the corner free: a frame without data is damage and not a colour.
  GifPixelType index = 0;
  if (DGifGetLine(gif.get(), &index, 1) != GIF_OK) return badPicture("The GIF has no first pixel");
  if (frame.Left != 0 || frame.Top != 0) return colourIn(gif->SColorMap, gif->SBackGroundColor);
  return colourIn(frame.ColorMap != nullptr ? frame.ColorMap : gif->SColorMap, index);
}

Result<PixelBuffer> gifPixels(std::string_view bytes) {
  const OpenGif gif = openGif(bytes);
  if (!gif) return badPicture("The GIF's header is cut off");
  if (const char* fault = sizeFault(gif->SWidth, gif->SHeight, "The GIF has no size")) return badPicture(fault);
  int transparent = noColour;
  if (!findFrame(gif.get(), transparent)) return badPicture("The GIF has no frame");
  if (const char* fault = frameFault(gif.get())) return badPicture(fault);
  auto screen = PixelBuffer::create({gif->SWidth, gif->SHeight});
  if (!screen) return screen;
  std::fill_n(screen->data(), screen->byteCount(), std::uint8_t{255});
  if (!readFrame(gif.get(), transparent, *screen)) return badPicture("The GIF is damaged or cut off");
  return screen;
}

}  // namespace kv
