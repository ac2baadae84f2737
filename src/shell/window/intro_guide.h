#pragma once
// What the first-run guide does with the main window (rules of frmIntro).

#include <cstddef>
#include <string_view>

#include "platform/files/settings.h"

namespace kv {

/// The main window as the guide reaches it. An empty tab key means: stay on the tab in use.
class IntroTarget {
 public:
  virtual ~IntroTarget() = default;
  /// AttivaTextBox (activate a text field): goes to the tab, sets the focus in the field of a column of `generale`,
  /// selects its whole text and gives it the highlight colour.
  virtual void AttivaTextBox(std::string_view field, std::string_view tabKey) = 0;
  /// AttivaTasto (activate a button): goes to the tab and gives the button of a command the highlight colour.
  virtual void AttivaTasto(int command, std::string_view tabKey) = 0;
  /// DisattivaTextBox: takes every highlight away.
  virtual void DisattivaTextBox() = 0;
  /// Whether a department is current (the tree is not on the root).
  virtual bool onDepartment() const = 0;
  /// Makes the first child of the root current and refreshes the panels; nothing when there is none.
  virtual void selectFirstDepartment() = 0;
};

/// Step 0 to 8 of the guide: the last one's highlights go, the fields and buttons of this one are lit, and the steps on
/// departments and articles see to it that a department is current. The first field of a step keeps the focus.
void showIntroStep(std::size_t step, IntroTarget& target);

/// Whether the guide opens by itself: setting `ShowIntro` is empty or "yes". It happens once: "no" is stored.
bool takeIntroTurn(Settings& settings);

}  // namespace kv
