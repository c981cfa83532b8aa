#pragma once

#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "embed/trvtrout.h"
#include "tests/fakes/temporary_folder.h"
#include "tests/support.h"

// A host of the C interface, as its tests need one.
namespace trvtrout::tests {

// What a host is asked, and what it answers.
struct Host {
  std::vector<std::string> prompts;
  int32_t answer = TRVTROUT_ANSWER_CANCEL;
  std::string path;        // chosen; none when it's empty
  int stop_at = 0;         // stops at this call of progress, counted from 1; 0: never
  int told = 0;            // calls of progress
  std::uint64_t done = 0;  // of the last one
  std::uint64_t total = 0;
  std::function<void()> on_progress = [] {};

  trvtrout_host callbacks();
};

// A document and its host.
class EmbeddedDocument {
 public:
  EmbeddedDocument() {
    const trvtrout_host callbacks = host.callbacks();
    EXPECT_EQ(trvtrout_new(&callbacks, &handle_), TRVTROUT_OK);
  }
  ~EmbeddedDocument() { trvtrout_free(handle_); }
  EmbeddedDocument(const EmbeddedDocument&) = delete;
  EmbeddedDocument& operator=(const EmbeddedDocument&) = delete;

  operator trvtrout_document*() const { return handle_; }
  std::string message() const { return trvtrout_last_message(handle_); }
  std::string text(int32_t which) const;
  // Reads the document and holds the result to `expected`.
  void read(const std::string& path, int32_t role = TRVTROUT_PRIMARY, trvtrout_result expected = TRVTROUT_OK) const {
    EXPECT_EQ(trvtrout_read(handle_, path.c_str(), role), expected) << path << ": " << message();
  }

  Host host;

 private:
  trvtrout_document* handle_ = nullptr;
};

inline std::string sample_path(const std::string& name) { return SAMPLES "/" + name; }
// A text that a call handed out; it's freed.
std::string taken(char* text);
// Appends what is written to the std::string that `context` is.
int32_t append(void* context, const char* bytes, size_t count);
void replace_all(std::string& text, const std::string& what, const std::string& by);
// A report without the moments in it.
std::string without_moments(const std::string& report);
// The approved text for these files, as it comes of a document at `path`.
std::string expected_report(const std::string& files, const std::string& kind, int32_t part, const std::string& path,
                            const std::string& secondary = {});

}  // namespace trvtrout::tests
