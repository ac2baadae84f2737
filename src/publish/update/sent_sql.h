#pragma once
// The rows of the file table (kvftp.mdb) for the SQL files: a host that has loaded them no longer has them.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// Deletes the rows of db.sql, dbdel.sql and their language forms, of every host and folder, so that the next publish
/// run sends them whatever their time. A shop without kvftp.mdb has none. Failures as Database::open and execute.
Result<> forgetSentSql(const std::string& shopFolder);

}  // namespace kv
