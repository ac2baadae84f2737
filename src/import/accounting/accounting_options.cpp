#include "import/accounting/accounting_options.h"

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t firstVisibility = 7;

/// The digit at an index of the line; `usual` where the line has none.
int digitAt(std::string_view line, std::size_t at, int usual) {
  if (at >= line.size() || line[at] < '0' || line[at] > '9') return usual;
  return line[at] - '0';
}

char flagDigit(bool on) { return on ? '1' : '0'; }
char digit(int value) { return static_cast<char>('0' + value); }

}  // namespace

AccountingOptions readAccountingOptions(std::string_view line, int generation) {
  AccountingOptions options;
  options.mark = digitAt(line, 0, 0) == 1;
  options.price = digitAt(line, 1, options.price);
  if (options.price == 0) options.price = 1;
  options.offer = digitAt(line, 2, 0);
  options.addVat = digitAt(line, 3, 0) == 1;
  options.update = digitAt(line, 4, 1) != 0;
  options.backup = digitAt(line, 5, 1) == 1;
  options.listino = digitAt(line, 6, 0);
  if (generation < 3) return options;
  for (std::size_t i = 0; i < visibilities; ++i) {
    options.visible.at(i) = digitAt(line, firstVisibility + i, options.visible.at(i) ? 1 : 0) == 1;
  }
  return options;
}

std::string accountingLine(const AccountingOptions& options, int generation) {
  std::string line{flagDigit(options.mark),   digit(options.price),      digit(options.offer),
                   flagDigit(options.addVat), flagDigit(options.update), flagDigit(options.backup),
                   digit(options.listino)};
  if (generation < 3) return line;
  for (const bool visible : options.visible) line += flagDigit(visible);
  return line;
}

std::string refusalOf(const AccountingOptions& options) {
  return options.listino < 0 ? std::string(listinoMissing) : std::string();
}

AccountingOptions savedAccountingOptions(const std::string& shopFolder, const AccountingVariant& variant) {
  const auto text = readText(joinPath(shopFolder, variant.optionFile));
  if (!text) {
    AccountingOptions options;
    options.listino = -1;
    return options;
  }
  const auto lines = splitLines(*text);
  return readAccountingOptions(lines.empty() ? std::string_view() : trim(lines.front()), variant.generation);
}

Result<> saveAccountingLine(const std::string& shopFolder, const AccountingVariant& variant, std::string_view line) {
  return writeText(joinPath(shopFolder, variant.optionFile), std::string(line) + "\r\n");
}

}  // namespace kv
