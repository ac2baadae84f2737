#pragma once
// The commands of the main window as data: each with its number, the key of its state, its button and what it does.
// The window binds buttons to numbers; nothing here knows a window.

#include <span>
#include <string>
#include <string_view>

namespace kv {

enum class CommandAction {
  None,
  Move,  ///< argument -1 up, +1 down
  InsertBefore,
  InsertAfter,
  InsertBelow,  ///< a department under the current one
  Delete,
  Copy,
  Paste,
  ExpandAll,
  CollapseAll,
  ChooseImage,  ///< argument: number of the image
  ClearImage,
  DefineVariant,  ///< argument: slot 1 to 4
  Search,
  Build,
  Publish,
  OpenBackOffice
};
enum class CommandSubject { Nothing, Article, Department, Shop };

struct Command {
  int number = 0;
  std::string_view key;      ///< of the state routine; empty: always enabled
  std::string_view caption;  ///< of the button; empty: the command has none
  CommandAction action = CommandAction::None;
  CommandSubject subject = CommandSubject::Nothing;
  int argument = 0;
  std::string_view step;  ///< how undo names it; empty: nothing to undo
  std::string_view icon;  ///< file of the button's picture, without folder and extension
};

/// All commands in the order of their numbers: 0 to 35 and 50 to 52.
std::span<const Command> commandTable();
/// The command of a number; null for 36 to 49 and every other number, which do nothing.
const Command* commandOf(int number);

/// The suffix of the `opzione` column that a variant slot edits in a price list: "1", "1_3".
std::string variantSlot(int slot, int listino);

/// The keys that no button has: masks over all editors of a panel, and the two choices of server folders.
inline constexpr std::string_view articleMask = "maschera articoli";
inline constexpr std::string_view departmentMask = "maschera categorie";
inline constexpr std::string_view ftpFolders = "cartelle FTP";

/// The keys that are enabled exactly while an article is current, and while a department is.
std::span<const std::string_view> articleKeys();
std::span<const std::string_view> departmentKeys();

/// A key that is enabled while an image column is set.
struct ImageKey {
  std::string_view key;
  CommandSubject subject;
  std::string_view column;
};
std::span<const ImageKey> imageKeys();

}  // namespace kv
