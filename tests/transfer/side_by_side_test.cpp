// Jobs side by side: they change where they wait, each keeps its own variables, and all are ended at the end.
#include "platform/transfer/side_by_side.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>

#include "platform/transfer/transfer.h"

namespace kv {
namespace {

TEST(SideBySide, AJobThatWaitsLetsTheOthersGoOn) {
  std::string order;
  const auto job = [&order](char name) {
    return [&order, name] {
      for (int turn = 0; turn < 3; ++turn) {
        order += name;
        EXPECT_TRUE(isSideBySide());
        pollSideBySide({}, 0);
      }
    };
  };
  runSideBySide({job('a'), job('b'), job('c')});
  EXPECT_EQ(order, "abcabcabc");
  EXPECT_FALSE(isSideBySide());
}

TEST(SideBySide, AJobIsWokenByWhatAnotherOneWrites) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  std::string order;
  const auto read = [&] {
    pollfd one{ends[0], POLLIN, 0};
    while (pollSideBySide({&one, 1}, 40) == 0) {
    }
    EXPECT_NE(one.revents & POLLIN, 0);
    order += "read";
  };
  const auto write = [&] {
    EXPECT_TRUE(waitFor(80, {}));
    order += "write ";
    EXPECT_EQ(::write(ends[1], "x", 1), 1);
  };
  runSideBySide({read, write});
  EXPECT_EQ(order, "write read");
  ::close(ends[0]);
  ::close(ends[1]);
}

/// Whether an address is on the stack that the thread was given.
bool isOnMainStack(const void* address) {
  pthread_attr_t attributes;
  void* bottom = nullptr;
  std::size_t size = 0;
  EXPECT_EQ(::pthread_getattr_np(::pthread_self(), &attributes), 0);
  EXPECT_EQ(::pthread_attr_getstack(&attributes, &bottom, &size), 0);
  ::pthread_attr_destroy(&attributes);
  return std::less<>()(bottom, address) && std::less<>()(address, static_cast<const char*>(bottom) + size);
}

TEST(SideBySide, WhatOpensAWindowRunsOnTheMainStackAndTheJobGoesOnAfterIt) {
  std::string order;
  const auto job = [&order](char name) {
    return [&order, name] {
      const int mark = 0;
      EXPECT_FALSE(isOnMainStack(&mark));
      for (int turn = 0; turn < 2; ++turn) {
        runOnMainStack([&] {
          const int inner = 0;
          EXPECT_TRUE(isOnMainStack(&inner));
          EXPECT_FALSE(isSideBySide());
          order += name;
        });
        EXPECT_TRUE(isSideBySide());
        order += static_cast<char>(name - 'a' + 'A');
      }
      pollSideBySide({}, 0);
      order += name;
    };
  };
  runSideBySide({job('a'), job('b')});
  EXPECT_EQ(order, "aAaAbBbBab");
  runOnMainStack([&order] { order = "outside"; });
  EXPECT_EQ(order, "outside");
}

TEST(SideBySide, AWaitEndsAfterAStepWithoutAnEvent) {
  int steps = 0;
  const auto job = [&steps] {
    while (pollSideBySide({}, 40) == 0 && ++steps < 5) {
    }
  };
  runSideBySide({job, [] {}});
  EXPECT_EQ(steps, 5);
}

TEST(SideBySide, AJobOfItsOwnAndNoneAtAllAreRunToo) {
  int runs = 0;
  runSideBySide({});
  runSideBySide({[&runs] { runs += isSideBySide() ? 10 : 1; }});
  EXPECT_EQ(runs, 1);
}

TEST(SideBySide, JobsCanBeDivided) {
  int runs = 0;
  const auto inner = [&runs] {
    pollSideBySide({}, 0);
    ++runs;
  };
  runSideBySide({[&] { runSideBySide({inner, inner}); }, inner});
  EXPECT_EQ(runs, 3);
}

}  // namespace
}  // namespace kv
