#pragma once
// What the full export and that of a difference share while they run: how statements are written, and the user, who is
// told of a failure and may cancel.

#include <cstdint>

#include "platform/ports/user_port.h"
#include "sqlexport/full_export.h"
#include "sqlexport/sql_style.h"

namespace kv {

/// How an export writes and whom it asks. References outlive it.
struct SqlRun {
  const SqlStyle& style;
  UserPort& user;
};

/// The failure of an export that the user has cancelled.
tl::unexpected<Error> exportCancelled(const DatabaseExport& job);
/// Whether an export has ended by that.
bool isCancelled(const Result<std::int64_t>& written);
/// Whether the files were written; a failure is shown to the user, a cancel is not.
bool wasWritten(const Result<std::int64_t>& written, UserPort& user);

}  // namespace kv
