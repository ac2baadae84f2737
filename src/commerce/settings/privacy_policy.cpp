#include "commerce/settings/privacy_policy.h"

namespace kv {

Result<std::string> loadPrivacyPolicy(Database& catalogue) {
  const auto stored = catalogue.scalar("SELECT p3p FROM generale");
  if (!stored) return fail(stored.error());
  return asText(*stored);
}

Result<> storePrivacyPolicy(Database& catalogue, const std::string& policy) {
  auto writer = catalogue.prepare("UPDATE generale SET p3p = ?1");
  if (!writer) return fail(writer.error());
  writer->bind(1, policy);
  return writer->execute();
}

}  // namespace kv
