#pragma once
// Where a photo was taken, which a telephone notes in its file. A shop's picture is copied as it is, and would tell
// every visitor where the merchant lives.

#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// Whether a JPEG, PNG or WebP notes a latitude, in its EXIF or XMP. False for any other bytes and for damaged ones.
/// Source: CIPA DC-008, tag 2 of the GPS directory; ISO 16684-2, property exif:GPSLatitude.
bool tellsLocation(std::string_view bytes);

/// The same file with the same pixels, less its notes: EXIF, XMP, IPTC, and what follows the end of a JPEG, where some
/// telephones keep a second picture with notes of its own. How the camera was held and the colour profile stay.
/// Malformed for bytes of another kind, or when the file ends within one of its parts.
Result<std::string> withoutLocation(std::string_view bytes);

}  // namespace kv
