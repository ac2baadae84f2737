#pragma once
// How routines of this system report failure to other routines. Errors of the store engine, of the file system
// and of the codecs all become an Error inside platform/; no exception crosses a folder.

#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <utility>

namespace kv {

/// The conditions that callers tell apart. Everything else is Other.
enum class ErrorKind {
  InUse,         ///< another program or connection holds the file
  ReadOnly,      ///< the file, its folder or the disk may not be written
  Corrupt,       ///< a file is damaged, or no database at all
  Missing,       ///< a file, folder, table or column isn't there
  Exists,        ///< the name is taken already
  TextInNumber,  ///< a text that is no number, for a numeric column
  Full,          ///< no room is left on the disk
  Malformed,     ///< the input does not have the form it should have
  Cancelled,     ///< the user ended the run
  Told,          ///< the user has been told already: whoever receives it shows no message of its own
  Other
};

/// A failure as a value. Its text is for developers; messages to the user are made where the condition is named.
struct Error {
  ErrorKind kind = ErrorKind::Other;
  std::string where;  ///< the file, table or routine at which it happened
  std::string what;   ///< the text of the lower level
  int number = 0;     ///< an errno or an engine code; 0 when the lower level has none
};

/// A value or an Error; true in a condition when it holds a value. `Result<>` carries success alone.
template <class T = void>
class [[nodiscard]] Result : public tl::expected<T, Error> {
 public:
  using tl::expected<T, Error>::expected;
};

/// `return fail(...)` in a routine that returns any Result.
inline tl::unexpected<Error> fail(ErrorKind kind, std::string where, std::string what, int number = 0) {
  return tl::unexpected<Error>(Error{kind, std::move(where), std::move(what), number});
}
/// The same for an Error that another routine has returned.
inline tl::unexpected<Error> fail(Error error) { return tl::unexpected<Error>(std::move(error)); }

/// Drops a result on purpose. `why` tells the reader of the call for what reason a failure changes nothing there.
template <class T>
constexpr void ignore(const T& /*result*/, std::string_view /*why*/) noexcept {}

}  // namespace kv
