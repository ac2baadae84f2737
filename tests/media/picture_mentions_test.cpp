// File names found in texts.
#include "media/purge/picture_mentions.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

class MentionedPictures : public ::testing::Test {
 protected:
  bool isFound(const std::string& name, std::string_view text) {
    PictureMentions mentions;
    mentions.lookFor(name);
    mentions.read(text);
    return mentions.isMentioned(name);
  }
};

TEST_F(MentionedPictures, AreFoundInHtmlStylesAndSentences) {
  EXPECT_TRUE(isFound("foto_0001.jpg", "<p>Vedi <img src=\"foto_0001.jpg\" alt=\"\"></p>"));
  EXPECT_TRUE(isFound("foto_0001.jpg", "<img src=http://x.it/online/FOTO_0001.JPG>"));
  EXPECT_TRUE(isFound("sfondo.gif", "body { background: url(sfondo.gif) }"));
  EXPECT_TRUE(isFound("foto_0001.jpg", "Il file è foto_0001.jpg."));
  EXPECT_TRUE(isFound("nome.con.punti.png", "a=nome.con.punti.png;"));
  EXPECT_TRUE(isFound("foto_0001.jpg", "Ecco... e poi. foto_0001.jpg... Fine."));
}

TEST_F(MentionedPictures, AreWholeNames) {
  EXPECT_FALSE(isFound("oto.gif", "foto.gif"));
  EXPECT_FALSE(isFound("foto.gif", "foto.gif.bak"));
  EXPECT_FALSE(isFound("foto.gif", "foto . gif"));
  EXPECT_FALSE(isFound("foto.gif", ""));
}

TEST_F(MentionedPictures, NamesWithSpacesOrAccentsAreFoundAsWell) {
  EXPECT_TRUE(isFound("Mia Foto.JPG", "<img src='mia foto.jpg'>"));
  EXPECT_TRUE(isFound("èà.png", "guarda ÈÀ.PNG qui"));
  EXPECT_FALSE(isFound("mia foto.jpg", "foto.jpg"));
}

TEST_F(MentionedPictures, ANameWithoutADotIsNeverAWordOfAText) { EXPECT_FALSE(isFound("foto", "una foto bella.")); }

}  // namespace
}  // namespace kv
