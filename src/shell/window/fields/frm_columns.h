#pragma once
// A layout of groups in as many columns as the width has room for: each group goes to the column that is shortest.

#include <QLayout>
#include <QList>

namespace kv {

/// Groups keep their order; each goes below the shortest column.
/// All columns are equally wide; how many there are follows the width at each resize.
class ColumnsLayout final : public QLayout {
  Q_OBJECT
 public:
  /// A column is at least this wide, in pixels.
  explicit ColumnsLayout(int narrowest, QWidget* parent = nullptr);
  ~ColumnsLayout() override;
  /// A group of this layout that takes the whole width, below what comes before it.
  /// At most one; it isn't owned.
  void setWide(const QWidget* group) { wide_ = group; }

  /// A group of this layout that takes the height that is left below its column; of two in a column the last does.
  /// It isn't owned.
  void addGrowing(const QWidget* group) { growing_.append(group); }

  // QLayout
  void addItem(QLayoutItem* item) override { items_.append(item); }
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override { return items_.value(index); }
  QLayoutItem* takeAt(int index) override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  bool hasHeightForWidth() const override { return true; }
  /// The height in pixels that all groups need at a width.
  int heightForWidth(int width) const override { return arrange(QRect(0, 0, width, 0), false); }
  void setGeometry(const QRect& area) override;

 private:
  /// The height that the groups need in this area; with `move` they are put there.
  int arrange(const QRect& area, bool move) const;
  /// Gives the height that is left in each column of this area to its growing group.
  void growGroups(const QRect& area) const;
  QList<QLayoutItem*> items_;
  int narrowest_;
  const QWidget* wide_ = nullptr;  ///< takes the whole width; may be none
  QList<const QWidget*> growing_;  ///< take what height is left
};

}  // namespace kv
