#pragma once
// Templates of the payment modules filled with account data.

#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace kv {

/// A key and the value that replaces "#" and the key.
using Placeholder = std::pair<std::string, std::string>;

/// ElaboraPG (fill a payment module): the template with each placeholder replaced, one after the other in the order
/// given. A value is not searched for its own placeholder, but for those that come later. An unknown "#word" stays.
///
/// A text block of PHP (<<<'WORD') in the template gets another end word when the values hold that word, so that they
/// cannot end the block; not a byte of a value changes. Source: the PHP manual, "Nowdoc".
std::string ElaboraPG(std::string_view text, std::span<const Placeholder> values);

}  // namespace kv
