// The arguments of the program with the window.

#include "shell/program/window_arguments.h"
#include "support/value_of.h"

#include <gtest/gtest.h>

#include <vector>

namespace kv::test {
namespace {

Result<WindowArguments> read(const std::vector<std::string>& arguments) { return parseWindowArguments(arguments); }

TEST(WindowArguments, WithoutAnyTheLastShopIsOpened) {
  const auto arguments = read({});
  ASSERT_TRUE(arguments);
  EXPECT_EQ(arguments->shop, "");
  EXPECT_EQ(arguments->applicationFolder, "");
}

TEST(WindowArguments, BothFormsOfTheApplicationFolderMeanTheSame) {
  EXPECT_EQ(valueOf(read({"--app", "/a b", "/negozio"})).applicationFolder, "/a b");
  EXPECT_EQ(valueOf(read({"--app=/a b", "/negozio"})).applicationFolder, "/a b");
  EXPECT_EQ(valueOf(read({"--app=/a b", "/negozio"})).shop, "/negozio");
}

TEST(WindowArguments, AfterTwoHyphensEverythingIsAName) { EXPECT_EQ(valueOf(read({"--", "--app"})).shop, "--app"); }

TEST(WindowArguments, WhatIsWrongIsNamed) {
  EXPECT_EQ(read({"--veloce"}).error().what, "opzione sconosciuta: --veloce");
  EXPECT_EQ(read({"/a", "/b"}).error().what, "è possibile aprire un solo negozio");
  EXPECT_EQ(read({"--app"}).error().what, "manca la cartella dopo --app");
}

TEST(WindowArguments, HelpAndVersionAreToldApart) {
  EXPECT_TRUE(valueOf(read({"--help"})).help);
  EXPECT_TRUE(valueOf(read({"--version"})).version);
  EXPECT_NE(windowUsage().find("--app CARTELLA"), std::string::npos);
}

}  // namespace
}  // namespace kv::test
