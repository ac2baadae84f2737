#pragma once
// What is dragged in the main window: departments of the tree, or articles of the list. Other programs are offered
// nothing, and nothing of theirs is taken.

#include <QMimeData>
#include <string>
#include <vector>

#include "store/catalogue/tree_editing.h"

namespace kv {

/// The types of the two; each is the program's own.
inline constexpr QLatin1String departmentMime("application/x-korvane-reparto");
inline constexpr QLatin1String articleMime("application/x-korvane-articoli");

/// Departments as what is dragged, by their IDs; the caller owns it.
QMimeData* draggedDepartments(const DepartmentGroup& group);
/// Articles as what is dragged; the caller owns it.
QMimeData* draggedArticles(const ArticleGroup& group);
/// The departments that are dragged; none when something else is.
DepartmentGroup departmentsOf(const QMimeData& data);
/// The articles that are dragged; none when something else is.
ArticleGroup articlesOf(const QMimeData& data);

}  // namespace kv
