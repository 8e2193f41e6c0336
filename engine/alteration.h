#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// What a reader of the output sees otherwise than a reader of an input, although the merge succeeds.
enum class AlterationKind : std::uint8_t {
  Encrypted,             ///< the output's trailer has no /Encrypt
  InformationShared,     ///< /Info, whose object is replaced, names an object that is something else
  PageCountWrong,        ///< the root's /Count is not the number of pages that its /Kids lead to
  PageTreeRepeated,      ///< a node of the page tree is reached more than once
  PageTreeIncomplete,    ///< a node of the page tree is not there or is no dictionary
  PageTreeHasParent,     ///< the root of the page tree, which gets a /Parent, has one
  StartXrefDisputed,     ///< others take another one of two "startxref"
  TrailerReadOtherwise,  ///< others read another value in the trailer
  HybridPartLost,        ///< what only the cross-reference stream beside the table lists
  KeyRepeated,           ///< of the trailer, the catalog or the root of the page tree
  LayersShown,           ///< the lost catalog hides layers
  OutputIntentLost,      ///< the lost catalog has a printing condition
  FieldsDrawnOtherwise,  ///< the lost catalog's form decides how a field is drawn
  NotCarriedOver,        ///< a part of the lost catalog that was to be carried over, and could not be
  StreamEndsElsewhere,   ///< others look for "endstream", as it does not stand where /Length says
  StringLosesBytes,      ///< blanks before its line ends, or empty lines
  ReferenceNotSeen,      ///< its number is not raised with those of the second input
  ReferenceToLater,      ///< to an object that the document does not have, and a later one has
  ReferenceToFiller,     ///< to object 0, which the output has
  GenerationChanged,     ///< an object's header and the table give different ones
  ObjectLeftOut,         ///< in use, with the generation of free ones
  ObjectCutShort         ///< its end was taken for one within a string, a comment or a name
};

/// All places of one kind in one document.
struct Alteration {
  AlterationKind Kind{};
  std::int32_t ObjectNumber = -1;  ///< of the first place, as numbered in the document; -1 = none
  std::int64_t FileOffset = -1;    ///< of that object, 0-based, in the document; -1 = not known
  std::int32_t Count = 1;          ///< places
  std::string Detail;              ///< what the first place gives, such as a key; may be empty
  bool Told = false;               ///< by a merge that succeeded
};

/// A document of the user's, as an input or an output holds it.
struct SourceDocument {
  std::string Name;              ///< full path
  std::int32_t FirstObject = 0;  ///< what its object numbers are raised by in the file
  bool Rewritten = false;  ///< the file is an output of this run, and the offsets are not the document's
  std::vector<Alteration> Alterations;
  FileInformation Read{};  ///< of the file that was read for it, when that was opened
};

/// One sentence: the document (by the given name), the object, the offset, what is altered and how often.
[[nodiscard]] std::string Sentence(const Alteration& alteration, const std::string& documentName);

/// A piece of a document for a `Detail`: its beginning, with a "?" for what is no printable ASCII character.
[[nodiscard]] std::string ShownPiece(std::string_view text);

}  // namespace folioweld
