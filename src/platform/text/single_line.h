#pragma once
// Texts pasted into a field of one line.

#include <string>
#include <string_view>

namespace kv {

/// One line of text for a field of one line: line ends and tabs are removed at its ends, spaces beside them included,
/// and become one space inside. A text without them is returned as it is.
std::string singleLine(std::string_view text);

}  // namespace kv
