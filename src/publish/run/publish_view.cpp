#include "publish/run/publish_view.h"

#include <cmath>

namespace kv {
namespace {

constexpr std::uint64_t kilobyte = 1024;
constexpr std::uint64_t megabyte = kilobyte * kilobyte;

std::string timeText(double seconds) {
  constexpr double countedSeconds = 100, minute = 60;
  if (seconds < countedSeconds) return std::to_string(std::llround(seconds)) + " s";
  return std::to_string(std::llround(seconds / minute)) + " min";
}

}  // namespace

std::string sizeText(std::uint64_t bytes) {
  if (bytes < kilobyte) return std::to_string(bytes) + " byte";
  if (bytes < megabyte) return std::to_string((bytes + kilobyte / 2) / kilobyte) + " KB";
  const std::uint64_t tenths = (bytes * 10 + megabyte / 2) / megabyte;
  return std::to_string(tenths / 10) + "," + std::to_string(tenths % 10) + " MB";
}

std::string reportText(const PublishReport& report) {
  std::string text = "File inviati: " + std::to_string(report.sent) + " (" + sizeText(report.bytesSent) +
                     "), già presenti: " + std::to_string(report.skipped);
  if (report.removed > 0) text += ", eliminati dal server: " + std::to_string(report.removed);
  if (!report.failedFile.empty()) text += ", non inviato: " + report.failedFile;
  return text;
}

std::string progressText(const PublishProgress& progress) {
  std::string text = "File " + std::to_string(progress.filesDone) + " di " + std::to_string(progress.filesTotal) +
                     " - " + sizeText(progress.bytesSent) + " inviati";
  if (progress.bytesPerSecond > 0) {
    text += " - " + sizeText(static_cast<std::uint64_t>(progress.bytesPerSecond)) + "/s";
  }
  if (progress.secondsLeft >= 1) text += " - ancora " + timeText(progress.secondsLeft);
  return text;
}

}  // namespace kv
