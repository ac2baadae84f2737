#include "import/tables/export_shapes.h"

#include <algorithm>
#include <array>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr double gramsOfKilogram = 1000, kilogramsOfPound = 0.45359237;
constexpr int weightDecimals = 6;

/// A row of a sheet, its cells known by their headers without regard to case and signs.
class ShapeRow {
 public:
  ShapeRow(const CellTable& cells, const std::vector<std::string>& headers) : cells_(cells), headers_(headers) {}

  std::size_t row = 1;
  std::string_view at(std::string_view header) const { return at(header, row); }
  std::string_view above(std::string_view header) const { return row > 1 ? at(header, row - 1) : std::string_view(); }

 private:
  std::string_view at(std::string_view header, std::size_t index) const {
    const auto found = std::ranges::find(headers_, header);
    if (found == headers_.end()) return {};
    return trim(cells_.cell(index, static_cast<std::size_t>(found - headers_.begin())).text);
  }

  const CellTable& cells_;
  const std::vector<std::string>& headers_;
};

/// What becomes of a cell.
using ShapeCell = std::string (*)(const ShapeRow& row, std::string_view cell);

/// A column of a shape.
struct ShapeColumn {
  std::string_view header;      ///< plain; of an added one what the guide shows
  std::string_view column;      ///< own name of ours
  ShapeCell cell = nullptr;     ///< as it is where there is none
  bool isCarried = false;       ///< empty in a further variant: as in the row above
  std::string_view needs = {};  ///< of an added column: the header without which it isn't added
};

/// How a program writes its products.
struct ExportShape {
  ExportShapeName name;
  std::vector<std::string_view> known;           ///< plain headers, all of which tell it
  bool (*isFurther)(const ShapeRow&) = nullptr;  ///< a further variant of the product above
  bool (*isLeftOut)(const ShapeRow&) = nullptr;  ///< no product: a further picture
  std::vector<ShapeColumn> columns, added;
};

std::string ofFlag(bool isSet) { return isSet ? "1" : "0"; }

std::string weighed(std::string_view cell, double factor) {
  const auto weight = toNumber(cell);
  // What is no number is refused as it is, with its row.
  if (!weight) return std::string(cell);
  std::string text = trimmedNumber(roundHalfAway(*weight * factor, weightDecimals));
  return text.starts_with('.') ? "0" + text : text;
}
std::string fromGrams(const ShapeRow&, std::string_view cell) { return weighed(cell, 1 / gramsOfKilogram); }
std::string fromPounds(const ShapeRow&, std::string_view cell) { return weighed(cell, kilogramsOfPound); }

/// "1.5 kg", "500 g", "2 lb", "8 oz".
std::string weightWithUnit(const ShapeRow&, std::string_view cell) {
  struct Unit {
    std::string_view ending;
    double factor;
  };
  constexpr double ouncesOfPound = 16;
  constexpr std::array<Unit, 5> units{{{"kg", 1},
                                       {"g", 1 / gramsOfKilogram},
                                       {"lbs", kilogramsOfPound},
                                       {"lb", kilogramsOfPound},
                                       {"oz", kilogramsOfPound / ouncesOfPound}}};
  for (const Unit& unit : units) {
    if (!endsWithIgnoringCase(cell, unit.ending)) continue;
    return weighed(trim(cell.substr(0, cell.size() - unit.ending.size())), unit.factor);
  }
  return std::string(cell);
}

/// "12.50 EUR" and "EUR 12.50" without the code of the currency, of which a shop has one.
std::string withoutCode(std::string_view cell) {
  const auto isCode = [](char c) { return c >= 'A' && c <= 'Z'; };
  while (!cell.empty() && isCode(cell.back())) cell.remove_suffix(1);
  while (!cell.empty() && isCode(cell.front())) cell.remove_prefix(1);
  return std::string(trim(cell));
}
std::string feedAmount(const ShapeRow&, std::string_view cell) { return withoutCode(cell); }

