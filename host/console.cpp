#include "host/console.h"

#include <iostream>
#include <utility>

namespace trvtrout::host {
namespace {

thread_local CaughtOutput* catching = nullptr;
thread_local std::string complaint;

void pass_on(std::ostream& to, std::string_view text) {
  to.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace

std::ostream& out() { return catching ? catching->out_ : std::cout; }
std::ostream& err() { return catching ? catching->err_ : std::cerr; }

bool take_turn() { return !catching || catching->wait_(); }

const std::string& first_complaint() { return complaint; }
void forget_complaint() { complaint.clear(); }
void note_complaint(const std::string& line) {
  if (complaint.empty()) complaint = line;
}

CaughtOutput::CaughtOutput(std::function<bool()> wait) : wait_(std::move(wait)) {}

CaughtOutput::Scope::Scope(CaughtOutput& caught) {
  catching = &caught;
  forget_complaint();
}

CaughtOutput::Scope::~Scope() { catching = nullptr; }

bool CaughtOutput::is_catching() { return catching != nullptr; }

bool CaughtOutput::has_data() { return catching && catching->has_data_; }

void CaughtOutput::release() {
  is_released_ = true;
  for (const Piece& piece : pieces_) pass_on(piece.way == Way::kOut ? std::cout : std::cerr, piece.text);
  std::cout.flush();
  pieces_.clear();
}

void CaughtOutput::take(Way way, std::string_view text) {
  has_data_ = has_data_ || way == Way::kOut;
  if (is_released_) return pass_on(way == Way::kOut ? std::cout : std::cerr, text);
  if (pieces_.empty() || pieces_.back().way != way) pieces_.push_back({way, {}});
  pieces_.back().text += text;
}

CaughtOutput::Buffer::int_type CaughtOutput::Buffer::overflow(int_type character) {
  const char byte = traits_type::to_char_type(character);
  owner_.take(way_, {&byte, 1});
  return character;
}

std::streamsize CaughtOutput::Buffer::xsputn(const char* bytes, std::streamsize size) {
  owner_.take(way_, {bytes, static_cast<std::size_t>(size)});
  return size;
}

int CaughtOutput::Buffer::sync() {
  if (owner_.is_released_ && way_ == Way::kOut) std::cout.flush();
  return 0;
}

}  // namespace trvtrout::host
