// Unused pictures in their window: the search when it opens, ticks, and the deletion.
#include <gtest/gtest.h>

#include <QLabel>
#include <QListWidget>
#include <QPixmap>
#include <QProgressBar>

#include "dialog_fixture.h"
#include "media/purge/frm_pulisci_immagini.h"
#include "store/catalogue/used_pictures.h"

namespace kv {
namespace {

using test::click;
using test::control;

class ThePurgeDialog : public test::DialogFixture {
 protected:
  void makeDialog() {
    dialog.emplace(PurgeSources{shop + "/work",
                                [this](const TextReader& read) { return usedPictures(session.catalogue, read); },
                                texts,
                                {}},
                   user);
    show(*dialog);
    QApplication::processEvents();
    list = control<QListWidget>(*dialog, "lstFiles");
  }
  void present(std::initializer_list<const char*> names) {
    ASSERT_TRUE(emptyFolder(shop + "/work"));
    for (const char* name : names) ASSERT_TRUE(writeBytes(joinPath(shop, std::string("work/") + name), "x"));
  }
  std::vector<std::string> left() const { return listFiles(shop + "/work", "*"); }

  std::function<Result<>(const TextReader&)> texts;
  std::optional<frmPulisciImmagini> dialog;
  QListWidget* list = nullptr;
};

TEST_F(ThePurgeDialog, SearchesWhenItOpensAndTicksNothing) {
  present({"A.GIF", "b.gif", "c.gif"});
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET immagine0 = 'a.gif'"));
  makeDialog();
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Ricerca terminata: sono state trovate 2 immagini inutilizzate"}));
  ASSERT_EQ(list->count(), 2);
  EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
  EXPECT_EQ(control<QProgressBar>(*dialog, "prgBarra")->value(), 3);
  EXPECT_TRUE(control<QPushButton>(*dialog, "cmdElimina")->isEnabled());
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "pulisci");
  click(*dialog, "cmdElimina");
  EXPECT_TRUE(dialog->isVisible()) << "nothing is ticked";
}

TEST_F(ThePurgeDialog, ShowsEachPictureWithItsSizeAndTheirTotal) {
  present({"b.gif"});
  QPixmap red(20, 10);
  red.fill(Qt::red);
  const std::string picture = joinPath(shop, "work/a.png");
  ASSERT_TRUE(red.save(toQt(picture)));
  const std::string bytes = readBytes(picture).value_or("");
  ASSERT_TRUE(writeBytes(picture, bytes + std::string(2048 - bytes.size(), 'x')));
  makeDialog();
  const QImage thumbnail = list->item(0)->icon().pixmap(20, 10).toImage();
  EXPECT_EQ(thumbnail.pixelColor(0, 0), QColor(Qt::red));
  EXPECT_EQ(fromQt(list->item(0)->text()), "a.png\n2,0 kB");
  EXPECT_EQ(fromQt(control<QLabel>(*dialog, "lblTotale")->text()), "2 immagini, 2,0 kB");
}

TEST_F(ThePurgeDialog, SaysWhichAreMentionedInAText) {
  present({"b.gif", "c.gif"});
  texts = [](const TextReader& read) -> Result<> {
    read("<img src=\"B.gif\">");
    return {};
  };
  makeDialog();
  EXPECT_TRUE(list->item(0)->text().endsWith(", citata in un testo")) << fromQt(list->item(0)->text());
  EXPECT_EQ(list->item(0)->data(Qt::AccessibleTextRole).toString().count(QStringLiteral("citata in un testo")), 1);
  EXPECT_FALSE(list->item(1)->text().contains(QStringLiteral("citata")));
  test::keepPicture(*dialog, "pulisci-citata");
}

TEST_F(ThePurgeDialog, DeletesWhatIsTickedAndCloses) {
  present({"b.gif", "c.gif"});
  makeDialog();
  click(*dialog, "cmdTutti");
  EXPECT_EQ(list->item(1)->checkState(), Qt::Checked);
  list->item(0)->setCheckState(Qt::Unchecked);
  user.answers = {Answer::Yes};
  click(*dialog, "cmdElimina");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(left(), (std::vector<std::string>{"b.gif"}));
  EXPECT_EQ(user.shown.back().text, "1 file cancellati");
}

TEST_F(ThePurgeDialog, TheSpaceKeyTicksAndNoneClearsAll) {
  present({"b.gif"});
  makeDialog();
  QTest::keyClick(list, Qt::Key_Space);
  EXPECT_EQ(list->item(0)->checkState(), Qt::Checked);
  click(*dialog, "cmdNessuno");
  click(*dialog, "cmdElimina");
  EXPECT_EQ(left().size(), 1U);
}

TEST_F(ThePurgeDialog, WithoutUnusedPicturesThereIsNothingToPress) {
  present({});
  makeDialog();
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Ricerca terminata: non sono state trovate immagini"}));
  for (const char* name : {"cmdTutti", "cmdNessuno", "cmdElimina"}) {
    EXPECT_FALSE(control<QPushButton>(*dialog, name)->isEnabled()) << name;
  }
  EXPECT_FALSE(list->isEnabled());
  const auto* bar = control<QProgressBar>(*dialog, "prgBarra");
  EXPECT_EQ(bar->value(), bar->maximum());
  expectEscapeLeaves(*dialog);
}

TEST_F(ThePurgeDialog, ClosesAfterAnError) {
  present({"b.gif"});
  ASSERT_TRUE(session.catalogue.execute("ALTER TABLE articoli RENAME TO altri"));
  makeDialog();
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
}

}  // namespace
}  // namespace kv
