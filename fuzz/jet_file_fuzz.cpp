// A Jet database of any bytes, read as the accounting import reads it: rows of the right form or a failure, whatever
// the library does. It reads in a process of its own, which goes on from input to input and is replaced when an input
// has broken it, so that a run takes no process; what it has covered comes back with its answer.
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/database/jet/jet_file.h"
#include "platform/database/jet/jet_reader.h"
#include "platform/database/jet/jet_stream.h"
#include "platform/files/files.h"

// Where the counters of covered code begin and end, as the linker knows it. A declaration of its symbols would make the
// compiler give other names to those that it tells the fuzzer of, which then finds no counters at all.
__asm__(
    ".pushsection .data.rel, \"aw\", @progbits\n"
    ".balign 8\n"
    ".globl jetFuzzCounters\n"
    "jetFuzzCounters:\n"
    ".quad __start___sancov_cntrs\n"
    ".quad __stop___sancov_cntrs\n"
    ".popsection\n");
extern "C" std::uint8_t* const jetFuzzCounters[2];

namespace {

constexpr char goOn = 'g', wellRead = 'k', badlyRead = 'x';
constexpr int mostMilliseconds = 5000;   // of one input; more than the library needs for any table of a small file
constexpr int inputsOfAProcess = 20000;  // what the library leaks goes with it
constexpr std::size_t mostRows = std::size_t{1} << 24;  // bytes of a table's stream

/// The file that each input becomes, in memory where the system has a folder for that.
const std::string& fuzzedJetPath() {
  static const std::string path =
      (kv::folderExists("/dev/shm") ? "/dev/shm" : "/tmp") + ("/korvane-jet-" + std::to_string(::getpid()) + ".mdb");
  return path;
}

/// What a routine of the reader writes, up to the limit that the program has too.
template <class Work>
std::string streamOf(Work work) {
  std::string stream;
  work([&](std::string_view bytes) {
    if (stream.size() < mostRows) stream += bytes;
  });
  return stream;
}

/// All tables of the file; whether every row has as many fields as its table has columns.
bool readsWell(const std::string& path) {
  const auto columns =
      kv::jetRows(streamOf([&](const kv::IsolatedOutput& output) { kv::listJetColumns(path, output); }), 3);
  if (!columns) return true;
  for (std::size_t i = 0; i < columns->size();) {
    kv::JetQuery query{kv::asText((*columns)[i][0]), {}};
    for (; i < columns->size() && kv::asText((*columns)[i][0]) == query.table; ++i) {
      query.columns.push_back(kv::asText((*columns)[i][1]));
    }
    const std::string stream =
        streamOf([&](const kv::IsolatedOutput& output) { kv::readJetTable(path, query, output); });
    const auto rows = kv::jetRows(stream, query.columns.size());
    const auto isWhole = [&](const auto& row) { return row.size() == query.columns.size(); };
    if (rows && !std::ranges::all_of(*rows, isWhole)) return false;
  }
  return true;
}

/// The process that reads.
class JetProcess {
 public:
  /// Has it read the file. False when what it read is wrong; true too when the library broke it or took too long.
  bool read() {
    if (process_ <= 0 || ++inputs_ > inputsOfAProcess) begin();
    char answer = wellRead;
    if (::write(asks_, &goOn, 1) != 1) {
      end();
      return true;
    }
    pollfd awaited{answers_, POLLIN, 0};
    const bool isThere = ::poll(&awaited, 1, mostMilliseconds) > 0 && ::read(answers_, &answer, 1) == 1;
    addCoverage();
    if (!isThere) end();
    return answer != badlyRead;
  }

 private:
  static std::size_t counters() { return static_cast<std::size_t>(jetFuzzCounters[1] - jetFuzzCounters[0]); }

  void begin() {
    end();
    if (covered_ == nullptr) {
      ::signal(SIGPIPE, SIG_IGN);
      void* const shared = ::mmap(nullptr, counters(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
      if (shared == MAP_FAILED) std::abort();
      covered_ = static_cast<std::uint8_t*>(shared);
    }
    std::array<int, 2> asked{}, answered{};
    if (::pipe(asked.data()) != 0 || ::pipe(answered.data()) != 0) std::abort();
    const std::string path = fuzzedJetPath();
    process_ = ::fork();
    if (process_ < 0) std::abort();
    if (process_ == 0) {
      ::close(asked[1]);
      ::close(answered[0]);
      work(asked[0], answered[1], path);
    }
    ::close(asked[0]);
    ::close(answered[1]);
    asks_ = asked[1];
    answers_ = answered[0];
    inputs_ = 0;
  }

  void end() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    ::close(asks_);
    ::close(answers_);
    process_ = 0;
  }

  [[noreturn]] void work(int asked, int answered, const std::string& path) const {
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGALRM}) ::signal(signal, SIG_DFL);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    // The library tells what it finds; nobody reads that.
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
    char question = 0;
    while (::read(asked, &question, 1) == 1) {
      std::fill(jetFuzzCounters[0], jetFuzzCounters[1], std::uint8_t{0});
      const char answer = readsWell(path) ? wellRead : badlyRead;
      std::copy(jetFuzzCounters[0], jetFuzzCounters[1], covered_);
      if (::write(answered, &answer, 1) != 1) break;
    }
    ::_exit(0);
  }

  /// What the process has covered counts as covered here.
  void addCoverage() const {
    for (std::size_t i = 0; i < counters(); ++i) {
      std::uint8_t& counter = jetFuzzCounters[0][i];
      counter = std::max(counter, covered_[i]);
      covered_[i] = 0;
    }
  }

  pid_t process_ = 0;
  int asks_ = -1, answers_ = -1, inputs_ = 0;
  std::uint8_t* covered_ = nullptr;
};

}  // namespace

/// What an input may ask for at once. A limit of the process would be passed before the first input: the system counts
/// the sanitizer's own tables, which are terabytes that nothing is written to.
extern "C" const char* __asan_default_options() { return "max_allocation_size_mb=2048:allocator_may_return_null=1"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static JetProcess process;
  std::string bytes(reinterpret_cast<const char*>(data), size);
  constexpr std::string_view mark("\0\1\0\0Standard Jet DB", kv::jetStartSize);
  bytes.replace(0, mark.size(), mark);
  if (!kv::writeBytes(fuzzedJetPath(), bytes) || !process.read()) std::abort();
  kv::ignore(kv::deleteFile(fuzzedJetPath()), "the next input makes it again");
  return 0;
}
