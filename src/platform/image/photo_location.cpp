#include "platform/image/photo_location.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

constexpr std::string_view exifMark("Exif\0\0", 6);
constexpr std::string_view xmpLatitude = "GPSLatitude";

/// A part of a file: its kind, and the bytes from its first to its last, checksum and padding included.
struct FilePart {
  std::string kind;
  std::string_view whole;
  std::string_view data;
};
using FileParts = std::optional<std::vector<FilePart>>;

std::size_t partNumberBig(std::string_view bytes) {
  std::size_t value = 0;
  for (const char each : bytes) value = (value << 8U) | static_cast<std::uint8_t>(each);
  return value;
}
std::size_t partNumberLittle(std::string_view bytes) {
  std::size_t value = 0;
  for (auto each = bytes.rbegin(); each != bytes.rend(); ++each)
    value = (value << 8U) | static_cast<std::uint8_t>(*each);
  return value;
}

// --- JPEG: markers of two bytes; a scan's data ends before the next marker that is neither a stuffed zero nor a
// restart (ITU-T T.81, annex B).

constexpr std::uint8_t endMarker = 0xD9, scanMarker = 0xDA, exifMarker = 0xE1, iptcMarker = 0xED;

bool endsScan(std::uint8_t after) { return after != 0 && after != 0xFF && (after < 0xD0 || after > 0xD7); }

std::size_t scanEnd(std::string_view bytes, std::size_t from) {
  for (; from + 1 < bytes.size(); ++from) {
    if (static_cast<std::uint8_t>(bytes[from]) == 0xFF && endsScan(static_cast<std::uint8_t>(bytes[from + 1]))) break;
  }
  return from;
}

FileParts jpegParts(std::string_view bytes) {
  std::vector<FilePart> parts;
  std::size_t at = 2;  // after the mark of the kind
  while (at + 1 < bytes.size()) {
    if (static_cast<std::uint8_t>(bytes[at]) != 0xFF) return std::nullopt;
    const auto marker = static_cast<std::uint8_t>(bytes[at + 1]);
    if (marker == 0xFF) {  // a byte of padding
      ++at;
      continue;
    }
    if (marker == endMarker) {
      parts.push_back({std::string(1, bytes[at + 1]), bytes.substr(at, 2), {}});
      return parts;
    }
    const std::size_t length = partNumberBig(bytes.substr(std::min(at + 2, bytes.size()), 2));
    if (length < 2 || at + 2 + length > bytes.size()) return std::nullopt;
    const std::size_t end = marker == scanMarker ? scanEnd(bytes, at + 2 + length) : at + 2 + length;
    parts.push_back({std::string(1, bytes[at + 1]), bytes.substr(at, end - at), bytes.substr(at + 4, length - 2)});
    at = end;
  }
  return std::nullopt;
}

/// An EXIF part that says nothing but how the camera was held.
std::string orientationPart(int orientation) {
  std::string part(
      "\xFF\xE1\x00\x22"
      "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\0\0\0\0\0\0\0",
      36);
  part[29] = static_cast<char>(orientation);
  return part;
}

Result<std::string> plainJpeg(std::string_view bytes) {
  const FileParts parts = jpegParts(bytes);
  if (!parts) return badPicture("The JPEG is damaged or cut off");
  std::string plain(bytes.substr(0, 2));
  const int orientation = exifOrientation(bytes);
  if (orientation != 1) plain += orientationPart(orientation);
  for (const FilePart& part : *parts) {
    const auto marker = static_cast<std::uint8_t>(part.kind[0]);
    if (marker != exifMarker && marker != iptcMarker) plain += part.whole;
  }
  return plain;
}

// --- PNG and WebP: a length and a name of four characters before the data of each part, in either order.

FileParts pngParts(std::string_view bytes) {
  constexpr std::size_t mark = 8, around = 12;  // length, name and checksum
  std::vector<FilePart> parts;
  for (std::size_t at = mark; at < bytes.size();) {
    const std::size_t length = partNumberBig(bytes.substr(at, 4));
    if (bytes.size() - at < around || length > bytes.size() - at - around) return std::nullopt;
    parts.push_back(
        {std::string(bytes.substr(at + 4, 4)), bytes.substr(at, length + around), bytes.substr(at + 8, length)});
    at += length + around;
  }
  return parts;
}

