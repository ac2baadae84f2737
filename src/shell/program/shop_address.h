#pragma once
// The public address of the open shop.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// The address of the shop's folder on its site, without a slash at its end; empty when the settings can't be read.
std::string shopAddress(Session& session);

}  // namespace kv
