#include "sqlexport/sql_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/text/text.h"

namespace kv {
namespace {

// Each word between two spaces. A name that is looked up here contains no space any more.
constexpr std::string_view reserved =
    " add all alter and as asc auto_increment between bigint binary blob both by cascade char character change"
    " check column columns create data datetime dec decimal default delete desc describe distinct double drop"
    " escaped enclosed explain fields float float4 float8 foreign from for full grant group having ignore in"
    " index infile insert int integer interval int1 int2 int3 int4 int8 into is key keys leading like lines"
    " limit lock load long longblob longtext match mediumblob mediumtext mediumint middleint numeric not null"
    " on option optionally or order outfile partial precision primary procedure privileges read real"
    " references regexp repeat replace restrict rlike select set show smallint sql_big_tables sql_big_selects"
    " sql_select_limit straight_join table tables terminated tinyblob tinytext tinyint trailing to unique"
    " unlock unsigned update usage values varchar varying with write where zerofill ";

bool isReserved(std::string_view name) {
  std::string word = " " + std::string(name) + " ";
  for (char& c : word) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return reserved.find(word) != std::string_view::npos;
}

enum class Quoting { Text, EncodedText, Binary };

/// The character that represents a byte after a backslash; 0 for a byte that is copied. Line ends are handled later.
constexpr std::array<char, 128> escapes = [] {
  std::array<char, 128> table{};
  table[0] = '0';
  table[8] = 'b';
  table[9] = 't';
  table[10] = 'n';
  table[13] = 'r';
  table['\''] = '\'';
  table['"'] = '"';
  table['\\'] = '\\';
  return table;
}();

constexpr std::uint64_t eachByte = 0x0101010101010101ULL;

/// How many of eight bytes, counted from the first, are copied unchanged; too few only before a control character.
/// Source: the tests for a zero byte of "Bit Twiddling Hacks"; their result is exact for the lowest byte found.
template <Quoting quoting>
int plainBytes(std::uint64_t eight) {
  constexpr std::uint64_t high = eachByte << 7;
  constexpr std::uint64_t firstPlain = 14;  // control characters up to CR are rare and handled one by one
  const auto equal = [&](unsigned char byte) {
    const std::uint64_t difference = eight ^ (eachByte * byte);
    return (difference - eachByte) & ~difference;
  };
  std::uint64_t found = ((eight - eachByte * firstPlain) & ~eight) | equal('\'') | equal('"') | equal('\\');
  if constexpr (quoting == Quoting::EncodedText) found |= eight;
  return std::countr_zero(found & high) / 8;
}

/// How much of a text has been quoted, and what the next byte depends on.
struct QuotingState {
  std::string_view text;
  std::size_t at = 0;
  char lineEnd = 0;  // the CR or LF directly before; 0 when there is none to fold with
};

/// Copies bytes that need no escape, eight at a time. May write seven bytes beyond the end it returns.
template <Quoting quoting>
char* copyPlain(QuotingState& state, std::size_t end, char* out) {
  if constexpr (std::endian::native != std::endian::little) return out;
  while (state.at + sizeof(std::uint64_t) <= end) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, &state.text[state.at], sizeof eight);
    std::memcpy(out, &eight, sizeof eight);
    const int plain = plainBytes<quoting>(eight);
    if (plain > 0) state.lineEnd = 0;
    state.at += static_cast<std::size_t>(plain);
    out += plain;
    if (plain < static_cast<int>(sizeof eight)) return out;
  }
  return out;
}

/// Notes a character for the next one. True for the second of CR and LF, which the first has written already.
bool isSecondOfLineEnd(QuotingState& state, char c) {
  const char before = state.lineEnd;
  const bool isLineEnd = c == '\r' || c == '\n';
  const bool second = isLineEnd && before != 0 && before != c;
  state.lineEnd = isLineEnd && !second ? c : '\0';
  return second;
}

