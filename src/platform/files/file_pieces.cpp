#include "platform/files/file_pieces.h"

#include "platform/files/file_access.h"

namespace kv {
namespace {

constexpr std::size_t handedPiece = std::size_t{64} * 1024;

}  // namespace

Result<> readPieces(const std::string& path, const std::function<Result<>(std::string_view)>& take) {
  auto file = openToRead(path);
  if (!file) return fail(file.error());
  std::string piece(handedPiece, '\0');
  for (;;) {
    const auto count = readPiece(file->descriptor, piece.data(), piece.size(), path);
    if (!count) return fail(count.error());
    if (*count == 0) return {};
    if (auto taken = take(std::string_view(piece).substr(0, *count)); !taken) return taken;
  }
}

}  // namespace kv
