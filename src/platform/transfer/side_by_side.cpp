#include "platform/transfer/side_by_side.h"

#include <sys/mman.h>
#include <sys/timerfd.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/transfer/patience.h"

// GCC defines a macro under the address sanitizer, clang has a feature.
#if defined(__SANITIZE_ADDRESS__)
#define KORVANE_WATCHED_STACKS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVANE_WATCHED_STACKS
#endif
#endif

#ifdef KORVANE_WATCHED_STACKS
#include <sanitizer/common_interface_defs.h>
#endif

namespace kv {
namespace {

// As large as that of a main thread. Pages are taken when they are touched.
constexpr std::size_t laneStackSize = std::size_t{8} * 1024 * 1024;
constexpr std::size_t guardSize = std::size_t{64} * 1024;

/// Memory for a stack, with a part below it that nothing may touch.
class LaneStack {
 public:
  LaneStack()
      : memory_(::mmap(nullptr, laneStackSize, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK | MAP_NORESERVE, -1, 0)) {
    if (isThere() && ::mprotect(memory_, guardSize, PROT_NONE) != 0) release();
  }
  LaneStack(const LaneStack&) = delete;
  LaneStack& operator=(const LaneStack&) = delete;
  ~LaneStack() { release(); }
  bool isThere() const { return memory_ != MAP_FAILED; }
  char* bottom() const { return static_cast<char*>(memory_) + guardSize; }
  static constexpr std::size_t size = laneStackSize - guardSize;

 private:
  void release() {
    if (isThere()) ::munmap(memory_, laneStackSize);
    memory_ = MAP_FAILED;
  }
  void* memory_;
};

// The address sanitizer has to be told where the stack is to which the program changes; other builds need nothing.
void beforeStackChange([[maybe_unused]] void** kept, [[maybe_unused]] const void* bottom,
                       [[maybe_unused]] std::size_t size) {
#ifdef KORVANE_WATCHED_STACKS
  __sanitizer_start_switch_fiber(kept, bottom, size);
#endif
}
void afterStackChange([[maybe_unused]] void* kept, [[maybe_unused]] const void** bottom,
                      [[maybe_unused]] std::size_t* size) {
#ifdef KORVANE_WATCHED_STACKS
  __sanitizer_finish_switch_fiber(kept, bottom, size);
#endif
}

/// One job under way.
struct JobLane {
  const std::function<void()>* job = nullptr;
  LaneStack stack{};
  ucontext_t context{};
  void* sanitizerStack = nullptr;
  std::span<pollfd> awaited{};
  int ready = 0;      // what the wait returns
  bool isDue = true;  // goes on without waiting
  bool hasEnded = false;
  const std::function<void()>* errand = nullptr;  // to be run on the main stack, before the job goes on
};

class LaneScheduler {
 public:
  explicit LaneScheduler(const std::vector<std::function<void()>>& jobs);
  ~LaneScheduler() { ::close(timer_); }
  LaneScheduler(const LaneScheduler&) = delete;
  LaneScheduler& operator=(const LaneScheduler&) = delete;
  void run();
  int wait(std::span<pollfd> descriptors, int milliseconds);
  void runHome(const std::function<void()>& work);
  bool isInJob() const { return current_ != nullptr; }

 private:
  static void begin();
  void resume(JobLane& lane);
  void enter(JobLane& lane);
  void awaitEvents();
  void leaveJob(bool forGood);
  void deal(const std::vector<pollfd>& events, bool failed);

