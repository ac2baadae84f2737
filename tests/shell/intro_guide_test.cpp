// What a click on each number of the guide does with the main window, and when the guide opens by itself; the reminder
// before publishing.
#include "shell/window/intro_guide.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shell/workbench/build_reminder.h"

namespace kv {
namespace {

using ::testing::ElementsAre;

/// Writes down what it is asked.
class NotedTarget final : public IntroTarget {
 public:
  void AttivaTextBox(std::string_view field, std::string_view tabKey) override { note(tabKey, field); }
  void AttivaTasto(int command, std::string_view tabKey) override { note(tabKey, std::to_string(command)); }
  void DisattivaTextBox() override { asked.emplace_back("off"); }
  bool onDepartment() const override { return department; }
  void selectFirstDepartment() override { asked.emplace_back("first department"); }

  std::vector<std::string> asked;
  bool department = true;

 private:
  void note(std::string_view tab, std::string_view what) {
    asked.push_back(std::string(tab) + " " + std::string(what));
  }
};

std::vector<std::string> askedBy(std::size_t step, bool onDepartment = true) {
  NotedTarget target;
  target.department = onDepartment;
  showIntroStep(step, target);
  return target.asked;
}

TEST(IntroGuide, EachStepTakesTheLastHighlightsAwayAndLightsItsOwn) {
  EXPECT_THAT(askedBy(0), ElementsAre("off", "kReparti 14", "kReparti 15", "kReparti 20"));
  EXPECT_THAT(askedBy(1), ElementsAre("off", "kArticoli 2", "kArticoli 3"));
  EXPECT_THAT(askedBy(2), ElementsAre("off", "kSito email_ordini"));
  EXPECT_THAT(askedBy(7), ElementsAre("off", " 50"));
  EXPECT_THAT(askedBy(8), ElementsAre("off", " 51"));
}

TEST(IntroGuide, TheFirstFieldOfAStepIsActivatedLastAndKeepsTheFocus) {
  EXPECT_THAT(askedBy(4), ElementsAre("off", "kInternet db_dbname", "kInternet db_password", "kInternet db_username",
                                      "kInternet db_hostname"));
}

TEST(IntroGuide, TheStepsOnDepartmentsAndArticlesSelectADepartmentWhenNoneIs) {
  EXPECT_THAT(askedBy(0, false), ElementsAre("off", "kReparti 14", "kReparti 15", "kReparti 20", "first department"));
  EXPECT_THAT(askedBy(1, false), ElementsAre("off", "kArticoli 2", "kArticoli 3", "first department"));
  EXPECT_THAT(askedBy(2, false), ElementsAre("off", "kSito email_ordini"));
}

TEST(IntroGuide, ThereIsNoTenthStep) { EXPECT_TRUE(askedBy(9).empty()); }

TEST(IntroGuide, OpensByItselfOnce) {
  MemorySettings settings;
  EXPECT_TRUE(takeIntroTurn(settings));
  EXPECT_EQ(settings.get("AppIni", "ShowIntro"), "no");
  EXPECT_FALSE(takeIntroTurn(settings));
}

TEST(IntroGuide, OpensWhenTheSettingSaysYes) {
  MemorySettings settings;
  ASSERT_TRUE(settings.set("AppIni", "ShowIntro", "yes"));
  EXPECT_TRUE(takeIntroTurn(settings));
  ASSERT_TRUE(settings.set("AppIni", "ShowIntro", "mai"));
  EXPECT_FALSE(takeIntroTurn(settings));
}

TEST(BuildReminder, IsShownUntilTheUserWantsItNoMore) {
  MemorySettings settings;
  EXPECT_TRUE(wantsReminder(settings));
  ASSERT_TRUE(answerReminder(settings, false));
  EXPECT_TRUE(wantsReminder(settings));
  EXPECT_EQ(settings.get("AppIni", "NoShow"), "");
  ASSERT_TRUE(answerReminder(settings, true));
  EXPECT_EQ(settings.get("AppIni", "NoShow"), "1");
  EXPECT_FALSE(wantsReminder(settings));
}

TEST(BuildReminder, AnyOtherSettingShowsIt) {
  MemorySettings settings;
  ASSERT_TRUE(settings.set("AppIni", "NoShow", "0"));
  EXPECT_TRUE(wantsReminder(settings));
}

}  // namespace
}  // namespace kv
