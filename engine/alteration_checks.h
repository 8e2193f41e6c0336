#pragma once

#include "engine/merge_shell.h"
#include "engine/pdf_reader.h"
#include "engine/read_object.h"

namespace folioweld {

// What the output will show otherwise than the inputs. Each check takes an input as it was read, with the
// numbers of its own, and leaves what it finds with `NoteAlteration`. A cancel is raised as a broken rule.

/// Runs all of them; to be called between the reading and the renumbering.
void FindAlterations(MergeState& state, FileModule& files, MergeShell& shell);

/// What they leave out for a first input that is read alone, as if it stood anywhere among others. Its
/// catalog is not looked at: what a later document loses with it, no other form of the document would keep.
/// Returns the lowest number that a reference names and that the input does not have; -1 = none.
[[nodiscard]] std::int32_t FindAlterationsAmongOthers(MergeState& state, MergeShell& shell);

/// Whether the trailer of a section that was just read says the same to other programs, and that the newest
/// one tells of no encryption. To be called before the section counts as read.
void CheckTrailer(const ReadInput& input, MergeShell& shell, const XrefSectionInfo& section);

/// Whether a key stands twice in the dictionary, in any spelling; true when one does. `number` is the
/// dictionary's object; -1 = none, and the offset is known.
bool CheckRepeatedKeys(const ReadInput& input, MergeShell& shell, SeenDictionary& dictionary,
                       std::int32_t number, std::int64_t fileOffset = -1);

/// What the information dictionary, whose place is taken by a fixed one, is besides.
void CheckInformation(const ReadInput& input);

/// Whether the pages that the root of the page tree counts are those that its kids lead to.
void CheckPageTree(const ReadInput& input, MergeShell& shell);

/// What the pages of the second input show by its catalog, which the output does not have: layers that are
/// hidden, colours of a printing condition, fields of a form. `first` is the input whose catalog stays.
void CheckCatalog(const ReadInput& input, const ReadInput& first, MergeShell& shell);

/// The part of it about forms; both are what the catalogs give as /AcroForm.
void CheckForm(const ReadInput& input, std::string_view form, const ReadInput& first,
               std::string_view firstForm, MergeShell& shell);

/// Whether "endstream" stands where the data of an object's stream ends. For a length that is given directly
/// the reader asks at once, while that place is at hand; `CheckStreamEnds` asks for all others.
void CheckStreamEnd(MergeState& state, FileModule& files, std::int16_t slot, const ObjectEntry& entry);
void CheckStreamEnds(const ReadInput& input, FileModule& files, MergeShell& shell);

/// Where the input stands whose references are looked at.
enum class ReferencePlace {
  First,  ///< followed by a second input
  Later,
  Any  ///< tried alone
};

/// Whether every reference leads to the same object in the output; a later input's references to object 0 are
/// told when they are renumbered. Returns the number that `FindAlterationsAmongOthers` does; -1 but for
/// `Any`.
std::int32_t CheckReferences(const ReadInput& input, MergeShell& shell, ReferencePlace place);

}  // namespace folioweld
