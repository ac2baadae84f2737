#include "shell/window/lists/frm_dragged.h"

#include <QByteArray>
#include <QList>

namespace kv {
namespace {

constexpr char lineEnd = '\n';

}  // namespace

QMimeData* draggedDepartments(const DepartmentGroup& group) {
  QByteArray text;
  for (const std::string& ID : group) text += QByteArray::fromStdString(ID) + lineEnd;
  auto* data = new QMimeData;
  data->setData(departmentMime, text);
  return data;
}

QMimeData* draggedArticles(const ArticleGroup& group) {
  QByteArray text;
  for (const std::int64_t ID : group) text += QByteArray::number(static_cast<qlonglong>(ID)) + ' ';
  auto* data = new QMimeData;
  data->setData(articleMime, text.trimmed());
  return data;
}

DepartmentGroup departmentsOf(const QMimeData& data) {
  DepartmentGroup group;
  for (const QByteArray& ID : data.data(departmentMime).split(lineEnd)) {
    if (!ID.isEmpty()) group.push_back(ID.toStdString());
  }
  return group;
}

ArticleGroup articlesOf(const QMimeData& data) {
  ArticleGroup group;
  for (const QByteArray& ID : data.data(articleMime).split(' ')) {
    bool isNumber = false;
    const qlonglong number = ID.toLongLong(&isNumber);
    if (isNumber) group.push_back(number);
  }
  return group;
}

}  // namespace kv
