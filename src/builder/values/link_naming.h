#pragma once
// Names that are computed, not chosen: page files, public addresses, the colour form of pages.

#include <string>
#include <string_view>

#include "platform/database/field_row.h"
#include "platform/image/image.h"
#include "platform/ports/result.h"

namespace kv {

/// PageFile (page file): the page file of a department's sub-page: "scarpe_l2.php?n=3". On disk it is the part before
/// the "?".
std::string PageFile(std::string_view pagina, int n, std::string_view lingua);

/// NoASPQuery (without the query): a name cut after ".php" when it holds ".php?n="; else unchanged.
std::string NoASPQuery(std::string_view file);

/// URLNegozio (shop address): `URL` and `cartella` of the settings as a public address.
std::string URLNegozio(const FieldRow& generale);
/// URLCgi (address of the scripts): `URL` and `cartellaCGI` of the settings as a public address.
std::string URLCgi(const FieldRow& generale);

/// HTMLColor: "#RRGGBB" of a colour value with blue in its high byte, then green, then red.
std::string HTMLColor(std::uint32_t colour);
/// HTMLColor of a colour by its parts.
std::string HTMLColor(Colour colour);

/// ImpostaEstensione (set extension): what was typed, normalised to "." and at most five characters from a to z and 0
/// to 9; ".htm" when nothing is left.
std::string ImpostaEstensione(std::string_view text);

/// IndirizzoIndice (address of the index): the address shown for the shop's first page; empty while `url` is empty.
std::string IndirizzoIndice(std::string_view url, std::string_view folder, std::string_view extension = ".php");

/// A page's text with the shop's address before each relative SRC, HREF, BACKGROUND and OPTION VALUE.
std::string absoluteText(std::string_view page, std::string_view shopAddress);
/// MakeAbsolute: reads a page, makes its addresses absolute and writes it. Failures: as readText, writeText.
Result<> MakeAbsolute(const std::string& input, const std::string& output, std::string_view shopAddress);
/// AbsoluteOutput (absolute output): replaces the file by the text. Failures: as writeText.
Result<> AbsoluteOutput(const std::string& file, std::string_view text);

}  // namespace kv
