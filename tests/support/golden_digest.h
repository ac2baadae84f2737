#pragma once
// What a golden case shows of what a build leaves, and what it holds by its digest alone.
//
// A case shows the parts that it is about. Everything else that was produced is in the part "want-digest": name, size
// in bytes, SHA-256. A part may be shown in pieces: by the flags "only=a,b" (columns) and "rows=1,cat001" (IDs; a table
// without IDs is shown whole) of a row dump, then in its brief form, and "lines=1-3,7" of a file, of a text, or of what
// those two show. The whole of a file is then in "want-digest" all the same; the whole of a dump is in "want-rows", for
// each table that has rows: name of the dump, table, number of rows, SHA-256 of the table's dump. What the further
// languages have of a file or table follows on its line, after the end of its name: "online/a.php 9 <digest> _l2 12
// <digest>". So a case is short, and yet exact to the byte.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "support/txtar.h"

namespace kv::test {

/// The rows of one table of a dump.
struct TableDump {
  std::string table;
  std::size_t rows = 0;
  std::string text;  ///< as `dumpTable` writes it, with all columns
};

/// A file, a text or a row dump that a build left.
struct ProducedPart {
  TxtarPart whole;                ///< under its name "want/...", in the form of a case
  TxtarPart shown;                ///< the same by the flags with which the case wants it
  std::string content;            ///< the bytes that a digest is of; unused for a dump
  std::vector<TableDump> tables;  ///< of a dump, those with rows
};

/// Whether a part of a case is one that a build is compared with.
bool isWanted(const TxtarPart& part);
/// Whether a part shows less than the whole.
bool isExcerpt(const TxtarPart& part);
/// `whole` with those lines alone that the flag "lines" of `wanted` names; all of it when there is no such flag.
TxtarPart excerpt(const TxtarPart& whole, const TxtarPart& wanted);
/// SHA-256 as 64 hexadecimal digits. Source: FIPS 180-4.
std::string sha256(std::string_view bytes);
/// What was produced, in the form in which `archive` wants it: the parts it shows, then "want-rows" and "want-digest"
/// with the rest. Either is left out when it would be empty.
std::vector<TxtarPart> condensed(const Txtar& archive, const std::vector<ProducedPart>& produced);

}  // namespace kv::test
