#include "builder/output/build_progress.h"

#include <string>

namespace kv {

namespace {

constexpr double workingSteps = 28000;  // of the bar: departments and articles of all languages
constexpr double allSteps = 30000;

}  // namespace

Result<> BuildProgress::checkCancel() const {
  if (!user_.yield()) return fail(ErrorKind::Cancelled, "MakePages", "");
  return {};
}

void BuildProgress::startLanguage(int number, const BuildTotals& totals) {
  language_ = number;
  departmentsDone_ = articlesDone_ = 0;
  // A shop without departments leaves the bar without its totals.
  if (maximum_ > 1 || totals.departments == 0) return;
  totals_ = totals;
  step_ = static_cast<double>(static_cast<float>(
      workingSteps / (static_cast<double>(totals.departments + totals.articles) * totals.languages)));
  maximum_ = allSteps;
}

void BuildProgress::articleDone() {
  position_ += step_;
  ++articlesDone_;
  AggiornaProg();
}

void BuildProgress::departmentDone() {
  position_ += step_;
  ++departmentsDone_;
  AggiornaProg();
}

void BuildProgress::finish() {
  position_ = maximum_;
  user_.progress({"", position_, maximum_});
}

void BuildProgress::AggiornaProg() const {
  std::string caption = "Lingua " + std::to_string(language_);
  caption += ": Reparti " + std::to_string(departmentsDone_) + "/" + std::to_string(totals_.departments);
  caption += " Articoli " + std::to_string(articlesDone_) + "/" + std::to_string(totals_.articles);
  user_.progress({caption, position_, maximum_});
}

}  // namespace kv
