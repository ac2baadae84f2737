#pragma once
// The commands on all articles that are selected in the list, and on the current one where no more are.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The articles that a command of the list acts on: those selected, or the current one alone; empty on no article.
ArticleGroup articlesOf(const CommandContext& context);

/// Duplicating, and the marks of an article.
std::vector<Command> selectionCommands();

/// The row with an edit of several articles in front of it, which runs while more than one is selected. `step`: how
/// undo names that edit; empty when there is nothing to undo.
Command groupCommand(Command row, std::function<Result<>(TreeEditing&, const ArticleGroup&)> edit,
                     std::string_view step);

}  // namespace kv
