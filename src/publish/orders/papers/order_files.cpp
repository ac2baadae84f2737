#include "publish/orders/papers/order_files.h"

#include <algorithm>
#include <array>

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/sheet/spreadsheet.h"
#include "platform/text/formula_sign.h"
#include "platform/text/text.h"
#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr std::string_view csvUtf8Mark = "\xEF\xBB\xBF";

/// What a column of the files holds.
enum class FileColumn : std::uint8_t { Text, Whole, Amount, Moment };

/// A cell of the files: a text as it is, an amount, a number or a moment.
struct FileCell {
  FileColumn kind = FileColumn::Text;
  std::string text;  // of Whole its digits, of Moment "yyyy-mm-dd hh:mm:ss"
  Money amount = {};
};
using FileRow = std::vector<FileCell>;

struct HeadedColumn {
  std::string_view heading;
  int width;  // in characters, of a sheet
};
constexpr std::array columnsOfOrder{
    HeadedColumn{"Codice", 14}, HeadedColumn{"Data", 17},  HeadedColumn{"Cliente", 26},   HeadedColumn{"E-mail", 28},
    HeadedColumn{"Totale", 12}, HeadedColumn{"Valuta", 8}, HeadedColumn{"Pagamento", 22}, HeadedColumn{"Stato", 14}};

/// The fields of the order form after the order's own columns.
struct FieldColumn {
  std::string_view heading;
  const char* field;
  int width;
};
constexpr std::array columnsOfForm{FieldColumn{"Ragione sociale", "RagioneSociale", 24},
                                   FieldColumn{"Partita IVA", "PartitaIVA", 16},
                                   FieldColumn{"Indirizzo", "Indirizzo", 28},
                                   FieldColumn{"CAP", "CAP", 8},
                                   FieldColumn{"Città", "Citta", 20},
                                   FieldColumn{"Provincia", "Provincia", 10},
                                   FieldColumn{"Paese", "Paese", 14},
                                   FieldColumn{"Telefono", "Telefono", 16},
                                   FieldColumn{"Note", "Note", 30}};
constexpr std::array columnsOfLine{HeadedColumn{"Riga", 6},
                                   HeadedColumn{"Codice articolo", 16},
                                   HeadedColumn{"Articolo", 30},
                                   HeadedColumn{"Opzioni", 20},
                                   HeadedColumn{"Articolo (cliente)", 30},
                                   HeadedColumn{"Opzioni (cliente)", 20},
                                   HeadedColumn{"Quantità", 9},
                                   HeadedColumn{"Prezzo", 12},
                                   HeadedColumn{"Totale riga", 12}};

std::vector<HeadedColumn> fileColumns(bool withLines) {
  std::vector<HeadedColumn> columns(columnsOfOrder.begin(), columnsOfOrder.end());
  for (const FieldColumn& column : columnsOfForm) columns.push_back({column.heading, column.width});
  if (withLines) columns.insert(columns.end(), columnsOfLine.begin(), columnsOfLine.end());
  return columns;
}

/// One line of text: what would end a row or a field becomes a space, and none is at either end.
std::string inOneField(std::string_view text) {
  std::string line;
  constexpr unsigned char firstPrinting = 0x20, deleteSign = 0x7F;
  bool wasControl = false;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isControl = byte < firstPrinting || byte == deleteSign;
    if (!isControl) line += c;
    if (isControl && !wasControl) line += ' ';
    wasControl = isControl;
  }
  return std::string(trim(line));
}

FileCell textCell(std::string_view text) { return {FileColumn::Text, inOneField(text)}; }
FileCell wholeCell(std::int64_t number) { return {FileColumn::Whole, std::to_string(number)}; }
FileCell amountCell(Money amount) { return {FileColumn::Amount, {}, amount}; }

FileRow orderCells(const DeskOrder& order) {
  FileRow row{textCell(order.code),    {FileColumn::Moment, order.created},
              textCell(order.name),    textCell(order.email),
              amountCell(order.total), textCell(order.currency),
              textCell(order.method),  textCell(order.state)};
  for (const FieldColumn& column : columnsOfForm) row.push_back(textCell(orderField(order, column.field)));
  return row;
}

FileRow lineCells(std::size_t number, const DeskOrderLine& line) {
  return {wholeCell(static_cast<std::int64_t>(number)),
          textCell(line.code),
          textCell(line.shopTitle),
          textCell(line.shopChoices),
          textCell(line.title),
          textCell(line.choices),
          wholeCell(line.quantity),
          amountCell(line.price),
          amountCell(lineTotal(line))};
}

