#include "commerce/settings/required_fields.h"

#include <string>

namespace kv {

Result<RequiredFields> loadRequiredFields(Database& catalogue) {
  const auto stored = catalogue.scalar("SELECT campi_obbligatori FROM generale");
  if (!stored) return fail(stored.error());
  const std::int64_t sum = asInteger(*stored);
  RequiredFields fields{};
  for (std::size_t i = 0; i < fields.size(); ++i) fields[i] = ((sum >> i) & 1) != 0;
  return fields;
}

Result<> storeRequiredFields(Database& catalogue, const RequiredFields& fields) {
  int sum = 0;
  for (std::size_t i = 0; i < fields.size(); ++i) sum |= fields[i] ? 1 << i : 0;
  auto writer = catalogue.prepare("UPDATE generale SET campi_obbligatori = ?1");
  if (!writer) return fail(writer.error());
  const std::string text = std::to_string(sum);
  writer->bind(1, text);
  return writer->execute();
}

}  // namespace kv
