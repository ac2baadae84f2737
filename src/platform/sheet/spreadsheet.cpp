#include "platform/sheet/spreadsheet.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/sheet/sheet_readers.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t lookedAt = 4096;                        // bytes of a file by which its form is known
constexpr std::size_t searchedBytes = std::size_t{16} << 20;  // of a compound file, whose names may be at its end

/// A byte that no text has, but for zeros, which are half of UTF-16.
bool isControl(char c) {
  constexpr std::string_view ofTexts("\0\t\n\v\f\r\x1A\x1B", 8);
  return static_cast<unsigned char>(c) < 0x20 && ofTexts.find(c) == std::string_view::npos;
}

/// Bytes that are no text: zeros that are not the halves of UTF-16, or more than a stray character of control.
bool isBinary(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return false;
  std::size_t even = 0, odd = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] == '\0') ++(at % 2 == 0 ? even : odd);
  }
  constexpr std::size_t bytesForEach = 50;
  const auto controls = static_cast<std::size_t>(std::ranges::count_if(bytes, isControl));
  return (even > 0 && odd > 0) || controls > bytes.size() / bytesForEach + 1;
}

/// A page for browsers, which many programs write under the name of a sheet.
bool isWebPage(std::string_view bytes) {
  bytes.remove_prefix(std::min(bytes.find_first_not_of("\xEF\xBB\xBF \t\r\n"), bytes.size()));
  constexpr std::string_view starts[] = {"<!doctype html", "<html", "<head", "<meta", "<table", "<style"};
  return std::ranges::any_of(starts, [bytes](std::string_view start) { return startsWithIgnoringCase(bytes, start); });
}

/// Why a compound file is no sheet: it is one of an earlier program, or holds one that a password hides. Source:
/// MS-OFFCRYPTO, 2.3.4.4, the name of the stream in UTF-16.
Result<SheetForm> compoundFailure(const std::string& path) {
  const auto bytes = readStart(path, searchedBytes);
  if (!bytes) return fail(bytes.error());
  std::string name;
  for (const char c : std::string_view("EncryptedPackage")) name += {c, '\0'};
  if (bytes->find(name) == std::string::npos) return fail(ErrorKind::Malformed, path, "binary sheet", OldSheet);
  return fail(ErrorKind::Malformed, path, "encrypted", ProtectedSheet);
}

Result<SheetForm> packedFormOf(const std::string& path) {
  constexpr std::uint64_t unpacked = std::uint64_t{16} << 20;  // for the list of parts
  auto file = PackedFile::open(path, unpacked);
  if (!file) return fail(file.error());
  if (!xlsxMainPart(*file).empty()) return SheetForm::Xlsx;
  if (file->has("content.xml")) return SheetForm::Ods;
  return fail(ErrorKind::Malformed, path, "no sheet");
}

}  // namespace

Result<SheetForm> sheetFormOf(const std::string& path) {
  const auto start = readStart(path, lookedAt);
  if (!start) return fail(start.error());
  if (start->starts_with("PK\x03\x04")) return packedFormOf(path);
  if (start->starts_with("\xD0\xCF\x11\xE0")) return compoundFailure(path);
  if (startsLikeFeed(*start)) return SheetForm::Feed;
  if (isBinary(*start)) return fail(ErrorKind::Malformed, path, "binary file");
  if (isWebPage(*start)) return fail(ErrorKind::Malformed, path, "web page");
  return SheetForm::Text;
}

Result<SheetContent> readSpreadsheet(const std::string& path, SheetForm form, const SheetRequest& request) {
  if (form == SheetForm::Feed) return readFeed(path, request);
  auto file = PackedFile::open(path, request.limits.unpacked);
  if (!file) return fail(file.error());
  return form == SheetForm::Xlsx ? readXlsx(*file, request) : readOds(*file, request);
}

}  // namespace kv
