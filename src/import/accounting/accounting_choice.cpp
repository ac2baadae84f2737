#include "import/accounting/accounting_choice.h"

namespace kv {

void AccountingChoice::load(const Settings& settings) {
  for (const AccountingVariant& variant : accountingVariants()) {
    paths_.at(static_cast<std::size_t>(variant.number)) = accountingPath(settings, variant);
  }
  stored_ = paths_;
  const auto numbers = installed();
  chosen_ = numbers.empty() ? -1 : numbers.front();
}

std::vector<int> AccountingChoice::installed() const {
  std::vector<int> numbers;
  for (const AccountingVariant& variant : accountingVariants()) {
    if (!path(variant.number).empty()) numbers.push_back(variant.number);
  }
  return numbers;
}

void AccountingChoice::setPath(int number, std::string path) {
  const bool isInstalled = !path.empty();
  paths_.at(static_cast<std::size_t>(number)) = std::move(path);
  if (isInstalled) chosen_ = number;
}

int AccountingChoice::chosen() const { return chosen_ < 0 || path(chosen_).empty() ? -1 : chosen_; }

std::string AccountingChoice::refusal() const { return chosen() < 0 ? std::string(noVariant) : std::string(); }

Result<> AccountingChoice::apply(Settings& settings) const {
  for (const AccountingVariant& variant : accountingVariants()) {
    const auto at = static_cast<std::size_t>(variant.number);
    if (paths_.at(at) == stored_.at(at)) continue;
    if (auto done = storeAccountingPath(settings, variant, paths_.at(at)); !done) return done;
  }
  return {};
}

}  // namespace kv
