#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/file_buffer.h"
#include "engine/own_files.h"
#include "engine/prepared_copies.h"
#include "platform/windows_api.h"

namespace folioweld {

class ActivityLog;
class InputBuffer;
struct OpenFile;

/// Result codes of the positioned reads.
enum FileReadCode : std::int32_t {
  kBeyondEnd = -1,     ///< the position lies beyond the end of the file
  kNoLineEnd = -2,     ///< no line end within the bytes read
  kBadArguments = -3,  ///< negative handle, negative position, or a size below 1
  kNoLength = -4,      ///< the file's length could not be had, or is above 2,147,483,647
  kSeekFailed = -5,
  kReadFailed = -6
};

/// What there was to delete.
enum class OwnDeletion {
  Itself,   ///< the file that was made, or nothing any longer
  Another,  ///< something else under its name
};

/// Open files by number, positioned reads of lines and blocks, gathered writes, and a few whole-file
/// operations. Nothing here raises an error or shows a message: every failure is a code or false, and
/// `LastError` has the system's own words for it.
///
/// File numbers are 1 and up; a file belongs to whoever opened it until `Close`. A position is 1-based (the
/// first byte of a file is position 1), an offset is 0-based. Under the callers' block sizes lies a buffer
/// per file, so that a read or write near the last one costs a copy and no system call; a whole file is
/// never loaded.
class FileModule {
 public:
  explicit FileModule(WindowsAPI& system);
  FileModule(const FileModule&) = delete;
  FileModule& operator=(const FileModule&) = delete;
  /// Closes what is still open, as it stands.
  ~FileModule();

  // Open files.

  /// Opens a regular file for reading and remembers its length; where a copy was prepared of it, that one is
  /// opened in its place. -1 when it cannot be opened.
  [[nodiscard]] std::int16_t OpenForBinaryRead(const std::string& path);

  /// Opens a regular file for writing, created when missing and emptied otherwise. A file with further names
  /// keeps its contents under those and the path gets a file of its own. -1, with the file as it was, when it
  /// cannot be opened, is reached through a link or is the file of one of the file numbers that are open
  /// for reading, under whatever name, or the document that one of them is a copy of. EBUSY when another
  /// program is writing it.
  [[nodiscard]] std::int16_t OpenForBinaryWrite(const std::string& path);

  /// Writes out what is gathered and closes. False when the last bytes could not be written or the system
  /// reports an error for the close; the number is free afterwards in any case. A number below 1 is no error.
  [[nodiscard]] bool Close(std::int16_t fileNumber);

  /// Gives an output up: what was written is emptied again and what is gathered is forgotten. The number is
  /// free afterwards. Whether the path still named that very file just before is told in `stillNamed`, so
  /// that a file that took its place is not deleted in its stead.
  void Abandon(std::int16_t fileNumber, const std::string& path, bool& stillNamed);

  /// Whether the path names that very open file; false also when that cannot be told.
  [[nodiscard]] bool IsNamed(std::int16_t fileNumber, const std::string& path);

  /// What the system said of an open file when it was opened; nothing for any other number.
  [[nodiscard]] FileInformation InformationOf(std::int16_t fileNumber) const;

  /// The length remembered when the file was opened, or a negative code.
  [[nodiscard]] std::int32_t FileLength(std::int16_t fileNumber) const;

  /// Whether an open input is what it was when it was opened: not written to since, and neither its name, nor
  /// its links, nor its permissions changed.
  [[nodiscard]] bool InputIsUnchanged(std::int16_t fileNumber);

  /// Takes over the text for the given offset of an output; false when the file is not open for writing or
  /// bytes gathered before could not be written.
  [[nodiscard]] bool WriteAt(std::int16_t fileNumber, std::string_view text, std::int32_t offset);

  /// Takes over a block of an input for the given offset of an output. Blocks that follow each other in
  /// both files are gathered and copied together, at the latest by `Flush` or `Close`, so a failed read or
  /// write may show at a later call.
  [[nodiscard]] bool CopyBlock(std::int16_t inputNumber, std::int32_t inputOffset, std::int16_t outputNumber,
                               std::int32_t outputOffset, std::int32_t count);

  /// Writes out everything gathered.
  [[nodiscard]] bool Flush(std::int16_t fileNumber);

  /// Sets the end of an output, whatever its path may name by now.
  [[nodiscard]] bool SetFileSize(std::int16_t fileNumber, std::int32_t size);

  // Positioned reads. On every negative code the line or block is emptied, but for `kNoLineEnd` of
  // `ReadLineFromRandomFile` and `ReadLineChunk`, which give the bytes gathered.

