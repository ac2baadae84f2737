#pragma once
// The body of a request as a browser sends a form.

#include <string>
#include <string_view>

namespace kv {

/// A text as the value of a form's field: percent-encoded but for letters and digits of ASCII and "-", ".", "_", "~".
/// Source: RFC 3986, section 2; a space becomes "%20", which every reader of forms takes.
std::string formValue(std::string_view text);

}  // namespace kv
