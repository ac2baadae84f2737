#pragma once
// How routines of this system report failure to other routines. Errors of the store engine, of the file system
// and of the codecs all become an Error inside platform/; no exception crosses a folder.

#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <utility>

namespace kv {

/// The conditions that callers tell apart. Everything else is Other. Cancelled: the user has ended the run. Told: the
/// user has been told already, so that whoever receives it shows no message of its own.
enum class ErrorKind {
  InUse,
  ReadOnly,
  Corrupt,
  Missing,
  Exists,
  TextInNumber,
  Full,
  Malformed,
  Cancelled,
  Told,
  Other
};

/// A failure: its kind, the file, table or routine it happened at, the text of the lower level, and that level's
/// number (an errno or an engine code; 0 when it has none).
struct Error {
  ErrorKind kind = ErrorKind::Other;
  std::string where;
  std::string what;
  int number = 0;
};

/// A value or an Error. `Result<>` carries success alone.
template <class T = void>
class [[nodiscard]] Result : public tl::expected<T, Error> {
 public:
  using tl::expected<T, Error>::expected;
};

/// `return fail(...)` in a routine that returns any Result.
inline tl::unexpected<Error> fail(ErrorKind kind, std::string where, std::string what, int number = 0) {
  return tl::unexpected<Error>(Error{kind, std::move(where), std::move(what), number});
}
inline tl::unexpected<Error> fail(Error error) { return tl::unexpected<Error>(std::move(error)); }

/// Drops a result on purpose. `why` tells the reader of the call for what reason a failure changes nothing there.
template <class T>
constexpr void ignore(const T& /*result*/, std::string_view /*why*/) noexcept {}

}  // namespace kv
