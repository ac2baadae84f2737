#include "sqlexport/sql_style.h"

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/shop/session.h"

namespace kv {
namespace {

constexpr std::string_view separatorKey = "QS2";
constexpr std::string_view separatorMark = "#QS=";

// Marks and numbers are at the very start of files of any size.
constexpr std::size_t headSize = 4096;

std::string lineOfHead(const std::string& path, std::size_t line) {
  const auto head = readStart(path, headSize);
  if (!head) return {};
  const auto lines = splitLines(*head);
  return line < lines.size() ? fromWindows1252(lines[line]) : std::string();
}

}  // namespace

void readLockOption(const std::string& shopFolder, LockStatements& lock) {
  constexpr std::string_view key = "LOCK:";
  const auto text = readText(entryPath(shopFolder, "kvftp.ini"));
  if (!text) return;
  for (const std::string_view line : splitLines(*text)) {
    if (!startsWithIgnoringCase(line, key)) continue;
    const auto value = toNumber(line.substr(key.size()));
    lock.on = !value || *value != 0;
  }
}

SqlStyle sqlStyle(const Settings& settings, const LockStatements& lock) {
  SqlStyle style;
  style.lockTables = lock.on;
  const std::string chosen = settings.get(settingsSection, separatorKey);
  if (chosen.starts_with(';')) style.separator = chosen;
  return style;
}

std::string expectedMark(const Settings& settings) {
  const std::string chosen = settings.get(settingsSection, separatorKey);
  return chosen.starts_with(';') ? std::string(separatorMark) + chosen : std::string();
}

bool isStale(const std::string& path, const Settings& settings) {
  const std::string expected = expectedMark(settings);
  const std::string found = lineOfHead(path, 1);
  return expected.empty() ? found.starts_with(separatorMark) : found != expected;
}

double notedLanguages(const std::string& onlineFolder, const std::string& sec) {
  return leadingNumber(lineOfHead(joinPath(onlineFolder, sec + ".sc"), 0));
}

bool isExported(const TableInfo& table, std::string_view languageSuffix) {
  if ((table.attributes & (hiddenTable | systemTable)) != 0) return false;
  if (languageSuffix.empty()) return table.name.find("_l") == std::string::npos;
  return table.name.find(languageSuffix) != std::string::npos;
}

void writeHead(OutputFile& out, const std::string& sec, const SqlStyle& style) {
  out.append(toWindows1252("#" + sec + "\r\n"));
  if (style.separator != ";") out.append(toWindows1252(std::string(separatorMark) + style.separator + "\r\n"));
}

void writeWarnings(OutputFile& out, ExportWarnings& warnings) {
  if (warnings.pending.empty()) return;
  out.append(toWindows1252(warnings.pending));
  warnings.pending.clear();
}

}  // namespace kv
