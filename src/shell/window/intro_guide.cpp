#include "shell/window/intro_guide.h"

#include "shell/window/intro_steps.h"
#include "store/shop/session.h"

namespace kv {
namespace {

constexpr std::size_t stepsOnDepartments = 2;  // the first ones need a current department

}  // namespace

void showIntroStep(std::size_t step, IntroTarget& target) {
  const auto steps = introSteps();
  if (step >= steps.size()) return;
  target.DisattivaTextBox();
  const IntroStep& shown = steps[step];
  for (const int command : shown.commands) target.AttivaTasto(command, shown.tab);
  // Each takes the focus: the one that comes first in the list is to have it in the end.
  for (auto field = shown.fields.rbegin(); field != shown.fields.rend(); ++field) {
    target.AttivaTextBox(*field, shown.tab);
  }
  if (step < stepsOnDepartments && !target.onDepartment()) target.selectFirstDepartment();
}

bool takeIntroTurn(Settings& settings) {
  const std::string stored = settings.get(settingsSection, "ShowIntro");
  if (!stored.empty() && stored != "yes") return false;
  // A setting that can't be stored shows the guide once more next time.
  ignore(settings.set(settingsSection, "ShowIntro", "no"), "the guide then opens once more");
  return true;
}

}  // namespace kv
