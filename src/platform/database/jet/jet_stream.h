#pragma once
// Rows of a Jet database on their way from the process that reads them: each field as a mark of its kind and its value.
// What arrives may be anything, since the reader works on bytes from anywhere.

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/value.h"
#include "platform/ports/result.h"

namespace kv {

/// Appends a field. A Bytes value is left out.
void putJetField(std::string& stream, const Value& value);
/// Appends a failure, which ends the stream.
void putJetFailure(std::string& stream, const Error& error);
/// The rows of a stream, each of `columns` fields; 0 columns give none. The failure in it where there is one; Malformed
/// when the stream ends inside a row or a field.
Result<std::vector<std::vector<Value>>> jetRows(std::string_view stream, std::size_t columns);

}  // namespace kv
