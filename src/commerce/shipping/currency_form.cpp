#include "commerce/shipping/currency_form.h"

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr int italianNotation = 0;
constexpr std::string_view groupedDecimals = "###,###,###,##0.00";
constexpr std::string_view groupedWhole = "###,###,###,##0";
constexpr std::string_view plainDecimals = "##################0.00";
constexpr std::string_view plainWhole = "##################0";

std::string labelOf(const std::string& sign) { return std::string(trim(sign)) + " "; }

}  // namespace

CurrencyForm::CurrencyForm(const FieldRow& generale)
    : label(labelOf(generale.text("valuta1"))),
      label2(labelOf(generale.text("valuta2"))),
      decimals(generale.flag("decimali1")),
      decimals2(generale.flag("decimali2")) {
  const bool italian = generale.integer("notazione") == italianNotation;
  sepdec = italian ? "," : ".";
  sepmigl = italian ? "." : ",";
}

std::string CurrencyForm::NumeroJS(Money amount) const {
  return formatNumber(amount, decimals ? plainDecimals : plainWhole);
}

std::string CurrencyForm::NumeroLocale(std::string_view number) const {
  std::string out;
  out.reserve(number.size());
  for (const char c : number) {
    if (c == '.') {
      out += sepdec;
    } else if (c == ',') {
      out += sepmigl;
    } else {
      out += c;
    }
  }
  return out;
}

std::string CurrencyForm::SepDecimale(std::string_view number) const { return replaceAll(number, ".", sepdec); }

std::string CurrencyForm::primaryText(Money amount) const {
  return label + NumeroLocale(formatNumber(amount, decimals ? groupedDecimals : groupedWhole));
}

std::string CurrencyForm::secondaryText(double amount) const {
  return label2 + NumeroLocale(formatNumber(amount, decimals2 ? groupedDecimals : groupedWhole));
}

float shopFactor(std::string_view sconto) {
  const auto percent = toNumber(sconto);
  if (!percent || *percent < 0 || *percent > 100) return 1.0F;
  return static_cast<float>((100.0 - *percent) / 100.0);
}

float discountFactor(float percent, float shopFactor) {
  return static_cast<float>((100.0 - static_cast<double>(percent)) / 100.0 * static_cast<double>(shopFactor));
}

}  // namespace kv