/// What isn't published is not listed.
std::string notPublished(const ShapeRow&, std::string_view cell) {
  constexpr std::array<std::string_view, 4> words{"1", "true", "yes", "active"};
  return ofFlag(std::ranges::none_of(words, [&](auto word) { return equalsIgnoringCase(word, cell); }));
}

/// Line ends that are written as a backslash and an "n".
std::string withLineEnds(const ShapeRow&, std::string_view cell) { return replaceAll(cell, "\\n", "\n"); }

/// The name of the first picture of a list; of an address what follows its last slash.
std::string firstPicture(const ShapeRow&, std::string_view cell) {
  std::string_view first = trim(cell.substr(0, cell.find(',')));
  if (!startsWithIgnoringCase(first, "http")) return std::string(first);
  first = first.substr(0, first.find('?'));
  return std::string(first.substr(first.rfind('/') + 1));
}

bool isBefore(std::string_view price, std::string_view before) {
  const auto now = toNumber(price), then = toNumber(before);
  return now && then && *then > *now;
}
constexpr std::string_view variantPrice = "variantprice", comparedPrice = "variantcompareatprice";
bool isReduced(const ShapeRow& row) { return isBefore(row.at(variantPrice), row.at(comparedPrice)); }
std::string usualVariantPrice(const ShapeRow& row, std::string_view cell) {
  return std::string(isReduced(row) ? row.at(comparedPrice) : cell);
}
std::string reducedVariantPrice(const ShapeRow& row, std::string_view) {
  return std::string(isReduced(row) ? row.at(variantPrice) : std::string_view());
}
std::string reducedVariant(const ShapeRow& row, std::string_view) { return ofFlag(isReduced(row)); }
std::string onSale(const ShapeRow& row, std::string_view) { return ofFlag(!row.at("saleprice").empty()); }

ExportShape handleShape() {
  return {{"handle", "Handle, Title, Variant SKU"},
          {"handle", "title", "variantsku"},
          [](const ShapeRow& row) { return row.at("handle") == row.above("handle"); },
          [](const ShapeRow& row) { return row.at("variantsku").empty() && row.at(variantPrice).empty(); },
          {{"variantsku", "codice"},
           {"title", "titolo", nullptr, true},
           {"bodyhtml", "descrizione", nullptr, true},
           {"type", "reparto", nullptr, true},
           {"productcategory", "reparto", nullptr, true},
           {variantPrice, "prezzo", usualVariantPrice},
           {"variantgrams", "peso", fromGrams},
           {"published", "fuoricatalogo", notPublished, true},
           {"imagesrc", "immagine0", firstPicture, true}},
          {{"Variant Price < Compare At", "offertaprezzo", reducedVariantPrice, false, comparedPrice},
           {"Compare At", "offerta", reducedVariant, false, comparedPrice}}};
}

ExportShape typeShape() {
  return {{"tipo", "ID, Type, SKU, Name"},
          {"type", "sku", "name", "regularprice"},
          [](const ShapeRow& row) { return equalsIgnoringCase(row.at("type"), "variation"); },
          nullptr,
          {{"sku", "codice"},
           {"name", "titolo"},
           {"shortdescription", "note", withLineEnds},
           {"description", "descrizione", withLineEnds, true},
           {"regularprice", "prezzo"},
           {"saleprice", "offertaprezzo"},
           {"categories", "reparto", nullptr, true},
           {"weightkg", "peso"},
           {"weightg", "peso", fromGrams},
           {"weightlbs", "peso", fromPounds},
           {"published", "fuoricatalogo", notPublished},
           {"images", "immagine0", firstPicture, true}},
          {{"Sale price > 0", "offerta", onSale, false, "saleprice"}}};
}

ExportShape referenceShape() {
  return {{"riferimento", "Product ID, Name, Reference"},
          {"productid", "name", "reference"},
          nullptr,
          nullptr,
          {{"reference", "codice"},
           {"name", "titolo"},
           {"summary", "note"},
           {"description", "descrizione"},
           {"categoriesxyz", "reparto"},
           {"category", "reparto"},
           {"pricetaxincluded", "prezzo"},
           {"pricetaxincl", "prezzo"},
           {"pricetaxexcluded", "prezzo"},
           {"pricetaxexcl", "prezzo"},
           {"weight", "peso"},
           {"active01", "fuoricatalogo", notPublished},
           {"status", "fuoricatalogo", notPublished},
           {"imageurlsxyz", "immagine0", firstPicture},
           {"image", "immagine0", firstPicture}},
          {}};
}

