#include "dirmerge/file_ordering.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "engine/lexer.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr std::int16_t kKeyWidth = 16;

std::string Digits(int value, std::size_t width) {
  std::string digits = std::to_string(value);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

/// Parts the range around its middle element, which ends up at the index returned.
int Partition(std::vector<std::string>& names, int first, int last) {
  const auto at = [&](int index) -> std::string& { return names[static_cast<std::size_t>(index)]; };
  const int middle = (first + last) / 2;
  const std::string pivot = std::move(at(middle));
  if (middle != first) at(middle) = std::move(at(first));
  int lo = first;
  int hi = last;
  for (;;) {
    while (hi > lo && at(hi) >= pivot) --hi;
    if (hi <= lo) break;
    at(lo) = std::move(at(hi));
    ++lo;
    while (lo < hi && at(lo) < pivot) ++lo;
    if (lo >= hi) {
      lo = hi;
      break;
    }
    at(hi) = std::move(at(lo));
  }
  at(lo) = pivot;
  return lo;
}

}  // namespace

FileOrdering::FileOrdering(WindowsAPI& system, MergeShell& shell, const MergeState& state, LogLine log)
    : system_(system), shell_(shell), state_(state), log_(std::move(log)) {}

bool FileOrdering::Order(std::vector<std::string>& names, std::int16_t sortOrder) {
  const bool byDate = std::abs(sortOrder) == 2;
  LogNames("File name(", names);
  if (byDate) {
    for (std::string& name : names) name = GetDatePrefixedName(name, kKeyWidth);
    LogNames("Prefixed file name(", names);
  }
  if (names.size() > 1) QuickSortNames(names, 0, CheckedInt16(static_cast<std::int32_t>(names.size()) - 1));
  if (YieldAndCheckAbort(shell_, state_)) return false;
  if (byDate) {
    for (std::string& name : names) name.erase(0, static_cast<std::size_t>(kKeyWidth));
  }
  LogNames(byDate ? "De-prefixed sorted file name(" : "Sorted file name(", names);
  if (sortOrder < 0) {
    std::reverse(names.begin(), names.end());
    LogNames("Reversed ordered file name(", names);
  }
  return true;
}

std::string FileOrdering::GetDatePrefixedName(const std::string& fileName, std::int16_t width) {
  std::string key = DateKey(fileName);
  key.resize(static_cast<std::size_t>(std::max<std::int16_t>(width, 0)), ' ');
  return key + fileName;
}

void FileOrdering::QuickSortNames(std::vector<std::string>& names, std::int16_t first, std::int16_t last) {
  int from = first;
  int to = last;
  // The shorter part is sorted by recursion and the longer one by going round, so that no order of the
  // names nests deeply.
  for (;;) {
    if (YieldAndCheckAbort(shell_, state_) || to <= from) return;
    const int pivot = Partition(names, from, to);
    if (pivot - from < to - pivot) {
      QuickSortNames(names, static_cast<std::int16_t>(from), static_cast<std::int16_t>(pivot - 1));
      from = pivot + 1;
    } else {
      QuickSortNames(names, static_cast<std::int16_t>(pivot + 1), static_cast<std::int16_t>(to));
      to = pivot - 1;
    }
  }
}

void FileOrdering::LogNames(const std::string& label, const std::vector<std::string>& names) {
  if (!state_.LogEnabled) return;
  for (std::size_t i = 0; i < names.size(); ++i) log_(label + std::to_string(i) + ") = \"" + names[i] + "\"");
}

std::string FileOrdering::DateKey(const std::string& fileName) {
  const auto file = RetryInterrupted([&] { return system_.CreateFile(fileName, OpenMode::ReadExisting); });
  if (!file.Ok()) return {};
  const auto information = system_.GetFileInformationByHandle(file.Value());
  static_cast<void>(system_.CloseHandle(file.Value()));
  if (!information.Ok()) return {};
  const auto time = system_.FileTimeToLocalTime(information.Value().WriteSeconds);
  if (!time.Ok()) return {};
  const LocalTime& local = time.Value();
  return Digits(local.Year, 4) + Digits(local.Month, 2) + Digits(local.Day, 2) + Digits(local.Hour, 2) +
         Digits(local.Minute, 2) + Digits(local.Second, 2);
}

std::int16_t SortOrderFromSetting(const std::string& text) {
  const double value = LenientNumber(text);
  // Halves go to the even number.
  const double order = std::nearbyint(value);
  const bool known = std::abs(order) == 1 || std::abs(order) == 2;
  return known ? static_cast<std::int16_t>(order) : std::int16_t{1};
}

void StoreSortOrder(SettingsStore& settings, std::int16_t sortOrder) {
  // A choice that cannot be stored still holds for this run.
  static_cast<void>(settings.WriteSetting("MenuSort", std::to_string(sortOrder)));
}

}  // namespace folioweld
