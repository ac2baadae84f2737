#pragma once
// An empty shop made from the model: the merchant's own catalogue begins with one department and nothing to delete.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// Copies the model shop without its pictures into a folder, which is made with its parents, and empties the catalogue
/// of the copy: one department is left, no article, no variant but "(nessuna)", one language, and no text, address or
/// logo of the model. Settings, shipping, payment and countries stay. Files of the same names are replaced, others
/// kept. Failures: as copyTree and Database::execute; the folder then holds what was copied until then.
Result<> layEmptyShop(const std::string& model, const std::string& folder);

}  // namespace kv
