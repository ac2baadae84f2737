#pragma once
// What a publish run shows while it goes on. A window, the command line and a test each implement it.

#include <cstdint>
#include <string>

namespace kv {

/// How far the files have come.
struct PublishProgress {
  int filesDone = 0;            ///< of the folder in hand
  int filesTotal = 0;           ///< of the folder in hand, those that aren't sent included
  std::string file;             ///< the one in hand; empty between files
  std::uint64_t fileBytes = 0;  ///< of it, sent so far
  std::uint64_t fileSize = 0;   ///< of it
  std::uint64_t bytesSent = 0;  ///< in the whole run
  double bytesPerSecond = 0;    ///< 0 while nothing was measured
  double secondsLeft = 0;       ///< of the folder in hand; 0 when it isn't known
};

/// What the run did.
struct PublishReport {
  int sent = 0;
  int removed = 0;  ///< files that the shop no longer has
  int skipped = 0;  ///< accepted files that the server has already
  std::uint64_t bytesSent = 0;
  std::string failedFile;  ///< in hand when a folder failed; empty when none did
};

/// What a run shows while it goes on.
class PublishView {
 public:
  virtual ~PublishView() = default;
  /// The title of the window: "Korvane - " and the folder.
  virtual void title(const std::string& text) = 0;
  /// The line of the current operation.
  virtual void operation(const std::string& text) = 0;
  /// One line of the dialogue with the server, without its end.
  virtual void dialogue(const std::string& line) = 0;
  virtual void progress(const PublishProgress& progress) = 0;
};

/// One line about what was done: "File inviati: 3 (12 KB), già presenti: 7".
std::string reportText(const PublishReport& report);
/// The line under the bar: "File 3 di 40 - 12 KB inviati - 85 KB/s - ancora 2 s"; from 100 seconds on in minutes.
std::string progressText(const PublishProgress& progress);
/// A number of bytes as it is read: "512 byte", "12 KB", "3,4 MB".
std::string sizeText(std::uint64_t bytes);

}  // namespace kv
