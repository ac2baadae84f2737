#pragma once
// How far a build has come: the bar and its caption, and the user's wish to cancel. The bar runs over the departments
// and articles of all languages; what comes before and after them is a small rest at its end.

#include <cstddef>

#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

/// What the bar runs over.
struct BuildTotals {
  int departments = 0;  ///< of one language
  int articles = 0;     ///< of one language, those that are excluded from the shop left out
  int languages = 1;    ///< of the shop
};

/// The meter of one build run. `user` outlives it.
class BuildProgress {
 public:
  /// At the start, with totals that aren't known yet.
  explicit BuildProgress(UserPort& user) : user_(user) {}

  /// Lets the user act. Cancelled when he has cancelled the build.
  Result<> checkCancel() const;

  /// A language begins, counted from 1. The totals of the first one that has a department hold for all.
  void startLanguage(int number, const BuildTotals& totals);
  /// One article is done; shows it.
  void articleDone();
  /// One department is done, after its articles; shows it.
  void departmentDone();
  /// All languages are done: the bar is full, without a caption.
  void finish();

  /// Departments of one language; 0 as long as they aren't known.
  int departments() const { return totals_.departments; }
  /// Articles of one language; 0 as long as they aren't known.
  int articles() const { return totals_.articles; }

 private:
  /// AggiornaProg (update the progress): shows caption and bar.
  void AggiornaProg() const;

  UserPort& user_;
  int language_ = 1;
  BuildTotals totals_;
  int departmentsDone_ = 0, articlesDone_ = 0;
  double position_ = 0;
  double maximum_ = 1;  // 1 marks that the totals aren't known yet
  double step_ = 0;     // of one department or article
};

}  // namespace kv
