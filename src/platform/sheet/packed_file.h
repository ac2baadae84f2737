#pragma once
// The parts of a packed file (zip), unpacked piece by piece and read as XML. A part is never held whole, and all parts
// together unpack to no more than a limit, so that a small file can't fill the memory or the day.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ports/result.h"
#include "platform/sheet/xml_reading.h"

namespace kv {

/// Why a sheet can't be read, as the `number` of an Error, where its kind alone doesn't tell.
enum SheetFault : int {
  NoFault = 0,
  ProtectedSheet = 1,  ///< by a password
  TooLargeSheet = 2,   ///< beyond SheetLimits
  OldSheet = 3,        ///< the binary form of earlier programs, or one that is protected
  EmptySheet = 4,      ///< no text in any cell
  EndlessCell = 5      ///< a text in quotes that goes on beyond any sense; Error::what is its line
};

/// An open packed file.
class PackedFile {
 public:
  /// Opens a file. Missing, or as readBytes; Corrupt when it is damaged. unpackedLimit: bytes of all parts together.
  static Result<PackedFile> open(const std::string& path, std::uint64_t unpackedLimit);
  PackedFile(PackedFile&&) noexcept;
  PackedFile& operator=(PackedFile&&) noexcept;
  ~PackedFile();

  /// Whether there is a part of this path.
  bool has(const std::string& part) const;
  /// Reads a part as XML. Corrupt when it isn't there, is damaged or no XML, Malformed with
  /// ProtectedSheet or TooLargeSheet; with NoFault when the listener ended it. goOn: asked after each piece; false
  /// ends it as Cancelled.
  Result<> readXml(const std::string& part, XmlListener& listener, const std::function<bool()>& goOn = {});

 private:
  struct State;
  explicit PackedFile(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace kv
