#include "platform/files/file_gate.h"

#include <atomic>
#include <cerrno>

#include "platform/files/file_access.h"

namespace kv {
namespace {

std::atomic<FileGate*> fileGate{nullptr};

}  // namespace

FileGate* setFileGate(FileGate* gate) { return fileGate.exchange(gate); }

bool mayProceed(FileStep step, const std::string& path) {
  FileGate* const gate = fileGate.load(std::memory_order_acquire);
  if (gate == nullptr) return true;
  const int number = gate->refusal(step, path);
  if (number != 0) errno = number;
  return number == 0;
}

}  // namespace kv
