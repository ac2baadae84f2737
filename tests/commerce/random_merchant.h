#pragma once
// What chance does in the dialogs of shipping and variants.

#include <random>
#include <string>
#include <vector>

#include "commerce/shipping/shipping_editor.h"
#include "commerce/variants/variant_editor.h"

namespace kv::test {

class RandomMerchant {
 public:
  /// Both editors outlive this object.
  RandomMerchant(ShippingEditor& shipping, VariantEditor& variants, unsigned seed)
      : shipping_(shipping), variants_(variants), engine_(seed) {}

  /// A whole number from 0, below `limit`.
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine_); }

  /// One edit of shipping; what is refused is one, too.
  void editShipping() {
    const int method = 1 + below(4), zone = 1 + below(8);
    const std::string column = "m" + std::to_string(method);
    switch (below(11)) {
      case 0:
        shipping_.switchMethod(method, below(2) == 0);
        break;
      case 1:
        shipping_.setMethodName(method, word());
        break;
      case 2:
        shipping_.setModule(method, word());
        break;
      case 3:
        shipping_.preselectMethod(method);
        break;
      case 4:
        shipping_.addCountry(word());
        break;
      case 5:
        shipping_.deleteCountry(1 + below(95));
        break;
      case 6:
        shipping_.setCountryZone(1 + below(95), zone);
        break;
      case 7:
        shipping_.preselectCountry(std::to_string(1 + below(95)));
        break;
      case 8:
        shipping_.leaveNumber(zone, column + "imp1", word());
        break;
      case 9:
        shipping_.leaveNumber(zone, column + "peso" + std::to_string(1 + below(9)), word());
        break;
      default:
        shipping_.allow(zone, method, below(2) == 0);
        shipping_.setPaysVat(zone, below(2) == 0);
        shipping_.accept();
    }
  }

  /// A variant that is left alone from here on.
  void spare(std::int64_t variant) { spared_ = variant; }

  /// One edit of variants.
  void editVariants() {
    const std::vector<VariantRow> all = variants_.variants();
    const std::int64_t variant = all[static_cast<std::size_t>(below(static_cast<int>(all.size())))].ID;
    if (variant == spared_) return;
    const std::vector<OptionRow> options = variants_.options(variant);
    const std::int64_t option =
        options.empty() ? 0 : options[static_cast<std::size_t>(below(static_cast<int>(options.size())))].ID;
    switch (below(9)) {
      case 0:
        variants_.addVariant();
        break;
      case 1:
        variants_.duplicateVariant(variant);
        break;
      case 2:
        variants_.deleteVariant(variant);
        break;
      case 3:
        variants_.rename(variant, word());
        break;
      case 4:
        variants_.addOption(variant);
        break;
      case 5:
        if (option != 0) variants_.deleteOption(option);
        break;
      case 6:
        if (option != 0) variants_.setOption(option, static_cast<OptionCell>(below(4)), word());
        break;
      case 7:
        if (option != 0) variants_.markOption(variant, option);
        break;
      default:
        variants_.pasteOptions(variant, "A\tuno\t1,5\t2\nB\tdue\n");
    }
  }

 private:
  std::string word() {
    static const std::vector<std::string> words{"", "Altro", "città", "12,5", "x'y", "(nessuna)", " ", "0,25", "-3"};
    return words[static_cast<std::size_t>(below(static_cast<int>(words.size())))];
  }

  ShippingEditor& shipping_;
  VariantEditor& variants_;
  std::mt19937 engine_;
  std::int64_t spared_ = 0;
};

}  // namespace kv::test
