#include "commerce/replication/list_replication.h"

#include <algorithm>

namespace kv {
namespace {

constexpr std::string_view noDestination = "E' necessario selezionare almeno un listino di destinazione";
constexpr std::string_view what = "La replica del listino";
constexpr int replicatedSlots = 4;

/// A column family of the articles that is copied: how its columns are called, and how a field becomes another one's.
enum class Copy { Transformed, Unchanged, Flag };
struct Family {
  Copy copy;
  std::string (*column)(int listino);
};

template <int slot>
std::string slotColumn(int listino) {
  return variantColumn(slot, listino);
}
std::string suffixedName(const char* name, int listino) {
  return name + std::string(listinoSuffixes[static_cast<std::size_t>(listino)]);
}

std::vector<Family> familiesOf(const ListReplication& replication) {
  std::vector<Family> families{{Copy::Transformed, [](int listino) { return suffixedName("prezzo", listino); }}};
  if (replication.offers) {
    families.push_back({Copy::Unchanged, [](int listino) { return suffixedName("offerta", listino); }});
    families.push_back({Copy::Transformed, [](int listino) { return suffixedName("offertaprezzo", listino); }});
  }
  if (replication.quantityDiscounts) {
    families.push_back({Copy::Flag, [](int listino) { return suffixedName("scq", listino); }});
  }
  if (replication.variants) {
    for (auto* const column : {slotColumn<1>, slotColumn<2>, slotColumn<3>, slotColumn<replicatedSlots>}) {
      families.push_back({Copy::Unchanged, column});
    }
  }
  return families;
}

/// One field of an article: a count of ten-thousandths, a flag or an ID.
using Field = std::optional<std::int64_t>;
using Fields = std::array<Field, listini>;  ///< one family of a row, by price list

Field copied(Copy copy, Field value, const PriceRule& rule) {
  if (copy == Copy::Unchanged) return value;
  // The flag goes through the number rule: any factor but 0 leaves it as it is.
  if (copy == Copy::Flag) return rule.factor != 0 && value.value_or(0) != 0 ? 1 : 0;
  const auto price = value ? std::optional(Money::ofTenThousandths(*value)) : std::nullopt;
  return Trasforma(price, rule).tenThousandths();
}

/// The fields of one family after the destinations, in order, have taken the source's.
Fields replicated(Fields fields, const Family& family, const ListReplication& replication, const PriceRule& rule) {
  const auto source = static_cast<std::size_t>(replication.source);
  for (std::size_t destination = 0; destination < fields.size(); ++destination) {
    if (replication.destinations[destination]) fields[destination] = copied(family.copy, fields[source], rule);
  }
  return fields;
}

/// Whether one of the products of a family is out of the range of Money.
bool leavesRange(Fields fields, const ListReplication& replication, const PriceRule& rule) {
  const auto source = static_cast<std::size_t>(replication.source);
  for (std::size_t destination = 0; destination < fields.size(); ++destination) {
    if (!replication.destinations[destination] || !fields[source]) continue;
    const Money price = Money::ofTenThousandths(*fields[source]);
    if (isBeyondMoney(price, rule)) return true;
    fields[destination] = Trasforma(price, rule).tenThousandths();
  }
  return false;
}

/// An article whose fields change.
struct ChangedArticle {
  std::int64_t ID = 0;
  std::vector<Field> fields;  ///< family by family, those of the destinations in order
};

/// All that a replication would do to the articles.
struct ArticlePlan {
  std::vector<ChangedArticle> articles;
  std::vector<std::string> beyond;  ///< titles of those with a price out of range
  std::size_t fields = 0;           ///< that get another value
};

/// The walk over the articles, which only reads.
class ArticlePlanner {
 public:
  ArticlePlanner(const ListReplication& replication, const PriceRule& rule)
      : replication_(replication), rule_(rule), families_(familiesOf(replication)) {}

  Result<ArticlePlan> plan(Database& catalogue) {
    std::string query = "SELECT ID, titolo";
    for (const Family& family : families_) {
      for (int listino = 0; listino < listini; ++listino) query += ", " + family.column(listino);
    }
    auto rows = catalogue.prepare(query + " FROM articoli ORDER BY ID");
    if (!rows) return fail(rows.error());
    for (;;) {
      const auto found = rows->step();
      if (!found) return fail(found.error());
      if (!*found) return std::move(plan_);
      planRow(*rows);
    }
  }

 private:
  void planRow(const Statement& row) {
    ChangedArticle article{row.integer(0), {}};
    std::size_t changed = 0;
    bool beyond = false;
    int column = 2;
    for (const Family& family : families_) {
      Fields before;
      for (Field& field : before) {
        if (!row.isNull(column)) field = row.integer(column);
        ++column;
      }
      beyond = beyond || (family.copy == Copy::Transformed && leavesRange(before, replication_, rule_));
      changed += add(before, replicated(before, family, replication_, rule_), article);
    }
    if (beyond) plan_.beyond.emplace_back(row.text(1));
    if (changed == 0) return;
    plan_.fields += changed;
    plan_.articles.push_back(std::move(article));
  }
  /// Adds the destinations' fields of a family; how many have another value.
  std::size_t add(const Fields& before, const Fields& after, ChangedArticle& article) const {
    std::size_t changed = 0;
    for (std::size_t i = 0; i < after.size(); ++i) {
      if (!replication_.destinations[i]) continue;
      if (before[i] != after[i]) ++changed;
      article.fields.push_back(after[i]);
    }
    return changed;
  }

