#pragma once
// The key with which the merchant's own machine signs its requests for orders. The catalogue keeps it, the database
// update brings it to the shop's database, and no file of the host ever holds it.

#include <string>

#include "platform/ports/clock.h"
#include "store/shop/session.h"

namespace kv {

/// The key of the open shop as 64 lower-case hexadecimal digits; empty when none was made yet.
/// Failures as Database::prepare.
Result<std::string> orderKey(Session& session);
/// The present key, else a fresh one of 32 random bytes, which is kept: making it is no step of the undo history.
/// Failures as Database::createTable.
Result<std::string> makeOrderKey(Session& session, RandomSource& random);

}  // namespace kv
