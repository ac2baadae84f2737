#pragma once
// The small texts that pages are made of: HTML and JavaScript forms of what the merchant typed, links, image tags.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/database/value.h"

namespace kv {

/// TogliTag (strip tags): removes each stretch from a ">" back to the nearest "<" before it, left to right. A ">" with
/// no "<" before it stays, and so does a "<" with no ">" after it.
std::string TogliTag(std::string_view testo);

/// How plain text becomes HTML; `entities` off (setting MacCodes "off") leaves accented characters as they are.
struct HtmlText {
  bool entities = true;  ///< accented characters become entities

  /// TestoHTML (HTML text): a text with a "<" and a ">" after it is HTML already and stays; otherwise line ends
  /// become <BR> and 61 accented characters their named entities.
  std::string TestoHTML(std::string_view testo) const;
  /// CampoHTML (HTML field): TestoHTML of a field, empty for a null.
  std::string CampoHTML(const Value& field) const { return TestoHTML(asText(field)); }
};

/// TestoJS (JavaScript text): a text made safe as an argument in single quotes within an attribute in double quotes.
std::string TestoJS(std::string_view testo);

/// EscapePHP (escape for PHP): a backslash before each quote and apostrophe.
std::string EscapePHP(std::string_view testo);

/// PutLink (put a link): the text as a link; the text alone when it or the address is empty. `esterno` opens a new
/// window.
std::string PutLink(std::string_view text, std::string_view link, bool esterno);
/// PutOnClick (put a click): the text as a link that runs a script; the text alone when either is empty.
std::string PutOnClick(std::string_view text, std::string_view script);

/// CartArticolo (cart article): what the cart shows: code and title without tags, as JavaScript text.
std::string CartArticolo(std::string_view codice, std::string_view titolo);

/// The tag of a picture of the shop, sizes in pixels; without a width the sizes are left out, without a name the tag
/// is empty.
std::string pictureTag(std::string_view name, std::int64_t width, std::int64_t height);

/// CreaTagImg (make image tag): the tag of an image file of the template folder with its size, or without a size when
/// the file can't be read.
std::string CreaTagImg(const std::string& templateFolder, std::string_view name);

/// CampoRicerca (search field): a search key between two "#": lower-case characters and digits, a run of spaces as
/// "##"; empty when nothing is left.
std::string CampoRicerca(std::string_view testo);

}  // namespace kv