/// Quotes the character at the index of the state.
template <Quoting quoting>
char* quoteOne(QuotingState& state, char* out) {
  const char c = state.text[state.at];
  const auto byte = static_cast<std::uint8_t>(c);
  if constexpr (quoting == Quoting::EncodedText) {
    if (byte >= 0x80) {
      const EncodedCharacter one = encodeWindows1252(state.text, state.at, out);
      state.at += one.read;
      state.lineEnd = 0;
      return out + one.written;
    }
  }
  ++state.at;
  char escape = byte < escapes.size() ? escapes[byte] : '\0';
  if constexpr (quoting != Quoting::Binary) {
    if (isSecondOfLineEnd(state, c)) return out;
    if (state.lineEnd != 0) escape = 'n';
  }
  if (escape == 0) {
    *out = c;
    return out + 1;
  }
  out[0] = '\\';
  out[1] = escape;
  return out + 2;
}

constexpr std::size_t pieceSize = 4096;
// A byte gives at most three (U+0100 is two bytes and "&#256;"); the last character may extend beyond the piece.
constexpr std::size_t pieceRoom = 3 * pieceSize + widestWindows1252 + sizeof(std::uint64_t);
static_assert(pieceRoom <= OutputFile::largestRoom);

/// Quotes the next piece to `out`, which has room for pieceRoom bytes.
template <Quoting quoting>
char* quotePiece(QuotingState& state, char* out) {
  const std::size_t end = std::min(state.text.size(), state.at + pieceSize);
  while (state.at < end) {
    out = copyPlain<quoting>(state, end, out);
    if (state.at < end) out = quoteOne<quoting>(state, out);
  }
  return out;
}

template <Quoting quoting>
std::string quoted(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  std::array<char, pieceRoom> piece;  // NOLINT: filled before it is read
  QuotingState state{text};
  while (state.at < text.size()) result.append(piece.data(), quotePiece<quoting>(state, piece.data()));
  return result;
}

template <Quoting quoting>
void appendQuoted(OutputFile& out, std::string_view text) {
  QuotingState state{text};
  while (state.at < text.size()) {
    const std::size_t most =
        3 * std::min(pieceSize, text.size() - state.at) + widestWindows1252 + sizeof(std::uint64_t);
    out.filled(quotePiece<quoting>(state, out.room(most)));
  }
}

}  // namespace

void AddExportWarning(ExportWarnings& warnings, std::string_view text) {
  warnings.pending.append(" Warning: ").append(text).append("\r\n");
}

Result<std::string> SqlIdent(std::string_view name, ExportWarnings& warnings, const IdentRules& rules) {
  std::string ident(name);
  for (char& c : ident) {
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') c = '_';
  }
  ident.resize(firstCharacters(ident, rules.maxSize).size());
  if (!isReserved(ident)) return ident;
  std::string made = std::string(rules.prefixOnKeyword) + ident + std::string(rules.suffixOnKeyword);
  made.resize(firstCharacters(made, rules.maxSize).size());
  if (made != ident) return made;
  AddExportWarning(warnings, "In identifier '" + ident + "', the new form '" + made +
                                 "' is a reserved word, and PREFIX_ON_KEYWORD ('" + std::string(rules.prefixOnKeyword) +
                                 "') and SUFFIX_ON_KEYWORD ('" + std::string(rules.suffixOnKeyword) +
                                 "') make it larger than IDENT_MAX_SIZE, and after cut it is the same as the original! "
                                 "This is usually caused by a void or empty PREFIX_ON_KEYWORD.");
  return exportFailure(name);
}

std::string SqlQuoteText(std::string_view text) { return quoted<Quoting::Text>(text); }
std::string SqlQuoteBinary(std::string_view bytes) { return quoted<Quoting::Binary>(bytes); }
void appendQuotedText(OutputFile& out, std::string_view utf8) { appendQuoted<Quoting::EncodedText>(out, utf8); }
void appendQuotedBinary(OutputFile& out, std::string_view bytes) { appendQuoted<Quoting::Binary>(out, bytes); }

tl::unexpected<Error> exportFailure(std::string_view where) {
  constexpr int invalidCall = 5;
  return fail(ErrorKind::Malformed, std::string(where), "Chiamata di routine o argomento non validi", invalidCall);
}

}  // namespace kv
