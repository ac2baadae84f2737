#include "publish/settings/server_names.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view dosFolder = "<DIR>";
constexpr std::string_view linkArrow = " ->";
// Of a Unix listing: permissions, links, owner, group, size, month, day, time or year.
constexpr std::size_t columnsBeforeName = 8;
constexpr std::size_t monthColumn = 5;

std::string_view withoutLineEnd(std::string_view text) {
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.remove_suffix(1);
  return text;
}

std::string_view withoutClosingSlashes(std::string_view text, std::size_t least) {
  while (text.size() > least && text.back() == '/') text.remove_suffix(1);
  return text;
}

/// Cuts the first column off a line, the spaces after it included.
std::string_view takeColumn(std::string_view& line) {
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view column = line.substr(0, end);
  line.remove_prefix(end);
  while (line.starts_with(' ')) line.remove_prefix(1);
  return column;
}

bool isMonth(std::string_view column) {
  constexpr std::array<std::string_view, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return std::ranges::any_of(months, [&](std::string_view month) { return equalsIgnoringCase(month, column); });
}

std::string_view afterColumns(std::string_view line) {
  std::size_t columns = columnsBeforeName;
  for (std::size_t at = 0; at < columns; ++at) {
    // A month one column early: the server shows no group.
    if (isMonth(takeColumn(line)) && at + 1 == monthColumn) --columns;
  }
  return line;
}

/// Whether a text can name one folder inside another one, rather than lead out of it or hide what it is.
bool isOneName(std::string_view name) {
  constexpr unsigned char firstCharacter = ' ', deletion = 0x7f;
  if (name.ends_with('/')) name.remove_suffix(1);  // how some servers mark a folder
  return std::ranges::none_of(
      name, [](unsigned char byte) { return byte == '/' || byte < firstCharacter || byte == deletion; });
}

bool startsLike(std::string_view line, char lower) {
  return !line.empty() && (line.front() == lower || line.front() == static_cast<char>(lower - 'a' + 'A'));
}

}  // namespace

std::string serverHost(std::string_view typed) {
  const std::string slashed = replaceAll(trim(typed), "\\", "/");
  std::string_view host = withoutClosingSlashes(slashed, 0);
  while (host.starts_with('/')) host.remove_prefix(1);
  for (const std::string_view scheme : {"HTTP://", "FTP://"}) {
    if (startsWithIgnoringCase(host, scheme)) host.remove_prefix(scheme.size());
  }
  return std::string(host);
}

std::string serverFolder(std::string_view typed) {
  const std::string slashed = replaceAll(trim(typed), "\\", "/");
  const std::string_view folder = withoutClosingSlashes(slashed, 1);
  return folder.empty() ? "." : std::string(folder);
}

std::string joinServerPath(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

std::string relativeToBase(std::string_view folder, std::string_view base) {
  if (folder == base) return {};
  const std::string start = std::string(base) + "/";
  return std::string(folder.starts_with(start) ? folder.substr(start.size()) : folder);
}

std::string NomeVirtualDirectory(std::string_view line) {
  const bool isLink = startsLike(line, 'l');
  const std::string_view name = trim(withoutLineEnd(trim(afterColumns(line))));
  return std::string(isLink ? name.substr(0, name.find(linkArrow)) : name);
}

std::string NomeDirectoryDOS(std::string_view line) {
  const std::size_t mark = line.find(dosFolder);
  if (mark == std::string_view::npos) return {};
  return std::string(trim(withoutLineEnd(line.substr(mark + dosFolder.size()))));
}

std::optional<std::string> listedFolder(std::string_view line) {
  std::string name;
  if (startsLike(line, 'd') || startsLike(line, 'l')) {
    name = NomeVirtualDirectory(line);
  } else {
    name = NomeDirectoryDOS(line);
  }
  if (name.empty() || name == "." || name == ".." || !isOneName(name)) return std::nullopt;
  return name;
}

std::string shownName(std::string_view bytes) {
  // A byte that is no part of UTF-8 becomes "?" on its way to Windows-1252, so the way back would not give it again.
  const std::string there = toWindows1252(bytes);
  const bool isPlain = std::ranges::count(there, '?') == std::ranges::count(bytes, '?');
  return isPlain ? std::string(bytes) : fromWindows1252(bytes);
}

}  // namespace kv
