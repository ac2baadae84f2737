// Several connections at once: who sends what, and in which order.
#include <algorithm>
#include <functional>

#include "platform/transfer/side_by_side.h"
#include "publish/run/upload_folder.h"

namespace kv {
namespace {

constexpr int mostConnections = 4;

/// The first index from which on the files are of another kind.
std::size_t endOfKind(const std::vector<std::string>& names, std::size_t from) {
  std::size_t end = from + 1;
  while (end < names.size() && sendingRank(names[end]) == sendingRank(names[from])) ++end;
  return end;
}

}  // namespace

FolderUploader::Lane& FolderUploader::addLane(Transfer& transfer) {
  Lane& lane = lanes_.emplace_back(Lane{transfer, static_cast<int>(lanes_.size()) + 1});
  const std::string mark = lane.number == 1 ? "" : "[" + std::to_string(lane.number) + "] ";
  TransferEvents events;
  events.line = [this, mark](const std::string& line) {
    if (shownLine(line)) MessaggioFTP(mark + line, true);
  };
  events.yield = [this] { return mayGoOn(); };
  events.sent = [this, &lane](std::uint64_t bytes) { showProgress(lane, bytes); };
  events.trust = [this](const UntrustedServer& server) { return trusts(server); };
  transfer.listen(std::move(events));
  return lane;
}

void FolderUploader::makeFurtherLanes() {
  const int wanted = std::min(options_.connections, mostConnections);
  while (static_cast<int>(lanes_.size()) < wanted)
    addLane(*furtherTransfers_.emplace_back(makeTransfer(options_.connection.protocol)));
}

void FolderUploader::sendSideBySide(const std::vector<std::string>& names) {
  makeFurtherLanes();
  for (std::size_t begin = 0; begin < names.size() && !failed_ && !cancelled_; begin = next_) {
    const std::size_t end = endOfKind(names, begin);
    std::vector<std::function<void()>> jobs{[&] { sendNext(first(), names, end); }};
    const std::size_t useful = filesForLanes(names, begin, end);
    for (std::size_t i = 1; i < useful; ++i) {
      jobs.emplace_back([&, i] { helpSending(lanes_[i], names, end); });
    }
    runSideBySide(jobs);
  }
  leaveFurtherLanes();
}

std::size_t FolderUploader::filesForLanes(const std::vector<std::string>& names, std::size_t begin, std::size_t end) {
  std::size_t count = 0;
  for (std::size_t i = begin; i < end && count < lanes_.size(); ++i) {
    if (bytesToSend(names[i])) ++count;
  }
  return count;
}

void FolderUploader::helpSending(Lane& lane, const std::vector<std::string>& names, std::size_t end) {
  // A connection that was idle may have been closed. A host that allows no further one is served by those that are.
  Transfer& transfer = lane.transfer;
  const bool isThere = transfer.isConnected() && transfer.rawCommand("NOOP").succeeded();
  if (!isThere && !(transfer.connect(options_.connection).succeeded() && transfer.logIn().succeeded() &&
                    transfer.changeFolder(target_).succeeded())) {
    return transfer.abort();
  }
  sendNext(lane, names, end);
}

void FolderUploader::leaveFurtherLanes() {
  for (std::size_t i = 1; i < lanes_.size(); ++i) {
    if (failed_ || cancelled_) {
      lanes_[i].transfer.abort();
    } else {
      ignore(lanes_[i].transfer.quit().succeeded(), "all of its files have been confirmed");
    }
  }
}

}  // namespace kv
