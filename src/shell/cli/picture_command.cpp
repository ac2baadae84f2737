// korvane-cli picture: a picture brought in and stored in a row, without a window.
#include <charconv>
#include <optional>

#include "media/choice/picture_choice.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "shell/cli/cli_session.h"
#include "shell/cli/exchange_commands.h"

namespace kv {
namespace {

/// Where a picture goes: a row and one of its slots.
struct PictureTarget {
  std::string table, keyColumn, key;
  int slot = 0;
};

std::optional<int> wholeNumber(std::string_view text) {
  int number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Nothing when the options name no row, or two, or a slot that the row hasn't.
std::optional<PictureTarget> targetOf(const CommandLine& line) {
  const bool isArticle = line.has("--article");
  if (isArticle == line.has("--department")) return std::nullopt;
  const auto slot = wholeNumber(line.option("--slot"));
  const int slots = isArticle ? 3 : 2;
  if (!slot || *slot < 0 || *slot >= slots) return std::nullopt;
  if (!isArticle) return PictureTarget{"categorie", "ID", line.option("--department"), *slot};
  if (!wholeNumber(line.option("--article"))) return std::nullopt;
  return PictureTarget{"articoli", "ID", line.option("--article"), *slot};
}

/// The box of "180x135"; an empty text is no box, anything else is nothing.
std::optional<ImageSize> boxOf(const std::string& text) {
  if (text.empty()) return ImageSize{};
  const std::size_t cross = text.find('x');
  if (cross == std::string::npos) return std::nullopt;
  const auto width = limitOf(text.substr(0, cross)), height = limitOf(text.substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return ImageSize{*width, *height};
}

Result<bool> hasRow(Database& catalogue, const PictureTarget& target) {
  auto rows = catalogue.prepare("SELECT 1 FROM " + target.table + " WHERE " + target.keyColumn + " = ?1");
  if (!rows) return fail(rows.error());
  rows->bind(1, target.key);
  return rows->step();
}

Result<> storeInRow(Database& catalogue, const PictureTarget& target, const std::string& name, ImageSize size) {
  const std::string slot = std::to_string(target.slot);
  auto change = catalogue.prepare("UPDATE " + target.table + " SET immagine" + slot + " = ?1, imgX" + slot +
                                  " = ?2, imgY" + slot + " = ?3 WHERE " + target.keyColumn + " = ?4");
  if (!change) return fail(change.error());
  change->bind(1, name);
  change->bind(2, size.width);
  change->bind(3, size.height);
  change->bind(4, target.key);
  return change->execute();
}

/// Brings the file in as the dialog would; the settings of the user's own dialog are left alone.
std::optional<std::string> bringIn(const std::string& file, const std::string& folder, ImageSize box, UserPort& user) {
  MemorySettings settings;
  PictureChoice choice(settings, user, folder, {});
  choice.tab = folderOf(file) == folder ? PictureTab::Shop : PictureTab::Disk;
  choice.values.fits = box.width > 0;
  if (choice.values.fits) choice.values.limits = box;
  return choice.accept(file);
}

}  // namespace

CliOutcome setPicture(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  const auto target = targetOf(line);
  const auto box = boxOf(line.option("--fit"));
  if (!target || !box) {
    env.user.message(
        "Indicare --article ID con --slot da 0 a 2, oppure --department ID con --slot 0 o 1; --fit vuole due numeri\n"
        "compresi fra 5 e 270, per esempio 180x135",
        Icon::Exclamation);
    return CliOutcome::WrongUsage;
  }
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  const auto isThere = hasRow(open.session.catalogue, *target);
  if (!isThere || !*isThere) return refused(env, "Nel negozio non esiste \"" + target->key + "\"");
  const std::string folder = entryPath(shop, "work");
  const std::string file = absolutePath(line.object);
  const auto name = bringIn(file, folder, *box, env.user);
  if (!name) return CliOutcome::Failed;
  if (name->empty()) return refused(env, "L'immagine non può essere letta: " + file);
  const auto size = shownSize(joinPath(folder, *name));
  if (!size) return refused(env, "L'immagine non può essere letta: " + *name);
  if (const auto stored = storeInRow(open.session.catalogue, *target, *name, *size); !stored) {
    return refused(env, "Impossibile modificare il catalogo:\n" + failureText(stored.error()));
  }
  out << *name << ' ' << size->width << 'x' << size->height << '\n';
  return CliOutcome::Done;
}

}  // namespace kv
