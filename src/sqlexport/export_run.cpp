#include "sqlexport/export_run.h"

#include "platform/ports/failure_text.h"

namespace kv {

tl::unexpected<Error> exportCancelled(const DatabaseExport& job) {
  return fail(ErrorKind::Cancelled, job.databasePath, "cancelled");
}

bool isCancelled(const Result<std::int64_t>& written) {
  return !written && written.error().kind == ErrorKind::Cancelled;
}

bool wasWritten(const Result<std::int64_t>& written, UserPort& user) {
  if (!written && !isCancelled(written)) user.message(failureText(written.error()), Icon::Exclamation);
  return written.has_value();
}

}  // namespace kv
