#include "media/bitmap/save_jpg.h"

#include "platform/files/file_time.h"
#include "platform/files/files.h"

namespace kv {
namespace {

constexpr const char* errorSource = "Korvane.mIntelJPEGLibrary";
// Codes for what has none of the system's.
constexpr int noBitmap = -1;
constexpr int notCoded = -2;

tl::unexpected<Error> jpgFailure(ErrorKind kind, const char* text, int code) {
  return fail(kind, errorSource, text + std::to_string(code), saveJpgError);
}
tl::unexpected<Error> notSaved(const Error& error, int code) {
  return jpgFailure(error.kind, "Failed to save to JPG ", code);
}

}  // namespace

Result<> SaveJPG(const cDIBSection& dib, const std::string& fileName, int quality) {
  if (dib.pixels().isEmpty()) {
    return jpgFailure(ErrorKind::Malformed, "Failed to initialise the IJL library: ", noBitmap);
  }
  const auto before = fileStamp(fileName);
  const auto coded = jpegOf(dib.pixels(), quality);
  if (!coded) return notSaved(coded.error(), notCoded);
  if (auto written = writeBytes(fileName, *coded); !written) return notSaved(written.error(), written.error().number);
  if (before) ignore(setFileTime(fileName, before->changedAt), "the picture itself is written");
  return {};
}

}  // namespace kv
