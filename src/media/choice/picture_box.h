#pragma once
// The box that a picture is reduced to, with the settings that remember it.

#include <optional>
#include <string>
#include <string_view>

#include "platform/files/settings.h"
#include "platform/image/image.h"
#include "platform/ports/result.h"

namespace kv {

/// The section of the settings store.
inline constexpr std::string_view loadImageSection = "LoadImage";
/// The least and most pixels of a limit, and what holds when none was stored.
inline constexpr int leastLimit = 5;
inline constexpr int mostLimit = 270;
inline constexpr int usualLimit = 180;
/// What a limit out of range is answered with.
inline constexpr std::string_view limitMessage = "Specificare un numero compreso fra 5 e 270";

/// What the dialog remembers of its last use.
struct LoadImageSettings {
  std::string path;                          ///< the folder opened last
  bool fits = false;                         ///< pictures are reduced to the box
  ImageSize limits{usualLimit, usualLimit};  ///< the box, in pixels
  bool dropsLocation = false;                ///< a copied photo doesn't tell where it was taken
};
/// Reads the keys Path, MaxSize, MaxWidth, MaxHeight, NoLocation; a limit that is out of range is the usual one.
LoadImageSettings readLoadImage(const Settings& settings);
/// Stores them. Failures: as Settings::set.
Result<> storeLoadImage(Settings& settings, const LoadImageSettings& values);

/// The limit that a field's text gives; empty when it is no number from 5 to 270.
std::optional<int> limitOf(std::string_view text);

/// The size of a picture in the box: narrowed to its width, then what came out lowered to its height, the proportions
/// kept; the whole part of each side, at least 1. A picture that fits keeps its size.
ImageSize fittedSize(ImageSize size, ImageSize limits);
/// Whether the columns of the sizes hold both sides: 32767 pixels at most.
bool canBeStored(ImageSize size);
/// Whether a picture of this size is decoded: mostPixels at most.
bool canBeDecoded(ImageSize size);

/// Pixels left of a picture of this width in the middle of a frame; 0 when it fills the frame. Heights likewise.
int centredOffset(int frame, int picture);

}  // namespace kv
