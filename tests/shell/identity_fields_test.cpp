// The fields of the merchant's identity on the page of the site.

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

class IdentityFields : public WorkbenchFixture {
 protected:
  std::string tables() { return rows("SELECT name FROM sqlite_master WHERE name = 'identita'"); }
};

TEST_F(IdentityFields, AShopThatIsOnlyLookedAtGetsNoTable) {
  start();
  EXPECT_EQ(shown(EditedSet::Generale, "legale_piva"), "");
  leave(EditedSet::Generale, "legale_piva", "");
  EXPECT_EQ(tables(), "");
  EXPECT_FALSE(bench->history().canUndo());
}

TEST_F(IdentityFields, KeepWhatWasTypedAsOneStepThatCanBeUndone) {
  start();
  leave(EditedSet::Generale, "legale_piva", " IT01234567890 ");
  leave(EditedSet::Generale, "legale_sede", "Bottega, Forlì");
  EXPECT_EQ(shown(EditedSet::Generale, "legale_piva"), "IT01234567890");
  EXPECT_EQ(undoName(), "Modifica Ragione sociale e sede");
  undo();
  EXPECT_EQ(shown(EditedSet::Generale, "legale_sede"), "");
  EXPECT_EQ(shown(EditedSet::Generale, "legale_piva"), "IT01234567890");
  undo();
  EXPECT_EQ(shown(EditedSet::Generale, "legale_piva"), "");
  redo();
  EXPECT_EQ(shown(EditedSet::Generale, "legale_piva"), "IT01234567890");
}

}  // namespace
}  // namespace kv::test
