#pragma once
// A series of steps that fails is made shorter, so that somebody can read what it takes.

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace kv::test {

/// The shortest part of `steps` found for which `fails` still holds; `fails(steps)` holds. Ever smaller pieces are left
/// out, down to single steps, until none can be, or until `budget` steps have been tried in all.
template <class Step>
std::vector<Step> shrink(std::vector<Step> steps, const std::function<bool(const std::vector<Step>&)>& fails,
                         std::size_t budget) {
  for (std::size_t piece = std::max<std::size_t>(steps.size() / 2, 1);;) {
    bool shorter = false;
    for (std::size_t start = 0; start < steps.size();) {
      std::vector<Step> rest(steps);
      const std::size_t end = std::min(start + piece, steps.size());
      rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(start), rest.begin() + static_cast<std::ptrdiff_t>(end));
      if (rest.size() > budget) return steps;
      budget -= rest.size();
      if (fails(rest)) {
        steps = std::move(rest);
        shorter = true;
      } else {
        start += piece;
      }
    }
    if (piece > 1) {
      piece /= 2;
    } else if (!shorter) {
      return steps;
    }
  }
}

}  // namespace kv::test
