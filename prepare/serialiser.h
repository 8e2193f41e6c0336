#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "prepare/byte_sink.h"
#include "prepare/libqpdf.h"
#include "prepare/token_lines.h"

namespace folioweld {

/// What stands in the place of a reference.
class References {
 public:
  /// The value itself.
  static constexpr int kInPlace = 0;

  References() = default;
  References(const References&) = delete;
  References& operator=(const References&) = delete;
  virtual ~References() = default;

  /// The number that an indirect object has in the file, or `kInPlace`. An object whose value is null is
  /// never asked for.
  [[nodiscard]] virtual int NumberOf(const QPDFObjectHandle& object) const = 0;
  /// Of an indirect object with a number.
  [[nodiscard]] virtual int GenerationOf(const QPDFObjectHandle& /*object*/) const { return 0; }
  /// Whether the value, or what it refers to, is null.
  [[nodiscard]] virtual bool IsNull(const QPDFObjectHandle& value) const {
    return QPDFObjectHandle(value).isNull();
  }
};

/// Under which an object is found.
struct ObjectName {
  int Number = 0;
  int Generation = 0;
};

struct Trailer {
  ObjectName Root;              ///< of the catalog
  ObjectName Information;       ///< of the information dictionary; 0 = none
  std::vector<std::string> Id;  ///< the two identifiers, or nothing
};

/// Writes objects in the plain form that the engine reads without changing anything: each begins and ends its
/// lines, lines end between tokens only and are no longer than the engine takes, nothing but a blank and a
/// line feed is white space, and there is no comment but the marker after the header. Raises `NotPrepared`.
class Serialiser {
 public:
  /// `offset` is the place of the sink's first byte in the file, 0-based: above 0 where a file is appended
  /// to.
  Serialiser(ByteSink& sink, const References& references, std::int64_t offset = 0);

  /// `version` as in "1.7".
  void WriteHeader(std::string_view version);
  /// Any object but a stream.
  void WriteObject(const ObjectName& name, const QPDFObjectHandle& value);
  /// The bytes as they are; /Length is theirs, whatever the dictionary has.
  void WriteStream(const ObjectName& name, const QPDFObjectHandle& dictionary, std::string_view bytes);
  /// Tells where an object stands that the file had before.
  void SetOffset(const ObjectName& name, std::int64_t offset);
  /// One table of one subsection with all numbers up to the highest, of which those without an object are
  /// free, and the trailer.
  void WriteTableAndTrailer(const Trailer& trailer);

  /// Where the next byte will stand in the file.
  [[nodiscard]] std::int64_t Offset() const { return offset_; }

 private:
  struct Entry {
    std::int64_t Offset = -1;  ///< -1 = free
    int Generation = 65535;
  };

  void BeginObject(const ObjectName& name);
  void PutReferred(const QPDFObjectHandle& value);
  void PutValue(QPDFObjectHandle value);
  void PutEntries(QPDFObjectHandle dictionary, bool withLength);
  void EndObject();
  void WriteEntry(const Entry& entry);
  void Write(std::string_view bytes);

  ByteSink& sink_;
  const References& references_;
  std::int64_t offset_;
  std::vector<Entry> entries_;  ///< by number
  TokenLines lines_;
};

}  // namespace folioweld
