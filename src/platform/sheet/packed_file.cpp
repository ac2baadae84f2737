// Parts of a zip archive by libzip.
#include "platform/sheet/packed_file.h"

#include <zip.h>

#include <array>
#include <cerrno>

#include "platform/files/file_access.h"
#include "platform/files/file_gate.h"

namespace kv {
namespace {

struct PartEnd {
  void operator()(zip_file_t* part) const { ignore(zip_fclose(part), "nothing was written"); }
};
using OpenPart = std::unique_ptr<zip_file_t, PartEnd>;

/// Whether what failed last in an archive failed for want of a password.
bool isLocked(zip_t& archive) {
  const int code = zip_error_code_zip(zip_get_error(&archive));
  return code == ZIP_ER_NOPASSWD || code == ZIP_ER_WRONGPASSWD || code == ZIP_ER_ENCRNOTSUPP;
}

Result<> unpackFailure(zip_t& archive, const std::string& path, const std::string& part) {
  if (isLocked(archive)) return fail(ErrorKind::Malformed, path, "encrypted", ProtectedSheet);
  return fail(ErrorKind::Corrupt, path, part);
}

constexpr std::size_t pieceBytes = 65536;  // unpacked at once

}  // namespace

struct PackedFile::State {
  struct ArchiveEnd {
    void operator()(zip_t* opened) const { zip_discard(opened); }
  };

  std::string path;
  std::unique_ptr<zip_t, ArchiveEnd> archive;
  std::uint64_t left;  // bytes that may still be unpacked
};

PackedFile::PackedFile(std::unique_ptr<State> state) : state_(std::move(state)) {}
PackedFile::PackedFile(PackedFile&&) noexcept = default;
PackedFile& PackedFile::operator=(PackedFile&&) noexcept = default;
PackedFile::~PackedFile() = default;

Result<PackedFile> PackedFile::open(const std::string& path, std::uint64_t unpackedLimit) {
  if (!mayProceed(FileStep::OpenToRead, path)) return systemFailure(errno, path);
  int code = 0;
  errno = 0;
  std::unique_ptr<zip_t, State::ArchiveEnd> archive(zip_open(path.c_str(), ZIP_RDONLY, &code));
  if (!archive) {
    if ((code == ZIP_ER_OPEN || code == ZIP_ER_READ) && errno != 0) return systemFailure(errno, path);
    return fail(code == ZIP_ER_NOENT ? ErrorKind::Missing : ErrorKind::Corrupt, path, "no zip archive");
  }
  return PackedFile(std::make_unique<State>(State{path, std::move(archive), unpackedLimit}));
}

bool PackedFile::has(const std::string& part) const {
  return zip_name_locate(state_->archive.get(), part.c_str(), 0) >= 0;
}

Result<> PackedFile::readXml(const std::string& part, XmlListener& listener, const std::function<bool()>& goOn) {
  if (!has(part)) return fail(ErrorKind::Corrupt, state_->path, part);
  const OpenPart file(zip_fopen(state_->archive.get(), part.c_str(), 0));
  if (!file) return unpackFailure(*state_->archive, state_->path, part);
  XmlReading reading(listener);
  std::array<char, pieceBytes> piece;
  for (;;) {
    const zip_int64_t read = zip_fread(file.get(), piece.data(), piece.size());
    if (read < 0) return fail(ErrorKind::Corrupt, state_->path, part);
    if (static_cast<std::uint64_t>(read) > state_->left) {
      return fail(ErrorKind::Malformed, state_->path, "unpacks to too much", TooLargeSheet);
    }
    state_->left -= static_cast<std::uint64_t>(read);
    const std::string_view bytes(piece.data(), static_cast<std::size_t>(read));
    if (auto taken = reading.take(bytes, read == 0, state_->path); !taken) return taken;
    if (read == 0) return {};
    if (goOn && !goOn()) return fail(ErrorKind::Cancelled, state_->path, "cancelled");
  }
}

}  // namespace kv
