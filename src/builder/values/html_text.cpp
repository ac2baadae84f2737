#include "builder/values/html_text.h"

#include <array>
#include <cstdint>
#include <vector>

#include "platform/files/files.h"
#include "platform/image/image.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

// Entity names of U+00C0 to U+00FF; empty for the characters that are none of the 61 (the signs of
// multiplication and division, and n with tilde in lower case, stay).
constexpr std::array<std::string_view, 64> entityNames{
    "Agrave", "Aacute", "Acirc",  "Atilde", "Auml",   "Aring", "AElig",  "Ccedil", "Egrave", "Eacute", "Ecirc",
    "Euml",   "Igrave", "Iacute", "Icirc",  "Iuml",   "ETH",   "Ntilde", "Ograve", "Oacute", "Ocirc",  "Otilde",
    "Ouml",   "",       "Oslash", "Ugrave", "Uacute", "Ucirc", "Uuml",   "Yacute", "THORN",  "szlig",  "agrave",
    "aacute", "acirc",  "atilde", "auml",   "aring",  "aelig", "ccedil", "egrave", "eacute", "ecirc",  "euml",
    "igrave", "iacute", "icirc",  "iuml",   "eth",    "",      "ograve", "oacute", "ocirc",  "otilde", "ouml",
    "",       "oslash", "ugrave", "uacute", "ucirc",  "uuml",  "yacute", "thorn",  "yuml"};

constexpr char latinLead = '\xC3';  // first UTF-8 byte of U+00C0 to U+00FF

bool isMarkup(std::string_view text) {
  const auto open = text.find('<');
  return open != std::string_view::npos && text.find('>', open) != std::string_view::npos;
}

void appendHtml(std::string& out, std::string_view text, bool entities) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    if (c == '\r' && next == '\n') {
      out += "<BR>";
      ++i;
      continue;
    }
    if (entities && c == latinLead) {
      const auto index = static_cast<std::size_t>(static_cast<unsigned char>(next)) - 0x80;
      if (index < entityNames.size() && !entityNames[index].empty()) {
        out.append("&").append(entityNames[index]).append(";");
        ++i;
        continue;
      }
    }
    out += c;
  }
}

}  // namespace

std::string TogliTag(std::string_view testo) {
  std::string out;
  out.reserve(testo.size());
  std::vector<std::size_t> opens;  // indexes of "<" in `out` that no ">" has closed yet
  for (const char c : testo) {
    if (c == '<') opens.push_back(out.size());
    if (c == '>' && !opens.empty()) {
      out.resize(opens.back());
      opens.pop_back();
    } else {
      out += c;
    }
  }
  return out;
}

std::string HtmlText::TestoHTML(std::string_view testo) const {
  const bool plain =
      testo.find('\r') == std::string_view::npos && (!entities || testo.find(latinLead) == std::string_view::npos);
  if (plain || isMarkup(testo)) return std::string(testo);
  std::string out;
  out.reserve(testo.size() + testo.size() / 8 + 16);
  appendHtml(out, testo, entities);
  return out;
}

std::string TestoJS(std::string_view testo) {
  std::string out;
  out.reserve(testo.size() + 8);
  for (std::size_t i = 0; i < testo.size(); ++i) {
    const char c = testo[i];
    switch (c) {
      case '"':
        out += "%22";
        break;
      case '%':
        out += "%25";
        break;
      case '\'':
        out += "\\'";
        break;
      case '\\':
        out += "\\\\";
        break;
      case ';':
        out += ',';
        break;
      case '[':
      case ']':
      case '|':
        out += ' ';
        break;
      case '\xC2':
        if (i + 1 < testo.size() && testo[i + 1] == '\xA3') {  // the pound sign
          out += ' ';
          ++i;
          break;
        }
        [[fallthrough]];
      default:
        out += c;
    }
  }
  return out;
}

std::string EscapePHP(std::string_view testo) {
  std::string out;
  out.reserve(testo.size());
  for (const char c : testo) {
    if (c == '"' || c == '\'') out += '\\';
    out += c;
  }
  return out;
}

std::string PutLink(std::string_view text, std::string_view link, bool esterno) {
  if (text.empty() || link.empty()) return std::string(text);
  std::string out = "<a href=\"";
  out.append(link).append(esterno ? "\" target=\"_blank\">" : "\">").append(text).append("</a>");
  return out;
}

std::string PutOnClick(std::string_view text, std::string_view script) {
  if (text.empty() || script.empty()) return std::string(text);
  std::string out = "<a href=\"#\" onClick=\"";
  out.append(script).append("\">").append(text).append("</a>");
  return out;
}

std::string CartArticolo(std::string_view codice, std::string_view titolo) {
  const std::string code = TogliTag(codice);
  const std::string title = TogliTag(titolo);
  return TestoJS(code.empty() ? title : code + " " + title);
}

std::string pictureTag(std::string_view name, std::int64_t width, std::int64_t height) {
  if (name.empty()) return {};
  std::string out = "<img border=\"0\" src=\"";
  out.append(name);
  if (width != 0) {
    out.append("\" width=\"").append(formatNumber(width, "#####"));
    out.append("\" height=\"").append(formatNumber(height, "#####"));
  }
  return out.append("\">");
}

std::string CreaTagImg(const std::string& templateFolder, std::string_view name) {
  std::string out = "<img src=\"";
  out.append(name).append("\"");
  const auto entry = findEntry(templateFolder, name);
  if (entry) {
    if (const auto size = imageSize(*entry)) {
      out.append(" height=\"").append(formatNumber(std::int64_t{size->height}, "###0"));
      out.append("\" width=\"").append(formatNumber(std::int64_t{size->width}, "###0")).append("\"");
    }
  }
  return out.append(">");
}

namespace {

// What a search key keeps of a text: digits, and the small letters that Italian words are made of.
bool isSearched(std::string_view character) {
  static constexpr std::string_view accented = "àèéìòù";
  const char c = character.front();
  if (character.size() > 1) return accented.find(character) != std::string_view::npos;
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string CampoRicerca(std::string_view testo) {
  const std::string lowered = foldCase(trim(testo));
  std::string out = "#";
  bool afterSpace = false;
  for (std::size_t i = 0; i < lowered.size();) {
    const std::size_t size = lowered[i] == latinLead && i + 1 < lowered.size() ? 2 : 1;
    const std::string_view character(lowered.data() + i, size);
    i += size;
    const bool isSpace = character == " ";
    if (isSpace && !afterSpace) out += "##";
    afterSpace = isSpace;
    if (isSearched(character)) out += character;
  }
  out += '#';
  return out == "##" ? std::string() : out;
}

}  // namespace kv
