#include "platform/database/recordset_shape.h"

#include "platform/text/text.h"

namespace kv::engine {

std::size_t ColumnNameHash::operator()(std::string_view name) const {
  // FNV-1a over the ASCII characters in lower case. Those beyond ASCII may fold to each other, so only the comparison
  // looks at them.
  std::size_t hash = 14695981039346656037U;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) hash = (hash ^ (byte >= 'A' && byte <= 'Z' ? byte + 32U : byte)) * 1099511628211U;
  }
  return hash;
}

bool ColumnNameEqual::operator()(std::string_view a, std::string_view b) const {
  return a == b || equalsIgnoringCase(a, b);
}

}  // namespace kv::engine
