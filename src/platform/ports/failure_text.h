#pragma once
// What a failure says to the merchant, in Italian. The texts of the store engine and of the system are English and
// speak of their own inside, so they never appear alone: they follow as the technical detail.

#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// The message for a failure: what has happened, what was kept and what to do, by the kind of the error; then, after
/// an empty line, "Dettaglio: " with the file, table or column and the text of the lower level.
/// subject: the label of the field or the name of the file that it is about, put in front with a colon; may be empty.
std::string failureText(const Error& error, std::string_view subject = {});

}  // namespace kv
