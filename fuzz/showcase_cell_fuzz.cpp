// The custom showcase cell `kvan_vet.ini`: whatever its bytes, the cell is one line without spaces around it, and
// reading it again changes nothing.
#include <cstdint>
#include <cstdlib>

#include "platform/text/text.h"
#include "tags/package/template_package.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = kv::fromWindows1252({reinterpret_cast<const char*>(data), size});
  const std::string cell = kv::vetCell(text);
  const bool isOneLine = cell.find_first_of("\r\n") == std::string::npos;
  const bool isTrimmed = cell.empty() || (cell.front() != ' ' && cell.back() != ' ');
  if (!isOneLine || !isTrimmed || kv::vetCell(cell) != cell) std::abort();
  return 0;
}
