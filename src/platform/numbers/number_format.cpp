#include "platform/numbers/number_format.h"

#include <algorithm>
#include <cmath>

#include "platform/numbers/decimal.h"
#include "platform/text/text.h"

namespace kv {
namespace {

// Below ten to this power the plain format has an exponent, however few digits there are.
constexpr int smallestPlainExponent = -4;

std::string exponentText(const Decimal& number) {
  std::string text = number.digits.substr(0, 1);
  if (number.digits.size() > 1) text += "." + number.digits.substr(1);
  const int exponent = number.point - 1;
  const std::string power = std::to_string(std::abs(exponent));
  return text + (exponent < 0 ? "E-" : "E+") + (power.size() < 2 ? "0" : "") + power;
}

std::string pointText(const Decimal& number) {
  const int size = static_cast<int>(number.digits.size());
  const auto zeros = [](int count) { return std::string(static_cast<std::size_t>(count), '0'); };
  if (number.point <= 0) return "." + zeros(-number.point) + number.digits;
  if (number.point >= size) return number.digits + zeros(number.point - size);
  const auto split = static_cast<std::size_t>(number.point);
  return number.digits.substr(0, split) + "." + number.digits.substr(split);
}

std::string withSign(const Decimal& number, const std::string& text) { return (number.negative ? "-" : " ") + text; }

std::string exactText(const Decimal& number) { return number.isZero() ? " 0" : withSign(number, pointText(number)); }

// The one routine that decides whether a number is written with an exponent.
std::string plainText(const Decimal& number, int significant) {
  const int exponent = number.point - 1;
  const int decimalsNeeded = static_cast<int>(number.digits.size()) - number.point;
  if (number.isZero()) return " 0";
  const bool hasExponent = exponent >= significant || exponent < smallestPlainExponent || decimalsNeeded > significant;
  return withSign(number, hasExponent ? exponentText(number) : pointText(number));
}

bool isDigitPosition(char c) { return c == '0' || c == '#'; }

// A mask, divided at its first decimal separator.
struct Mask {
  std::string_view whole, fraction;
  bool hasPoint = false;
  bool groups = false;  // a "," between two digits of the whole part
};

Mask readMask(std::string_view text) {
  Mask mask;
  const std::size_t point = text.find('.');
  mask.hasPoint = point != std::string_view::npos;
  mask.whole = text.substr(0, point);
  if (mask.hasPoint) mask.fraction = text.substr(point + 1);
  const std::size_t first = mask.whole.find_first_of("0#"), last = mask.whole.find_last_of("0#");
  const std::size_t comma = mask.whole.find(',', std::min(first, mask.whole.size()));
  mask.groups = comma != std::string_view::npos && comma < last;
  return mask;
}

int countDigitPositions(std::string_view part) {
  return static_cast<int>(std::count_if(part.begin(), part.end(), isDigitPosition));
}

// Writes the whole digits from right to left, with a separator after every third one.
class WholeDigits {
 public:
  WholeDigits(const Decimal& number, bool groups) : number_(number), groups_(groups) {}
  bool left() const { return done_ < number_.point; }
  void put(std::string& reversed) {
    if (groups_ && done_ > 0 && done_ % 3 == 0) reversed += ',';
    reversed += number_.digitAt(number_.point - 1 - done_);
    ++done_;
  }
  void putAll(std::string& reversed) {
    while (left()) put(reversed);
  }

 private:
  const Decimal& number_;
  bool groups_;
  int done_ = 0;
};

std::string wholeText(const Decimal& number, const Mask& mask) {
  const std::string_view part = mask.whole;
  const std::size_t firstDigit = part.find_first_of("0#");
  const std::size_t firstZero = part.find('0');
  WholeDigits digits(number, mask.groups);
  std::string reversed;
  if (firstDigit == std::string_view::npos) digits.putAll(reversed);
  for (std::size_t i = part.size(); i-- > 0;) {
    if (!isDigitPosition(part[i])) {
      if (part[i] != ',') reversed += part[i];
      continue;
    }
    const bool forced = firstZero != std::string_view::npos && i >= firstZero;
    if (digits.left() || forced) digits.put(reversed);
    if (i == firstDigit) digits.putAll(reversed);
  }
  return {reversed.rbegin(), reversed.rend()};
}

std::string fractionText(const Decimal& number, std::string_view part) {
  // Written are the digits up to the last "0" of the mask and up to the number's last one; a later "#" writes nothing.
  const std::size_t lastZero = part.rfind('0');
  const int written =
      std::max(lastZero == std::string_view::npos ? 0 : countDigitPositions(part.substr(0, lastZero + 1)),
               static_cast<int>(number.digits.size()) - number.point);
  std::string text;
  int position = 0;
  for (const char c : part) {
    if (!isDigitPosition(c)) {
      text += c;
    } else if (position++ < written) {
      text += number.digitAt(number.point + position - 1);
    }
  }
  return text;
}

std::string byMask(Decimal number, std::string_view maskText) {
  const Mask mask = readMask(maskText);
  if (countDigitPositions(maskText) == 0) return std::string(maskText);
  roundTo(number, countDigitPositions(mask.fraction), Tie::AwayFromZero);
  std::string text = number.negative ? "-" : "";
  text += wholeText(number, mask);
  if (mask.hasPoint) text += "." + fractionText(number, mask.fraction);
  return text;
}

double rounded(double value, int decimals, Tie tie) {
  if (!std::isfinite(value)) return value;
  Decimal number = decimalOf(value);
  const int decimalsNeeded = static_cast<int>(number.digits.size()) - number.point;
  if (decimalsNeeded <= decimals) return value;  // no digit is dropped, so the number is unchanged
  roundTo(number, decimals, tie);
  return toDouble(number).value_or(value);
}

}  // namespace

std::string plainNumber(std::int64_t value) { return exactText(decimalOf(value, 0)); }
std::string plainNumber(Money value) { return exactText(decimalOf(value.tenThousandths(), 4)); }
std::string plainNumber(float value) { return plainText(decimalOf(value), 7); }
std::string plainNumber(double value) { return plainText(decimalOf(value), 15); }

std::string formatNumber(std::int64_t value, std::string_view mask) { return byMask(decimalOf(value, 0), mask); }
std::string formatNumber(Money value, std::string_view mask) {
  return byMask(decimalOf(value.tenThousandths(), 4), mask);
}
std::string formatNumber(double value, std::string_view mask) { return byMask(decimalOf(value), mask); }

bool isNumeric(std::string_view text) { return toNumber(text).has_value(); }

std::optional<double> toNumber(std::string_view text) {
  text = trim(text);
  const ScannedNumber scanned = scanNumber(text, ".,");
  if (scanned.length == 0 || scanned.length != text.size()) return std::nullopt;
  return toDouble(scanned.number);
}

double leadingNumber(std::string_view text) {
  std::string packed;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
    if (std::string_view("0123456789.+-Ee").find(c) == std::string_view::npos) break;
    packed += c;
  }
  return toDouble(scanNumber(packed, ".").number).value_or(0.0);
}

double roundHalfEven(double value, int decimals) { return rounded(value, decimals, Tie::ToEven); }
double roundHalfAway(double value, int decimals) { return rounded(value, decimals, Tie::AwayFromZero); }

}  // namespace kv
