#pragma once
// The pictures that a library reads, by kind; image.h tells the kinds apart. For the sources of this folder.

#include <string_view>

#include "platform/image/image.h"

namespace kv {

/// The error of a picture that can't be read; `what` says why.
inline tl::unexpected<Error> badPicture(const char* what) { return fail(ErrorKind::Malformed, "picture", what); }

// Each takes the bytes of a whole file of its kind. The size is at least 1 by 1; Malformed when the library finds none.

/// The size of a GIF by giflib: that of the logical screen.
Result<ImageSize> gifSize(std::string_view bytes);
/// The size of a JPEG by libjpeg.
Result<ImageSize> jpegSize(std::string_view bytes);
/// The size of a PNG by libpng.
Result<ImageSize> pngSize(std::string_view bytes);

}  // namespace kv
