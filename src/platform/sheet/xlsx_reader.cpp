// Source: ECMA-376 part 1, chapter 18 (SpreadsheetML), and part 2, chapter 9 (relationships).
#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <unordered_map>

#include "platform/files/files.h"
#include "platform/sheet/cell_value.h"
#include "platform/sheet/sheet_readers.h"
#include "platform/text/text.h"

namespace kv {
namespace {

unsigned wholeOf(std::string_view digits) {
  unsigned number = 0;
  ignore(std::from_chars(digits.data(), digits.data() + digits.size(), number).ec, "no digits are 0");
  return number;
}

/// Targets by ID of a part of relationships, and the one of the main document.
struct Relations final : XmlListener {
  static constexpr std::size_t mostHeld = std::size_t{16} << 20, each = 128;  // bytes; a program writes a few thousand
  std::map<std::string, std::string, std::less<>> targets;
  std::string document, sharedStrings, styles;
  std::size_t held = 0;
  bool isFull = false;

  bool start(std::string_view name, const XmlAttributes& attributes) override {
    if (name != "Relationship") return true;
    const std::string_view ID = attributes.get("Id"), type = attributes.get("Type"), target = attributes.get("Target");
    held += each + ID.size() + target.size();
    isFull = held > mostHeld;
    if (isFull) return false;
    targets.emplace(ID, target);
    if (type.ends_with("/officeDocument")) document = target;
    if (type.ends_with("/sharedStrings")) sharedStrings = target;
    if (type.ends_with("/styles")) styles = target;
    return true;
  }
  bool end(std::string_view) override { return true; }
  bool text(std::string_view) override { return true; }
};

/// The path of a target that a part of `folder` names.
std::string partPath(const std::string& folder, std::string_view target) {
  if (target.starts_with('/')) return std::string(target.substr(1));
  std::string path = folder;
  while (target.starts_with("../")) {
    target.remove_prefix(3);
    path = folderOf(path);
  }
  return joinPath(path, target);
}

struct WorkbookParts final : XmlListener {
  static constexpr std::size_t longestID = 1024;
  std::vector<std::string> names, relations;
  bool since1904 = false, isFull = false;

  bool start(std::string_view name, const XmlAttributes& attributes) override {
    if (name == "sheet") {
      // Two attributes are called "id" by some programs: the sheet's number is "sheetId".
      const std::string_view ID = attributes.get("id");
      isFull = names.size() >= mostSheets || ID.size() > longestID;
      if (isFull) return false;
      names.push_back(sheetName(attributes.get("name")));
      relations.emplace_back(ID);
    } else if (name == "workbookPr") {
      since1904 = attributes.get("date1904") == "1" || attributes.get("date1904") == "true";
    }
    return true;
  }
  bool end(std::string_view) override { return true; }
  bool text(std::string_view) override { return true; }
};

/// What the style of a cell makes of its number.
struct NumberLook {
  CellFormat format = CellFormat::Plain;
  std::size_t leastDigits = 0;
};

/// What the styles of cells make of numbers.
struct CellStyles final : XmlListener {
  static constexpr std::size_t mostFormats = 100000;  // a program writes 65,490 at most
  std::map<unsigned, NumberLook> own;
  std::vector<NumberLook> looks;
  bool inside = false;  // of the list that cells refer to

  bool start(std::string_view name, const XmlAttributes& attributes) override {
    if (name == "numFmt") {
      const std::string_view code = attributes.get("formatCode");
      own[wholeOf(attributes.get("numFmtId"))] = {cellFormatOf(code), leastDigitsOf(code)};
    }
    if (own.size() > mostFormats || looks.size() > mostFormats) return false;
    if (name == "cellXfs") inside = true;
    if (name != "xf" || !inside) return true;
    const unsigned number = wholeOf(attributes.get("numFmtId"));
    const auto found = own.find(number);
    looks.push_back(found != own.end() ? found->second : NumberLook{givenCellFormat(number)});
    return true;
  }
  bool end(std::string_view name) override {
    if (name == "cellXfs") inside = false;
    return true;
  }
  bool text(std::string_view) override { return true; }

