// Addresses and folders of the connection settings, the documents that are opened, the guide's steps.

#include "shell/workbench/fields/web_address.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "shell/window/intro_steps.h"
#include "shell/workbench/command_table.h"
#include "shell/workbench/commands/command_rows.h"
#include "shell/workbench/open_document.h"
#include "store/shop/session.h"

namespace kv::test {
namespace {

TEST(WebAddress, TheFullAddressesJoinUrlAndFolders) {
  const FullAddresses full = NormalizzaURL({" www.montelune.it/ ", "/negozio/", "cgi-bin"});
  EXPECT_EQ(full.shop, "http://www.montelune.it/negozio/index.php");
  EXPECT_EQ(full.backOffice, "http://www.montelune.it/cgi-bin/index.php");
}

TEST(WebAddress, WithoutAScriptFolderTheBackOfficeIsAtTheSite) {
  EXPECT_EQ(NormalizzaURL({"https://a.it", "", ""}).backOffice, "https://a.it/index.php");
}

TEST(WebAddress, WithoutAnAddressThereIsNone) {
  const FullAddresses full = NormalizzaURL({"", "negozio", "cgi"});
  EXPECT_EQ(full.shop + full.backOffice, "");
}

TEST(WebAddress, TheServersRootIsCutFromTheWebFolder) {
  EXPECT_EQ(webFolderOf("/public_html/shop/", false), "shop");
  EXPECT_EQ(webFolderOf("/public_html/shop/", true), "public_html/shop");
  EXPECT_EQ(webFolderOf("public_html/shop", false), "shop");
  EXPECT_EQ(webFolderOf("public_htmlx", false), "public_htmlx");
  EXPECT_EQ(webFolderOf("usr/local/etc/httpd/htdocs/a", false), "a");
  EXPECT_EQ(webFolderOf("usr/local/etc/httpd/a", false), "a");
  EXPECT_EQ(webFolderOf(" www ", false), "");
  EXPECT_EQ(webFolderOf("htdocs/www/a", false), "www/a");
}

TEST(WebAddress, AWebFolderTypedByHandStays) {
  EXPECT_EQ(suggestedWebFolder("", "", "www/shop", false), "shop");
  EXPECT_EQ(suggestedWebFolder("shop", "www/shop", "www/negozio", false), "negozio");
  EXPECT_EQ(suggestedWebFolder("mio", "www/shop", "www/negozio", false), "mio");
  EXPECT_EQ(suggestedWebFolder("", "www/shop", "www/shop", false), "");
}

struct Opened {
  std::vector<std::pair<std::string, std::string>> calls;
  std::vector<int> answers;
  DocumentOpener opener() {
    return [this](const std::string& file, const std::string& folder) {
      calls.emplace_back(file, folder);
      return answers.at(calls.size() - 1);
    };
  }
};

TEST(OpenDocument, ASuccessIsAResultOf32OrAbove) {
  MemorySettings settings;
  Opened opened{{}, {32}};
  EXPECT_FALSE(ApriDocumento("a.htm", "/help", settings, opened.opener()));
  EXPECT_EQ(settings.get(settingsSection, "previewretry"), "on");
  EXPECT_THAT(opened.calls, ::testing::ElementsAre(std::pair<std::string, std::string>("a.htm", "/help")));
}

TEST(OpenDocument, AFailureIsTriedOnceMoreWithTheFullPath) {
  MemorySettings settings;
  Opened opened{{}, {2, 33}};
  EXPECT_FALSE(ApriDocumento("a.htm", "/help", settings, opened.opener()));
  EXPECT_THAT(opened.calls, ::testing::ElementsAre(std::pair<std::string, std::string>("a.htm", "/help"),
                                                   std::pair<std::string, std::string>("/help/a.htm", "")));
}

TEST(OpenDocument, WithoutAFolderOrWithTheRetryOffAFailureIsFinal) {
  MemorySettings settings;
  Opened noFolder{{}, {2}};
  EXPECT_TRUE(ApriDocumento("http://a.it", "", settings, noFolder.opener()));
  ASSERT_TRUE(settings.set(settingsSection, "previewretry", "off"));
  Opened off{{}, {2}};
  EXPECT_TRUE(ApriDocumento("a.htm", "/help", settings, off.opener()));
}

TEST(OpenDocument, NothingIsNoFailure) {
  MemorySettings settings;
  Opened opened;
  EXPECT_FALSE(ApriDocumento("", "/help", settings, opened.opener()));
  EXPECT_TRUE(opened.calls.empty());
}

TEST(IntroSteps, EveryStepPointsAtSomethingThatExists) {
  const CommandTable table(allCommands());
  ASSERT_EQ(introSteps().size(), 9U);
  for (const IntroStep& step : introSteps()) {
    EXPECT_FALSE(step.commands.empty() && step.fields.empty()) << step.text;
    for (const int command : step.commands) EXPECT_NE(table.numbered(command), nullptr);
  }
}

TEST(IntroSteps, TheGuideIsBesideTheWindowWhenBothFit) {
  EXPECT_EQ(placeIntro(1920, 100, 1200, 400).introLeft, 1300);
  EXPECT_EQ(placeIntro(1920, 100, 1200, 400).mainLeft, 100);
  EXPECT_EQ(placeIntro(1920, 600, 1200, 400).mainLeft, 320);
  EXPECT_EQ(placeIntro(1280, 100, 1200, 400).mainLeft, 0);
  EXPECT_EQ(placeIntro(1280, 100, 1200, 400).introLeft, 880);
}

TEST(IntroSteps, TheMainWindowGivesWayToTheGuideDownToItsLeastWidth) {
  EXPECT_EQ(widthBesideIntro(1920, 1200, 400, 720), 1200);
  EXPECT_EQ(widthBesideIntro(1280, 1200, 400, 720), 880);
  EXPECT_EQ(widthBesideIntro(1024, 1000, 400, 720), 720);
  EXPECT_EQ(widthBesideIntro(800, 700, 400, 720), 700) << "never wider than it was";
}

}  // namespace
}  // namespace kv::test
