#pragma once
// Names that are worked out, not chosen: page files, public addresses, the colour form of pages.

#include <string>
#include <string_view>

#include "platform/image.h"

namespace kv {

/// PageFile: the page file of a department's sub-page: "scarpe_l2.php?n=3". On disk it is the part before the "?".
std::string PageFile(std::string_view pagina, int n, std::string_view lingua);

/// NoASPQuery: a name cut behind ".php" when it holds ".php?n="; else unchanged.
std::string NoASPQuery(std::string_view file);

/// Address and folder as typed (`URL`, and `cartella` or `cartellaCGI` of the settings) made into one public address
/// without a closing slash. URLNegozio: of the shop; URLCgi: of the scripts.
std::string publicAddress(std::string_view url, std::string_view folder);

/// HTMLColor: "#RRGGBB" of a colour value with blue in its high byte, then green, then red.
std::string HTMLColor(std::uint32_t colour);
std::string HTMLColor(Colour colour);

/// ImpostaEstensione (set extension): what was typed, normalised to "." and at most five letters or digits; ".htm" when
/// nothing is left.
std::string ImpostaEstensione(std::string_view text);

/// IndirizzoIndice (address of the index): the address shown for the shop's first page; empty while `url` is empty.
std::string IndirizzoIndice(std::string_view url, std::string_view folder, std::string_view extension = ".php");

/// MakeAbsolute: a page's text with the shop's address before each relative SRC, HREF, BACKGROUND and OPTION VALUE.
std::string MakeAbsolute(std::string_view page, std::string_view shopAddress);

}  // namespace kv
