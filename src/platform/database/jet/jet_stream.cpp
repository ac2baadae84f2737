#include "platform/database/jet/jet_stream.h"

#include <cstring>
#include <optional>

namespace kv {
namespace {

// The first byte of a field.
constexpr char nullMark = 'n', integerMark = 'i', numberMark = 'd', moneyMark = 'm', textMark = 't', failureMark = 'f';

template <class T>
void putRaw(std::string& stream, const T& value) {
  stream.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void putText(std::string& stream, std::string_view text) {
  putRaw(stream, static_cast<std::uint32_t>(text.size()));
  stream += text;
}

/// One walk over a stream; every routine gives nothing once the stream is over.
class StreamReader {
 public:
  explicit StreamReader(std::string_view stream) : rest_(stream) {}
  bool isOver() const { return rest_.empty(); }

  template <class T>
  std::optional<T> raw() {
    T value{};
    if (rest_.size() < sizeof value) return std::nullopt;
    std::memcpy(&value, rest_.data(), sizeof value);
    rest_.remove_prefix(sizeof value);
    return value;
  }
  std::optional<std::string> text() {
    const auto size = raw<std::uint32_t>();
    if (!size || rest_.size() < *size) return std::nullopt;
    std::string value(rest_.substr(0, *size));
    rest_.remove_prefix(*size);
    return value;
  }

 private:
  std::string_view rest_;
};

template <class T>
std::optional<Value> valueOf(std::optional<T> value) {
  return value ? std::optional<Value>(std::move(*value)) : std::nullopt;
}

std::optional<Value> readField(StreamReader& reader, char mark) {
  switch (mark) {
    case nullMark:
      return Null{};
    case integerMark:
      return valueOf(reader.raw<std::int64_t>());
    case numberMark:
      return valueOf(reader.raw<double>());
    case moneyMark:
      if (const auto count = reader.raw<std::int64_t>()) return Money::ofTenThousandths(*count);
      return std::nullopt;
    case textMark:
      return valueOf(reader.text());
    default:
      return std::nullopt;
  }
}

Error readFailure(StreamReader& reader) {
  const auto kind = reader.raw<std::uint8_t>();
  const auto where = reader.text(), what = reader.text();
  const bool isMissing = kind && static_cast<ErrorKind>(*kind) == ErrorKind::Missing;
  return {isMissing ? ErrorKind::Missing : ErrorKind::Malformed, where.value_or(""), what.value_or("")};
}

}  // namespace

void putJetField(std::string& stream, const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    stream += integerMark;
    putRaw(stream, *whole);
  } else if (const auto* number = std::get_if<double>(&value)) {
    stream += numberMark;
    putRaw(stream, *number);
  } else if (const auto* amount = std::get_if<Money>(&value)) {
    stream += moneyMark;
    putRaw(stream, amount->tenThousandths());
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    stream += textMark;
    putText(stream, *text);
  } else {
    stream += nullMark;
  }
}

void putJetFailure(std::string& stream, const Error& error) {
  stream += failureMark;
  putRaw(stream, static_cast<std::uint8_t>(error.kind));
  putText(stream, error.where);
  putText(stream, error.what);
}

Result<std::vector<std::vector<Value>>> jetRows(std::string_view stream, std::size_t columns) {
  StreamReader reader(stream);
  std::vector<std::vector<Value>> rows;
  while (!reader.isOver()) {
    if (columns == 0) return fail(ErrorKind::Malformed, "", "fields without a column");
    std::vector<Value> row;
    while (row.size() < columns) {
      const auto mark = reader.raw<char>();
      if (mark == failureMark) return fail(readFailure(reader));
      auto field = mark ? readField(reader, *mark) : std::nullopt;
      if (!field) return fail(ErrorKind::Malformed, "", "the rows break off");
      row.push_back(std::move(*field));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace kv
