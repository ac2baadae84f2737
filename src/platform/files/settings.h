#pragma once
// The per-user settings store: application, section, key, text value. An absent value reads as an empty text.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

class Settings {
 public:
  virtual ~Settings() = default;
  virtual std::string get(std::string_view section, std::string_view key) const = 0;
  /// Stores at once. Malformed when a name would not come back from a line of the file: an empty key, a line end,
  /// "=" in a key, "]" in a section, a key that starts like a section or a comment, blanks at its ends. Other failures:
  /// as writeBytes; the old value then stays.
  virtual Result<> set(std::string_view section, std::string_view key, std::string_view value) = 0;
};

/// Settings in a file of "[section]" lines and "key=value" lines (UTF-8; "\\", "\n", "\r" escaped in values), kept
/// whole in memory and rewritten in one step by each set(). Names ignore case; of two equal ones the first counts. A
/// missing file is an empty store, and its folder is made by the first set(); lines that are neither, and those that
/// start with ";" or "#", are kept as they stand. A file that is there and can't be read gives empty values, and set()
/// fails rather than replace it.
class FileSettings final : public Settings {
 public:
  explicit FileSettings(std::string path);
  std::string get(std::string_view section, std::string_view key) const override;
  Result<> set(std::string_view section, std::string_view key, std::string_view value) override;

 private:
  struct Line {
    std::string text;   // as it stands in the file, without its end
    std::string place;  // folded "section\nkey"; empty when the line holds no value
    std::string value;
  };
  void read(std::string_view text);
  void indexLines();
  std::size_t placeForNew(std::string_view section);
  Result<> write() const;

  std::string path_;
  std::vector<Line> lines_;
  std::map<std::string, std::size_t> index_;  // place -> its first line
  std::optional<Error> unread_;
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
