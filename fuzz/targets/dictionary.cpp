// The dictionary parser, the rebuilding of its rows and the shift of references on any text.

#include "engine/pdf_builder.h"
#include "engine/pdf_reader.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

namespace {

/// Every row is reached once at most, and every text lies in the kept one.
int CountRows(const folioweld::MergeState& state, std::int32_t row, int depth) {
  int count = 0;
  folioweld::fuzz::Require(depth <= 101, "dictionaries nest at most as deep as the parser goes");
  for (; row >= 0; row = state.NameEntries[row].NameId) {
    ++count;
    folioweld::fuzz::Require(state.NameEntries[row].NameText.substr(0, 1) == "/",
                             "a key begins with a slash");
    if (state.NameEntries[row].NameFlag != 0) {
      count += CountRows(state, state.NameEntries[row].NameRef, depth + 1);
    }
    folioweld::fuzz::Require(count <= state.NameEntryCount, "rows form no circle");
  }
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  testing::MemorySystem system;
  FileModule files(system);
  MergeState state;
  MergeShell shell;
  PdfReader reader(state, files, shell);
  PdfBuilder builder(state, files, shell);
  ResetMergeState(state);
  // Row 0 is none of a catalog's, as the rebuilding takes it for the end.
  std::int32_t first = -1;
  reader.ParseDictionary(state.Texts.Keep("<</First 1>>"), 1, first);
  reader.ParseDictionary(state.Texts.Keep(fuzz::TextOf(data, size)), 1, first);
  fuzz::Require(state.DictDepth == 0, "the nesting is counted back");
  CountRows(state, first, 1);
  if (first >= 0) {
    const std::string rebuilt = builder.RebuildDictionaryText(first);
    fuzz::Require(rebuilt.size() <= 3 * size + 100, "rebuilding adds separators only");
  }
  state.ObjectsInDoc1 = 7;
  try {
    const std::string shifted = builder.ShiftObjectReferences(fuzz::TextOf(data, size));
    fuzz::Require(shifted.size() <= 2 * size, "a shift lengthens numbers by a digit at most");
  } catch (const OverflowError&) {
    // A number that no longer fits fails the pass.
  }
  return 0;
}
