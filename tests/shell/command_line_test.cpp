// The arguments of korvane-cli: what each form means and what is refused, with its words.

#include "shell/cli/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Result<CommandLine> parse(std::vector<std::string> arguments) { return parseCommandLine(arguments); }

std::string complaint(std::vector<std::string> arguments) {
  const auto line = parse(std::move(arguments));
  return line ? "accepted" : line.error().what;
}

TEST(CommandLine, BuildTakesTheShopFolder) {
  const auto line = parse({"build", "shop"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->command, CliCommand::Build);
  EXPECT_EQ(line->shop, "shop");
  EXPECT_EQ(line->applicationFolder, "");
  EXPECT_THAT(line->answers, IsEmpty());
}

TEST(CommandLine, CheckAndNewAreCommandsOfTheirOwn) {
  EXPECT_EQ(parse({"check", "shop"})->command, CliCommand::Check);
  EXPECT_EQ(parse({"new", "shop"})->command, CliCommand::New);
}

TEST(CommandLine, TheDoctorHasAFlagForPrograms) {
  EXPECT_EQ(parse({"orders", "shop"})->command, CliCommand::Orders);
  EXPECT_EQ(parse({"orders", "shop", "--since", "2026-05-01", "--csv=x.csv"})->option("--csv"), "x.csv");
  EXPECT_EQ(parse({"doctor", "shop"})->command, CliCommand::Doctor);
  EXPECT_TRUE(parse({"doctor", "shop", "--json"})->has("--json"));
  EXPECT_EQ(complaint({"check", "shop", "--json"}), "opzione non prevista per il comando check: --json");
}

TEST(CommandLine, TheExportOfTheDatabaseIsACommandOfItsOwn) {
  EXPECT_EQ(parse({"export-sql", "shop"})->command, CliCommand::ExportSql);
}

TEST(CommandLine, PublishingHasFlagsThatABuildHasNot) {
  const auto plain = parse({"publish", "shop"});
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->command, CliCommand::Publish);
  EXPECT_FALSE(plain->has("--dry-run") || plain->has("--all"));
  const auto flagged = parse({"--dry-run", "publish", "shop", "--all"});
  ASSERT_TRUE(flagged);
  EXPECT_TRUE(flagged->has("--dry-run") && flagged->has("--all"));
  for (const char* flag : {"--dry-run", "--all"}) {
    const auto refused = parse({"build", "shop", flag});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().what, "opzione non prevista per il comando build: " + std::string(flag));
  }
}

TEST(CommandLine, OptionsComeBeforeBetweenOrAfterTheNames) {
  for (const auto& line : {parse({"--app", "data", "build", "shop"}), parse({"build", "--app", "data", "shop"}),
                           parse({"build", "shop", "--app=data"})}) {
    ASSERT_TRUE(line);
    EXPECT_EQ(line->applicationFolder, "data");
    EXPECT_EQ(line->shop, "shop");
  }
}

TEST(CommandLine, AnswersAreKeptInTheirOrder) {
  const auto line = parse({"--answer", "yes", "--answer=no", "build", "shop", "--answer", "cancel", "--answer=ok"});
  ASSERT_TRUE(line);
  EXPECT_THAT(line->answers, ElementsAre(Answer::Yes, Answer::No, Answer::Cancel, Answer::Ok));
}

TEST(CommandLine, AfterTwoHyphensAnOptionIsAName) {
  const auto line = parse({"build", "--", "--app"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->shop, "--app");
}

TEST(CommandLine, ASingleHyphenIsAName) { EXPECT_EQ(parse({"build", "-"})->shop, "-"); }

TEST(CommandLine, HelpAndVersionWinOverEverythingAfterThem) {
  EXPECT_EQ(parse({"--help", "--nonsense"})->command, CliCommand::Help);
  EXPECT_EQ(parse({"-h"})->command, CliCommand::Help);
  EXPECT_EQ(parse({"build", "shop", "--version"})->command, CliCommand::Version);
}

TEST(CommandLine, HelpForgetsTheNamesBeforeIt) { EXPECT_EQ(parse({"--app", "x", "--help"})->applicationFolder, ""); }

TEST(CommandLine, WhatIsMissingOrUnknownIsNamed) {
  EXPECT_EQ(complaint({}), "manca il comando");
  EXPECT_EQ(complaint({"build"}), "manca la cartella del negozio");
  EXPECT_EQ(complaint({"build", ""}), "manca la cartella del negozio");
  EXPECT_EQ(complaint({"sell", "shop"}), "comando sconosciuto: sell");
  EXPECT_EQ(complaint({"build", "shop", "more"}), "argomento di troppo: more");
  EXPECT_EQ(complaint({"--fast", "build", "shop"}), "opzione sconosciuta: --fast");
  EXPECT_EQ(complaint({"--app"}), "manca il valore di --app");
  EXPECT_EQ(complaint({"--app=", "build", "shop"}), "manca il valore di --app");
  EXPECT_EQ(complaint({"--answer", "maybe", "build", "shop"}), "risposta sconosciuta: maybe (yes, no, ok, cancel)");
  EXPECT_EQ(complaint({"picture", "shop", "a.jpg", "--slot", "0", "--slot=1"}), "due valori diversi per --slot");
  EXPECT_EQ(parse({"picture", "shop", "a.jpg", "--slot", "0", "--slot=0"})->option("--slot"), "0");
}

TEST(CommandLine, UsageNamesEveryCommandAndOption) {
  const auto usage = usageText();
  for (const char* name : {"build", "check", "new", "--app", "--answer", "--help", "--version"}) {
    EXPECT_THAT(usage, HasSubstr(name));
  }
  EXPECT_EQ(usage.back(), '\n');
}

}  // namespace
}  // namespace kv
