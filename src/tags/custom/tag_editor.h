#pragma once
// The merchant's own tags, of this shop and of all shops, as they are edited and written (rules of frmTags).

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"
#include "tags/custom/custom_tags.h"

namespace kv {

inline constexpr std::string_view tagsTitle = "Korvane - Tag personalizzati";
inline constexpr std::string_view tagsFull = "E' stato raggiunto il numero massimo di tag";
inline constexpr std::string_view tagsEnabled = "Abilita l'interpretazione dei tag personalizzati";
inline constexpr std::string_view tagsOfShop = "Solo il negozio corrente";
inline constexpr std::string_view tagsOfAll = "Tutti i negozi";

/// The most tags of both files together: they are numbered with three digits.
inline constexpr std::size_t mostTags = 999;

class TagEditor {
 public:
  /// Reads both files (the shop's tags first) and the switch `personaltags`.
  static TagEditor load(Session& session, const std::string& applicationFolder);

  const std::vector<CustomTag>& tags() const { return tags_; }
  /// A line of the list: "<<5-name>>", empty for a tag without a name.
  std::string line(std::size_t place) const;
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }

  /// Nuovo: appends a tag without name and content, valid for all shops. False at the limit.
  bool add();
  /// Elimina.
  void remove(std::size_t place);
  /// Line ends are removed from a name.
  void setName(std::size_t place, std::string_view name);
  /// Lines of a content end with CR LF or LF.
  void setText(std::size_t place, std::string_view text);
  void setOfShop(std::size_t place, bool ofShop);

  /// OK: writes both files anew through "personal.new" and "shoptag.new", the old ones staying as ".bak", and stores
  /// the switch last. Tags without a name are left out; without a tag of the shop its file only becomes the ".bak". A
  /// failure leaves the files that were in use in place as far as the system allows.
  Result<> save(Session& session, const std::string& applicationFolder) const;

 private:
  std::string fileText(bool ofShop) const;

  std::vector<CustomTag> tags_;
  bool enabled_ = false;
};

}  // namespace kv
