#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/windows_api.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// An open file as libqpdf reads it. libqpdf takes an object that it cannot read for null, so whoever used it
/// has to ask in the end whether everything could be read.
class SystemInput : public InputSource {
 public:
  /// The file stays open, and stays the caller's. `size` is its length.
  SystemInput(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t size);

  /// Raises `NotPrepared` when a read failed, or a signal asked the program to end.
  void CheckReads() const;

  qpdf_offset_t findAndSkipNextEOL() override;
  std::string const& getName() const override { return name_; }
  qpdf_offset_t tell() override { return offset_; }
  void seek(qpdf_offset_t offset, int whence) override;
  void rewind() override { offset_ = 0; }
  size_t read(char* bytes, size_t length) override;
  void unreadCh(char ch) override;

 private:
  /// The bytes at the offset that are in memory; none at the end of the file.
  [[nodiscard]] std::string_view Window();
  [[nodiscard]] bool IsThere() const;  ///< the byte at the offset, in memory
  void Fill(qpdf_offset_t start);

  WindowsAPI& system_;
  WindowsAPI::Handle file_;
  qpdf_offset_t size_;
  qpdf_offset_t offset_ = 0;
  std::string name_;
  std::unique_ptr<char[]> window_;
  qpdf_offset_t windowStart_ = 0;
  std::size_t buffered_ = 0;
  SystemError error_;
};

}  // namespace folioweld
