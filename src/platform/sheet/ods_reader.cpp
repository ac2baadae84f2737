// Source: OASIS OpenDocument 1.3 part 3, sections 9.1 (tables), 19.385 (value types), 6.1 (white space).
#include <algorithm>
#include <charconv>

#include "platform/sheet/cell_value.h"
#include "platform/sheet/sheet_readers.h"

namespace kv {
namespace {

/// Whether a part of the file is encrypted.
struct OdsManifest final : XmlListener {
  bool isEncrypted = false;
  bool start(std::string_view name, const XmlAttributes&) override {
    if (name == "encryption-data") isEncrypted = true;
    return true;
  }
  bool end(std::string_view) override { return true; }
  bool text(std::string_view) override { return true; }
};

std::size_t repeated(const XmlAttributes& attributes, std::string_view name) {
  std::size_t count = 0;
  const std::string_view digits = attributes.get(name);
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), count);
  return read.ec != std::errc() || count == 0 ? 1 : count;
}

class OdsListener final : public XmlListener {
 public:
  explicit OdsListener(const SheetRequest& request)
      : cells(request.limits), wanted_(request.sheet), mostText_(request.limits.cellBytes) {}

  std::vector<std::string> names;
  CellTable cells;
  bool isFull = false;

  bool start(std::string_view name, const XmlAttributes& attributes) override {
    if (passed_ > 0 || isPassedOver(name)) {
      ++passed_;
    } else if (name == "table") {
      isFull = names.size() >= mostSheets;
      if (isFull) return false;
      isWanted_ = names.size() == wanted_;
      names.push_back(sheetName(attributes.get("name")));
      line_ = 0;
    } else if (isWanted_) {
      startPart(name, attributes);
    }
    return isTextHeld();
  }
  bool end(std::string_view name) override {
    if (passed_ > 0) {
      --passed_;
    } else if (name == "table") {
      isWanted_ = false;
    } else if (isWanted_) {
      return endPart(name);
    }
    return true;
  }
  bool text(std::string_view piece) override {
    if (inParagraph_ && passed_ == 0) text_ += piece;
    return isTextHeld();
  }

 private:
  /// Whether the text of the cell is no longer than it may be.
  bool isTextHeld() {
    isFull = text_.size() > mostText_;
    return !isFull;
  }
  /// Notes, drawings, and what was there before tracked changes.
  static bool isPassedOver(std::string_view name) {
    return name == "annotation" || name == "shapes" || name == "tracked-changes" || name == "frame" ||
           name == "ruby-text";
  }

  void startPart(std::string_view name, const XmlAttributes& attributes) {
    if (name == "table-row") {
      rowRepeats_ = repeated(attributes, "number-rows-repeated");
    } else if (name == "table-cell" || name == "covered-table-cell") {
      startCell(attributes);
    } else if (name == "p" && inCell_) {
      // Paragraphs are the lines of a cell.
      if (hasParagraph_) text_ += '\n';
      inParagraph_ = hasParagraph_ = true;
    } else if (inParagraph_) {
      startSpace(name, attributes);
    }
  }
  void startSpace(std::string_view name, const XmlAttributes& attributes) {
    constexpr std::size_t most = 32768;  // characters of a cell
    if (name == "s") text_.append(std::min(repeated(attributes, "c"), most), ' ');
    if (name == "tab") text_ += '\t';
    if (name == "line-break") text_ += '\n';
  }
  void startCell(const XmlAttributes& attributes) {
    inCell_ = true;
    hasParagraph_ = false;
    cellRepeats_ = repeated(attributes, "number-columns-repeated");
    text_.clear();
    type_ = attributes.get("value-type");
    value_ = attributes.get(type_ == "date"      ? "date-value"
                            : type_ == "boolean" ? "boolean-value"
                            : type_ == "string"  ? "string-value"
                                                 : "value");
  }
  bool endPart(std::string_view name) {
    if (name == "p") {
      inParagraph_ = false;
    } else if (name == "table-cell" || name == "covered-table-cell") {
      inCell_ = false;
      isFull = !addCell();
    } else if (name == "table-row") {
      isFull = !endRow();
    }
    return !isFull;
  }
  bool addCell() {
    bool isNumber = true;
    std::string shown;
    if (type_ == "float" || type_ == "currency") {
      shown = cellNumber(value_);
      if (isZerosBefore(text_, shown)) shown = text_;
    } else if (type_ == "percentage") {
      shown = cellPercent(value_);
    } else if (type_ == "boolean") {
      shown = value_ == "true" ? "1" : "0";
    } else {
      isNumber = false;
      shown = type_ == "date" ? dateOf(value_) : hasParagraph_ ? text_ : value_;
    }
    if (shown.empty()) {
      cells.skip(cellRepeats_);
      return true;
    }
    for (std::size_t i = 0; i < cellRepeats_; ++i) {
      if (!cells.add(shown, isNumber)) return false;
    }
    return true;
  }
  /// Whether a text is this number with zeros before it, as codes of articles have them.
  static bool isZerosBefore(std::string_view text, std::string_view number) {
    return text.size() > number.size() && text.ends_with(number) &&
           number.find_first_not_of("0123456789") == std::string_view::npos &&
           text.substr(0, text.size() - number.size()).find_first_not_of('0') == std::string_view::npos;
  }
  static std::string dateOf(std::string_view value) {
    std::string date(value);
    std::replace(date.begin(), date.end(), 'T', ' ');
    constexpr std::string_view midnight = " 00:00:00";
    if (date.ends_with(midnight)) date.resize(date.size() - midnight.size());
    return date;
  }
  bool endRow() {
    const std::size_t before = cells.rows();
    if (!cells.endRow(line_ + 1)) return false;
    const bool hasText = cells.rows() > before;
    for (std::size_t i = 1; hasText && i < rowRepeats_; ++i) {
      if (!cells.repeatRow(line_ + 1 + static_cast<std::uint32_t>(i))) return false;
    }
    line_ += static_cast<std::uint32_t>(rowRepeats_);
    return true;
  }

  std::size_t wanted_;
  std::size_t mostText_;
  bool isWanted_ = false, inCell_ = false, inParagraph_ = false, hasParagraph_ = false;
  int passed_ = 0;  // depth in what is passed over
  std::uint32_t line_ = 0;
  std::size_t rowRepeats_ = 1, cellRepeats_ = 1;
  std::string type_, value_, text_;
};

}  // namespace

Result<SheetContent> readOds(PackedFile& file, const SheetRequest& request) {
  OdsManifest manifest;
  if (file.has("META-INF/manifest.xml") && file.readXml("META-INF/manifest.xml", manifest) && manifest.isEncrypted) {
    return fail(ErrorKind::Malformed, "content.xml", "encrypted", ProtectedSheet);
  }
  OdsListener listener(request);
  auto read = file.readXml("content.xml", listener, request.goOn);
  read = withListenersFault(std::move(read), listener.isFull);
  if (!read) return fail(read.error());
  if (listener.names.empty()) return fail(ErrorKind::Corrupt, "content.xml", "no sheet");
  if (request.sheet >= listener.names.size()) return fail(ErrorKind::Missing, "content.xml", "no such sheet");
  return SheetContent{std::move(listener.names), std::move(listener.cells)};
}

}  // namespace kv
