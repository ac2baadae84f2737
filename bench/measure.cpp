#include "measure.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace kv::bench {

Measured inOwnProcess(const std::function<Timed()>& work) {
  int channel[2];
  if (pipe(channel) != 0) return {};
  const pid_t child = fork();
  if (child == 0) {
    const Timed result = work();
    const bool sent = write(channel[1], &result, sizeof result) == sizeof result;
    _exit(sent && result.wall > 0 ? 0 : 1);
  }
  close(channel[1]);
  Timed timed;
  Measured measured;
  measured.ok = read(channel[0], &timed, sizeof timed) == sizeof timed;
  close(channel[0]);
  rusage usage{};
  int status = 0;
  wait4(child, &status, 0, &usage);
  measured.ok = measured.ok && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  measured.wall = timed.wall;
  measured.written = timed.written;
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  measured.cpu = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  measured.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
  return measured;
}

void keepFaster(Measured& best, const Measured& one) {
  if (one.ok && (!best.ok || one.wall < best.wall)) best = one;
}

double secondsOf(const std::function<bool()>& work) {
  const auto start = std::chrono::steady_clock::now();
  const bool done = work();
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  return done ? passed.count() : 0;
}

const char* verdict(bool met) { return met ? "met" : "MISSED"; }

void SilentUser::message(const std::string& text, Icon icon) {
  if (icon != Icon::Information) std::fprintf(stderr, "%s\n", text.c_str());
}
Answer SilentUser::question(const Question& question) { return question.preset; }
std::string SilentUser::chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) { return {}; }
void SilentUser::progress(const Progress& /*progress*/) {}
bool SilentUser::yield() { return true; }

FreshFolder::FreshFolder() : path_((std::filesystem::temp_directory_path() / "korvane-bench-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) std::abort();
}

FreshFolder::~FreshFolder() { std::filesystem::remove_all(path_); }

}  // namespace kv::bench
