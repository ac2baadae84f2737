#include "publish/orders/papers/shop_sender.h"

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "store/catalogue/shop_identity.h"

namespace kv {
namespace {

/// What the law's columns are called on paper; the seat speaks for itself.
struct LegalLine {
  std::string_view column, caption;
};
constexpr LegalLine legalLines[] = {
    {"legale_sede", ""}, {"legale_piva", "Partita IVA "}, {"legale_registro", "Registro imprese "}};

/// The lines of a signature that hold something, without the name that it may begin with.
std::vector<std::string> signatureLines(std::string_view signature, std::string_view name) {
  std::string_view rest = trim(signature);
  if (!name.empty() && rest.starts_with(name)) rest.remove_prefix(name.size());
  std::vector<std::string> lines;
  for (const std::string_view line : splitLines(rest)) {
    if (!trim(line).empty()) lines.emplace_back(trim(line));
  }
  return lines;
}

bool holdsText(const std::vector<std::string>& lines, std::string_view text) {
  for (const std::string& line : lines) {
    if (line.find(text) != std::string::npos) return true;
  }
  return false;
}

/// The path of a picture of the shop; empty when it isn't there.
std::string pictureOf(const std::string& shopFolder, std::string_view name) {
  const std::string path = entryPath(entryPath(shopFolder, "work"), name);
  return !name.empty() && fileExists(path) ? path : std::string();
}

/// Adds what the law wants of a sender and isn't there yet.
Result<> addLegalLines(Database& catalogue, std::vector<std::string>& lines) {
  for (const LegalLine& line : legalLines) {
    const auto text = readIdentity(catalogue, line.column);
    if (!text) return fail(text.error());
    const std::string said(trim(*text));
    if (!said.empty() && !holdsText(lines, said)) lines.push_back(std::string(line.caption) + said);
  }
  return {};
}

}  // namespace

Result<ShopSender> readShopSender(Session& session) {
  auto row = session.catalogue.prepare("SELECT titolo, firma_email, immagine0, immagine1 FROM generale");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  ShopSender sender;
  if (*found) {
    sender.name = std::string(trim(row->text(0)));
    sender.lines = signatureLines(row->text(1), sender.name);
    sender.logo = pictureOf(session.ShopFolder, row->text(2));
    if (sender.logo.empty()) sender.logo = pictureOf(session.ShopFolder, row->text(3));
  }
  if (auto added = addLegalLines(session.catalogue, sender.lines); !added) return fail(added.error());
  return sender;
}

Result<std::map<std::int64_t, std::string>> readArticleDepartments(Database& catalogue) {
  auto rows = catalogue.prepare("SELECT a.ID, c.titolo FROM articoli a JOIN categorie c ON c.ID = a.catID");
  if (!rows) return fail(rows.error());
  std::map<std::int64_t, std::string> titles;
  auto found = rows->step();
  for (; found && *found; found = rows->step()) titles.emplace(rows->integer(0), rows->text(1));
  if (!found) return fail(found.error());
  return titles;
}

}  // namespace kv