ExportShape feedShape() {
  return {{"feed", "Feed XML: g:id, g:title, g:price"},
          {"id", "title", "price"},
          nullptr,
          nullptr,
          {{"id", "codice"},
           {"title", "titolo"},
           {"description", "descrizione"},
           {"price", "prezzo", feedAmount},
           {"saleprice", "offertaprezzo", feedAmount},
           {"producttype", "reparto"},
           {"shippingweight", "peso", weightWithUnit},
           {"imagelink", "immagine0", firstPicture},
           {"additionalimagelink", "immagine1", firstPicture}},
          {{"g:sale_price > 0", "offerta", onSale, false, "saleprice"}}};
}

const std::vector<ExportShape>& exportShapes() {
  static const std::vector<ExportShape> shapes{handleShape(), typeShape(), referenceShape(), feedShape()};
  return shapes;
}

const ExportShape* shapeNamed(std::string_view name) {
  const auto found = std::ranges::find_if(exportShapes(), [&](const auto& shape) { return shape.name.name == name; });
  return found == exportShapes().end() ? nullptr : &*found;
}

std::vector<std::string> plainHeaders(const std::vector<std::string>& headers) {
  std::vector<std::string> plain;
  plain.reserve(headers.size());
  for (const std::string& header : headers) plain.push_back(plainHeader(header));
  return plain;
}

bool hasHeader(const std::vector<std::string>& headers, std::string_view header) {
  return std::ranges::find(headers, header) != headers.end();
}

/// The cells of a sheet as a shape makes them, and the columns that they belong to.
class ShapedSheet {
 public:
  ShapedSheet(const ExportShape& shape, const SheetTable& table, const ReadSheet& sheet)
      : shape_(shape), sheet_(sheet), headers_(plainHeaders(sheet.headers())), row_(sheet.cells, headers_) {
    for (const std::string& header : headers_) addSource(table, header);
    for (const ShapeColumn& column : shape.added) {
      const auto index = table.columnIndex(column.column);
      if (!index || !hasHeader(headers_, column.needs)) continue;
      columns_.push_back(&column);
      mapping.push_back(index);
    }
  }

  ColumnMapping mapping;

  /// Fills a table with the cells. Failures as applyExportShape.
  Result<> fill(CellTable& to, const std::function<bool()>& goOn) {
    last_.assign(columns_.size(), {});
    if (!fillHeaders(to)) return full();
    for (row_.row = 1; row_.row < sheet_.cells.rows(); ++row_.row) {
      if (goOn && row_.row % rowsPerLook == 0 && !goOn()) return fail(ErrorKind::Cancelled, "", "cancelled");
      if (shape_.isLeftOut != nullptr && shape_.isLeftOut(row_)) continue;
      if (!fillRow(to)) return full();
    }
    return {};
  }

