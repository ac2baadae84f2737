// Parts of a zip archive by libzip, read by expat.
#include "platform/sheet/packed_file.h"

#include <expat.h>
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
struct ParserEnd {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using OpenPart = std::unique_ptr<zip_file_t, PartEnd>;
using OpenParser = std::unique_ptr<XML_ParserStruct, ParserEnd>;

constexpr int pieceBytes = 64 * 1024;  // unpacked at once

std::string_view withoutPrefix(const char* name) {
  const std::string_view whole(name);
  const auto colon = whole.rfind(':');
  return colon == std::string_view::npos ? whole : whole.substr(colon + 1);
}

/// Hands what expat tells to the listener.
struct XmlRun {
  XML_Parser parser;
  XmlListener& listener;

  static XmlRun& of(void* data) { return *static_cast<XmlRun*>(data); }
  void stop() const { ignore(XML_StopParser(parser, XML_FALSE), "it is running"); }

  static void onStart(void* data, const char* name, const char** attributes) {
    if (!of(data).listener.start(withoutPrefix(name), XmlAttributes(attributes))) of(data).stop();
  }
  static void onEnd(void* data, const char* name) {
    if (!of(data).listener.end(withoutPrefix(name))) of(data).stop();
  }
  static void onText(void* data, const char* piece, int length) {
    of(data).listener.text({piece, static_cast<std::size_t>(length)});
  }
  // A sheet has no document type: one would only bring entities that grow.
  static void onDoctype(void* data, const char*, const char*, const char*, int) { of(data).stop(); }
};

OpenParser makeParser(XmlRun& run) {
  OpenParser parser(XML_ParserCreate(nullptr));
  if (!parser) return parser;
  run.parser = parser.get();
  XML_SetUserData(parser.get(), &run);
  XML_SetElementHandler(parser.get(), XmlRun::onStart, XmlRun::onEnd);
  XML_SetCharacterDataHandler(parser.get(), XmlRun::onText);
  XML_SetStartDoctypeDeclHandler(parser.get(), XmlRun::onDoctype);
  return parser;
}

}  // namespace

struct PackedFile::State {
  struct ArchiveEnd {
    void operator()(zip_t* opened) const { zip_discard(opened); }
  };

  std::string path;
  std::unique_ptr<zip_t, ArchiveEnd> archive;
  std::uint64_t left;  // bytes that may still be unpacked
};

std::string_view XmlAttributes::get(std::string_view name) const {
  for (const char** pair = pairs_; *pair != nullptr; pair += 2) {
    if (withoutPrefix(*pair) == name) return pair[1];
  }
  return {};
}

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
  if (!has(part)) return fail(ErrorKind::Missing, state_->path, part);
  const OpenPart file(zip_fopen(state_->archive.get(), part.c_str(), 0));
  if (!file) {
    const int code = zip_error_code_zip(zip_get_error(state_->archive.get()));
    const bool isLocked = code == ZIP_ER_NOPASSWD || code == ZIP_ER_WRONGPASSWD || code == ZIP_ER_ENCRNOTSUPP;
    if (isLocked) return fail(ErrorKind::Malformed, state_->path, "encrypted", ProtectedSheet);
    return fail(ErrorKind::Corrupt, state_->path, part);
  }
  XmlRun run{nullptr, listener};
  const OpenParser parser = makeParser(run);
  if (!parser) return fail(ErrorKind::Other, state_->path, "no memory");
  std::array<char, pieceBytes> piece;
  for (;;) {
    const zip_int64_t read = zip_fread(file.get(), piece.data(), piece.size());
    if (read < 0) return fail(ErrorKind::Corrupt, state_->path, part);
    if (static_cast<std::uint64_t>(read) > state_->left) {
      return fail(ErrorKind::Malformed, state_->path, "unpacks to too much", TooLargeSheet);
    }
    state_->left -= static_cast<std::uint64_t>(read);
    if (XML_Parse(parser.get(), piece.data(), static_cast<int>(read), read == 0 ? 1 : 0) != XML_STATUS_OK) {
      const bool isEnded = XML_GetErrorCode(parser.get()) == XML_ERROR_ABORTED;
      return fail(isEnded ? ErrorKind::Malformed : ErrorKind::Corrupt, state_->path,
                  XML_ErrorString(XML_GetErrorCode(parser.get())));
    }
    if (read == 0) return {};
    if (goOn && !goOn()) return fail(ErrorKind::Cancelled, state_->path, "cancelled");
  }
}

}  // namespace kv
