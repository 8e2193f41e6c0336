#pragma once

#include <string>
#include <utility>

namespace folioweld {

/// The operating system's own error number; 0 means that nothing went wrong.
struct [[nodiscard]] SystemError {
  int Code = 0;

  explicit operator bool() const { return Code != 0; }

  /// The system's own words for the error, in the C locale's language; never empty.
  [[nodiscard]] std::string Words() const;
};

/// A value, or the reason why the system would not give one.
template <typename T>
class [[nodiscard]] SystemResult {
 public:
  SystemResult(T value) : value_(std::move(value)) {}           // NOLINT(google-explicit-constructor)
  SystemResult(SystemError error) : error_(error), value_{} {}  // NOLINT(google-explicit-constructor)

  [[nodiscard]] bool Ok() const { return error_.Code == 0; }
  [[nodiscard]] SystemError Error() const { return error_; }

  /// Meaningful only when Ok().
  [[nodiscard]] const T& Value() const { return value_; }
  T& Value() { return value_; }

 private:
  SystemError error_;
  T value_;
};

}  // namespace folioweld
