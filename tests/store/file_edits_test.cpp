// Files that undo and redo take along with the rows of a command.
#include <gmock/gmock.h>

#include "store/catalogue/file_edits.h"
#include "store/tree_fixture.h"
#include "support/failing_files.h"

namespace kv::test {
namespace {

class FilesOfAStep : public TreeFixture {
 protected:
  void SetUp() override {
    department(1, "###", 100);
    bind();
    go("cat001");
    ASSERT_TRUE(writeBytes(old, "prima"));
  }
  /// A step that gives the department a title, changes one file and makes another one.
  Result<> configure(const Result<>& outcome = {}) {
    return history.record("Sistemi di pagamento", [&]() -> Result<> {
      if (auto stored = sets.store(EditedSet::Categorie, "titolo", Value("dopo")); !stored) return stored;
      const FileEdits edits{{old, "prima", "dopo"}, {made, std::nullopt, "nuovo"}};
      if (auto written = writeFileEdits(edits, false); !written) return written;
      history.noteFiles(edits);
      return outcome;
    });
  }
  std::string state() {
    return rows("SELECT titolo FROM categorie") + readBytes(old).value_or("-") + " " + readBytes(made).value_or("-");
  }

  std::string old = root / "conf.ini", made = root / "nuovo.php";
  const std::string before = "Reparto 1\nprima -", after = "dopo\ndopo nuovo";
};

TEST_F(FilesOfAStep, GoBackAndForwardWithItsRows) {
  ASSERT_TRUE(configure());
  EXPECT_EQ(state(), after);
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(state(), before);
  ASSERT_TRUE(history.redo());
  EXPECT_EQ(state(), after);
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(state(), before);
}

TEST_F(FilesOfAStep, MakeAStepByThemselves) {
  ASSERT_TRUE(history.record("File", [&]() -> Result<> {
    history.noteFiles({{old, "prima", "poi"}});
    history.noteFiles({{old, "poi", "ancora"}, {made, std::nullopt, std::nullopt}});
    return writeBytes(old, "ancora");
  }));
  EXPECT_EQ(history.undoName(), "File");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(readBytes(old).value_or(""), "prima");
}

TEST_F(FilesOfAStep, ThatEndAsTheyWereMakeNone) {
  ASSERT_TRUE(history.record("File", [&]() -> Result<> {
    history.noteFiles({{old, "prima", "poi"}});
    history.noteFiles({{old, "poi", "prima"}});
    return {};
  }));
  history.noteFiles({{old, "prima", "fuori"}});
  EXPECT_FALSE(history.canUndo());
}

TEST_F(FilesOfAStep, StayWithTheRowsWhenOneWasChangedMeanwhile) {
  ASSERT_TRUE(configure());
  ASSERT_TRUE(writeBytes(made, "a mano"));
  const auto undone = history.undo();
  ASSERT_FALSE(undone);
  EXPECT_EQ(undone.error().kind, ErrorKind::Malformed);
  EXPECT_EQ(state(), "dopo\ndopo a mano");
  EXPECT_FALSE(history.canUndo());
}

TEST_F(FilesOfAStep, AreAllOldOrAllNewWithTheRowsWhateverWriteFails) {
  ASSERT_TRUE(configure());
  for (int n = 1; n < 50; ++n) {
    FailingFiles files(n);
    files.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename, FileStep::Remove});
    const auto undone = history.undo();
    if (!files.hasFailed()) {
      EXPECT_TRUE(undone);
      EXPECT_GT(n, 4);
      EXPECT_EQ(state(), before);
      return;
    }
    EXPECT_FALSE(undone) << n;
    EXPECT_EQ(state(), after) << n;
    EXPECT_TRUE(history.canUndo()) << n;
  }
  ADD_FAILURE() << "no end";
}

TEST_F(FilesOfAStep, GoBackWhenItsCommandFails) {
  EXPECT_FALSE(configure(fail(ErrorKind::Other, "", "rifiutato")));
  EXPECT_EQ(state(), before);
  EXPECT_FALSE(history.canUndo());
}

}  // namespace
}  // namespace kv::test