  std::vector<std::unique_ptr<JobLane>> lanes_;
  JobLane* current_ = nullptr;
  ucontext_t home_{};
  void* homeSanitizerStack_ = nullptr;
  const void* homeBottom_ = nullptr;
  std::size_t homeSize_ = 0;
  int timer_;
};

thread_local LaneScheduler* scheduler = nullptr;

LaneScheduler::LaneScheduler(const std::vector<std::function<void()>>& jobs)
    : timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
  // Steps of all lanes end together; a dialog that is open during one makes it longer, and no silence of a server.
  const timespec step{0, Patience::step * 1'000'000L};
  const itimerspec every{step, step};
  ::timerfd_settime(timer_, 0, &every, nullptr);
  for (const auto& job : jobs) {
    auto lane = std::make_unique<JobLane>();
    lane->job = &job;
    lanes_.push_back(std::move(lane));
  }
}

void LaneScheduler::begin() {
  LaneScheduler& self = *scheduler;
  afterStackChange(nullptr, &self.homeBottom_, &self.homeSize_);
  (*self.current_->job)();
  self.current_->hasEnded = true;
  self.leaveJob(true);
}

void LaneScheduler::leaveJob(bool forGood) {
  JobLane& lane = *current_;
  // A stack that is left for good is told by a null.
  beforeStackChange(forGood ? nullptr : &lane.sanitizerStack, homeBottom_, homeSize_);
  ::swapcontext(&lane.context, &home_);
  afterStackChange(lane.sanitizerStack, &homeBottom_, &homeSize_);
}

void LaneScheduler::resume(JobLane& lane) {
  lane.isDue = false;
  for (enter(lane); lane.errand != nullptr; enter(lane)) {
    const auto* const errand = std::exchange(lane.errand, nullptr);
    (*errand)();
  }
}

void LaneScheduler::runHome(const std::function<void()>& work) {
  current_->errand = &work;
  leaveJob(false);
}

void LaneScheduler::enter(JobLane& lane) {
  current_ = &lane;
  beforeStackChange(&homeSanitizerStack_, lane.stack.bottom(), LaneStack::size);
  ::swapcontext(&home_, &lane.context);
  afterStackChange(homeSanitizerStack_, nullptr, nullptr);
  current_ = nullptr;
}

int LaneScheduler::wait(std::span<pollfd> descriptors, int milliseconds) {
  JobLane& lane = *current_;
  lane.awaited = descriptors;
  lane.ready = 0;
  lane.isDue = milliseconds == 0;
  leaveJob(false);
  return lane.ready;
}

void LaneScheduler::deal(const std::vector<pollfd>& events, bool failed) {
  std::uint64_t ticks = 0;
  const bool stepEnds = (events[0].revents & POLLIN) != 0 && ::read(timer_, &ticks, sizeof ticks) == sizeof ticks;
  std::size_t next = 1;
  for (const auto& lane : lanes_) {
    for (pollfd& one : lane->awaited) {
      one.revents = events[next++].revents;
      if (one.revents != 0) ++lane->ready;
    }
    lane->isDue = lane->isDue || lane->ready > 0 || stepEnds || failed;
    if (failed) lane->ready = -1;
  }
}

void LaneScheduler::awaitEvents() {
  std::vector<pollfd> events{{timer_, POLLIN, 0}};
  bool someIsDue = false;
  for (const auto& lane : lanes_) {
    events.insert(events.end(), lane->awaited.begin(), lane->awaited.end());
    someIsDue = someIsDue || lane->isDue;
  }
  for (pollfd& one : events) one.revents = 0;
  const int count = ::poll(events.data(), events.size(), someIsDue ? 0 : Patience::step);
  deal(events, count < 0 && errno != EINTR);
}

void LaneScheduler::run() {
  LaneScheduler* const outer = std::exchange(scheduler, this);
  for (const auto& lane : lanes_) {
    if (!lane->stack.isThere() || ::getcontext(&lane->context) != 0) {
      (*lane->job)();
      lane->hasEnded = true;
      continue;
    }
    lane->context.uc_stack.ss_sp = lane->stack.bottom();
    lane->context.uc_stack.ss_size = LaneStack::size;
    lane->context.uc_link = nullptr;
    ::makecontext(&lane->context, &LaneScheduler::begin, 0);
  }
  for (;;) {
    for (const auto& lane : lanes_) {
      if (lane->isDue && !lane->hasEnded) resume(*lane);
    }
    std::erase_if(lanes_, [](const auto& lane) { return lane->hasEnded; });
    if (lanes_.empty()) break;
    awaitEvents();
  }
  scheduler = outer;
}

}  // namespace

void runSideBySide(const std::vector<std::function<void()>>& jobs) {
  if (jobs.size() == 1) return jobs.front()();
  LaneScheduler(jobs).run();
}

bool isSideBySide() { return scheduler != nullptr && scheduler->isInJob(); }

void runOnMainStack(const std::function<void()>& work) {
  if (!isSideBySide()) return work();
  scheduler->runHome(work);
}

int pollSideBySide(std::span<pollfd> descriptors, int milliseconds) {
  if (isSideBySide()) return scheduler->wait(descriptors, milliseconds);
  return ::poll(descriptors.data(), descriptors.size(), milliseconds);
}

}  // namespace kv
