#include "shell/workbench/fields/vat_price.h"

#include "platform/numbers/money.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr int decimals = 2;

}  // namespace

std::optional<double> numberWithVat(std::string_view price, std::string_view percent) {
  constexpr float hundred = 100.0F;
  if (trim(price).empty()) return std::nullopt;
  const auto net = Money::parse(std::string(trim(price)));
  const auto rate = toNumber(trim(percent));
  if (!net || !rate || *rate <= 0) return std::nullopt;
  const auto vat = multiplyThroughSingle(*net, static_cast<float>(*rate) / hundred);
  const auto whole = vat ? add(*net, *vat) : std::nullopt;
  if (!whole) return std::nullopt;
  return roundHalfAway(whole->toDouble(), decimals);
}

std::string priceWithVat(std::string_view price, std::string_view percent) {
  const auto number = numberWithVat(price, percent);
  if (!number) return {};
  std::string text = trimmedNumber(*number);
  const std::size_t point = text.find('.');
  if (point == std::string::npos) return text + ".00";
  return text.append(decimals + 1 - (text.size() - point), '0');
}

}  // namespace kv
