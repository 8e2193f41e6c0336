#pragma once

#include <string>

#include "engine/file_module.h"
#include "engine/merge_state.h"
#include "engine/pdf_reader.h"
#include "tests/support/document_builder.h"
#include "tests/support/faulting_system.h"
#include "tests/support/recording_shell.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// A reader over freshly reset state, with what it needs around it.
class ReaderSetup {
 public:
  ReaderSetup() { ResetMergeState(State); }

  /// Writes the bytes to a file and opens it as the input of the slot.
  void Open(std::int16_t slot, const std::string& bytes) {
    const std::string path = Folder.Write("input" + std::to_string(slot) + ".pdf", bytes);
    State.DocFileNumber(slot) = Files.OpenForBinaryRead(path);
    State.DocUsed(slot) = true;
  }

  /// Opens the bytes and reads the section at the 0-based offset.
  XrefSectionInfo ReadSection(std::int16_t slot, const std::string& bytes, std::int32_t offset = 0) {
    Open(slot, bytes);
    return Reader.ReadXrefSection(slot, offset);
  }

  /// Opens the document and reads its newest section.
  XrefSectionInfo Load(std::int16_t slot, DocumentBuilder& builder) {
    const std::string bytes = builder.Build();
    return ReadSection(slot, bytes, static_cast<std::int32_t>(builder.XrefOffset()));
  }

  /// Loads the document and scans its objects.
  bool Scan(std::int16_t slot, DocumentBuilder& builder) {
    return Load(slot, builder).SectionOk && Reader.ScanObjects(slot);
  }

  /// Parses a text that the state keeps; `First` becomes the first row.
  std::int32_t Parse(const std::string& text, std::int32_t start = 1) {
    return Reader.ParseDictionary(State.Texts.Keep(text), start, First);
  }

  [[nodiscard]] const NameEntry& Row(std::int32_t index) const { return State.NameEntries[index]; }

  TempFolder Folder;
  FaultingSystem System;
  FileModule Files{System};
  MergeState State;
  RecordingShell Shell;
  PdfReader Reader{State, Files, Shell};
  std::int32_t First = -2;
};

/// The text repeated.
inline std::string Repeat(const std::string& text, int times) {
  std::string repeated;
  repeated.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
}

}  // namespace folioweld::testing
