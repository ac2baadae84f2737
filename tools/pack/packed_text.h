#pragma once
// Turns the static files of the sources, which are UTF-8 with LF, into the files of a shop: Windows-1252 with CR LF.
// Pages of one package share fragments: "{{name}}" in a file stands for the text of parts/name.part.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The text of a part by its name, or nothing.
using PartSource = std::function<std::optional<std::string>(std::string_view)>;

/// Puts the parts in, parts of parts too; the line end that closes a part is left out, since the line with the
/// "{{name}}" has its own. Malformed at an unknown part or at parts that contain each other.
Result<std::string> withParts(std::string_view text, const PartSource& part);

/// The bytes of a shop's text file. Malformed, with the line's number, at a byte that is not UTF-8 and at a
/// character that Windows-1252 lacks.
Result<std::string> shopTextOf(std::string_view text);

/// The bytes of a GIF of one pixel of the colour "RRGGBB". Malformed when it is none.
Result<std::string> colourGif(std::string_view colour);

}  // namespace kv
