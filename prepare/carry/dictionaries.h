#pragma once

#include <functional>
#include <set>
#include <string>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// A dictionary, and the indirect object in which it is written; there is none for what stands directly in a
/// catalog, since the new one is written anyhow and those of later documents are not.
struct Place {
  QPDFObjectHandle Dictionary;
  QPDFObjectHandle Owner;
};

/// The entry; null where `of` is no dictionary.
[[nodiscard]] QPDFObjectHandle EntryOf(QPDFObjectHandle of, const std::string& key);

/// The catalog in which values of the document can be changed: that of the revision for the first one.
[[nodiscard]] QPDFObjectHandle CatalogOf(Revision& revision, const CarriedDocument& document);

/// Sets an entry, and has the owner written anew.
void SetEntry(Revision& revision, const Place& place, const std::string& key, const QPDFObjectHandle& value);

/// Visits once each dictionary, those of streams included, that the document's pages, outline, form and
/// templates lead to; what stands under one of the keys `leftAlone` is not looked at. Raises `NotCarried`
/// when there are too many.
void ForEachDictionary(Revision& revision, const CarriedDocument& document,
                       const std::set<std::string>& leftAlone,
                       const std::function<void(const Place&)>& visit);

}  // namespace folioweld
