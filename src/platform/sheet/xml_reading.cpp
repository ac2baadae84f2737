#include "platform/sheet/xml_reading.h"

#include <expat.h>

#include <algorithm>
#include <cstdint>

#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

// Beyond what any sheet has. Each open element takes memory; a comment or an attribute is held whole, and gone over
// from its start with each piece of the file.
constexpr std::size_t deepestElement = 256, longestPart = std::size_t{1} << 20;

std::string_view withoutPrefix(std::string_view whole) {
  const auto colon = whole.rfind(':');
  return colon == std::string_view::npos ? whole : whole.substr(colon + 1);
}

/// The one encoding that expat lacks and shops still write.
int onOtherEncoding(void*, const char* name, XML_Encoding* encoding) {
  if (!equalsIgnoringCase(name, "windows-1252")) return XML_STATUS_ERROR;
  constexpr int bytes = 256;
  for (int i = 0; i < bytes; ++i) {
    const std::string character = fromWindows1252(std::string(1, static_cast<char>(static_cast<unsigned char>(i))));
    encoding->map[i] = static_cast<int>(utf8::unitAt(character, 0).character);
  }
  encoding->data = nullptr;
  encoding->convert = nullptr;
  encoding->release = nullptr;
  return XML_STATUS_OK;
}

}  // namespace

/// Hands what expat tells to the listener.
struct XmlReading::Run {
  struct ParserEnd {
    void operator()(XML_Parser opened) const { XML_ParserFree(opened); }
  };
  using Parser = std::unique_ptr<XML_ParserStruct, ParserEnd>;

  Parser parser;
  XmlListener& listener;
  XmlNames names;
  std::size_t depth = 0;    // elements that are open
  std::uint64_t taken = 0;  // bytes that were read

  static Run& of(void* data) { return *static_cast<Run*>(data); }
  void stop() const { ignore(XML_StopParser(parser.get(), XML_FALSE), "it is running"); }
  /// Where what was told last begins, or what is being read.
  std::uint64_t begun() const {
    return static_cast<std::uint64_t>(std::max(XML_GetCurrentByteIndex(parser.get()), 0L));
  }
  std::string_view told(const char* name) const { return names == XmlNames::Whole ? name : withoutPrefix(name); }

  static void onStart(void* data, const char* name, const char** attributes) {
    Run& run = of(data);
    if (++run.depth > deepestElement) return run.stop();
    if (!run.listener.start(run.told(name), XmlAttributes(attributes))) run.stop();
  }
  static void onEnd(void* data, const char* name) {
    Run& run = of(data);
    --run.depth;
    if (!run.listener.end(run.told(name))) run.stop();
  }
  static void onText(void* data, const char* piece, int length) {
    Run& run = of(data);
    if (!run.listener.text({piece, static_cast<std::size_t>(length)})) run.stop();
  }
  // Sheets and feeds have no document type: one would only bring entities that grow.
  static void onDoctype(void* data, const char*, const char*, const char*, int) { of(data).stop(); }
};

std::string_view XmlAttributes::get(std::string_view name) const {
  for (const char** pair = pairs_; *pair != nullptr; pair += 2) {
    if (withoutPrefix(*pair) == name) return pair[1];
  }
  return {};
}

XmlReading::XmlReading(XmlListener& listener, XmlNames names)
    : run_(std::make_unique<Run>(Run{Run::Parser(XML_ParserCreate(nullptr)), listener, names, 0, 0})) {
  const XML_Parser parser = run_->parser.get();
  if (parser == nullptr) return;
  XML_SetUserData(parser, run_.get());
  XML_SetElementHandler(parser, Run::onStart, Run::onEnd);
  XML_SetCharacterDataHandler(parser, Run::onText);
  XML_SetStartDoctypeDeclHandler(parser, Run::onDoctype);
  XML_SetUnknownEncodingHandler(parser, onOtherEncoding, nullptr);
}

XmlReading::~XmlReading() = default;

Result<> XmlReading::take(std::string_view bytes, bool isLast, const std::string& where) {
  const XML_Parser parser = run_->parser.get();
  if (parser == nullptr) return fail(ErrorKind::Other, where, "no memory");
  constexpr std::size_t handedBytes = std::size_t{1} << 20;  // expat counts in int
  do {
    const std::string_view piece = bytes.substr(0, handedBytes);
    bytes.remove_prefix(piece.size());
    const int ends = isLast && bytes.empty() ? 1 : 0;
    if (XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), ends) == XML_STATUS_OK) {
      run_->taken += piece.size();
      if (run_->taken <= run_->begun() + longestPart) continue;
      return fail(ErrorKind::Corrupt, where, "a part is too long");
    }
    const bool isEnded = XML_GetErrorCode(parser) == XML_ERROR_ABORTED && run_->depth <= deepestElement;
    return fail(isEnded ? ErrorKind::Malformed : ErrorKind::Corrupt, where, XML_ErrorString(XML_GetErrorCode(parser)));
  } while (!bytes.empty());
  return {};
}

}  // namespace kv
