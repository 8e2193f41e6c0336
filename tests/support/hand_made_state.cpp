#include "tests/support/hand_made_state.h"

namespace folioweld::testing {

void MakeObjects(MergeState& state, std::int32_t first, std::int32_t second) {
  ResetMergeState(state);
  state.DocUsed(1) = true;
  state.DocUsed(2) = second > 0;
  state.DocObjectCount(1) = first;
  state.DocObjectCount(2) = second;
  state.ObjectsInDoc1 = first;
  state.ObjectsInDoc2 = second;
  state.ObjectsTotal = first + second;
  state.Objects.Reset(first + second);
  for (std::int32_t i = 0; i < first + second; ++i) {
    const bool ofSecond = i >= first;
    state.Objects[i].ObjNumber = ofSecond ? i - first : i;
    state.Objects[i].DocNo = ofSecond ? 2 : 1;
    state.Objects[i].Generation = 0;
    state.Objects[i].EntryType = 'n';
  }
  state.Objects[0].Generation = 65535;
  state.Objects[0].EntryType = 'f';
  state.Objects[0].OutOffset = 0;
}

void PutObject(MergeState& state, std::int32_t index, ObjectState objectState,
               const std::vector<std::string>& lines) {
  ObjectEntry& entry = state.Objects[index];
  entry.ObjState = objectState;
  entry.FirstLine = state.ObjLineCount;
  for (const std::string& line : lines) entry.LastLine = AppendObjLine(state, line);
}

void PutDictionary(MergeState& state, std::int32_t index, const std::string& body) {
  const std::string header = std::to_string(state.Objects[index].ObjNumber) + " " +
                             std::to_string(state.Objects[index].Generation) + " obj\r";
  PutObject(state, index, kWithoutStream, {header, body + "\r"});
}

void PutNumber(MergeState& state, std::int32_t index, const std::string& valueText) {
  PutDictionary(state, index, valueText);
  state.Objects[index].ObjState = kPlainNumber;
  state.Objects[index].ValueText = state.Texts.Keep(valueText);
}

std::string_view LastLineOf(const MergeState& state, std::int32_t index) {
  return state.ObjLines[state.Objects[index].LastLine];
}

}  // namespace folioweld::testing
