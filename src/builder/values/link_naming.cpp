#include "builder/values/link_naming.h"

#include <array>
#include <cstdint>

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view queryMark = ".php?n=";
constexpr std::size_t longestExtension = 6;

bool isLowerAlphanumeric(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

std::string_view withoutClosingSlash(std::string_view text) {
  if (!text.empty() && text.back() == '/') text.remove_suffix(1);
  return text;
}

}  // namespace

std::string PageFile(std::string_view pagina, int n, std::string_view lingua) {
  std::string file(pagina);
  file.append(lingua).append(queryMark).append(formatNumber(std::int64_t{n}, "#####"));
  return file;
}

std::string NoASPQuery(std::string_view file) {
  const auto mark = file.find(queryMark);
  return std::string(mark == std::string_view::npos ? file : file.substr(0, mark + 4));
}

std::string publicAddress(std::string_view url, std::string_view folder) {
  url = trim(url);
  std::string address = url.find("://") == std::string_view::npos ? "http://" : "";
  address.append(url);
  if (address.ends_with('/')) address.pop_back();
  folder = withoutClosingSlash(trim(folder));
  if (!folder.empty() && folder.front() == '/') folder.remove_prefix(1);
  if (!folder.empty()) address.append("/").append(folder);
  return address;
}

std::string URLNegozio(const FieldRow& generale) {
  return publicAddress(generale.text("URL"), generale.text("cartella"));
}

std::string URLCgi(const FieldRow& generale) {
  return publicAddress(generale.text("URL"), generale.text("cartellaCGI"));
}

std::string HTMLColor(Colour colour) {
  static constexpr std::string_view digits = "0123456789ABCDEF";
  std::string out = "#";
  for (const std::uint8_t part : std::array{colour.red, colour.green, colour.blue}) {
    out += digits[part >> 4];
    out += digits[part & 15];
  }
  return out;
}

std::string HTMLColor(std::uint32_t colour) {
  return HTMLColor(Colour{static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 8),
                          static_cast<std::uint8_t>(colour >> 16)});
}

std::string ImpostaEstensione(std::string_view text) {
  std::string extension = foldCase(trim(text));
  if (extension.empty() || extension.front() != '.') extension.insert(0, 1, '.');
  if (extension == ".") return ".htm";
  std::size_t end = 1;
  while (end < extension.size() && isLowerAlphanumeric(extension[end])) ++end;
  extension.resize(end);
  if (extension == ".") return ".htm";
  if (extension.size() > longestExtension) extension.resize(longestExtension);
  return extension;
}

std::string IndirizzoIndice(std::string_view url, std::string_view folder, std::string_view extension) {
  if (trim(url).empty()) return {};
  return publicAddress(url, folder) + "/index" + std::string(extension);
}

namespace {

struct Opener {
  std::string_view text;
  bool option;  // a drop-down's value: left alone within the department menu
};
constexpr std::array<Opener, 4> openers{
    {{"SRC=\"", false}, {"HREF=\"", false}, {"BACKGROUND=\"", false}, {"OPTION VALUE=\"", true}}};

bool isAbsolute(std::string_view value) {
  if (value.starts_with("<<") || value.starts_with("$arg")) return true;
  for (const std::string_view scheme : {"HTTP://", "HTTPS://", "MAILTO:", "JAVASCRIPT"}) {
    if (startsWithIgnoringCase(value, scheme)) return true;
  }
  return value.starts_with('"');
}

// Whether an index lies in the drop-down of the departments, whose values are built by the page itself.
bool inDepartmentMenu(std::string_view page, std::size_t index) {
  static constexpr std::string_view opener = "SELECT NAME=";
  std::size_t last = std::string_view::npos;
  for (auto at = findIgnoringCase(page, opener); at < index; at = findIgnoringCase(page, opener, at + 1)) last = at;
  if (last == std::string_view::npos) return false;
  std::string_view name = page.substr(last + opener.size());
  if (name.starts_with('"')) name.remove_prefix(1);
  return startsWithIgnoringCase(name, "kvRepartiMenu") && findIgnoringCase(page, "</SELECT", last) > index;
}

std::size_t endOfValue(std::string_view page, std::size_t from) {
  const auto quote = page.find('"', from);
  const auto line = page.find_first_of("\r\n", from);
  const auto end = quote < line ? quote : line;
  return end == std::string_view::npos ? page.size() : end;
}

std::string absoluteFor(std::string_view page, const Opener& opener, std::string_view prefix) {
  std::string out;
  out.reserve(page.size() + page.size() / 8);
  std::size_t from = 0;
  for (auto at = findIgnoringCase(page, opener.text); at != std::string_view::npos;
       at = findIgnoringCase(page, opener.text, from)) {
    const auto start = at + opener.text.size();
    out.append(page.substr(from, start - from));
    from = start;
    const auto value = page.substr(start, endOfValue(page, start) - start);
    const bool quoteNext = start < page.size() && page[start] == '"';
    if (!quoteNext && !isAbsolute(value) && !(opener.option && inDepartmentMenu(page, at))) out.append(prefix);
  }
  return out.append(page.substr(from));
}

}  // namespace

std::string absoluteText(std::string_view page, std::string_view shopAddress) {
  const std::string prefix = std::string(shopAddress) + "/";
  std::string text(page);
  for (const Opener& opener : openers) text = absoluteFor(text, opener, prefix);
  return text;
}

Result<> MakeAbsolute(const std::string& input, const std::string& output, std::string_view shopAddress) {
  const auto page = readText(input);
  if (!page) return fail(page.error());
  return AbsoluteOutput(output, absoluteText(*page, shopAddress));
}

Result<> AbsoluteOutput(const std::string& file, std::string_view text) { return writeText(file, text); }

}  // namespace kv
