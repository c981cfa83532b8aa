#include "embed/document.h"

#include <array>
#include <cstddef>
#include <map>
#include <mutex>
#include <new>
#include <utility>

namespace trvtrout::embed {
namespace {

constexpr int kUsualCodePage = 1252;

// The documents that weren't let go. What callers share is this alone, so that a handle which was let go is known for
// what it is.
struct Handles {
  std::mutex mutex;
  std::map<std::uintptr_t, std::shared_ptr<Document>> documents;
  std::uintptr_t last = 1;
};

// Never destroyed: a thread may still be in a call while the process ends.
Handles& handles() {
  alignas(Handles) static std::array<std::byte, sizeof(Handles)> room;
  static Handles& all = *new (room.data()) Handles;
  return all;
}

std::uintptr_t number_of(const void* handle) noexcept { return reinterpret_cast<std::uintptr_t>(handle); }

trvtrout_host with_code_page(trvtrout_host host) {
  if (host.code_page == 0) host.code_page = kUsualCodePage;
  return host;
}

}  // namespace

Document::Document(const trvtrout_host& host) : host_(with_code_page(host)), locale(host_.code_page) {}

void Document::begin() {
  message.clear();
  declined = false;
  watch.begin();
}

void Document::end() {
  reports.give_up();
  new_files.give_up();
}

trvtrout_document* handle_for(std::shared_ptr<Document> document) {
  Handles& all = handles();
  const std::scoped_lock lock(all.mutex);
  all.last += 2;
  all.documents.emplace(all.last, std::move(document));
  return reinterpret_cast<trvtrout_document*>(all.last);  // NOLINT(performance-no-int-to-ptr): nobody follows it
}

std::shared_ptr<Document> document_of(const trvtrout_document* handle) {
  Handles& all = handles();
  const std::scoped_lock lock(all.mutex);
  const auto found = all.documents.find(number_of(handle));
  return found == all.documents.end() ? nullptr : found->second;
}

bool is_handle(const void* made) noexcept { return number_of(made) % 2 == 1; }

bool let_go(const trvtrout_document* handle) {
  Handles& all = handles();
  // Destroyed outside the lock: a document can be large.
  std::shared_ptr<Document> gone;
  const std::scoped_lock lock(all.mutex);
  const auto found = all.documents.find(number_of(handle));
  if (found == all.documents.end()) return false;
  gone = std::move(found->second);
  all.documents.erase(found);
  return true;
}

}  // namespace trvtrout::embed
