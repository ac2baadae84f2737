#pragma once
// Module mIntelJPEGLibrary: a bitmap written as a JPEG file.

#include <string>

#include "media/bitmap/dib_section.h"

namespace kv {

/// The number of every error of SaveJPG.
inline constexpr int saveJpgError = 26001;

/// SaveJPG: writes a bitmap as a JPEG file of a quality from 0 to 100. An existing file is replaced in one step, and
/// keeps its permissions and the time of its last change.
/// A failure has the number 26001 and the source "Korvane.mIntelJPEGLibrary"; its text is "Failed to initialise the IJL
/// library: " and a code for a bitmap without pixels, else "Failed to save to JPG " and a code, which is the system's
/// number when the file couldn't be written. The kind is that of writeBytes. After a failure the old file is as it was.
Result<> SaveJPG(const cDIBSection& dib, const std::string& fileName, int quality);

}  // namespace kv
