#pragma once
// The dialogue with the server, as it is written down and shown.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/output_file.h"

namespace kv {

/// The line as it may be shown: a password is replaced by "(hidden)"; nothing for a line that tells nothing ("Send").
std::optional<std::string> shownLine(std::string_view line);

/// The log of one folder, kvftp1.log to kvftp4.log in Windows-1252. A log that can't be written stops no run.
class FtpLog {
 public:
  /// Starts a new log in place of the old one.
  void open(const std::string& path);
  /// Writes a line, closed with CR LF.
  void write(std::string_view line);
  /// Ends the file; what is missing of it changes nothing.
  void close();

 private:
  std::optional<OutputFile> file_;
};

/// The end of the dialogue, as a window shows it.
class VisibleLog {
 public:
  /// The most characters that are kept.
  static constexpr std::size_t longest = 32000;
  void add(std::string_view line);
  /// The last `longest` characters of what was added, each line with its end.
  std::string_view text() const;

 private:
  std::string text_;
};

}  // namespace kv
