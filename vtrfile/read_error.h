#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace trvtrout::vtrfile {

// Bytes that can't be taken as a record: where they stand in the file, which record path was being read
// ("Schema/Tables/Items[12]/Fields/Items[3]/Spare[2]", positions counted from 1) and what was found there.
class ReadError : public std::exception {
 public:
  // Whether the bytes are bad in themselves, or what they say doesn't go with what stands behind them: then either may
  // be wrong, and so may what was read before.
  enum class Cause { kBadValue, kOutOfStep };

  ReadError(std::uint64_t offset, std::string found, Cause cause = Cause::kBadValue)
      : offset_(offset), may_begin_at_(offset), found_(std::move(found)), cause_(cause) {}

  std::uint64_t offset() const noexcept { return offset_; }
  // The damage may begin as early as here.
  std::uint64_t may_begin_at() const noexcept { return may_begin_at_; }
  const std::string& path() const noexcept { return path_; }
  const std::string& found() const noexcept { return found_; }
  const char* what() const noexcept override { return found_.c_str(); }

  // The part that was last read begins at `offset`.
  void read_since(std::uint64_t offset) noexcept {
    if (cause_ == Cause::kOutOfStep) may_begin_at_ = offset;
  }
  // Each level that the error passes puts its own step in front.
  void enter(const std::string& field) {
    path_ = path_.empty() || path_[0] == '[' ? field + path_ : field + '/' + path_;
  }
  void enter(std::uint64_t position) { enter('[' + std::to_string(position) + ']'); }

 private:
  std::uint64_t offset_;
  std::uint64_t may_begin_at_;
  std::string found_;
  Cause cause_;
  std::string path_;
};

}  // namespace trvtrout::vtrfile
