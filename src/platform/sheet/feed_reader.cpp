// Feeds in RSS 2.0 (rssboard.org) and in Atom (RFC 4287); both carry fields of products with the prefix "g".
#include <algorithm>

#include "platform/files/files.h"
#include "platform/sheet/sheet_readers.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t longestFeedField = std::size_t{1} << 20;  // bytes of one field
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
    }
    return true;
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
    if (!isField()) return true;
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

/// The names of all fields, those of products first.
class FeedNames final : public FeedListener {
 public:
  explicit FeedNames(const SheetLimits& limits) : most_(limits.columns) {}

  std::vector<std::string> names;

 private:
  bool addField(const std::string& name, std::string_view) override {
    if (std::ranges::find(names, name) != names.end()) return true;
    if (names.size() >= most_) return false;
    names.push_back(name);
    return true;
  }
  bool endItem() override {
    std::stable_partition(names.begin(), names.end(), [](const auto& name) { return name.starts_with(productPrefix); });
    return true;
  }

  std::size_t most_;
};

/// A row for each item, the names above them.
class FeedRows final : public FeedListener {
 public:
  FeedRows(const std::vector<std::string>& names, const SheetLimits& limits)
      : cells(limits), names_(names), row_(names.size()) {
    for (const std::string& name : names) isFull = !cells.add(name) || isFull;
    isFull = !cells.endRow(++line_) || isFull;
  }

  CellTable cells;

 private:
  bool addField(const std::string& name, std::string_view value) override {
    const auto column = static_cast<std::size_t>(std::ranges::find(names_, name) - names_.begin());
    // The first of several holds: the others are further pictures or kinds of the same product.
    if (row_[column].empty()) row_[column] = value;
    return true;
  }
  bool endItem() override {
    bool added = true;
    for (std::string& field : row_) {
      added = added && cells.add(field);
      field.clear();
    }
    return added && cells.endRow(++line_);
  }

  const std::vector<std::string>& names_;
  std::vector<std::string> row_;
  std::uint32_t line_ = 0;
};

Result<> readFeedOnce(const std::string& path, std::string_view bytes, FeedListener& listener) {
  auto read = XmlReading(listener, XmlNames::Whole).take(bytes, true, path);
  return withListenersFault(std::move(read), listener.isFull);
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
  // Names of elements take as much again as the texts.
  if (stamp->size > 2 * request.limits.textBytes) return fail(ErrorKind::Malformed, path, "too large", TooLargeSheet);
  const auto bytes = readBytes(path);
  return bytes ? readFeedBytes(path, *bytes, request) : fail(bytes.error());
}

Result<SheetContent> readFeedBytes(const std::string& path, std::string_view bytes, const SheetRequest& request) {
  FeedNames fields(request.limits);
  if (auto read = readFeedOnce(path, bytes, fields); !read) return fail(read.error());
  if (fields.names.empty()) return fail(ErrorKind::Malformed, path, "no item");
  if (request.goOn && !request.goOn()) return fail(ErrorKind::Cancelled, path, "cancelled");
  FeedRows rows(fields.names, request.limits);
  if (auto read = readFeedOnce(path, bytes, rows); !read) return fail(read.error());
  return SheetContent{{}, std::move(rows.cells)};
}

}  // namespace kv
