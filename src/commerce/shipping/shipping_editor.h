#pragma once
// The shop's payment methods, countries and tables of costs, as the shipping dialog edits them (rules of
// frmSpedizione). Every change is stored at once, in the row that the dialog shows; accept() alone stores `zonasel`.
// Who opens the dialog restores the rows when it is left.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commerce/shipping/shipping_tables.h"
#include "store/shop/session.h"

namespace kv {

/// One of the four methods.
struct ShippingMethod {
  std::string module;   ///< name of a descriptor in the folder `code`, without extension
  std::string name;     ///< what the shopper sees, in the language being edited
  bool active = false;  ///< offered
};

/// An item of the list of preselection.
struct OfferedMethod {
  std::string name;
  int number = 0;  ///< of the method, 1 to 4
};
/// The list of preselection.
struct OfferedMethods {
  std::vector<OfferedMethod> items;
  int selected = -1;  ///< index of the preselected method; -1 when it isn't offered
};

struct ShippingCountry {
  std::int64_t ID = 0;
  std::string strID;  ///< the ID as text
  std::string paese;
  int zona = 0;  ///< 1 to 8; anything else is no zone
};

/// What OK came to.
struct ShippingAnswer {
  bool closed = false;
  int zone = 0;  ///< the tab to be shown, 1 to 8; 0: the present one
};

/// All routines that store return false when they could not, after telling the user why. Of names and numbers that are
/// typed the same failure is told once, until one could be stored.
class ShippingEditor {
 public:
  /// Both outlive this object. decimalSeparator: of the numbers in the fields.
  ShippingEditor(Session& session, UserPort& user, char decimalSeparator)
      : session_(session), user_(user), separator_(decimalSeparator) {}

  /// The modules that a method can have: the descriptors of the folder `code`, without extension, by name.
  std::vector<std::string> modules() const;

  /// Why the name or number that was left last could not be stored, in Italian; empty when it could, or was no number.
  const std::string& failure() const { return failure_; }

  // The methods, 1 to 4.
  ShippingMethod method(int number);
  /// Sets the module of a method; a method without a name takes that of the module.
  bool setModule(int number, const std::string& module);
  /// Sets the name in the language being edited; an empty one becomes that of the method's module.
  bool setMethodName(int number, const std::string& name);
  /// Switches a method on or off. Refused with a message, and false, when it is the preselected one or the last.
  bool switchMethod(int number, bool on);
  /// PopolaMetodi (fill the methods): the list of preselection.
  OfferedMethods PopolaMetodi();
  /// Stores the method that the shop begins with.
  bool preselectMethod(int number);

  // The countries.
  /// In the order in which they were entered.
  std::vector<ShippingCountry> countries();
  /// Adds a country of zone 1, its name cut to 50 characters: its ID. None for an empty name and after a failure.
  std::optional<std::int64_t> addCountry(std::string_view name);
  /// Deletes a country: the index of the row to show then, the next one or the last. None when it is refused, being the
  /// preselected one or the last.
  std::optional<std::size_t> deleteCountry(std::int64_t ID);
  /// Puts a country into another zone, 1 to 8.
  bool setCountryZone(std::int64_t ID, int zone);
  /// `strID` of the preselected country; empty when there is none.
  std::string preselectedCountry();
  /// Stores the country that the shop begins with; empty: none.
  bool preselectCountry(const std::string& strID);
  /// Names of the zones 1 to 8, index 0 being zone 1.
  std::vector<std::string> zoneNames();

  // Costs, by zone 1 to 8. Columns are those of the tables: "m1imp1", "m4spp10".
  /// A field as it is shown; empty for null.
  std::string number(int zone, std::string_view column);
  /// Stores a field that is left with this text, and returns what it shows then: the number in its normal format, or
  /// what it showed before when the text is no number of the column's range.
  std::string leaveNumber(int zone, std::string_view column, const std::string& typed);
  /// Whether customers of a zone may choose a method.
  bool isAllowed(int zone, int number);
  /// Stores that.
  bool allow(int zone, int number, bool allowed);
  /// Whether customers of a zone pay VAT.
  bool paysVat(int zone);
  /// Stores that.
  bool setPaysVat(int zone, bool pays);

  // Settings of all zones.
  bool isByWeight();
  bool setByWeight(bool byWeight);
  /// VAT of shipping in percent, as number() and leaveNumber() have the others.
  std::string vatRate();
  std::string leaveVatRate(const std::string& typed);
  /// Whether the shop lists countries by name rather than in the order of entry.
  bool isAlphabetic();
  /// Stores that.
  bool setAlphabetic(bool alphabetic);

  /// OK: stores `zonasel` when the preselected country exists and its zone has the preselected method. Otherwise the
  /// user is told what to change, and the dialog stays, on the tab of that zone where there is one.
  ShippingAnswer accept();

 private:
  /// A column of the one row of `pagamento`; Null after a failure.
  Value payment(const std::string& column);
  /// Stores one; false after a failure, which the user knows.
  bool storePayment(const std::string& column, const Value& value);
  /// A number of a table of one row as it is shown; empty for null.
  std::string shown(std::string_view table, std::string_view column);
  /// Stores a number that was typed, and returns what its field shows then.
  std::string leave(std::string_view table, std::string_view column, const std::string& typed);
  /// The column of a method's name in the language being edited.
  std::string nameColumn(int number) const;
  /// Whether a method is switched on.
  bool isActive(int number) { return asFlag(payment("attivo" + std::to_string(number))); }
  /// Shows a failure; true for none.
  bool told(const Result<>& outcome);
  /// The same, but a failure like the last one is shown once.
  bool toldOnce(const Result<>& outcome);
  /// Shows why something isn't done; false.
  bool refuse(std::string_view text);

  Session& session_;
  UserPort& user_;
  char separator_;
  std::string failure_, toldFailure_;
};

}  // namespace kv
