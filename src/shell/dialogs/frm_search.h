#pragma once
// The search for articles, and the jump to one of the hits.

#include <cstdint>
#include <functional>

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/article_search.h"

class QAbstractTableModel;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace kv {

class HitModel;  ///< the hits as rows of code and title

/// The tag is the ID of the article to show, as decimal text; empty when none was chosen.
class frmSearch final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmSearch(Session& session, Environment& env, QWidget* parent = nullptr);
  ~frmSearch() override;

  /// The article chosen by Mostra; 0 when none was.
  std::int64_t chosen() const { return chosen_; }

 private:
  QWidget* makeQuestion();
  QWidget* makeAnswer();
  /// Runs the search that the controls describe.
  void search();
  /// Fills the list, or says that nothing was found.
  void showHits(std::vector<ArticleHit> hits);
  /// Ends the dialog with the hit that is selected.
  void showArticle();
  /// The button is enabled while a hit is selected.
  void updateMostra();

  Session& session_;
  Environment& env_;
  HitModel* model_ = nullptr;
  QLineEdit* txtTesto_ = nullptr;
  QButtonGroup* optCampo_ = nullptr;
  QCheckBox* chkParole_ = nullptr;
  QTableView* lstArticoli_ = nullptr;
  QLabel* lblNessuno_ = nullptr;
  QPushButton* cmdCerca_ = nullptr;
  QPushButton* cmdMostra_ = nullptr;
  std::int64_t chosen_ = 0;
};

}  // namespace kv
