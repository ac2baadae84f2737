// What is said of the characters that were typed or pasted into a field.
#include "platform/text/typed_notes.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

TEST(ReferenceNote, SaysNothingOfTextThatTheFilesHold) {
  EXPECT_EQ(referenceNote(""), "");
  EXPECT_EQ(referenceNote("Però costa 10 € – “già” ÿ\n\xC2\xA0"), "");
}

TEST(ReferenceNote, NamesEachCharacterOnceAndWhatTheFirstBecomes) {
  EXPECT_EQ(referenceNote("Żółw, ŻÓŁW"),
            "I caratteri \"Ż\", \"ł\", \"Ł\" non sono fra quelli dei file del negozio: vi saranno scritti come "
            "\"&#379;\" e simili.");
  EXPECT_EQ(referenceNote("10 ₪ 20 ₪"),
            "Il carattere \"₪\" non è fra quelli dei file del negozio: vi sarà scritto come \"&#8362;\".");
  EXPECT_EQ(referenceNote("абвгде"),
            "I caratteri \"а\", \"б\", \"в\", \"г\", \"д\" ... non sono fra quelli dei file del negozio: vi saranno "
            "scritti come \"&#1072;\" e simili.");
}

TEST(DroppedNote, NamesWhatAFieldHasNotTaken) {
  const auto takes = [](std::string_view one) { return one != "[" && one != "|"; };
  EXPECT_EQ(droppedNote("Tè ]", takes), "");
  EXPECT_EQ(droppedNote("[Tè[", takes), "Il carattere \"[\" non è ammesso in questo campo: è stato tolto.");
  EXPECT_EQ(droppedNote("|Tè[", takes), "I caratteri \"|\", \"[\" non sono ammessi in questo campo: sono stati tolti.");
}

}  // namespace
}  // namespace kv
