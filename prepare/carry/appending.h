#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// Where the joined file's table has an object; free numbers have no place.
struct ObjectPlace {
  std::int64_t Offset = -1;
  int Generation = 0;
};

/// By number, from 0 to the highest.
[[nodiscard]] std::vector<ObjectPlace> PlacesOf(QPDF& file);

/// The bytes that are appended to the joined file, which is `length` bytes long: the objects that the
/// revision adds and changes, one table that lists these and all others, and the trailer. Raises `NotCarried`
/// when the file would get too long or too many objects.
[[nodiscard]] std::string RevisionBytes(Revision& revision, std::int64_t length);

}  // namespace folioweld
