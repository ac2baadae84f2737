// What a golden case shows of what was produced, and what it holds by digests.

#include "support/golden_digest.h"

#include <gtest/gtest.h>

namespace kv::test {
namespace {

ProducedPart produced(const std::string& name, const std::string& text, const Txtar& archive) {
  const TxtarPart whole{name, {}, text};
  const TxtarPart* wanted = archive.find(name);
  return {whole, wanted != nullptr ? excerpt(whole, *wanted) : whole, text, {}};
}

// The parts as one text, for a file of three lines under a case.
std::string condensedText(const std::string& archiveText) {
  const Txtar archive = parseTxtar(archiveText);
  return formatTxtar({"", condensed(archive, {produced("want/a b.txt", "one\ntwo\nthree\n", archive)})});
}

TEST(GoldenDigest, IsTheStandardOne) {
  EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(GoldenDigest, APartThatTheCaseDoesNotShowIsALine) {
  EXPECT_EQ(condensedText(""), "-- want-digest --\na%20b.txt 14 " + sha256("one\ntwo\nthree\n") + "\n");
}

TEST(GoldenDigest, APartThatIsShownWholeHasNone) {
  EXPECT_EQ(condensedText("-- want/a%20b.txt --\n"), "-- want/a%20b.txt --\none\ntwo\nthree\n");
}

TEST(GoldenDigest, APartThatIsShownInPiecesHasItToo) {
  EXPECT_EQ(condensedText("-- want/a%20b.txt lines=1,3-9 --\n"),
            "-- want/a%20b.txt lines=1,3-9 --\none\nthree\n-- want-digest --\na%20b.txt 14 " +
                sha256("one\ntwo\nthree\n") + "\n");
}

TEST(GoldenDigest, RowsAreCountedAndDigestedTableByTable) {
  const ProducedPart rows{{"want/db/sql.txt", {}, "all"}, {"want/db/sql.txt", {}, "all"}, "", {{"articoli", 2, "all"}}};
  EXPECT_EQ(formatTxtar({"", condensed({}, {rows})}), "-- want-rows --\ndb/sql.txt articoli 2 " + sha256("all") + "\n");
}

TEST(GoldenDigest, WhatTheFurtherLanguagesHaveFollowsOnTheLineOfTheFirst) {
  const Txtar none;
  std::string text =
      formatTxtar({"", condensed(none, {produced("want/a.php", "1", none), produced("want/a_l2.php", "2", none),
                                        produced("want/b_l3.php", "3", none)})});
  EXPECT_EQ(text, "-- want-digest --\na.php 1 " + sha256("1") + " _l2 1 " + sha256("2") + "\nb_l3.php 1 " +
                      sha256("3") + "\n");
  const ProducedPart rows{
      {"want/db/sql.txt", {}, ""}, {"want/db/sql.txt", {}, ""}, "", {{"articoli", 2, "x"}, {"articoli_l2", 3, "y"}}};
  text = formatTxtar({"", condensed(none, {rows})});
  EXPECT_EQ(text, "-- want-rows --\ndb/sql.txt articoli 2 " + sha256("x") + " _l2 3 " + sha256("y") + "\n");
}

}  // namespace
}  // namespace kv::test
