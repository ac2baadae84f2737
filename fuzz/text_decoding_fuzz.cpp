// Text of any bytes: the code page, folding, patterns and the reading of numbers. What must hold for every input is
// checked, not only that nothing breaks.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/numbers/money.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void checkText(std::string_view bytes) {
  using namespace kv;
  const std::string text = fromWindows1252(bytes);
  require(toWindows1252(text) == bytes);
  require(characterCount(text) == bytes.size());
  const std::string folded = foldCase(bytes);
  require(foldCase(folded) == folded);
  require(characterCount(folded) == characterCount(bytes));
  require(equalsIgnoringCase(folded, bytes));
  require(startsWithIgnoringCase(bytes, firstCharacters(folded, 3)));
  std::size_t length = 0;
  for (const std::string_view line : splitLines(bytes)) length += line.size();
  require(length <= bytes.size());
  require(trim(bytes).size() <= bytes.size());
}

void checkPair(std::string_view text, std::string_view pattern) {
  using namespace kv;
  require(matchesLike(text, "*"));
  if (matchesWildcard(text, pattern)) require(matchesWildcard(foldCase(text), pattern));
  matchesLike(text, pattern);
  const int order = compareIgnoringCase(text, pattern);
  require((order == 0) == (compareIgnoringCase(pattern, text) == 0));
  require((order < 0) == (compareIgnoringCase(pattern, text) > 0));
  const std::size_t hit = findIgnoringCase(text, pattern);
  if (hit != std::string_view::npos) require(equalsIgnoringCase(text.substr(hit, pattern.size()), pattern));
  if (!pattern.empty()) require(replaceAll(text, pattern, pattern) == text);
}

void checkNumber(std::string_view text) {
  using namespace kv;
  if (const auto number = toNumber(text)) require(isNumeric(plainNumber(*number)));
  leadingNumber(text);
  formatNumber(leadingNumber(text), text);
  if (const auto amount = Money::parse(text)) require(Money::parse(plainNumber(*amount)) == amount);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  checkText(bytes);
  checkNumber(bytes);
  const std::size_t middle = size == 0 ? 0 : data[0] % (size + 1);
  checkPair(bytes.substr(0, middle), bytes.substr(middle));
  return 0;
}