  /// One buffer's worth: the line that begins at the position, or after the line ends there, without its line
  /// end. Returns its start (also in `lineStart`), or a code with `lineStart` -1. With `kNoLineEnd` the start
  /// is still given; where all bytes were line ends, it is the position after them.
  [[nodiscard]] std::int32_t ReadLineChunk(std::int16_t fileNumber, std::int32_t position,
                                           std::int16_t bufferSize, std::string& line,
                                           std::int32_t& lineStart, bool logging);

  /// A line of up to `bufferSize` x `mostTries` bytes. Returns the position of its first character, or a
  /// code; `kNoLineEnd` when it is still incomplete after the last try.
  [[nodiscard]] std::int32_t ReadLineFromRandomFile(std::int16_t fileNumber, std::int32_t position,
                                                    std::int16_t bufferSize, std::int16_t mostTries,
                                                    std::string& line, bool logging);

  /// What of an open input is in memory, for whoever reads one line after the other; null for any other
  /// number. It belongs to the file and is gone when that is closed.
  [[nodiscard]] const InputBuffer* Window(std::int16_t fileNumber) const;

  /// Up to `count` bytes, every value kept. Returns how many, fewer only at the end of the file, or a code.
  [[nodiscard]] std::int16_t ReadBlock(std::int16_t fileNumber, std::int32_t position, std::int16_t count,
                                       std::string& bytes);

  // Whole files.

  /// The path can be opened for reading and is no folder.
  [[nodiscard]] bool FileExists(const std::string& path);
  /// Removes the name, of a read-only file too, or empties the file when it cannot be removed; never follows
  /// a link, and a file with further names keeps its mode and its contents. No result: ask `FileExists` where
  /// it matters.
  void DeleteFile(const std::string& path);
  /// Deletes a file that the job made, or empties it; whatever else has its name by now is left alone.
  [[nodiscard]] OwnDeletion DeleteOwn(const std::string& path, const FileInformation& made);
  /// Empties an existing file; true when that worked.
  [[nodiscard]] bool TruncateFile(const std::string& path);
  /// Sets the end of an existing file.
  [[nodiscard]] bool SetFileSize(const std::string& path, std::int32_t size);

  // What else the callers ask about files.

  /// The system's error of the last failed operation.
  [[nodiscard]] SystemError LastError() const { return lastError_; }
  /// The same in words.
  [[nodiscard]] std::string LastReason() const;
  /// What is known of the files that the job made for itself. Such a path is opened only as long as it leads
  /// to the file that was made, untouched; it is never created anew, and only that file is deleted.
  [[nodiscard]] OwnFiles& Own() { return own_; }
  /// The documents that are read from a copy.
  [[nodiscard]] PreparedCopies& Prepared() { return prepared_; }
  [[nodiscard]] WindowsAPI& System() { return system_; }

  /// Where the line reader's warnings go; may be null.
  void SetLog(ActivityLog* log) { log_ = log; }

 private:
  [[nodiscard]] OpenFile* Find(std::int16_t fileNumber) const {
    if (fileNumber < 1 || static_cast<std::size_t>(fileNumber) > files_.size()) return nullptr;
    return files_[static_cast<std::size_t>(fileNumber) - 1].get();
  }
  [[nodiscard]] std::int16_t OpenOutput(const std::string& path, bool mayReplace);
  [[nodiscard]] std::int16_t ReplaceName(const std::string& path, WindowsAPI::Handle handle);
  std::unique_ptr<OpenFile> MakeRoom();
  [[nodiscard]] std::int16_t Store(std::unique_ptr<OpenFile> file);
  /// `own` is the file that was expected, if it was one of the job's own.
  [[nodiscard]] std::int16_t Refuse(WindowsAPI::Handle handle, SystemError error,
                                    const FileInformation* own = nullptr);
  SystemResult<FileInformation> Look(const std::string& path);
  void RemoveEmpty(const std::string& path);
  bool Fail(SystemError error);
  [[nodiscard]] bool IsOpenInput(const FileIdentity& identity) const;
  /// A view of `count` bytes from the 1-based position, or of as many as there are; 0 or a negative code.
  /// Defined in `file_lines.cpp`, where alone it is called.
  inline std::int32_t ViewUpTo(std::int16_t fileNumber, std::int64_t position, std::int16_t count,
                               std::string_view& bytes);
  [[nodiscard]] std::int32_t ContinueLine(std::int16_t fileNumber, std::int64_t position,
                                          std::int16_t bufferSize, std::string& line);
  void LogRetries(std::int16_t bufferSize, std::int16_t tries, std::int32_t code);

  WindowsAPI& system_;
  ActivityLog* log_ = nullptr;
  SystemError lastError_;
  bool replaced_ = false;  ///< whether it says that one of the job's own files is another one now
  OwnFiles own_;
  PreparedCopies prepared_;
  SpareFileBuffers spareBuffers_;
  std::vector<std::unique_ptr<OpenFile>> files_;
};

}  // namespace folioweld
