// Packing by libzip, which writes beside the target and renames at the end.
#include "platform/files/zip_file.h"

#include <zip.h>

#include <cerrno>
#include <memory>

#include "platform/files/file_access.h"
#include "platform/files/file_gate.h"
#include "platform/files/files.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

struct ZipEnd {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using OpenZip = std::unique_ptr<zip_t, ZipEnd>;

constexpr double reportSteps = 0.005;  // of the whole, between two reports

tl::unexpected<Error> zipFailure(zip_t* archive, const std::string& path) {
  zip_error_t* const error = zip_get_error(archive);
  if (zip_error_code_zip(error) == ZIP_ER_CANCELLED) return fail(ErrorKind::Cancelled, path, "cancelled");
  const int number = zip_error_code_system(error);
  if (zip_error_system_type(error) == ZIP_ET_SYS && number != 0) return systemFailure(number, path);
  return fail(ErrorKind::Malformed, path, zip_error_strerror(error));
}

/// Who is asked while the archive is written.
struct ZipListener {
  const std::function<bool(double)>& goOn;
  bool isCancelled = false;
};
void reportZip(zip_t*, double done, void* data) {
  auto& listener = *static_cast<ZipListener*>(data);
  if (listener.goOn && !listener.goOn(done)) listener.isCancelled = true;
}
int isZipCancelled(zip_t*, void* data) { return static_cast<ZipListener*>(data)->isCancelled ? 1 : 0; }

/// What the system said last, or a failed write when it said nothing.
tl::unexpected<Error> unwritableZip(const std::string& path) { return systemFailure(errno == 0 ? EIO : errno, path); }

/// Where the bytes of an entry come from; null when there is no memory for it. The content lives until the archive is
/// written: the caller holds the entries.
zip_source_t* sourceOf(zip_t* archive, const ZipEntry& entry) {
  if (entry.content) return zip_source_buffer(archive, entry.content->data(), entry.content->size(), 0);
  return zip_source_file(archive, entry.source.c_str(), 0, -1);
}

/// How an entry's name is written: as UTF-8; the bytes of a name that is no text, as other systems leave them on a
/// stick, go as they are.
zip_flags_t nameFlags(std::string_view name) {
  for (std::size_t at = 0; at < name.size();) {
    const utf8::Unit unit = utf8::unitAt(name, at);
    if (!unit.valid) return ZIP_FL_ENC_GUESS;
    at += unit.length;
  }
  return ZIP_FL_ENC_UTF_8;
}

// libzip opens a file only when the archive is closed: one that is missing or may not be read is found here.
Result<> addToZip(zip_t* archive, const ZipEntry& entry, const std::string& path) {
  if (entry.name.ends_with('/')) {
    const bool isAdded = zip_dir_add(archive, entry.name.c_str(), nameFlags(entry.name)) >= 0;
    return isAdded ? Result<>() : Result<>(zipFailure(archive, path));
  }
  if (!entry.content && !fileExists(entry.source)) return fail(ErrorKind::Missing, entry.source, "no such file");
  if (!entry.content && !mayProceed(FileStep::OpenToRead, entry.source)) return systemFailure(errno, entry.source);
  zip_source_t* const source = sourceOf(archive, entry);
  if (source == nullptr) return zipFailure(archive, path);
  const zip_int64_t index = zip_file_add(archive, entry.name.c_str(), source, nameFlags(entry.name));
  if (index < 0) {
    zip_source_free(source);
    return zipFailure(archive, path);
  }
  const bool isStored = zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0) == 0;
  return isStored ? Result<>() : Result<>(zipFailure(archive, path));
}

}  // namespace

Result<> writeZip(const std::string& path, const std::vector<ZipEntry>& entries,
                  const std::function<bool(double)>& goOn) {
  if (!mayProceed(FileStep::Create, path)) return systemFailure(errno, path);
  int code = 0;
  OpenZip archive(zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code));
  if (!archive) return unwritableZip(path);
  for (const ZipEntry& entry : entries) {
    if (auto added = addToZip(archive.get(), entry, path); !added) return added;
  }
  ZipListener listener{goOn};
  const bool isHeard =
      zip_register_progress_callback_with_state(archive.get(), reportSteps, reportZip, nullptr, &listener) == 0 &&
      zip_register_cancel_callback_with_state(archive.get(), isZipCancelled, nullptr, &listener) == 0;
  if (!isHeard || !mayProceed(FileStep::Write, path) || !mayProceed(FileStep::Rename, path)) return unwritableZip(path);
  if (zip_close(archive.get()) != 0) return zipFailure(archive.get(), path);
  ignore(archive.release(), "closing it has freed it");
  return {};
}

}  // namespace kv
