#include "shell/workbench/commands/picture_commands.h"

#include "platform/database/recordset.h"
#include "platform/files/files.h"
#include "platform/image/pixels.h"
#include "shell/workbench/fields/row_picture.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;

/// Stores a picture, or clears it with an empty name, as one step.
void store(const CommandContext& context, const RowPicture& picture, std::string_view step, const std::string& name,
           ImageSize size) {
  context.bench.showError(
      context.history.record(std::string(step), [&] { return storePicture(context.sets, picture, name, size); }));
  context.bench.commands().refreshKeys();
  context.view.fieldsChanged(picture.set);
}

void choosePicture(const CommandContext& context, const RowPicture& picture, std::string_view step) {
  const Recordset& rows = context.sets.edited(picture.set);
  if (rows.bof() || rows.eof()) return;
  const auto name = context.ports.dialogs.choosePicture(pictureName(context.sets, picture));
  if (!name || name->empty()) return;
  const auto size = shownSize(entryPath(entryPath(context.session.ShopFolder, "work"), *name));
  if (!size) return context.bench.showError(fail(size.error()));
  store(context, picture, step, *name, *size);
}

Command chooseRow(Command row, const RowPicture& picture) {
  row.name = pictureCommandNames(picture.set, picture.number).choose;
  row.icon = "immagine";
  row.step = row.caption;
  row.dialog = wired(&WorkbenchDialogs::choosePicture);
  if (picture.set == EditedSet::Articoli) row.enabled = isOnArticle;
  if (picture.set == EditedSet::Categorie) row.enabled = isOnDepartment;
  row.whenOff = picture.set == EditedSet::Articoli ? noArticle : noDepartment;
  row.run = [picture, step = row.step](const CommandContext& context) { choosePicture(context, picture, step); };
  return row;
}

Command clearRow(Command row, const RowPicture& picture) {
  row.name = pictureCommandNames(picture.set, picture.number).clear;
  row.icon = "immagine-no";
  row.step = row.caption;
  row.whenOff = "Nessuna immagine";
  // A row that can't be read just now may have one; the command reads it again.
  row.enabled = [picture](const CommandContext& context) { return hasPicture(context.sets, picture).value_or(true); };
  row.run = [picture, step = row.step](const CommandContext& context) {
    const auto has = hasPicture(context.sets, picture);
    if (!has) return context.bench.showError(fail(has.error()));
    if (*has) store(context, picture, step, "", {});
  };
  return row;
}

/// The row of a picture: its number, key, caption, which is its step too, and entries.
Command row(int number, std::string_view key, std::string_view caption, std::vector<MenuPlace> menus) {
  return {.number = number, .key = key, .caption = caption, .menus = std::move(menus)};
}

/// A logo is set from the menus of departments and of articles.
std::vector<MenuPlace> logoMenus(int departments, int articles, std::string_view text, std::string_view submenu) {
  return {{EditDepartments, departments, text, submenu}, {EditArticles, articles, text, submenu}};
}

std::vector<Command> logoCommands() {
  using enum EditedSet;
  constexpr std::string_view set = "Imposta logo negozio", clear = "Elimina logo negozio";
  return {chooseRow(row(29, "", "Imposta logo", logoMenus(305, 311, "normale", set)), {Generale, 0}),
          chooseRow(row(32, "", "Imposta logo piccolo", logoMenus(306, 312, "piccolo", set)), {Generale, 1}),
          clearRow(row(28, "- immagine neg0", "Elimina logo", logoMenus(307, 313, "normale", clear)), {Generale, 0}),
          clearRow(row(33, "- immagine neg1", "Elimina logo piccolo", logoMenus(308, 314, "piccolo", clear)),
                   {Generale, 1})};
}

}  // namespace

PictureCommandNames pictureCommandNames(EditedSet set, int number) {
  const char* subject = set == EditedSet::Articoli ? "article" : set == EditedSet::Categorie ? "department" : "shop";
  const std::string picture = std::string(subject) + ".picture" + std::to_string(number);
  return {picture + ".set", picture + ".clear"};
}

std::vector<Command> pictureCommands() {
  using enum EditedSet;
  constexpr std::string_view set = "Imposta immagine", clear = "Elimina immagine";
  const auto entry = [](Menu menu, int position, std::string_view text, std::string_view submenu = {}) {
    return std::vector<MenuPlace>{{menu, position, text, submenu}};
  };
  std::vector<Command> articles{
      chooseRow(row(9, "+ immagine0", set, entry(EditArticles, 305, "1", set)), {Articoli, 0}),
      chooseRow(row(23, "+ immagine1", set, entry(EditArticles, 306, "2", set)), {Articoli, 1}),
      chooseRow(row(26, "+ immagine2", "Imposta immagine piccola", entry(EditArticles, 307, "piccola", set)),
                {Articoli, 2}),
      clearRow(row(10, "- immagine0", clear, entry(EditArticles, 308, "1", clear)), {Articoli, 0}),
      clearRow(row(22, "- immagine1", clear, entry(EditArticles, 309, "2", clear)), {Articoli, 1}),
      clearRow(row(27, "- immagine2", "Elimina immagine piccola", entry(EditArticles, 310, "piccola", clear)),
               {Articoli, 2})};
  std::vector<Command> departments{
      chooseRow(row(19, "+ immagine cat0", set, entry(EditDepartments, 301, set)), {Categorie, 0}),
      clearRow(row(18, "- immagine cat0", clear, entry(EditDepartments, 302, clear)), {Categorie, 0}),
      chooseRow(
          row(25, "+ immagine cat1", "Imposta pulsante", entry(EditDepartments, 303, "Imposta immagine pulsante")),
          {Categorie, 1}),
      clearRow(row(24, "- immagine cat1", "Elimina pulsante", entry(EditDepartments, 304, "Elimina immagine pulsante")),
               {Categorie, 1})};
  std::vector<Command> all = withHelp(std::move(articles), "pagine/articoli.htm");
  for (Command& each : withHelp(std::move(departments), "pagine/reparti.htm")) all.push_back(std::move(each));
  for (Command& each : withHelp(logoCommands(), "pagine/sito.htm")) all.push_back(std::move(each));
  return all;
}

}  // namespace kv