  NumberLook lookOf(unsigned style) const { return style < looks.size() ? looks[style] : NumberLook(); }
};

/// Collects the text of an item: its runs, without what only says how they are spoken.
class RunText {
 public:
  /// most: bytes of a text; its owner refuses a longer one.
  explicit RunText(std::size_t most) : most_(most) {}

  void start(std::string_view name) {
    if (name == "rPh") isSpoken_ = true;
    if (name == "t") takes_ = !isSpoken_;
  }
  void end(std::string_view name) {
    if (name == "rPh") isSpoken_ = false;
    if (name == "t") takes_ = false;
  }
  /// False once the text is longer than it may be.
  bool text(std::string_view piece) {
    if (takes_) text_ += piece;
    return text_.size() <= most_;
  }
  std::string take() {
    std::string whole = text_.find("_x") == std::string::npos ? std::move(text_) : withoutEscapes(text_);
    text_.clear();
    return whole;
  }

 private:
  std::size_t most_;
  std::string text_;
  bool isSpoken_ = false, takes_ = false;
};

/// The texts that cells refer to by number.
struct SharedTexts final : XmlListener {
  explicit SharedTexts(const SheetLimits& limits)
      : most(limits.textBytes), mostTexts(limits.cells), run(limits.cellBytes) {}
  std::size_t most, mostTexts;
  std::string texts;
  std::vector<std::uint32_t> ends;
  RunText run;
  bool isFull = false;

  bool start(std::string_view name, const XmlAttributes&) override {
    run.start(name);
    return true;
  }
  bool end(std::string_view name) override {
    run.end(name);
    if (name != "si") return true;
    const std::string text = run.take();
    isFull = text.size() > most - texts.size() || ends.size() >= mostTexts;
    if (isFull) return false;
    texts += text;
    ends.push_back(static_cast<std::uint32_t>(texts.size()));
    return true;
  }
  bool text(std::string_view piece) override {
    isFull = !run.text(piece);
    return !isFull;
  }

  std::string_view at(unsigned index) const {
    if (index >= ends.size()) return {};
    const std::uint32_t begin = index == 0 ? 0 : ends[index - 1];
    return std::string_view(texts).substr(begin, ends[index] - begin);
  }
};

/// The cells of a sheet.
class SheetListener final : public XmlListener {
 public:
  SheetListener(const SharedTexts& shared, const CellStyles& styles, bool since1904, const SheetLimits& limits)
      : cells(limits),
        shared_(shared),
        styles_(styles),
        since1904_(since1904),
        run_(limits.cellBytes),
        mostText_(limits.cellBytes) {}

  CellTable cells;
  bool isFull = false;

  bool start(std::string_view name, const XmlAttributes& attributes) override {
    if (name == "c") {
      startCell(attributes);
    } else if (name == "v") {
      inValue_ = true;
    } else if (name == "row") {
      const unsigned line = wholeOf(attributes.get("r"));
      line_ = line > 0 ? line : line_ + 1;
      next_ = 0;
    } else {
      run_.start(name);
    }
    return true;
  }
  bool end(std::string_view name) override {
    if (name == "v") {
      inValue_ = false;
    } else if (name == "c") {
      return endCell();
    } else if (name == "row") {
      isFull = isFull || !cells.endRow(line_);
      return !isFull;
    } else {
      run_.end(name);
    }
    return true;
  }
  bool text(std::string_view piece) override {
    if (inValue_) value_ += piece;
    isFull = inValue_ ? value_.size() > mostText_ : !run_.text(piece);
    return !isFull;
  }

