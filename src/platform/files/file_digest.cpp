#include "platform/files/file_digest.h"

#include <openssl/evp.h>

#include <array>
#include <cstdint>
#include <memory>

#include "platform/files/file_pieces.h"
#include "platform/files/hexadecimal.h"

namespace kv {
namespace {

constexpr std::uint64_t digestPiecesBetweenQuestions = 16;

}  // namespace

Result<std::string> fileDigest(const std::string& path, const std::function<bool()>& goOn) {
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
  EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr);
  std::uint64_t pieces = 0;
  const auto read = readPieces(path, [&](std::string_view piece) -> Result<> {
    if (goOn && pieces++ % digestPiecesBetweenQuestions == 0 && !goOn()) {
      return fail(ErrorKind::Cancelled, path, "cancelled");
    }
    EVP_DigestUpdate(context.get(), piece.data(), piece.size());
    return {};
  });
  if (!read) return fail(read.error());
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  EVP_DigestFinal_ex(context.get(), digest.data(), &size);
  return hexadecimal({digest.data(), size});
}

std::string bytesDigest(std::string_view bytes) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr);
  return hexadecimal({digest.data(), size});
}

}  // namespace kv
