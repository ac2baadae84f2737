// Row images as bytes: numbers of 8 bytes in the byte order of this machine, for the file never leaves it; texts and
// binary fields with their length before them.
#include <cstring>

#include "store/catalogue/step_log.h"

namespace kv {
namespace {

enum CellTag : std::int64_t { NullCell, IntegerCell, RealCell, TextCell, BytesCell };

void putNumber(std::string& out, std::int64_t number) {
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  out.append(bytes, sizeof number);
}

void putText(std::string& out, std::string_view text) {
  putNumber(out, static_cast<std::int64_t>(text.size()));
  out.append(text);
}

void putCell(std::string& out, const Cell& cell) {
  if (const auto* number = std::get_if<std::int64_t>(&cell)) {
    putNumber(out, IntegerCell);
    putNumber(out, *number);
  } else if (const auto* real = std::get_if<double>(&cell)) {
    std::int64_t bits = 0;
    std::memcpy(&bits, real, sizeof bits);
    putNumber(out, RealCell);
    putNumber(out, bits);
  } else if (const auto* text = std::get_if<BoxedText>(&cell)) {
    putNumber(out, TextCell);
    putText(out, **text);
  } else if (const auto* bytes = std::get_if<BoxedBytes>(&cell)) {
    putNumber(out, BytesCell);
    putText(out, std::string((*bytes)->begin(), (*bytes)->end()));
  } else {
    putNumber(out, NullCell);
  }
}

void putImage(std::string& out, const RowImage& image) {
  putNumber(out, static_cast<std::int64_t>(image.size()));
  for (const Cell& cell : image) putCell(out, cell);
}

/// Reads what the functions above wrote; once something is missing, nothing more is read.
class ImageReader {
 public:
  explicit ImageReader(std::string_view bytes) : rest_(bytes) {}

  bool failed() const { return failed_; }
  bool atEnd() const { return rest_.empty(); }

  std::int64_t number() {
    std::int64_t value = 0;
    if (rest_.size() < sizeof value) {
      failed_ = true;
      rest_ = {};
      return 0;
    }
    std::memcpy(&value, rest_.data(), sizeof value);
    rest_.remove_prefix(sizeof value);
    return value;
  }
  /// A count of things of at least one byte each.
  std::size_t count() {
    const std::int64_t value = number();
    if (value >= 0 && static_cast<std::uint64_t>(value) <= rest_.size()) return static_cast<std::size_t>(value);
    failed_ = true;
    return 0;
  }
  std::string text() {
    const std::size_t size = count();
    std::string value(rest_.substr(0, size));
    rest_.remove_prefix(size);
    return value;
  }
  Cell cell() {
    switch (number()) {
      case NullCell:
        return std::monostate{};
      case IntegerCell:
        return number();
      case RealCell: {
        const std::int64_t bits = number();
        double real = 0;
        std::memcpy(&real, &bits, sizeof real);
        return real;
      }
      case TextCell:
        return text();
      case BytesCell: {
        const std::string bytes = text();
        return Bytes(bytes.begin(), bytes.end());
      }
      default:
        failed_ = true;
        return std::monostate{};
    }
  }
  RowImage image() {
    RowImage cells(count());
    for (Cell& one : cells) {
      if (failed_) break;
      one = cell();
    }
    return cells;
  }

 private:
  std::string_view rest_;
  bool failed_ = false;
};

RowChange readChange(ImageReader& reader) {
  RowChange change;
  change.table = reader.text();
  change.row = reader.number();
  change.columns.resize(reader.count());
  for (std::size_t& column : change.columns) column = static_cast<std::size_t>(reader.number());
  change.before = reader.image();
  change.after = reader.image();
  return change;
}

}  // namespace

std::string packChanges(const RowChanges& changes) {
  std::string out;
  for (const RowChange& change : changes) {
    putText(out, change.table);
    putNumber(out, change.row);
    putNumber(out, static_cast<std::int64_t>(change.columns.size()));
    for (const std::size_t column : change.columns) putNumber(out, static_cast<std::int64_t>(column));
    putImage(out, change.before);
    putImage(out, change.after);
  }
  return out;
}

Result<RowChanges> unpackChanges(std::string_view bytes) {
  RowChanges changes;
  for (ImageReader reader(bytes); !reader.atEnd();) {
    RowChange change = readChange(reader);
    const bool isWhole = change.columns.empty() || (change.before.size() == change.columns.size() &&
                                                    change.after.size() == change.columns.size());
    if (reader.failed() || !isWhole) return fail(ErrorKind::Corrupt, "cronologia.mdb", "row images are damaged");
    changes.push_back(std::move(change));
  }
  return changes;
}

}  // namespace kv
