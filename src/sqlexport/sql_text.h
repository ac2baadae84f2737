#pragma once
// Names and texts as they stand in SQL, and the warnings that wait to be written into the file. Texts here are UTF-8;
// the escapes are ASCII, so that a text may be brought to Windows-1252 before or after.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/files/output_file.h"
#include "platform/ports/result.h"

namespace kv {

/// Warnings of an export that haven't been written yet. They go into the file without a comment mark, so a
/// schema that brings one makes a file that can't be loaded.
struct ExportWarnings {
  std::string pending;
};

/// Adds " Warning: " and the text as a line of its own.
void AddExportWarning(ExportWarnings& warnings, std::string_view text);

/// What makes a name legal. Sizes in characters.
struct IdentRules {
  std::size_t maxSize = 64;
  std::string_view prefixOnKeyword = "_";
  std::string_view suffixOnKeyword;
};

/// SqlIdent (legal identifier): white space becomes "_", the name is cut to 64 characters, and a reserved word, in
/// any case, gets "_" in front. Malformed, with a warning added, when a reserved word stays what it was; with the
/// rules as they are no word does.
Result<std::string> SqlIdent(std::string_view name, ExportWarnings& warnings, const IdentRules& rules = {});

/// SqlQuoteText (escaped text): the text between the quotes of a literal. A line end becomes "\n", CR LF and LF CR
/// one of them.
std::string SqlQuoteText(std::string_view text);
/// SqlQuoteBinary (escaped bytes): the same, but LF is "\n" and CR is "\r", each for itself.
std::string SqlQuoteBinary(std::string_view bytes);

/// Appends SqlQuoteText of a text in Windows-1252, without a copy in between.
void appendQuotedText(OutputFile& out, std::string_view utf8);
/// Appends SqlQuoteBinary.
void appendQuotedBinary(OutputFile& out, std::string_view bytes);

/// The failure that a name or a type without a form in SQL ends the export with. `where`: the table or column.
tl::unexpected<Error> exportFailure(std::string_view where);

}  // namespace kv