/// The rows of one order.
std::vector<FileRow> rowsOf(const DeskOrder& order, bool withLines) {
  const FileRow own = orderCells(order);
  if (!withLines) return {own};
  std::vector<FileRow> rows;
  for (std::size_t i = 0; i < order.lines.size(); ++i) {
    rows.push_back(own);
    std::ranges::move(lineCells(i + 1, order.lines[i]), std::back_inserter(rows.back()));
  }
  if (rows.empty()) {
    rows.push_back(own);
    // Nothing at all, also no empty text in quotes.
    rows.back().resize(own.size() + columnsOfLine.size(), FileCell{FileColumn::Whole, {}});
  }
  return rows;
}

std::string csvCell(const FileCell& cell) {
  if (cell.kind == FileColumn::Whole) return cell.text;
  if (cell.kind == FileColumn::Amount) return decimalText(cell.amount, false);
  if (cell.kind == FileColumn::Moment) {
    std::string moment = orderDate(cell.text, true);
    if (moment != cell.text) return moment;
  }
  return (hasFormulaSign(cell.text) ? "\"'" : "\"") + replaceAll(cell.text, "\"", "\"\"") + "\"";
}

// Half of what a cell of a sheet holds, for escapes may double a text. No order that a customer has typed comes near
// it.
constexpr std::size_t mostCharacters = 16'000;

/// A cell of a sheet; `texts` keeps what it shows.
DressedCell dressed(const FileCell& cell, std::vector<std::string>& texts) {
  constexpr CellLook looks[] = {CellLook::Text, CellLook::Number, CellLook::Amount, CellLook::Moment};
  texts.push_back(cell.kind == FileColumn::Amount ? formatNumber(cell.amount, "0.00##")
                                                  : std::string(firstCharacters(cell.text, mostCharacters)));
  return {texts.back(), looks[static_cast<std::size_t>(cell.kind)]};
}

Result<> writeRow(SheetWriter& writer, const FileRow& row) {
  std::vector<std::string> texts;
  texts.reserve(row.size());
  std::vector<DressedCell> cells;
  for (const FileCell& cell : row) cells.push_back(dressed(cell, texts));
  return writer.dressedRow(cells);
}

}  // namespace

bool OrderFilter::matches(const DeskOrder& order) const {
  return isBetweenDays(order, from, to) && (states.empty() || std::ranges::find(states, order.state) != states.end());
}

std::vector<DeskOrder> ordersMatching(std::span<const DeskOrder> orders, const OrderFilter& filter) {
  std::vector<DeskOrder> found;
  std::ranges::copy_if(orders, std::back_inserter(found), [&](const DeskOrder& each) { return filter.matches(each); });
  std::ranges::stable_sort(found, std::ranges::greater(), &DeskOrder::id);
  return found;
}

std::string ordersCsv(std::span<const DeskOrder> orders, bool withLines) {
  std::string text(csvUtf8Mark);
  std::string separator;
  for (const HeadedColumn& column : fileColumns(withLines)) {
    text += separator + std::string(column.heading);
    separator = ";";
  }
  text += "\r\n";
  for (const DeskOrder& order : orders) {
    for (const FileRow& row : rowsOf(order, withLines)) {
      for (std::size_t i = 0; i < row.size(); ++i) text += (i > 0 ? ";" : "") + csvCell(row[i]);
      text += "\r\n";
    }
  }
  return text;
}

Result<> writeOrdersXlsx(const std::string& path, std::span<const DeskOrder> orders, bool withLines) {
  auto writer = SheetWriter::create(path, withLines ? "Righe" : "Ordini");
  if (!writer) return fail(writer.error());
  std::vector<DressedCell> headings;
  std::vector<int> widths;
  for (const HeadedColumn& column : fileColumns(withLines)) {
    headings.push_back({column.heading});
    widths.push_back(column.width);
  }
  writer->setWidths(widths);
  if (auto done = writer->dressedRow(headings); !done) return done;
  for (const DeskOrder& order : orders) {
    for (const FileRow& row : rowsOf(order, withLines)) {
      if (auto done = writeRow(*writer, row); !done) return done;
    }
  }
  return writer->finish();
}

Result<> writeOrderFile(const std::string& path, std::span<const DeskOrder> orders, bool withLines) {
  return endsWithIgnoringCase(path, ".xlsx") ? writeOrdersXlsx(path, orders, withLines)
                                             : writeBytes(path, ordersCsv(orders, withLines));
}

}  // namespace kv
