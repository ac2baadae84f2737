#include "platform/files/file_digest.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/files/file_access.h"
#include "platform/files/hexadecimal.h"

namespace kv {
namespace {

constexpr std::size_t digestPiece = std::size_t{64} * 1024;
constexpr std::uint64_t digestPiecesBetweenQuestions = 16;

/// Reads the next bytes: the count, 0 at the end.
Result<std::size_t> readDigestPiece(const Descriptor& file, std::string& piece, const std::string& path) {
  for (;;) {
    if (!mayProceed(FileStep::Read, path)) return systemFailure(errno, path);
    const ssize_t count = ::read(file.number(), piece.data(), piece.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) return systemFailure(errno, path);
  }
}

}  // namespace

Result<std::string> fileDigest(const std::string& path, const std::function<bool()>& goOn) {
  if (!mayProceed(FileStep::OpenToRead, path)) return systemFailure(errno, path);
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen()) return systemFailure(errno, path);
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
  EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr);
  std::string piece(digestPiece, '\0');
  for (std::uint64_t pieces = 0;; ++pieces) {
    if (goOn && pieces % digestPiecesBetweenQuestions == 0 && !goOn())
      return fail(ErrorKind::Cancelled, path, "cancelled");
    const auto count = readDigestPiece(file, piece, path);
    if (!count) return fail(count.error());
    if (*count == 0) break;
    EVP_DigestUpdate(context.get(), piece.data(), *count);
  }
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  EVP_DigestFinal_ex(context.get(), digest.data(), &size);
  return hexadecimal({digest.data(), size});
}

}  // namespace kv
