#pragma once
// XML read piece by piece by expat. Nothing is held but the element that is being read, and a document type, which
// could bring entities that grow, ends the reading.

#include <memory>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// The attributes of one XML element.
class XmlAttributes {
 public:
  explicit XmlAttributes(const char** pairs) : pairs_(pairs) {}
  /// The value of an attribute, known by its name without prefix; empty when it isn't there.
  std::string_view get(std::string_view name) const;
  /// Whether it is there.
  bool has(std::string_view name) const { return get(name).data() != nullptr; }

 private:
  const char** pairs_;
};

/// What is told of an XML text while it is read. A routine that returns false ends the reading.
class XmlListener {
 public:
  virtual ~XmlListener() = default;
  virtual bool start(std::string_view name, const XmlAttributes& attributes) = 0;
  virtual bool end(std::string_view name) = 0;
  /// Text of the current element, in pieces of any size.
  virtual bool text(std::string_view piece) = 0;
};

/// How a listener is told the names of elements.
enum class XmlNames {
  Bare,  ///< without prefix: "table"
  Whole  ///< as they are written: "g:price"
};

/// One reading of an XML text.
class XmlReading {
 public:
  /// listener: outlives the reading.
  explicit XmlReading(XmlListener& listener, XmlNames names = XmlNames::Bare);
  XmlReading(const XmlReading&) = delete;
  XmlReading& operator=(const XmlReading&) = delete;
  ~XmlReading();

  /// Reads on; `isLast` ends the text. where: the file, for failures. Corrupt when it is no XML, or goes deeper than
  /// 256 elements or has a comment, a tag or an attribute of more than 1 MiB, which would take memory and time;
  /// Malformed when the listener or a document type ended it. UTF-8, UTF-16, Latin 1 and Windows-1252 are known.
  Result<> take(std::string_view bytes, bool isLast, const std::string& where);

 private:
  struct Run;
  std::unique_ptr<Run> run_;
};

}  // namespace kv
