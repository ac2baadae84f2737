// The rules of the two settings dialogs: what they show, what can be used, what a reset brings, what is asked.

#include "publish/settings/publish_options.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "publish/settings/firewall_choice.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

TEST(PublishOptionsRules, AShopWithoutItsListOfFilesIsNotBuilt) {
  const TempFolder shop;
  EXPECT_FALSE(isBuilt(shop.path()));
  ASSERT_TRUE(writeBytes(shop / "kvftp.dat", "#\r\n"));
  EXPECT_TRUE(isBuilt(shop.path()));
  EXPECT_EQ(buildBeforePublishing, "E' necessario costruire il negozio prima di aggiornare il sito");
}

TEST(PublishOptionsRules, WithoutADifferenceTheWholeDatabaseIsChosen) {
  PublishSettings settings;
  settings.allRecords = false;
  const PublishOptions options = PublishOptions::of(settings, false);
  EXPECT_FALSE(options.canUseIncremental);
  EXPECT_TRUE(options.chosen().allRecords);
  EXPECT_FALSE(PublishOptions::of(settings, true).chosen().allRecords);
}

TEST(PublishOptionsRules, TheTypesCanBeChosenWhileTheyFilterAndFtpIsOn) {
  PublishOptions options;
  EXPECT_FALSE(options.areTypesEnabled());
  options.filtersTypes = true;
  EXPECT_TRUE(options.areTypesEnabled());
  options.settings.disabled = true;
  EXPECT_FALSE(options.areTypesEnabled());
  EXPECT_FALSE(options.areFilesEnabled());
}

TEST(PublishOptionsRules, WithoutAFilterTheTypesDoNotCount) {
  PublishOptions options;
  options.types = {false, true, false, false};
  EXPECT_EQ(options.chosen().types, "ALL.");
  options.filtersTypes = true;
  EXPECT_EQ(options.chosen().types, ".gif.jpg.jpeg.png.bmp.");
}

TEST(PublishOptionsRules, AResetKeepsWhatItDoesNotName) {
  PublishOptions options;
  options.settings = {false, false, ".", false, true, true, false, true, true, true, 3, true, 90};
  options.filtersTypes = true;
  options.types.fill(false);
  options.reset();
  const PublishSettings& settings = options.settings;
  EXPECT_TRUE(settings.onlyModified && settings.onlyShopFiles && settings.allRecords && !settings.disabled);
  EXPECT_FALSE(options.filtersTypes);
  EXPECT_EQ(options.types, (std::array<bool, 4>{true, true, true, true}));
  EXPECT_TRUE(settings.optimised && !settings.lockTables && settings.safeUpload);
}

TEST(PublishOptionsRules, TheAdviceTurnsTheSafeChoicesOnAndNothingElse) {
  PublishOptions options;
  options.recommend();
  PublishSettings wanted;
  wanted.safeUpload = wanted.contentCheck = wanted.retry = true;
  wanted.connections = PublishOptions::recommendedConnections;
  EXPECT_EQ(options.chosen(), wanted);
}

TEST(PublishOptionsRules, AFailureToWriteIsToldWithItsDescription) {
  EXPECT_TRUE(optionsFailure({ErrorKind::Full, "kvftp.ini", "No space left on device", 28}).starts_with("Errore: "));
}

TEST(FirewallRules, APortThatIsNoNumberIsShownAsTwentyOne) {
  FirewallSettings settings;
  settings.ftpPort = "ftps";
  EXPECT_EQ(shownFirewall(settings).ftpPort, "21");
  settings.ftpPort = "990";
  EXPECT_EQ(shownFirewall(settings).ftpPort, "990");
}

TEST(FirewallRules, WithoutAFirewallItsFieldsAreOff) {
  EXPECT_FALSE(areFirewallFieldsEnabled(FirewallKind::None));
  EXPECT_TRUE(areFirewallFieldsEnabled(FirewallKind::SimplePipe));
}

TEST(FirewallRules, AResetIsAskedAboutWithCancelAsDefault) {
  const TempFolder shop;
  ScriptedUser user;
  ASSERT_TRUE(writeFirewallSettings(shop.path(), {}));
  EXPECT_FALSE(resetFirewall(shop.path(), user));
  EXPECT_EQ(asText(user.shown.at(0)),
            "[Question, OkCancel, Cancel -> Cancel] Le impostazioni avanzate saranno riportate alle condizioni di "
            "default");
  EXPECT_TRUE(fileExists(shop / "firewall.net"));
  user.answers = {Answer::Ok};
  EXPECT_TRUE(resetFirewall(shop.path(), user));
  EXPECT_FALSE(fileExists(shop / "firewall.net"));
}

}  // namespace
}  // namespace kv::test
