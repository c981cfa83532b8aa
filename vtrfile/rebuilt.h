#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/layout_walk.h"

namespace trvtrout::vtrfile {

// A file in the making out of pieces of another, which knows where its pieces came from.
class Rebuilt {
 public:
  using Place = const unsigned char*;

  std::size_t size() const noexcept { return bytes_.size(); }
  const std::string& bytes() const noexcept { return bytes_; }

  void copy(Place begin, Place end) {
    if (begin == end) return;
    if (!pieces_.empty() && pieces_.back().from.end == begin &&
        pieces_.back().at + pieces_.back().from.size() == size())
      pieces_.back().from.end = end;
    else
      pieces_.push_back({size(), {begin, end}});
    bytes_.append(reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin));
  }
  // What the file has of its own.
  void add(std::string_view bytes) { bytes_ += bytes; }
  template <class Number>
  void add_number(Number number) {
    bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  void add_text(std::string_view text) {
    add_number(static_cast<std::uint16_t>(text.size()));
    add(text);
  }
  // The least that the steps from `step` up to `behind` can be: everything empty.
  void add_empty(const Layout& layout, std::uint32_t step, std::uint32_t behind) {
    for (; step < behind; ++step) bytes_.append(static_cast<std::size_t>(layout.steps[step].least_bytes), '\0');
  }
  // Writes over what stands at `at`.
  void put(std::size_t at, const void* bytes, std::size_t size) { std::memcpy(bytes_.data() + at, bytes, size); }
  // Takes back all behind the first `size` bytes.
  void shrink(std::size_t size) {
    bytes_.resize(size);
    while (!pieces_.empty() && pieces_.back().at >= size) pieces_.pop_back();
    if (pieces_.empty()) return;
    ByteRange& last = pieces_.back().from;
    last.end = std::min(last.end, last.begin + (size - pieces_.back().at));
  }
  // Takes the bytes from `begin` to `end` out, which were copied by themselves.
  void erase(std::size_t begin, std::size_t end) {
    bytes_.erase(begin, end - begin);
    std::vector<Piece> kept;
    for (Piece piece : pieces_) {
      if (piece.at >= begin && piece.at < end) continue;
      const std::size_t behind = piece.at + static_cast<std::size_t>(piece.from.size());
      if (piece.at < begin && behind > begin) {
        // A piece that goes on in front of it, or behind.
        kept.push_back({piece.at, {piece.from.begin, piece.from.begin + (begin - piece.at)}});
        if (behind > end) kept.push_back({begin, {piece.from.begin + (end - piece.at), piece.from.end}});
        continue;
      }
      if (piece.at >= end) piece.at -= end - begin;
      kept.push_back(piece);
    }
    pieces_ = std::move(kept);
  }
  struct Piece {
    std::size_t at;  // in the file that is made
    ByteRange from;
  };
  // What was copied, in the order of the new file.
  const std::vector<Piece>& pieces() const noexcept { return pieces_; }

 private:
  std::string bytes_;
  std::vector<Piece> pieces_;
};

}  // namespace trvtrout::vtrfile
