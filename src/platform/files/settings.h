#pragma once
// The per-user settings store: application, section, key, text value. An absent value reads as an empty text.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/files.h"
#include "platform/ports/result.h"

namespace kv {

/// Where the program's settings are kept.
class Settings {
 public:
  virtual ~Settings() = default;
  /// The value of a key; empty when it has none. Names ignore case.
  virtual std::string get(std::string_view section, std::string_view key) const = 0;
  /// Stores a value at once. Malformed when a name could not be read back from a line of the file: an empty key, a
  /// line end, "=" in a key, "]" in a section, a key that starts like a section or a comment, spaces at its ends.
  /// Other failures as writeBytes. After a failure the old value stays.
  virtual Result<> set(std::string_view section, std::string_view key, std::string_view value) = 0;
};

/// Settings in a file of "[section]" lines and "key=value" lines (UTF-8; "\\", "\n", "\r" escaped in values). Names
/// ignore case; of two equal ones the first counts. A missing file is an empty store, and its folder is made by the
/// first set(); lines that are neither, and those that start with ";" or "#", are kept as they are.
///
/// Several programs may share the file: set() locks it, reads it again, changes its one key and replaces the file
/// whole, so that what another window has stored meanwhile survives; get() reads again once the file has changed. The
/// lock is taken on the folder; one that is held for more than two seconds is InUse. While the file can't be read the
/// values read last hold (none at the start), and set() fails rather than replace it.
class FileSettings final : public Settings {
 public:
  /// path: the file, made by the first set(). Nothing is read or made yet.
  explicit FileSettings(std::string path);
  std::string get(std::string_view section, std::string_view key) const override;
  Result<> set(std::string_view section, std::string_view key, std::string_view value) override;

 private:
  struct Line {
    std::string text;  ///< as it is in the file, without its end
    std::string name;  ///< folded "section\nkey"; empty when the line holds no value
    std::string value;
  };
  Result<> readFile() const;
  std::optional<FileStamp> presentStamp() const;
  void refresh() const;
  void parse(std::string_view text) const;
  void indexLines() const;
  std::size_t lineForNew(std::string_view section);
  Result<> write() const;

  std::string path_;
  // What was read last; the file is the store, and these only spare reading it again.
  mutable std::vector<Line> lines_;
  mutable std::map<std::string, std::size_t> index_;  ///< name -> its first line
  mutable std::optional<FileStamp> stamp_;            ///< of the file that was read; empty when there was none
};

/// Settings that live as long as the object; for tests.
class MemorySettings final : public Settings {
 public:
  std::string get(std::string_view section, std::string_view key) const override;
  Result<> set(std::string_view section, std::string_view key, std::string_view value) override;

 private:
  std::map<std::string, std::string> values_;  // folded "section\nkey" -> value
};

/// The settings file of this user: $XDG_CONFIG_HOME/korvane/korvane.ini, else ~/.config/korvane/korvane.ini.
std::string userSettingsPath();

}  // namespace kv
