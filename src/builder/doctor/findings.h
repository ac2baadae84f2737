#pragma once
// What the shop doctor has found: what a visitor would meet, how bad it is, where it is mended, and the mending itself
// where there is but one. Values alone; nothing here reads or writes.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/value.h"

namespace kv {

/// How bad a finding is.
enum class Severity {
  Warning,  ///< the shop works, and a visitor meets something odd
  Error     ///< a visitor can't see, understand or order something, or the build fails
};

/// What is to be opened to mend a finding.
enum class FindingSubject {
  Article,     ///< the row of an article, by its ID
  Department,  ///< the row of a department, by its ID
  Settings,    ///< the row of the settings
  Command      ///< a dialog, by the name of its command
};

/// The field of a finding.
struct FindingTarget {
  FindingSubject subject = FindingSubject::Settings;
  std::string key;     ///< ID, or name of the command; empty for the settings
  std::string column;  ///< its bare name, without language and price list; empty for a whole row
  int language = 1;    ///< 1 to 4
  int listino = 0;     ///< 0 to 9
};

/// One field as a mending leaves it.
struct FieldWrite {
  std::string table;
  Value key;           ///< of the column ID; Null for a table of one row
  std::string column;  ///< with its suffix
  Value value;
};

/// One finding.
struct Finding {
  std::string_view check;  ///< name of the check: "price.zero"
  Severity severity = Severity::Warning;
  std::string text;  ///< one Italian sentence
  FindingTarget target;
  std::string mending = {};             ///< what the mending does, for its button; empty: there is none
  std::vector<FieldWrite> writes = {};  ///< the mending
  std::string detail = {};              ///< tells findings of one check and field apart; mostly empty

  bool canMend() const { return !writes.empty(); }
  /// What is the same as long as the fault is: the name under which it is silenced.
  std::string identity() const;
};
using Findings = std::vector<Finding>;

/// A finding that is mended in a dialog. command: the name of its command; detail: as in Finding.
Finding commandFinding(std::string text, std::string command, std::string detail = {});

/// How many findings there are of each kind.
struct FindingCounts {
  std::size_t warnings = 0, errors = 0;
  std::size_t all() const { return warnings + errors; }
};
/// Counts them.
FindingCounts countFindings(const Findings& findings);

/// "3 avvisi", "un errore, 3 avvisi"; "Nessun avviso" for none.
std::string findingSummary(const FindingCounts& counts);

/// "Errore" or "Avviso".
std::string_view severityName(Severity severity);

/// The findings as a JSON array of objects, one a line, the last line closed: check, severity ("warning", "error"),
/// text, subject ("article", "department", "settings", "command"), key, column, language, list, mending (or null).
/// Source: RFC 8259.
std::string findingsAsJson(const Findings& findings);

}  // namespace kv
