#include "prepare/carry/carrying.h"

#include <set>
#include <utility>

#include "platform/retry.h"
#include "prepare/carry/appended_check.h"
#include "prepare/carry/appending.h"
#include "prepare/carry/carried_documents.h"
#include "prepare/carry/carry_parts.h"
#include "prepare/carry/page_walk.h"
#include "prepare/memory_watch.h"
#include "prepare/opened_file.h"

namespace folioweld {

namespace {

void Append(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length, const std::string& bytes) {
  const SystemError error = TransferAll(bytes.size(), [&](std::size_t done) {
    return system.WriteFile(file, length + static_cast<std::int64_t>(done), bytes.data() + done,
                            bytes.size() - done);
  });
  if (error) throw NotCarried("it cannot be written: " + error.Words());
}

struct Plan {
  JoinedState Before;
  std::string Bytes;
  std::set<int> Written;  ///< numbers of the objects
  CarryReport Report;
};

Plan MakePlan(WindowsAPI& system, const CarryArguments& arguments, std::int64_t length) {
  const JoinedFile joined(system, arguments.Joined, length);
  QPDF& file = joined.File();
  Plan plan;
  plan.Before = StateOf(file, length);
  std::vector<CarriedDocument> documents =
      ReadDocuments(system, file, ReadList(system, arguments.List), plan.Report.Lost);
  GivePages(WalkPages(file), documents);
  Revision revision(file, std::move(documents));
  CarryParts(revision, arguments.Shown, arguments.Title);
  plan.Bytes = RevisionBytes(revision, length);
  joined.CheckReads();
  MemoryWatch::Check();
  plan.Written = revision.Written();
  const auto& lost = revision.Losses();
  plan.Report.Lost.insert(plan.Report.Lost.end(), lost.begin(), lost.end());
  plan.Report.Done = std::to_string(revision.Written().size()) + " objects added or changed";
  return plan;
}

}  // namespace

CarryReport Carry(WindowsAPI& system, const CarryArguments& arguments) {
  const MemoryWatch watch;
  const std::int64_t length = LookAt(system, arguments.Joined).Size;
  Plan plan = MakePlan(system, arguments, length);
  Append(system, arguments.Joined, length, plan.Bytes);
  const std::int64_t end = length + static_cast<std::int64_t>(plan.Bytes.size());
  CheckAppended(system, arguments.Joined, plan.Before, end, plan.Written);
  return std::move(plan.Report);
}

}  // namespace folioweld