 private:
  void startCell(const XmlAttributes& attributes) {
    value_.clear();
    ignore(run_.take(), "of a cell without an end");
    type_ = attributes.get("t");
    style_ = wholeOf(attributes.get("s"));
    const std::size_t column = columnOf(attributes.get("r"));
    // A cell that comes too late has lost its position; it follows the last one.
    if (column > next_) {
      cells.skip(column - next_);
      next_ = column;
    }
    ++next_;
  }
  /// Column from 0 of "AB12"; that of the next cell where the text names none.
  std::size_t columnOf(std::string_view reference) const {
    constexpr std::size_t letters = 26, most = 1 << 20;
    std::size_t column = 0;
    for (const char c : reference) {
      if (c < 'A' || c > 'Z' || column > most) break;
      column = column * letters + static_cast<std::size_t>(c - 'A') + 1;
    }
    return column == 0 ? next_ : column - 1;
  }
  bool endCell() {
    bool added = true;
    if (type_ == "s") {
      added = cells.add(value_.empty() ? std::string_view() : shared_.at(wholeOf(value_)));
    } else if (type_ == "inlineStr") {
      added = cells.add(run_.take());
    } else if (type_ == "str") {
      added = cells.add(withoutEscapes(value_));
    } else if (type_ == "b" || type_ == "n" || type_.empty()) {
      added = addNumber();
    } else {
      added = cells.add(value_);  // a date of its own, or an error
    }
    isFull = !added;
    return added;
  }
  bool addNumber() {
    const NumberLook look = styles_.lookOf(style_);
    if (value_.empty()) return cells.add({});
    if (look.format == CellFormat::Date) return cells.add(cellDate(value_, since1904_));
    if (look.format == CellFormat::Percent) return cells.add(cellPercent(value_), true);
    return cells.add(withLeastDigits(cellNumber(value_), look.leastDigits), true);
  }

  const SharedTexts& shared_;
  const CellStyles& styles_;
  bool since1904_;
  std::uint32_t line_ = 0;
  std::size_t next_ = 0;  // column of the next cell
  std::string type_, value_;
  unsigned style_ = 0;
  bool inValue_ = false;
  RunText run_;
  std::size_t mostText_;  // bytes
};

}  // namespace

std::string sheetName(std::string_view name) {
  constexpr std::size_t mostCharacters = 255;
  return std::string(firstCharacters(name, mostCharacters));
}

Result<> withListenersFault(Result<> read, bool isFull) {
  if (isFull) return fail(ErrorKind::Malformed, "", "too many cells", TooLargeSheet);
  return read;
}

std::string xlsxMainPart(PackedFile& file) {
  Relations relations;
  if (!file.has("_rels/.rels") || !file.readXml("_rels/.rels", relations)) return {};
  std::string part = partPath("", relations.document);
  return !relations.document.empty() && file.has(part) ? part : std::string();
}

Result<SheetContent> readXlsx(PackedFile& file, const SheetRequest& request) {
  const std::string main = xlsxMainPart(file), folder(folderOf(main));
  WorkbookParts workbook;
  auto listed = file.readXml(main, workbook);
  listed = withListenersFault(std::move(listed), workbook.isFull);
  if (!listed) return fail(listed.error());
  Relations relations;
  const std::string relationsPart = joinPath(joinPath(folder, "_rels"), std::string(baseName(main)) + ".rels");
  listed = file.readXml(relationsPart, relations);
  listed = withListenersFault(std::move(listed), relations.isFull);
  if (!listed) return fail(listed.error());
  if (workbook.names.empty()) return fail(ErrorKind::Corrupt, main, "no sheet");
  if (request.sheet >= workbook.names.size()) return fail(ErrorKind::Missing, main, "no such sheet");
  SharedTexts shared(request.limits);
  if (!relations.sharedStrings.empty()) {
    auto read = file.readXml(partPath(folder, relations.sharedStrings), shared, request.goOn);
    read = withListenersFault(std::move(read), shared.isFull);
    if (!read) return fail(read.error());
  }
  CellStyles styles;
  if (!relations.styles.empty()) {
    if (auto read = file.readXml(partPath(folder, relations.styles), styles); !read) return fail(read.error());
  }
  const auto target = relations.targets.find(workbook.relations[request.sheet]);
  if (target == relations.targets.end()) return fail(ErrorKind::Corrupt, main, "no part for the sheet");
  SheetListener sheet(shared, styles, workbook.since1904, request.limits);
  auto read = file.readXml(partPath(folder, target->second), sheet, request.goOn);
  read = withListenersFault(std::move(read), sheet.isFull);
  if (!read) return fail(read.error());
  return SheetContent{std::move(workbook.names), std::move(sheet.cells)};
}

}  // namespace kv
