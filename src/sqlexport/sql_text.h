#pragma once
// Names and texts as SQL writes them, and the warnings that are yet to be written into the file. Texts here are UTF-8;
// the escapes are ASCII, so that a text may be brought to Windows-1252 before or after.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/files/output_file.h"
#include "platform/ports/result.h"

namespace kv {

/// Warnings of an export that haven't been written yet. They are written into the file without a comment mark, so
/// a file with a warning can't be loaded.
struct ExportWarnings {
  std::string pending;  ///< lines in UTF-8
};

/// Adds " Warning: " and the text as a line of its own.
void AddExportWarning(ExportWarnings& warnings, std::string_view text);

/// What makes a name legal. Sizes in characters.
struct IdentRules {
  std::size_t maxSize = 64;                ///< longer names are cut
  std::string_view prefixOnKeyword = "_";  ///< put before a reserved word
  std::string_view suffixOnKeyword;        ///< put after a reserved word
};

/// SqlIdent (legal identifier): white space becomes "_", the name is cut to 64 characters, and a reserved word, in
/// any case, gets "_" in front. Malformed, with a warning added, when the result is still a reserved word, which
/// the default rules exclude.
Result<std::string> SqlIdent(std::string_view name, ExportWarnings& warnings, const IdentRules& rules = {});

/// SqlQuoteText (escaped text): the text between the quotes of a literal. A line end becomes "\n", CR LF and LF CR
/// one of them.
std::string SqlQuoteText(std::string_view text);
/// SqlQuoteBinary (escaped bytes): the same for bytes, but every LF becomes "\n" and every CR "\r".
std::string SqlQuoteBinary(std::string_view bytes);

/// Appends the Windows-1252 bytes of SqlQuoteText(utf8), without a copy in between.
void appendQuotedText(OutputFile& out, std::string_view utf8);
/// Appends SqlQuoteBinary(bytes).
void appendQuotedBinary(OutputFile& out, std::string_view bytes);

/// The failure that ends the export at a name or type that SQL can't express. `where`: the table or column.
tl::unexpected<Error> exportFailure(std::string_view where);

}  // namespace kv
