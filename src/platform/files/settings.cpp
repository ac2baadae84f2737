#include "platform/files/settings.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/files/file_access.h"
#include "platform/files/files.h"
#include "platform/files/user_folders.h"
#include "platform/text/text.h"

namespace kv {
namespace {

std::string foldedName(std::string_view section, std::string_view key) {
  return foldCase(section) + "\n" + foldCase(key);
}

std::string escaped(std::string_view value) {
  std::string text = replaceAll(value, "\\", "\\\\");
  text = replaceAll(text, "\n", "\\n");
  return replaceAll(text, "\r", "\\r");
}

std::string unescaped(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
    const bool isEscape = next == '\\' || next == 'n' || next == 'r';
    if (isEscape) ++i;
    value += !isEscape ? text[i] : next == 'n' ? '\n' : next == 'r' ? '\r' : '\\';
  }
  return value;
}

bool isComment(std::string_view line) { return line.starts_with(';') || line.starts_with('#'); }

std::optional<std::string_view> sectionIn(std::string_view line) {
  line = trim(line);
  if (line.size() < 2 || line.front() != '[' || line.back() != ']') return std::nullopt;
  return trim(line.substr(1, line.size() - 2));
}

bool isName(std::string_view name) {
  return name.find_first_of("\r\n") == std::string_view::npos && trim(name) == name;
}

Result<> requireNames(std::string_view section, std::string_view key) {
  const bool sectionFits = isName(section) && section.find(']') == std::string_view::npos;
  const bool keyFits = !key.empty() && isName(key) && key.find('=') == std::string_view::npos &&
                       !key.starts_with('[') && !isComment(key);
  if (sectionFits && keyFits) return {};
  return fail(ErrorKind::Malformed, "[" + std::string(section) + "] " + std::string(key), "No name of a setting");
}

constexpr int lockAttempts = 100;
constexpr int pauseOfAttempt = 20;  // milliseconds

/// Holds the lock that all writers of a settings file share. The file can't carry it, since each write replaces the
/// file: it is taken on the folder.
Result<Descriptor> lockFolderOf(const std::string& path) {
  const std::string name(folderOf(path));
  Descriptor lock(::open(name.empty() ? "." : name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!lock.isOpen()) return systemFailure(errno, name);
  for (int attempt = 0; ::flock(lock.number(), LOCK_EX | LOCK_NB) != 0; ++attempt) {
    if (errno != EWOULDBLOCK && errno != EINTR) return systemFailure(errno, name);
    if (attempt == lockAttempts) return fail(ErrorKind::InUse, path, "locked by another program");
    std::this_thread::sleep_for(std::chrono::milliseconds(pauseOfAttempt));
  }
  return lock;
}

}  // namespace

FileSettings::FileSettings(std::string path) : path_(std::move(path)) {}

std::optional<FileStamp> FileSettings::presentStamp() const {
  const auto stamp = fileStamp(path_);
  return stamp ? std::optional(*stamp) : std::nullopt;
}

Result<> FileSettings::readFile() const {
  // Taken before the bytes: a change between the two is read again, not missed.
  const auto stamp = presentStamp();
  const auto bytes = readBytes(path_);
  if (!bytes && bytes.error().kind != ErrorKind::Missing) return fail(bytes.error());
  lines_.clear();
  if (bytes) parse(*bytes);
  indexLines();
  stamp_ = stamp;
  return {};
}

void FileSettings::refresh() const {
  if (presentStamp() == stamp_) return;
  ignore(readFile(), "the values read last hold until the file can be read again");
}

void FileSettings::parse(std::string_view text) const {
  std::string section;
  for (const std::string_view line : splitLines(text)) {
    Line& kept = lines_.emplace_back(Line{std::string(line), {}, {}});
    const auto opened = sectionIn(line);
    const std::size_t equals = line.find('=');
    if (opened) {
      section = *opened;
    } else if (equals != std::string_view::npos && !isComment(line)) {
      kept.name = foldedName(section, trim(line.substr(0, equals)));
      kept.value = unescaped(line.substr(equals + 1));
    }
  }
}

void FileSettings::indexLines() const {
  index_.clear();
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (!lines_[i].name.empty()) index_.emplace(lines_[i].name, i);
  }
}

std::string FileSettings::get(std::string_view section, std::string_view key) const {
  refresh();
  const auto found = index_.find(foldedName(section, key));
  return found == index_.end() ? std::string() : lines_[found->second].value;
}

Result<> FileSettings::set(std::string_view section, std::string_view key, std::string_view value) {
  if (auto fits = requireNames(section, key); !fits) return fits;
  if (auto created = createFolders(std::string(folderOf(path_))); !created) return created;
  const auto lock = lockFolderOf(path_);
  if (!lock) return fail(lock.error());
  if (auto read = readFile(); !read) return read;
  const std::vector<Line> before = lines_;
  Line line{std::string(key) + "=" + escaped(value), foldedName(section, key), std::string(value)};
  const auto found = index_.find(line.name);
  if (found != index_.end()) {
    lines_[found->second] = std::move(line);
  } else {
    const auto at = static_cast<std::ptrdiff_t>(lineForNew(section));
    lines_.insert(lines_.begin() + at, std::move(line));
  }
  auto written = write();
  if (!written) lines_ = before;
  indexLines();
  if (written) stamp_ = presentStamp();
  return written;
}

// After the last line of the section that isn't empty; a section that isn't there is opened at the end.
std::size_t FileSettings::lineForNew(std::string_view section) {
  const auto opens = [&](const Line& line) {
    const auto name = sectionIn(line.text);
    return line.name.empty() && name && equalsIgnoringCase(*name, section);
  };
  const auto start = std::find_if(lines_.begin(), lines_.end(), opens);
  if (start == lines_.end()) {
    lines_.push_back({"[" + std::string(section) + "]", {}, {}});
    return lines_.size();
  }
  auto last = start;
  for (auto line = start + 1; line != lines_.end() && !sectionIn(line->text); ++line) {
    if (!trim(line->text).empty()) last = line;
  }
  return static_cast<std::size_t>(last - lines_.begin()) + 1;
}

Result<> FileSettings::write() const {
  std::string text;
  for (const Line& line : lines_) text += line.text + "\n";
  return writeBytes(path_, text);
}

std::string MemorySettings::get(std::string_view section, std::string_view key) const {
  const auto found = values_.find(foldedName(section, key));
  return found == values_.end() ? std::string() : found->second;
}

Result<> MemorySettings::set(std::string_view section, std::string_view key, std::string_view value) {
  if (auto fits = requireNames(section, key); !fits) return fits;
  values_[foldedName(section, key)] = value;
  return {};
}

std::string userSettingsPath() { return userFolder("XDG_CONFIG_HOME", ".config") + "/korvane/korvane.ini"; }

}  // namespace kv
