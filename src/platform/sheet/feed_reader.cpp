// Feeds in RSS 2.0 (rssboard.org) and in Atom (RFC 4287); both carry fields of products with the prefix "g".
#include <algorithm>
#include <functional>
#include <map>

#include "platform/files/file_pieces.h"
#include "platform/files/files.h"
#include "platform/sheet/sheet_readers.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t longestFeedField = std::size_t{1} << 20, longestFeedName = 1024;  // bytes
constexpr std::string_view productPrefix = "g:", whiteSpace = " \t\r\n";

std::string_view withoutSpaceAround(std::string_view text) {
  const std::size_t first = text.find_first_not_of(whiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

/// The fields that every item of a feed has of its own. What is deeper, as the price of a way of shipping, is none.
class FeedListener : public XmlListener {
 public:
  bool isFull = false;

  bool start(std::string_view name, const XmlAttributes& attributes) final {
    ++depth_;
    if (itemDepth_ == 0 && (name == "item" || name == "entry")) {
      itemDepth_ = depth_;
    } else if (isField()) {
      field_ = name;
      // A link of Atom has its address in an attribute.
      value_ = name == "link" ? attributes.get("href") : std::string_view();
      isFull = isFull || name.size() > longestFeedName || value_.size() > longestFeedField;
    }
    return !isFull;
  }
  bool end(std::string_view) final {
    if (depth_ == itemDepth_) {
      itemDepth_ = 0;
      isFull = isFull || !endItem();
    } else if (isField()) {
      isFull = isFull || !addField(field_, withoutSpaceAround(value_));
    }
    --depth_;
    return !isFull;
  }
  bool text(std::string_view piece) final {
    if (!isField() || isFull) return !isFull;
    isFull = isFull || piece.size() > longestFeedField - value_.size();
    if (!isFull) value_ += piece;
    return !isFull;
  }

 private:
  virtual bool addField(const std::string& name, std::string_view value) = 0;
  virtual bool endItem() = 0;
  bool isField() const { return itemDepth_ > 0 && depth_ == itemDepth_ + 1; }

  std::size_t depth_ = 0, itemDepth_ = 0;  // elements that are open, at all and with the item
  std::string field_, value_;
};

/// The names of all fields.
class FeedNames final : public FeedListener {
 public:
  explicit FeedNames(const SheetLimits& limits) : most_(limits.columns) {}

  /// Those of products first, else as they come.
  std::vector<std::string> columns() const {
    std::vector<std::string> names(found_.size());
    for (const auto& [name, order] : found_) names[order] = name;
    std::stable_partition(names.begin(), names.end(), [](const auto& name) { return name.starts_with(productPrefix); });
    return names;
  }

 private:
  bool addField(const std::string& name, std::string_view) override {
    found_.try_emplace(name, found_.size());
    return found_.size() <= most_;
  }
  bool endItem() override { return true; }

  std::size_t most_;
  std::map<std::string, std::size_t> found_;  // with the order in which they came
};

/// A row for each item, the names above them.
class FeedRows final : public FeedListener {
 public:
  FeedRows(const std::vector<std::string>& names, const SheetLimits& limits)
      : cells(limits), row_(names.size()), most_(limits.textBytes) {
    for (const std::string& name : names) {
      columns_.emplace(name, columns_.size());
      isFull = !cells.add(name) || isFull;
    }
    isFull = !cells.endRow(++line_) || isFull;
  }

  CellTable cells;
  bool isChanged = false;  // the file has a field that it did not have before

 private:
  bool addField(const std::string& name, std::string_view value) override {
    const auto column = columns_.find(name);
    isChanged = column == columns_.end();
    // The first of several holds: the others are further pictures or kinds of the same product.
    if (isChanged || !row_[column->second].empty()) return !isChanged;
    row_[column->second] = value;
    rowBytes_ += value.size();
    return rowBytes_ <= most_;
  }
  bool endItem() override {
    bool added = true;
    for (std::string& field : row_) {
      added = added && cells.add(field);
      field.clear();
    }
    rowBytes_ = 0;
    return added && cells.endRow(++line_);
  }

  std::map<std::string, std::size_t> columns_;
  std::vector<std::string> row_;
  std::size_t rowBytes_ = 0, most_;
  std::uint32_t line_ = 0;
};

/// Hands the bytes of a feed on, in pieces, from its start to its end or to the first failure.
using FeedSource = std::function<Result<>(const std::function<Result<>(std::string_view)>& take)>;

Result<> readFeedOnce(const std::string& path, const FeedSource& source, const SheetRequest& request,
                      FeedListener& listener) {
  XmlReading reading(listener, XmlNames::Whole);
  auto read = source([&](std::string_view piece) -> Result<> {
    if (request.goOn && !request.goOn()) return fail(ErrorKind::Cancelled, path, "cancelled");
    return reading.take(piece, false, path);
  });
  if (read) read = reading.take({}, true, path);
  return withListenersFault(std::move(read), listener.isFull);
}

/// Reads a feed twice: the columns are known at its end alone.
Result<SheetContent> readFeedTwice(const std::string& path, const FeedSource& source, const SheetRequest& request) {
  FeedNames fields(request.limits);
  if (auto read = readFeedOnce(path, source, request, fields); !read) return fail(read.error());
  const std::vector<std::string> columns = fields.columns();
  if (columns.empty()) return fail(ErrorKind::Malformed, path, "no item");
  FeedRows rows(columns, request.limits);
  auto read = readFeedOnce(path, source, request, rows);
  if (rows.isChanged) return fail(ErrorKind::InUse, path, "changed while it was read");
  if (!read) return fail(read.error());
  return SheetContent{{}, std::move(rows.cells)};
}

}  // namespace

bool startsLikeFeed(std::string_view bytes) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (bytes.starts_with(mark)) bytes.remove_prefix(mark.size());
  bytes = withoutSpaceAround(bytes);
  return startsWithIgnoringCase(bytes, "<?xml") || bytes.starts_with("<rss") || bytes.starts_with("<feed");
}

Result<SheetContent> readFeed(const std::string& path, const SheetRequest& request) {
  const auto stamp = fileStamp(path);
  if (!stamp) return fail(stamp.error());
  if (stamp->size > request.limits.unpacked) return fail(ErrorKind::Malformed, path, "too large", TooLargeSheet);
  return readFeedTwice(
      path, [&path](const auto& take) { return readPieces(path, take); }, request);
}

Result<SheetContent> readFeedBytes(const std::string& path, std::string_view bytes, const SheetRequest& request) {
  return readFeedTwice(
      path, [bytes](const auto& take) { return take(bytes); }, request);
}

}  // namespace kv
