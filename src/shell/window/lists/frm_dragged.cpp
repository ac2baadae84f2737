#include "shell/window/lists/frm_dragged.h"

#include <QByteArray>
#include <QList>

namespace kv {

QMimeData* draggedDepartment(const std::string& ID) {
  auto* data = new QMimeData;
  data->setData(departmentMime, QByteArray::fromStdString(ID));
  return data;
}

QMimeData* draggedArticles(const ArticleGroup& group) {
  QByteArray text;
  for (const std::int64_t ID : group) text += QByteArray::number(static_cast<qlonglong>(ID)) + ' ';
  auto* data = new QMimeData;
  data->setData(articleMime, text.trimmed());
  return data;
}

std::string departmentOf(const QMimeData& data) { return data.data(departmentMime).toStdString(); }

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