 private:
  static constexpr std::size_t rowsPerLook = 1024;  // between two looks at the user
  bool fillHeaders(CellTable& to) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (!to.add(i < headers_.size() ? sheet_.cells.cell(0, i).text : columns_[i]->header)) return false;
    }
    return to.endRow(sheet_.cells.line(0));
  }
  static tl::unexpected<Error> full() { return fail(ErrorKind::Malformed, "", "too many cells", TooLargeSheet); }
  void addSource(const SheetTable& table, const std::string& header) {
    const auto known = std::ranges::find(shape_.columns, header, &ShapeColumn::header);
    const bool isKnown = known != shape_.columns.end();
    columns_.push_back(isKnown ? &*known : nullptr);
    auto column = isKnown ? table.columnIndex(known->column) : std::nullopt;
    const bool isTaken = column && (sourceOf(mapping, *column) || hasBetter(*known));
    if (isTaken || (column && hasAddresses(table.columns[*column], columns_.size() - 1))) column.reset();
    mapping.push_back(column);
  }
  /// Whether the sheet has another column for the same one of ours that the shape names before.
  bool hasBetter(const ShapeColumn& than) const {
    return std::ranges::any_of(shape_.columns, [&](const ShapeColumn& each) {
      return &each < &than && each.column == than.column && hasHeader(headers_, each.header);
    });
  }
  /// Pictures that are in the net would be missed in each row.
  bool hasAddresses(const TableColumn& column, std::size_t source) const {
    if (column.field != CellField::Picture) return false;
    for (std::size_t row = 1; row < sheet_.cells.rows(); ++row) {
      const std::string_view text = sheet_.cells.cell(row, source).text;
      if (!text.empty()) return startsWithIgnoringCase(text, "http");
    }
    return false;
  }
  bool fillRow(CellTable& to) {
    const bool isFurther = shape_.isFurther != nullptr && shape_.isFurther(row_);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const ShapeColumn* const column = columns_[i];
      const SheetCell cell = sheet_.cells.cell(row_.row, i);
      const bool isAsRead = column == nullptr || (column->cell == nullptr && !column->isCarried);
      const std::string own = isAsRead ? std::string() : filled(i, cell.text, isFurther);
      if (!to.add(isAsRead ? cell.text : std::string_view(own), cell.isNumber)) return false;
    }
    return to.endRow(sheet_.cells.line(row_.row));
  }
  /// What the cell of a column of the shape becomes: shaped, or the value above in a further row.
  std::string filled(std::size_t i, std::string_view cell, bool isFurther) {
    const ShapeColumn& column = *columns_[i];
    std::string text = cell.empty() && i < headers_.size() ? std::string() : shaped(column, cell);
    if (!column.isCarried) return text;
    if (text.empty() && isFurther) text = last_[i];
    last_[i] = text;
    return text;
  }
  std::string shaped(const ShapeColumn& column, std::string_view cell) const {
    return column.cell == nullptr ? std::string(cell) : column.cell(row_, trim(cell));
  }

  const ExportShape& shape_;
  const ReadSheet& sheet_;
  std::vector<std::string> headers_;
  ShapeRow row_;
  std::vector<const ShapeColumn*> columns_;  // of each column; null: none of the shape
  std::vector<std::string> last_;            // of each column that is carried the value of the row above
};

}  // namespace

std::vector<ExportShapeName> exportShapeNames() {
  std::vector<ExportShapeName> names;
  names.reserve(exportShapes().size());
  for (const ExportShape& shape : exportShapes()) names.push_back(shape.name);
  return names;
}

std::string_view exportShapeOf(const std::vector<std::string>& headers) {
  const std::vector<std::string> plain = plainHeaders(headers);
  const auto found = std::ranges::find_if(exportShapes(), [&](const ExportShape& shape) {
    // The headers of a feed are words that anybody's sheet may have; the prefix tells it.
    const bool isFeed = shape.name.name == "feed";
    const bool isPrefixed = std::ranges::any_of(headers, [](const auto& each) { return each.starts_with("g:"); });
    return isFeed <= isPrefixed &&
           std::ranges::all_of(shape.known, [&](std::string_view header) { return hasHeader(plain, header); });
  });
  return found == exportShapes().end() ? std::string_view() : found->name.name;
}

std::string_view exportShapeCaption(std::string_view name) {
  const ExportShape* const shape = shapeNamed(name);
  return shape == nullptr ? std::string_view() : shape->name.caption;
}

Result<ColumnMapping> applyExportShape(std::string_view name, const SheetTable& table, const SheetChoice& choice,
                                       ReadSheet& sheet) {
  const ExportShape* const shape = shapeNamed(name);
  if (shape == nullptr) return fail(ErrorKind::Missing, std::string(name), "no such shape");
  ShapedSheet shaped(*shape, table, sheet);
  CellTable cells(choice.limits);
  if (auto filled = shaped.fill(cells, choice.goOn); !filled) return fail(filled.error());
  sheet.cells = std::move(cells);
  return std::move(shaped.mapping);
}

}  // namespace kv
