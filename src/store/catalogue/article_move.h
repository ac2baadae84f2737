#pragma once
// Articles that go to another department, from the tree or from the sheet.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// Hangs articles at the end of a department, in this order, with all their columns. For a step of its caller, who
/// opens the transaction and reads the lists again. Failures as Statement::execute.
Result<> appendToDepartment(Database& catalogue, const std::string& department,
                            const std::vector<std::int64_t>& articles);

}  // namespace kv