FileParts webpParts(std::string_view bytes) {
  constexpr std::size_t mark = 12, before = 8;
  std::vector<FilePart> parts;
  for (std::size_t at = mark; at < bytes.size();) {
    const std::size_t length = partNumberLittle(bytes.substr(std::min(at + 4, bytes.size()), 4));
    const std::size_t padded = length + (length & 1U);
    if (bytes.size() - at < before || padded > bytes.size() - at - before) return std::nullopt;
    parts.push_back(
        {std::string(bytes.substr(at, 4)), bytes.substr(at, padded + before), bytes.substr(at + before, length)});
    at += padded + before;
  }
  return parts;
}

bool isNote(const std::string& kind) {
  static constexpr std::array<std::string_view, 6> notes{"eXIf", "tEXt", "zTXt", "iTXt", "EXIF", "XMP "};
  return std::ranges::find(notes, std::string_view(kind)) != notes.end();
}

Result<std::string> plainPng(std::string_view bytes) {
  const FileParts parts = pngParts(bytes);
  if (!parts) return badPicture("The PNG is damaged or cut off");
  std::string plain(bytes.substr(0, 8));
  for (const FilePart& part : *parts) {
    if (!isNote(part.kind)) plain += part.whole;
  }
  return plain;
}

// The length of all parts comes before them, and the first of them says which others there are.
Result<std::string> plainWebp(std::string_view bytes) {
  const FileParts parts = webpParts(bytes);
  if (!parts) return badPicture("The WebP is damaged or cut off");
  constexpr unsigned noteFlags = 0x0C;  // EXIF and XMP
  std::string plain(bytes.substr(0, 12));
  for (const FilePart& part : *parts) {
    if (isNote(part.kind)) continue;
    const std::size_t flags = plain.size() + 8;
    plain += part.whole;
    if (part.kind == "VP8X") plain[flags] = static_cast<char>(static_cast<std::uint8_t>(plain[flags]) & ~noteFlags);
  }
  const std::size_t length = plain.size() - 8;
  for (std::size_t i = 0; i < 4; ++i) plain[4 + i] = static_cast<char>((length >> (8 * i)) & 0xFFU);
  return plain;
}

// --- Which parts tell a location.

bool exifHasLatitude(std::string_view exif) {
  const std::unique_ptr<ExifData, decltype(&exif_data_unref)> data(exif_data_new(), exif_data_unref);
  if (!data) return false;
  const std::string marked = exif.starts_with(exifMark) ? std::string(exif) : std::string(exifMark) + std::string(exif);
  exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(marked.data()),
                      static_cast<unsigned>(marked.size()));
  return exif_content_get_entry(data->ifd[EXIF_IFD_GPS], static_cast<ExifTag>(EXIF_TAG_GPS_LATITUDE)) != nullptr;
}

bool partTellsLocation(const FilePart& part) {
  const bool isJpegNote = part.kind.size() == 1 && static_cast<std::uint8_t>(part.kind[0]) == exifMarker;
  const bool isExif = (isJpegNote && part.data.starts_with(exifMark)) || part.kind == "eXIf" || part.kind == "EXIF";
  if (isExif) return exifHasLatitude(part.data);
  return (isJpegNote || isNote(part.kind)) && part.data.find(xmpLatitude) != std::string_view::npos;
}

FileParts partsOfPicture(std::string_view bytes) {
  switch (pictureKind(bytes)) {
    case PictureKind::Jpeg:
      return jpegParts(bytes);
    case PictureKind::Png:
      return pngParts(bytes);
    case PictureKind::Webp:
      return webpParts(bytes);
    default:
      return std::nullopt;
  }
}

}  // namespace

bool tellsLocation(std::string_view bytes) {
  const FileParts parts = partsOfPicture(bytes);
  return parts && std::ranges::any_of(*parts, partTellsLocation);
}

Result<std::string> withoutLocation(std::string_view bytes) {
  switch (pictureKind(bytes)) {
    case PictureKind::Jpeg:
      return plainJpeg(bytes);
    case PictureKind::Png:
      return plainPng(bytes);
    case PictureKind::Webp:
      return plainWebp(bytes);
    default:
      return badPicture("Neither JPEG, PNG nor WebP");
  }
}

// A palette or plain colours can have one that is see-through (tRNS); an animation begins with acTL.
bool isOpaqueStillPng(std::string_view bytes) {
  constexpr std::size_t colourType = 9;
  constexpr unsigned withOpacity = 4;
  const FileParts parts = pngParts(bytes);
  if (!parts || parts->empty() || parts->front().data.size() <= colourType) return false;
  if ((static_cast<std::uint8_t>(parts->front().data[colourType]) & withOpacity) != 0) return false;
  return std::ranges::none_of(*parts, [](const FilePart& part) { return part.kind == "tRNS" || part.kind == "acTL"; });
}

}  // namespace kv
