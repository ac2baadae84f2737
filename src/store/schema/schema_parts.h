#pragma once
// The parts of the catalogue's schema that have files of their own.

#include <vector>

#include "store/schema/column_family.h"

namespace kv {

/// Characters in a name, a code, an address: the width of most text columns.
inline constexpr int shortName = 50;

/// The shop's settings: one row.
const TableRule& generaleRule();
/// Payment methods and shipping settings: one row.
const TableRule& pagamentoRule();
/// zona1 to zona8, the costs of each shipping zone: one row each.
std::vector<TableInfo> zoneTables();

/// A table of the build database as it goes to the web server. Single rows are looked up by `ID`, there and in the
/// comparison of two builds.
TableInfo exported(const TableRule& rule);

}  // namespace kv
