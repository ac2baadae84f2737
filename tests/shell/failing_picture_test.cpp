// Pictures of articles, departments and the shop that can't be stored or cleared: the row keeps the one it had, the
// user is told, and the commands show what is stored.
#include "platform/files/files.h"
#include "shell/workbench/commands/picture_commands.h"
#include "shell/workbench/fields/row_picture.h"
#include "shell/workbench_fixture.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

class FailingPicture : public WorkbenchFixture, public ::testing::WithParamInterface<RowPicture> {
 protected:
  void open() {
    for (const char* name : {"uno.gif", "due.gif"}) {
      ASSERT_TRUE(writeBytes(joinPath(shop, std::string("work/") + name), onePixelGif(1, 2, 3)));
    }
    start();
    go("cat001");
    article(0);
  }
  std::string current() { return pictureName(bench->sets(), GetParam()); }
  /// Runs a command while one call of the store fails. False when it makes less.
  bool pressOnce(const std::string& name, std::int64_t call) {
    const std::string before = whole();
    const std::string had = current();
    user.shown.clear();
    FailingStore store(call);
    choose(name);
    const bool hasFailed = store.hasFailed();
    setStatementGate(nullptr);
    const bool isChanged = current() != had;
    EXPECT_EQ(whole() != before, isChanged);
    EXPECT_TRUE(isChanged || !user.shown.empty());
    EXPECT_TRUE(hasFailed || isChanged);
    // A picture that could not be read again after it was stored can be cleared all the same.
    const std::string clear = pictureCommandNames(GetParam().set, GetParam().number).clear;
    EXPECT_TRUE(current().empty() || state(clear).enabled);
    if (hasFailed) bench->commands().refreshKeys();
    EXPECT_EQ(state(clear).enabled, !current().empty());
    EXPECT_EQ(bench->sets().department(), "cat001");
    EXPECT_EQ(bench->sets().article(), 1);
    return hasFailed;
  }
};

TEST_P(FailingPicture, LeavesTheOneThatIsStoredWhicheverCallOfTheStoreFails) {
  open();
  const PictureCommandNames names = pictureCommandNames(GetParam().set, GetParam().number);
  int failed = 0;
  bool more = true;
  for (std::int64_t call = 1; more && !HasFailure(); ++call) {
    SCOPED_TRACE("set, call " + std::to_string(call));
    answerPicture(current() == "uno.gif" ? "due.gif" : "uno.gif");
    more = pressOnce(names.choose, call);
    failed += more ? 1 : 0;
  }
  more = true;
  for (std::int64_t call = 1; more && !HasFailure(); ++call) {
    SCOPED_TRACE("clear, call " + std::to_string(call));
    if (current().empty()) {
      answerPicture("uno.gif");
      choose(names.choose);
    }
    more = pressOnce(names.clear, call);
    failed += more ? 1 : 0;
  }
  EXPECT_GT(failed, 10);
}

INSTANTIATE_TEST_SUITE_P(Each, FailingPicture,
                         ::testing::Values(RowPicture{EditedSet::Articoli, 0}, RowPicture{EditedSet::Articoli, 2},
                                           RowPicture{EditedSet::Categorie, 1}, RowPicture{EditedSet::Generale, 0}));

}  // namespace
}  // namespace kv::test