  const ListReplication& replication_;
  const PriceRule& rule_;
  std::vector<Family> families_;
  ArticlePlan plan_;
};

Result<> writeArticles(Database& catalogue, const ListReplication& replication, const ArticlePlan& plan) {
  std::string statement = "UPDATE articoli SET ";
  int index = 1;
  for (const Family& family : familiesOf(replication)) {
    for (int listino = 0; listino < listini; ++listino) {
      if (!replication.destinations[static_cast<std::size_t>(listino)]) continue;
      if (index > 1) statement += ", ";
      statement += family.column(listino) + " = ?" + std::to_string(++index);
    }
  }
  auto writer = catalogue.prepare(statement + " WHERE ID = ?1");
  if (!writer) return fail(writer.error());
  for (const ChangedArticle& article : plan.articles) {
    index = 1;
    writer->bind(index, article.ID);
    for (const Field& field : article.fields) {
      ++index;
      if (field) {
        writer->bind(index, *field);
      } else {
        writer->bindNull(index);
      }
    }
    if (auto done = writer->execute(); !done) return done;
  }
  return {};
}

/// The columns of the departments that are copied, destination first; each with its source.
std::vector<std::pair<std::string, std::string>> departmentColumns(const ListReplication& replication) {
  std::vector<std::pair<std::string, std::string>> columns;
  if (!replication.restrictions && !replication.departmentDiscounts) return columns;
  for (int listino = 0; listino < listini; ++listino) {
    if (!replication.destinations[static_cast<std::size_t>(listino)] || listino == replication.source) continue;
    const auto add = [&](const char* name) {
      columns.emplace_back(suffixedName(name, listino), suffixedName(name, replication.source));
    };
    if (replication.restrictions) add("inaccessibile");
    // The box of the quantity discounts decides here, not that of the departments' discounts.
    if (replication.quantityDiscounts) add("sconto");
  }
  return columns;
}

std::string joined(const std::vector<std::pair<std::string, std::string>>& columns, const char* between,
                   const char* separator) {
  std::string text;
  for (const auto& [to, from] : columns) text += (text.empty() ? "" : separator) + to + between + from;
  return text;
}

Result<> writeDepartments(Database& catalogue, const ListReplication& replication) {
  const auto columns = departmentColumns(replication);
  if (columns.empty()) return {};
  return catalogue.execute("UPDATE categorie SET " + joined(columns, " = ", ", ") + " WHERE " +
                           joined(columns, " IS NOT ", " OR "));
}

Result<ReplicationCount> countDepartments(Database& catalogue, const ListReplication& replication) {
  ReplicationCount count;
  const auto columns = departmentColumns(replication);
  if (columns.empty()) return count;
  auto query = catalogue.prepare("SELECT total(n), count(*) FROM (SELECT (" + joined(columns, " IS NOT ", ") + (") +
                                 ") AS n FROM categorie) WHERE n > 0");
  if (!query) return fail(query.error());
  const auto found = query->step();
  if (!found) return fail(found.error());
  count.fields = static_cast<std::size_t>(query->integer(0));
  count.rows = static_cast<std::size_t>(query->integer(1));
  return count;
}

}  // namespace

Result<ReplicationCount> countReplication(Database& catalogue, const ListReplication& replication,
                                          const PriceRule& rule) {
  const auto plan = ArticlePlanner(replication, rule).plan(catalogue);
  if (!plan) return fail(plan.error());
  auto count = countDepartments(catalogue, replication);
  if (!count) return count;
  count->fields += plan->fields;
  count->rows += plan->articles.size();
  count->beyond = plan->beyond;
  return count;
}

BulkEnd ReplicaListino(Database& catalogue, const ListReplication& replication, UserPort& user) {
  const auto percentage = readPercentage(replication.percentage);
  if (!percentage) {
    user.message(std::string(invalidPercentage), Icon::Exclamation);
    return BulkEnd::Stay;
  }
  if (std::ranges::none_of(replication.destinations, [](bool ticked) { return ticked; })) {
    user.message(std::string(noDestination), Icon::Exclamation);
    return BulkEnd::Stay;
  }
  const PriceRule rule = ruleOfPercentage(*percentage, replication.whole);
  const auto plan = ArticlePlanner(replication, rule).plan(catalogue);
  if (!plan) {
    showInterrupted(user, what, plan.error());
    return BulkEnd::Stay;
  }
  if (!plan->beyond.empty()) {
    showBeyondRange(user, plan->beyond);
    return BulkEnd::Stay;
  }
  const auto written = walkKeepingRows(catalogue, [&]() -> Result<> {
    if (auto done = writeArticles(catalogue, replication, *plan); !done) return done;
    return writeDepartments(catalogue, replication);
  });
  if (written) return BulkEnd::Done;
  showInterrupted(user, what, written.error());
  return BulkEnd::Interrupted;
}

}  // namespace kv
