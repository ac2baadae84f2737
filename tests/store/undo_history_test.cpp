// How many steps the history keeps.
#include <gmock/gmock.h>

#include "store/tree_fixture.h"

namespace kv::test {
namespace {

static_assert(UndoHistory::usualBytes == std::size_t{64} * 1024 * 1024);

class UndoBound : public TreeFixture {
 protected:
  static constexpr std::size_t stepBytes = 100000;

  void SetUp() override {
    department(1, "###", 100);
    bind();
    go("cat001");
    history.end();  // a catalogue has one recorder at a time
  }
  /// Keeps a step of some more than `stepBytes`.
  void write(UndoHistory& steps, const std::string& name) {
    ASSERT_TRUE(steps.record(name, [&] {
      return sets.store(EditedSet::Categorie, "descrizione", Value(name + std::string(stepBytes, 'x')));
    }));
  }
  /// The names of the steps that can be undone, the last one first; undoes them.
  std::string undone(UndoHistory& steps) {
    std::string names;
    while (steps.canUndo()) {
      names += steps.undoName();
      EXPECT_TRUE(steps.undo());
    }
    return names;
  }
};

TEST_F(UndoBound, TheOldestStepsAreDroppedWhenAllTakeMoreThanTheBound) {
  // A step holds what was before as well as what is after, but for the first.
  UndoHistory steps(sets, {}, stepBytes * 9 / 2);
  steps.begin();
  for (const char* name : {"a", "b", "c", "d"}) write(steps, name);
  EXPECT_EQ(undone(steps), "dc");
  EXPECT_EQ(rows("SELECT substr(descrizione, 1, 2) FROM categorie"), "bx\n");
  steps.end();
}

TEST_F(UndoBound, UnderTheBoundEveryStepStays) {
  UndoHistory steps(sets, {}, stepBytes * 8);
  steps.begin();
  for (const char* name : {"a", "b", "c", "d"}) write(steps, name);
  EXPECT_EQ(undone(steps), "dcba");
  steps.end();
}

TEST_F(UndoBound, TheLastStepStaysHoweverBig) {
  UndoHistory steps(sets, {}, 1);
  steps.begin();
  for (const char* name : {"a", "b"}) write(steps, name);
  EXPECT_EQ(undone(steps), "b");
  steps.end();
}

TEST_F(UndoBound, AStepThatIsDoneAgainCountsAgain) {
  UndoHistory steps(sets, {}, stepBytes * 7 / 2);
  steps.begin();
  for (const char* name : {"a", "b"}) write(steps, name);
  ASSERT_TRUE(steps.undo());
  ASSERT_TRUE(steps.redo());
  write(steps, "c");
  EXPECT_EQ(undone(steps), "c");
  steps.end();
}

}  // namespace
}  // namespace kv::test
