// What the user of the command line sees: messages, questions with their answers, progress on a terminal and elsewhere.

#include "shell/cli/console_user.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/fixed_clock.h"

namespace kv {
namespace {

class ConsoleUserTest : public ::testing::Test {
 protected:
  ConsoleUser make(ConsoleOptions options = {}) { return ConsoleUser(out, clock, std::move(options)); }
  std::string shown() { return out.str(); }

  std::ostringstream out;
  test::FixedClock clock;
};

const Question destructive{"Cancellare?", Buttons::YesNo, Answer::No, Icon::Question};

TEST_F(ConsoleUserTest, AMessageIsWrittenAsItIs) {
  make().message("Riga 1\nRiga 2: è", Icon::Critical);
  EXPECT_EQ(shown(), "Riga 1\nRiga 2: è\n");
}

TEST_F(ConsoleUserTest, WhatATerminalTakesForACommandIsShownAsAQuestionMark) {
  auto user = make();
  user.message("550 \x1b[2Jno\rsi\r\nfine\x7f\t.", Icon::Exclamation);
  user.question({"\x1b]0;x\a?", Buttons::YesNo, Answer::No, Icon::Question});
  EXPECT_EQ(shown(), "550 ?[2Jno?si\nfine?\t.\n?]0;x??\n> No\n");
}

TEST_F(ConsoleUserTest, WithoutAnswersEachQuestionGetsItsDefault) {
  auto user = make();
  EXPECT_EQ(user.question(destructive), Answer::No);
  EXPECT_EQ(user.question({"Avanti?", Buttons::OkCancel, Answer::Ok, Icon::Question}), Answer::Ok);
  EXPECT_EQ(shown(), "Cancellare?\n> No\nAvanti?\n> OK\n");
}

TEST_F(ConsoleUserTest, AnswersGoToQuestionsByPositionAndTheLastHolds) {
  auto user = make({.answers = {Answer::Yes, Answer::No}});
  EXPECT_EQ(user.question(destructive), Answer::Yes);
  EXPECT_EQ(user.question(destructive), Answer::No);
  EXPECT_EQ(user.question(destructive), Answer::No);
  EXPECT_EQ(shown(), "Cancellare?\n> Sì\nCancellare?\n> No\nCancellare?\n> No\n");
}

TEST_F(ConsoleUserTest, ConsentAndRefusalFitWhateverButtonsThereAre) {
  auto consenting = make({.answers = {Answer::Yes}});
  EXPECT_EQ(consenting.question({"?", Buttons::OkCancel, Answer::Cancel, Icon::Question}), Answer::Ok);
  auto refusing = make({.answers = {Answer::Cancel}});
  EXPECT_EQ(refusing.question({"?", Buttons::YesNo, Answer::Yes, Icon::Question}), Answer::No);
  EXPECT_EQ(refusing.question({"?", Buttons::OkCancel, Answer::Ok, Icon::Question}), Answer::Cancel);
}

TEST_F(ConsoleUserTest, TheFolderIsGivenOnceAndThenTheChoiceIsCancelled) {
  auto user = make({.folder = "/shops/one"});
  EXPECT_EQ(user.chooseFolder("Quale?", "/"), "/shops/one");
  EXPECT_EQ(user.chooseFolder("Quale?", "/"), "");
}

TEST_F(ConsoleUserTest, YieldEndsTheRunOnceCancelled) {
  bool cancelled = false;
  auto user = make({.cancelled = [&cancelled] { return cancelled; }});
  EXPECT_TRUE(user.yield());
  cancelled = true;
  EXPECT_FALSE(user.yield());
}

TEST_F(ConsoleUserTest, YieldGoesOnForEverWithoutAnInterrupt) { EXPECT_TRUE(make().yield()); }

TEST_F(ConsoleUserTest, AwayFromATerminalOneLineStandsForEachTenth) {
  auto user = make();
  for (int done = 0; done <= 1000; ++done) {
    const auto caption = "Lingua 1: Reparti 1/1 Articoli " + std::to_string(done) + "/1000";
    user.progress({caption, static_cast<double>(done), 1000});
  }
  EXPECT_EQ(shown(),
            "0 % Lingua 1: Reparti 1/1 Articoli 0/1000\n"
            "10 % Lingua 1: Reparti 1/1 Articoli 100/1000\n"
            "20 % Lingua 1: Reparti 1/1 Articoli 200/1000\n"
            "30 % Lingua 1: Reparti 1/1 Articoli 300/1000\n"
            "40 % Lingua 1: Reparti 1/1 Articoli 400/1000\n"
            "50 % Lingua 1: Reparti 1/1 Articoli 500/1000\n"
            "60 % Lingua 1: Reparti 1/1 Articoli 600/1000\n"
            "70 % Lingua 1: Reparti 1/1 Articoli 700/1000\n"
            "80 % Lingua 1: Reparti 1/1 Articoli 800/1000\n"
            "90 % Lingua 1: Reparti 1/1 Articoli 900/1000\n"
            "100 % Lingua 1: Reparti 1/1 Articoli 1000/1000\n");
}

TEST_F(ConsoleUserTest, ANewLanguageGetsALineAndAnEmptyCaptionNone) {
  auto user = make();
  user.progress({"Lingua 1: Reparti 1/2 Articoli 4/9", 45, 100});
  user.progress({"Lingua 2: Reparti 0/2 Articoli 0/9", 47, 100});
  user.progress({"", 100, 100});
  EXPECT_EQ(shown(), "45 % Lingua 1: Reparti 1/2 Articoli 4/9\n47 % Lingua 2: Reparti 0/2 Articoli 0/9\n");
}

TEST_F(ConsoleUserTest, WhileTheTotalIsUnknownALineHasNoPercentage) {
  make().progress({"Inizializzazione", 0, 1});
  EXPECT_EQ(shown(), "Inizializzazione\n");
}

TEST_F(ConsoleUserTest, OnATerminalTheBarIsRedrawnTenTimesASecondAtMost) {
  {
    auto user = make({.terminal = true, .width = 60});
    user.progress({"Lingua 1", 0, 100});
    user.progress({"Lingua 1", 1, 100});
    clock.seconds += 0.2;
    user.progress({"Lingua 1", 50, 100});
    user.progress({"Lingua 1", 100, 100});
  }
  EXPECT_EQ(shown(),
            "\r[                              ]   0 % Lingua 1\x1b[K"
            "\r[###############               ]  50 % Lingua 1\x1b[K"
            "\r[##############################] 100 % Lingua 1\x1b[K"
            "\r\x1b[K");
}

TEST_F(ConsoleUserTest, AMessageWipesTheBarFirst) {
  auto user = make({.terminal = true, .width = 40});
  user.progress({"", 0, 100});
  out.str("");
  user.message("Fatto", Icon::Information);
  EXPECT_EQ(shown(), "\r\x1b[KFatto\n");
}

TEST(ProgressBar, ALongCaptionIsCutBetweenLetters) {
  EXPECT_EQ(progressBar({"èèèè", 0, 100}, 41), "[                              ]   0 % èè");
  EXPECT_EQ(progressBar({"èèèè", 0, 100}, 20), "[                              ]   0 % ");
}

TEST(ProgressBar, APositionBeyondTheEndIsTheEnd) {
  EXPECT_EQ(progressBar({"", 300, 100}, 41), "[##############################] 100 % ");
  EXPECT_EQ(progressBar({"", -3, 100}, 41), "[                              ]   0 % ");
}

}  // namespace
}  // namespace kv
