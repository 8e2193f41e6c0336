#pragma once

#include <string>
#include <vector>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// An entry that says where something leads.
struct NameUse {
  Place Where;
  std::string Key;
  std::string Name;  ///< bytes; a name object's without its slash
  bool IsNameObject = false;
};

/// What leads somewhere in a document: its links, outline items and actions.
struct NameUses {
  std::vector<NameUse> Destinations;
  std::vector<NameUse> Attachments;  ///< targets of the actions that go to embedded files
  std::vector<NameUse> Pages;        ///< destinations with an index instead of a page; without name
  std::vector<Place> PageNumbers;    ///< those of such targets that have an index for "/P"
  std::vector<Place> EndPages;       ///< actions that go to the first or the last page
  std::vector<Place> Articles;       ///< actions that lead to one by its index or title
  std::vector<NameUse> WebLinks;     ///< actions whose addresses are relative
};

/// Actions that lead into other files are none of them. Raises `NotCarried` when the document is too large.
[[nodiscard]] NameUses FindNameUses(Revision& revision, const CarriedDocument& document);

/// Has it lead to another name, written as it was or as a string.
void ChangeUse(Revision& revision, const NameUse& use, const std::string& name, bool asNameObject);

/// The destination, with the document's page where it has the page's index (0-based); readers would take that
/// for an index in the joined file, which is right for the first document. One beyond its pages leads
/// nowhere, and not into another document.
[[nodiscard]] QPDFObjectHandle WithPage(const CarriedDocument& document, QPDFObjectHandle destination);

}  // namespace folioweld
