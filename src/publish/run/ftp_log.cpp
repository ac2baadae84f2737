#include "publish/run/ftp_log.h"

#include "platform/text/text.h"

namespace kv {

std::optional<std::string> shownLine(std::string_view line) {
  if (line.starts_with("PASS ")) return "PASS (hidden)";
  if (line == "Send") return std::nullopt;
  return std::string(line);
}

void FtpLog::open(const std::string& path) {
  close();
  auto file = OutputFile::create(path);
  if (file) file_.emplace(std::move(*file));
}

void FtpLog::write(std::string_view line) {
  if (!file_) return;
  file_->append(toWindows1252(line));
  file_->append("\r\n");
}

void FtpLog::close() {
  if (file_) ignore(file_->close(), "the dialogue was shown, and its log decides nothing");
  file_.reset();
}

void VisibleLog::add(std::string_view line) {
  text_ += line;
  text_ += '\n';
  // Far beyond the limit in bytes, so that characters are counted now and then only.
  if (text_.size() >= 2 * longest) text_ = text();
}

std::string_view VisibleLog::text() const {
  std::string_view shown = text_;
  const std::size_t count = characterCount(shown);
  if (count > longest) shown.remove_prefix(firstCharacters(shown, count - longest).size());
  return shown;
}

}  // namespace kv
