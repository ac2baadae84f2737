// Options pasted from a spreadsheet.

#include <array>

#include "commerce/variants/variant_editor.h"
#include "commerce/variants/variant_rows.h"
#include "platform/numbers/number_format.h"
#include "platform/numbers/number_reading.h"
#include "platform/numbers/typed_number.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t pastedCells = 4;

std::array<std::string, pastedCells> cellsOf(std::string_view line) {
  std::array<std::string, pastedCells> cells;
  for (std::string& cell : cells) {
    const auto tab = line.find('\t');
    cell = std::string(trim(line.substr(0, tab)));
    if (tab == std::string_view::npos) break;
    line.remove_prefix(tab + 1);
  }
  return cells;
}

/// A number of a spreadsheet, in either notation, as the store takes it; empty for any other text.
std::string cellNumber(const std::string& cell, char decimalSeparator) {
  return storedNumber(readSignedNumber(cell, decimalSeparator).text, decimalSeparator);
}

}  // namespace

bool VariantEditor::pasteOptions(std::int64_t variant, std::string_view text) {
  if (!canHaveOptions(variant)) return false;
  std::vector<NewOption> rows;
  for (const std::string_view line : splitLines(text)) {
    const auto cells = cellsOf(line);
    NewOption option{cells[0], cells[1], std::nullopt, std::nullopt};
    const auto refuse = [&](const std::string& cell) {
      user_.message(
          "La riga " + std::to_string(rows.size() + 1) + " non può essere incollata: '" + cell + "' non è un numero",
          Icon::Exclamation);
      return false;
    };
    if (!cells[2].empty() && !(option.prezzo = Money::parse(cellNumber(cells[2], separator_)))) return refuse(cells[2]);
    if (!cells[3].empty() && !(option.peso = toNumber(cellNumber(cells[3], separator_)))) return refuse(cells[3]);
    rows.push_back(std::move(option));
  }
  if (rows.empty()) return false;
  const auto inserted = insertOptions(session_.catalogue, variant, suffix(), rows);
  return inserted ? true : told(fail(inserted.error()));
}

}  // namespace kv
