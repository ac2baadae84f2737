#pragma once
// The merchant's own tags, of this shop and of all shops, as they are edited and written (rules of frmTags).

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"
#include "tags/custom/custom_tags.h"

namespace kv {

// The texts of the dialog: its title, the message at the limit, and the captions of its switches.
inline constexpr std::string_view tagsTitle = "Korvane - Tag personalizzati";
inline constexpr std::string_view tagsFull = "E' stato raggiunto il numero massimo di tag";
inline constexpr std::string_view tagsEnabled = "Abilita l'interpretazione dei tag personalizzati";
inline constexpr std::string_view tagsOfShop = "Solo il negozio corrente";
inline constexpr std::string_view tagsOfAll = "Tutti i negozi";

/// Said beside the field of the name: the end of a tag can't be in its name.
inline constexpr std::string_view tagNameRefused = "Il nome di un tag non può contenere \">>\"";
/// Asked before changes that were not stored are lost; No is the default.
inline constexpr std::string_view tagsUnsaved =
    "Le modifiche ai tag non sono state salvate. Chiudere la finestra e perderle?";

/// The largest number of tags in both files together: they are numbered with three digits.
inline constexpr std::size_t maxTags = 999;

/// The tags as the dialog edits them. Nothing is written before save(). Indexes are those of tags().
class TagEditor {
 public:
  /// Reads both files (the shop's tags first) and the switch `personaltags`.
  static TagEditor load(Session& session, const std::string& applicationFolder);

  /// All tags, those of the shop first as long as none was added.
  const std::vector<CustomTag>& tags() const { return tags_; }
  /// A line of the list: "<<5-name>>", empty for a tag without a name.
  std::string line(std::size_t index) const;
  /// Whether pages expand custom tags.
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }

  /// Nuovo: appends a tag without name and content, valid for all shops. False at the limit.
  bool add();
  /// Elimina: removes a tag; nothing for an index without one.
  void remove(std::size_t index);
  /// Whether anything differs from what was read.
  bool isChanged() const;
  /// Sets the name, line ends removed. False, and nothing changes, for a name with ">>", which would end the tag.
  bool setName(std::size_t index, std::string_view name);
  /// Sets the content, whose lines end with CR LF or LF.
  void setText(std::size_t index, std::string_view text);
  /// Sets whether a tag is for this shop alone or for all shops.
  void setOfShop(std::size_t index, bool ofShop);

  /// OK: writes both files, as "personal.new" and "shoptag.new" at first, keeps the old ones as ".bak", and stores the
  /// switch last. Tags without a name are left out; without a tag of the shop its file only becomes the ".bak". After a
  /// failure the old files are in use again as far as the system allows.
  Result<> save(Session& session, const std::string& applicationFolder) const;

 private:
  std::string fileText(bool ofShop) const;  // the content of one of the two files

  std::vector<CustomTag> tags_;
  std::vector<CustomTag> read_;  // the tags as load() found them
  bool wasEnabled_ = false;      // the switch as load() found it
  bool enabled_ = false;         // `personaltags` as it will be stored
};

}  // namespace kv
