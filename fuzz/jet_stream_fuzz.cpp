// Rows on their way from the process that reads a Jet database. Whatever it writes, the rows have as many fields as
// were asked for, and what was read is written and read back equal.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/database/jet/jet_stream.h"

namespace {

void requireStream(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t columns = 1 + data[0] % 8;
  const auto rows = kv::jetRows({reinterpret_cast<const char*>(data) + 1, size - 1}, columns);
  if (!rows) {
    const kv::ErrorKind kind = rows.error().kind;
    requireStream(kind == kv::ErrorKind::Malformed || kind == kv::ErrorKind::Missing);
    return 0;
  }
  std::string stream;
  for (const auto& row : *rows) {
    requireStream(row.size() == columns);
    for (const kv::Value& field : row) kv::putJetField(stream, field);
  }
  requireStream(std::equal(stream.begin(), stream.end(), data + 1, data + size,
                           [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; }));
  return 0;
}
