#include "engine/own_files.h"

namespace folioweld {

const FileInformation* OwnFiles::Find(const std::string& path) const {
  // Most merges have none, and every open asks.
  if (files_.empty()) return nullptr;
  const auto found = files_.find(path);
  return found == files_.end() ? nullptr : &found->second;
}

bool IsSameFile(const FileInformation& made, const FileInformation& now) {
  return now.Identity == made.Identity && now.Owner == made.Owner && now.Kind == made.Kind;
}

bool IsUntouched(const FileInformation& made, const FileInformation& now) {
  return IsSameFile(made, now) && now.Mode == made.Mode && now.Links == made.Links;
}

/// The time of the last write alone says little: whoever can write a file can set that back.
bool IsSameState(const FileInformation& now, const FileInformation& before) {
  return now.Identity == before.Identity && now.Size == before.Size &&
         now.WriteSeconds == before.WriteSeconds && now.WriteNanoseconds == before.WriteNanoseconds &&
         now.ChangeSeconds == before.ChangeSeconds && now.ChangeNanoseconds == before.ChangeNanoseconds;
}

}  // namespace folioweld
