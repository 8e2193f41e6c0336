#include "prepare/carry/carried_documents.h"

#include <memory>
#include <new>
#include <utility>

#include "engine/own_files.h"
#include "platform/retry.h"
#include "prepare/carry/sources.h"
#include "prepare/losses.h"
#include "prepare/memory_watch.h"
#include "prepare/not_prepared.h"
#include "prepare/opened_file.h"
#include "prepare/system_input.h"

namespace folioweld {

namespace {

/// As many documents as a file can hold have not as many bytes of names.
constexpr std::int64_t kLongestList = 128 * 1024 * 1024;

void ReadJoined(WindowsAPI& system, QPDF& file, const JoinedDocument& joined, CarriedDocument& document) {
  const OpenedFile opened(system, joined.Path, OpenMode::ReadExisting, "it");
  const FileInformation found = LookAt(system, opened.Handle());
  if (!IsSameState(found, joined.Known)) throw NotCarried("it was changed since it was joined");
  const auto input = std::make_shared<SystemInput>(system, opened.Handle(), found.Size);
  QPDF source;
  source.setSuppressWarnings(true);
  source.setAttemptRecovery(false);
  source.processInputSource(input);
  ReadSource(source, file, document);
  input->CheckReads();
}

}  // namespace

std::vector<JoinedDocument> ReadList(WindowsAPI& system, WindowsAPI::Handle list) {
  const std::int64_t size = LookAt(system, list).Size;
  if (size > kLongestList) throw NotCarried("the list of documents is too long");
  std::string bytes(static_cast<std::size_t>(size), '\0');
  for (std::size_t done = 0; done < bytes.size();) {
    const auto part = RetryInterrupted([&] {
      return system.ReadFile(list, static_cast<std::int64_t>(done), bytes.data() + done, bytes.size() - done);
    });
    if (!part.Ok()) throw NotCarried("the list of documents cannot be read: " + part.Error().Words());
    if (part.Value() == 0) break;
    done += part.Value();
  }
  auto documents = ReadJoinedDocuments(bytes);
  if (!documents || documents->empty()) throw NotCarried("the list of documents is broken");
  return std::move(*documents);
}

std::vector<CarriedDocument> ReadDocuments(WindowsAPI& system, QPDF& file,
                                           const std::vector<JoinedDocument>& list,
                                           std::vector<CarryLoss>& losses) {
  const int end = file.getTrailer().getKey("/Size").getIntValueAsInt();
  std::vector<CarriedDocument> documents(list.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    CarriedDocument& document = documents[i];
    document.Index = static_cast<int>(i) + 1;
    document.Name = list[i].Name;
    document.FirstObject = list[i].FirstObject;
    document.EndObject = i + 1 < list.size() ? list[i + 1].FirstObject : end;
    const bool isWithin =
        document.FirstObject >= 0 && document.FirstObject < document.EndObject && document.EndObject <= end;
    if (!isWithin) throw NotCarried("the list of documents is not that of the joined file");
    try {
      ReadJoined(system, file, list[i], document);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& why) {
      MemoryWatch::Check();
      losses.push_back({document.Index, "catalog", WordsOf(why)});
    }
  }
  return documents;
}

}  // namespace folioweld
