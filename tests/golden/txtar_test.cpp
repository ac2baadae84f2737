// The text form of golden cases: what a part stands for, and that every byte has a form.

#include "support/txtar.h"

#include <gtest/gtest.h>

namespace kv::test {
namespace {

TEST(Txtar, ATextPartStandsForCodePageBytesWithCarriageReturns) {
  const Txtar archive = parseTxtar("note\n-- a.txt --\nperché €\n");
  EXPECT_EQ(archive.comment, "note\n");
  EXPECT_EQ(partBytes(archive.parts.at(0)), "perch\xE9 \x80\r\n");
}

TEST(Txtar, HexEscapesAndAMissingLineEndAreToldByFlags) {
  EXPECT_EQ(partBytes({"a.gif", {"hex"}, "47 49\n46"}), "GIF");
  EXPECT_EQ(partBytes({"a", {"escapes", "noeol"}, "a\\x0ab\\xzz\nc\n"}), "a\nb\\xzz\r\nc");
}

TEST(Txtar, ASpaceInANameIsWrittenAsAPercentCode) {
  const std::string text = "-- a%20b only=x,y --\n";
  const Txtar archive = parseTxtar(text);
  EXPECT_EQ(archive.parts.at(0).name, "a b");
  EXPECT_EQ(archive.parts.at(0).value("only"), "x,y");
  EXPECT_EQ(formatTxtar(archive), text);
}

TEST(Txtar, EveryByteComesBackFromItsPart) {
  std::string bytes = "\r\n-- marker --\r\n\\x41 \\\r\n\r";
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  for (const std::string& file : {bytes, bytes + "\r\n", std::string(), std::string("\r\n"), std::string("\n")}) {
    Txtar archive;
    archive.parts.push_back(bytesPart("x", file));
    const Txtar again = parseTxtar(formatTxtar(archive));
    ASSERT_EQ(again.parts.size(), 1U);
    EXPECT_EQ(partBytes(again.parts.at(0)), file);
  }
}

TEST(Txtar, TheFirstDifferenceIsShownWithTheLinesAroundIt) {
  EXPECT_EQ(firstDifference("a\nb\nc", "a\nx\nc"), "line 2\n  a\n- b\n- c\n+ x\n+ c\n");
}

}  // namespace
}  // namespace kv::test
