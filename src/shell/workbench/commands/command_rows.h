#pragma once
// The rows of all commands, and what rows of one kind have in common.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/workbench/command_context.h"

namespace kv {

/// The rows of every command of the program.
std::vector<Command> allCommands();

/// A row whose entry opens a dialog. `step`: the step of the history that its changes make; empty when it edits nothing
/// that could be undone.
Command dialogCommand(std::string name, const MenuPlace& place, WorkbenchDialogs::Dialog WorkbenchDialogs::*dialog,
                      std::string_view step = {});

/// An edit of the tree of departments and its articles, as a member of TreeEditing or a function of it.
using TreeEdit = std::function<Result<>(TreeEditing& editing)>;
/// Runs an edit: one step of the history, with this name unless it is empty. A failure is told to the user.
void runEdit(const CommandContext& context, const TreeEdit& edit, std::string_view step);
/// The row with an edit as its run: one step of the history where the row names one. A failure is told to the user.
Command treeCommand(Command row, TreeEdit edit);

/// The row of an insertion: an edit of the tree after which the first field of what was added has the keyboard.
/// `set`: which list it adds to. Nothing moves when nothing was added.
Command insertCommand(Command row, TreeEdit edit, EditedSet set);

/// Gives every row that names no help page of its own this one.
std::vector<Command> withHelp(std::vector<Command> rows, std::string_view page);

/// Why the commands on the current row of a list are off.
inline constexpr std::string_view noArticle = "Nessun articolo";
inline constexpr std::string_view noDepartment = "Nessun reparto selezionato";

/// The row of an edit of the list of articles, enabled while an article is current.
Command articleCommand(Command row, TreeEdit edit);

/// The row of what can be done while a shop is open.
Command inOpenShop(Command row);

/// Whether an article is current: for `Command::enabled`.
bool isOnArticle(const CommandContext& context);
/// Whether a department is current: for `Command::enabled`.
bool isOnDepartment(const CommandContext& context);

}  // namespace kv
