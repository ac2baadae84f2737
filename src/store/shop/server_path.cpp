#include "store/shop/server_path.h"

#include <string_view>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string pathOfFile(const std::string& applicationFolder) { return joinPath(applicationFolder, "serverpath.net"); }

Result<> deleteIfThere(const std::string& path) {
  auto deleted = deleteFile(path);
  if (!deleted && deleted.error().kind == ErrorKind::Missing) return {};
  return deleted;
}

}  // namespace

std::string readServerPath(const std::string& applicationFolder) {
  const auto bytes = readBytes(pathOfFile(applicationFolder));
  if (!bytes) return {};
  std::string_view content = *bytes;
  const bool utf8 = content.starts_with(byteOrderMark);
  if (utf8) content.remove_prefix(byteOrderMark.size());
  const auto lines = splitLines(content);
  if (lines.empty()) return {};
  const std::string line = utf8 ? std::string(lines.front()) : fromWindows1252(lines.front());
  return withoutTrailingSeparator(trim(line));
}

Result<> writeServerPath(const std::string& applicationFolder, const std::string& shopFolder) {
  const std::string file = pathOfFile(applicationFolder);
  if (shopFolder.find_first_of("\r\n") != std::string::npos)
    return fail(ErrorKind::Malformed, file, "the folder's name holds a line end");
  std::string line = toWindows1252(shopFolder);
  if (fromWindows1252(line) != shopFolder) line = std::string(byteOrderMark) + shopFolder;
  // Readers trim the line; a separator protects the space of a name that ends in one.
  if (line.ends_with(' ')) line += '/';
  return writeBytes(file, line + "\r\n");
}

Result<> clearServerPath(const std::string& applicationFolder) { return deleteIfThere(pathOfFile(applicationFolder)); }

ServerPathBackup::ServerPathBackup(const std::string& applicationFolder) : path_(pathOfFile(applicationFolder)) {
  if (auto bytes = readBytes(path_)) {
    existed_ = true;
    bytes_ = std::move(*bytes);
  }
}

Result<> ServerPathBackup::restore() const { return existed_ ? writeBytes(path_, bytes_) : deleteIfThere(path_); }

}  // namespace kv
