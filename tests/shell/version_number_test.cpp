// The version in the address of the page of updates.
#include <gtest/gtest.h>

#include "shell/workbench/commands/help_commands.h"

namespace kv {
namespace {

TEST(VersionNumber, IsMajorAndMinorByTwoDigitsAndTheRevisionByThree) {
  EXPECT_EQ(versionNumber("0.1.0"), "0001000");
  EXPECT_EQ(versionNumber("1.2.3"), "0102003");
  EXPECT_EQ(versionNumber("12.34.567"), "1234567");
}

TEST(VersionNumber, KeepsDigitsBeyondTheMask) { EXPECT_EQ(versionNumber("100.2.1234"), "100021234"); }

TEST(VersionNumber, TakesAMissingPartAsZero) {
  EXPECT_EQ(versionNumber("2.1"), "0201000");
  EXPECT_EQ(versionNumber("3"), "0300000");
}

}  // namespace
}  // namespace kv
