// What the merchant reads when something fails.
#include "platform/ports/failure_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(FailureText, SaysWhatHappenedWhatToDoAndTheTechnicalTextLast) {
  const Error full{ErrorKind::Full, "/negozi/a/catalog.mdb", "database or disk is full", 13};
  EXPECT_EQ(failureText(full),
            "Il disco è pieno.\n"
            "Nulla è stato modificato: liberare spazio sul disco e riprovare.\n\n"
            "Dettaglio: /negozi/a/catalog.mdb: database or disk is full");
}

TEST(FailureText, NamesTheFieldByItsLabel) {
  EXPECT_EQ(failureText({ErrorKind::Malformed, "peso", "number out of range"}, "Peso"),
            "Peso: il valore non è ammesso.\nÈ rimasto il valore precedente.\n\nDettaglio: peso: number out of range");
}

TEST(FailureText, LeavesOutADetailThatIsNotThere) {
  EXPECT_EQ(failureText({ErrorKind::InUse, "", ""}),
            "Il file è utilizzato da un altro programma o da un'altra finestra.\n"
            "Nulla è stato modificato: chiudere l'altro programma e riprovare.");
  EXPECT_THAT(failureText({ErrorKind::Missing, "articoli", ""}), HasSubstr("\n\nDettaglio: articoli"));
}

TEST(FailureText, EveryKindBeginsWithItalianAndNotWithTheEngine) {
  for (const ErrorKind kind :
       {ErrorKind::InUse, ErrorKind::ReadOnly, ErrorKind::Corrupt, ErrorKind::Missing, ErrorKind::Exists,
        ErrorKind::TextInNumber, ErrorKind::Full, ErrorKind::Malformed, ErrorKind::Cancelled, ErrorKind::Other}) {
    const std::string text = failureText({kind, "catalog.mdb", "engine text"});
    EXPECT_THAT(text, testing::Not(StartsWith("engine"))) << static_cast<int>(kind);
    EXPECT_THAT(text, testing::EndsWith("Dettaglio: catalog.mdb: engine text")) << static_cast<int>(kind);
  }
}

}  // namespace
}  // namespace kv
