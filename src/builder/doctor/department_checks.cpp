// The checks of departments and variants.
#include <algorithm>

#include "builder/doctor/checks.h"
#include "platform/text/text.h"

namespace kv {
namespace {

Finding departmentFinding(const DoctorFacts& facts, std::size_t index, const std::string& text, std::string_view column,
                          int language = 1) {
  Finding finding;
  finding.text = "Reparto " + facts.departmentName(index) + ": " + text;
  finding.target = {FindingSubject::Department, facts.departments[index].ID, std::string(column), language, 0};
  return finding;
}

/// A variant is edited from an article that offers it; without one the finding leads nowhere.
Finding variantFinding(const DoctorFacts& facts, const VariantFact& variant, const std::string& text) {
  Finding finding;
  finding.text = "Variante " + variant.nome + ": " + text;
  finding.detail = std::to_string(variant.ID);
  if (variant.article == noIndex) {
    finding.target = {FindingSubject::Command, "", "", 1, 0};
  } else {
    finding.target = {FindingSubject::Article, std::to_string(facts.articles[variant.article].ID), variant.column, 1,
                      variant.listino};
  }
  return finding;
}

bool isHiddenBranch(const DoctorFacts& facts, std::size_t index) {
  for (std::size_t level = 0; index != noIndex && level <= facts.departments.size(); ++level) {
    if (facts.departments[index].isHidden) return true;
    index = facts.departments[index].parent;
  }
  return false;
}

FieldWrite defaultMark(const VariantValueFact& value, bool isDefault) {
  return {"dettagliop", value.ID, "selezionato", std::string(isDefault ? "." : " ")};
}

/// The first default, or the first value, alone is the default.
std::vector<FieldWrite> oneDefault(const std::vector<VariantValueFact>& values) {
  auto kept = std::ranges::find(values, true, &VariantValueFact::isDefault);
  if (kept == values.end()) return {defaultMark(values.front(), true)};
  std::vector<FieldWrite> writes;
  for (++kept; kept != values.end(); ++kept) {
    if (kept->isDefault) writes.push_back(defaultMark(*kept, false));
  }
  return writes;
}

}  // namespace

Findings findUntitledDepartments(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.departments.size(); ++i) {
    if ((facts.departments[i].untitled & 1U) != 0) {
      found.push_back(departmentFinding(facts, i, "manca il titolo, nel menu resta una riga vuota", "titolo"));
    }
  }
  return found;
}

Findings findUntranslatedDepartments(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.departments.size(); ++i) {
    const unsigned untitled = facts.departments[i].untitled;
    for (int language = 1; (untitled & 1U) == 0 && language < facts.languages; ++language) {
      if ((untitled >> static_cast<unsigned>(language) & 1U) == 0) continue;
      const std::string& name = facts.languageNames[static_cast<std::size_t>(language)];
      found.push_back(departmentFinding(facts, i, "manca il titolo in " + name, "titolo", language + 1));
    }
  }
  return found;
}

Findings findEmptyDepartments(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.departments.size(); ++i) {
    if (facts.departments[i].below > 0 || isHiddenBranch(facts, i)) continue;
    found.push_back(departmentFinding(facts, i, "non contiene articoli, chi lo apre trova una pagina vuota", ""));
  }
  return found;
}

Findings findHiddenBranches(const DoctorFacts& facts) {
  Findings found;
  for (std::size_t i = 0; i < facts.departments.size(); ++i) {
    const DepartmentFact& department = facts.departments[i];
    if (department.articles == 0 || !isHiddenBranch(facts, i)) continue;
    found.push_back(departmentFinding(
        facts, i, "è nascosto, ma i suoi articoli in catalogo compaiono ancora nelle ricerche", "nascosto"));
  }
  return found;
}

Findings findLostModels(const DoctorFacts& facts) {
  Findings found;
  if (facts.models.empty()) return found;
  for (std::size_t i = 0; i < facts.departments.size(); ++i) {
    const DepartmentFact& department = facts.departments[i];
    const auto isModel = [&](const std::string& model) { return equalsIgnoringCase(model, department.model); };
    if (std::ranges::any_of(facts.models, isModel)) continue;
    const std::string text = department.model.empty() ? "non ha un modello di pagina"
                                                      : "il template non ha il modello di pagina " + department.model;
    found.push_back(departmentFinding(facts, i, text, "template"));
    if (facts.models.size() > 1) continue;
    found.back().mending = "Usa " + facts.models.front();
    found.back().writes = {{"categorie", department.ID, "template", facts.models.front()}};
  }
  return found;
}

Findings findEmptyVariants(const DoctorFacts& facts) {
  Findings found;
  for (const VariantFact& variant : facts.variants) {
    if (variant.values.empty()) found.push_back(variantFinding(facts, variant, "non ha opzioni fra cui scegliere"));
  }
  return found;
}

Findings findVariantDefaults(const DoctorFacts& facts) {
  Findings found;
  for (const VariantFact& variant : facts.variants) {
    const auto defaults = std::ranges::count(variant.values, true, &VariantValueFact::isDefault);
    if (variant.values.empty() || defaults == 1) continue;
    const std::string text = defaults == 0 ? "nessuna opzione è predefinita" : "più di un'opzione è predefinita";
    found.push_back(variantFinding(facts, variant, text));
    found.back().mending = defaults == 0 ? "Usa la prima opzione" : "Tieni la prima";
    found.back().writes = oneDefault(variant.values);
  }
  return found;
}

Findings findDoubledValueCodes(const DoctorFacts& facts) {
  Findings found;
  for (const VariantFact& variant : facts.variants) {
    NameSet codes;
    for (const VariantValueFact& value : variant.values) {
      if (value.codice.empty() || codes.insert(foldCase(value.codice)).second) continue;
      found.push_back(variantFinding(facts, variant, "il codice " + value.codice + " è di più opzioni"));
      found.back().detail += "/" + std::to_string(value.ID);
    }
  }
  return found;
}

Findings findUntranslatedValues(const DoctorFacts& facts) {
  Findings found;
  for (const VariantFact& variant : facts.variants) {
    for (const VariantValueFact& value : variant.values) {
      for (int language = 0; language < facts.languages; ++language) {
        if ((value.untitled >> static_cast<unsigned>(language) & 1U) == 0) continue;
        const std::string& name = facts.languageNames[static_cast<std::size_t>(language)];
        found.push_back(variantFinding(facts, variant, "un'opzione è senza testo in " + name));
        found.back().detail += "/" + std::to_string(value.ID);
        found.back().target.language = language + 1;
      }
    }
  }
  return found;
}

}  // namespace kv
