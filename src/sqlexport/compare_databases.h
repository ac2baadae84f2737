#pragma once
// The difference between two build databases: what the host lacks, and what it has to delete first.

#include <functional>
#include <string>

namespace kv {

/// The table that holds the keys to be deleted from a table: "del_" and its name. It has one column, ID of type TEXT.
std::string deletedKeysTable(const std::string& table);

/// CompareDatabases (compare databases): reduces each ordinary table of the database at `updPath` to its rows that are
/// not, or differ, in the one at `lastPath`, and fills a new table deletedKeysTable beside it with the keys of rows
/// that are only there, then of those that differ. Two rows with one ID are equal when each of their columns is, byte
/// for byte; Null and an empty text differ. Text keys are found without regard to case, as the store compares.
///
/// False when that can't be told, with `updPath` left half done: one of the files can't be read or written, a table is
/// not in both with the same columns, has no column ID or no index of ID alone, or has rows without a key or two with
/// the same. Memory is bounded, whatever the number of rows. goOn: asked before each table and every few milliseconds;
/// false ends the comparison, which is then false as well.
bool CompareDatabases(const std::string& updPath, const std::string& lastPath, const std::function<bool()>& goOn = {});

}  // namespace kv
