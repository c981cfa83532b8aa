#include <fstream>

#include "platform/files/file_handle.h"
#include "tests/embed/host.h"

// Arguments that break the contract, where that can be told.
namespace trvtrout::tests {
namespace {

// Each function with a document and three texts, all else being right.
using Call = std::function<trvtrout_result(trvtrout_document*, const char*)>;

struct Places {
  char* text = nullptr;
  double modified = 0;
  std::string written;
  trvtrout_list_info list{.struct_size = sizeof list};
  trvtrout_damage damage{.struct_size = sizeof damage};
  trvtrout_salvaged salvaged{.struct_size = sizeof salvaged};
  trvtrout_comparison_counts counts{.struct_size = sizeof counts};
};

// Those that take a text too, which is given as it is.
std::map<std::string, Call> calls_with_text(Places& at) {
  return {
      {"read", [](auto* d, auto* t) { return trvtrout_read(d, t, 0); }},
      {"salvage", [](auto* d, auto* t) { return trvtrout_salvage(d, t, 0); }},
      {"report", [&](auto* d, auto* t) { return trvtrout_report(d, 0, t, 1, &at.text); }},
      {"compare", [&](auto* d, auto* t) { return trvtrout_compare(d, 0, t, t, &at.text); }},
      {"output_name", [&](auto* d, auto* t) { return trvtrout_output_name(d, t, t, &at.text, nullptr); }},
      {"delete_report", [](auto* d, auto* t) { return trvtrout_delete_report(d, t); }},
      {"workbook_report", [](auto* d, auto* t) { return trvtrout_workbook_report(d, t, t, t); }},
      {"workbook_comparison",
       [](auto* d, auto* t) { return trvtrout_workbook_comparison(d, t, t, t, nullptr, nullptr, 0); }},
      {"recover", [&](auto* d, auto* t) { return trvtrout_recover(d, t, &at.text); }},
      {"export_database", [](auto* d, auto* t) { return trvtrout_export_database(d, t); }},
      {"import", [](auto* d, auto* t) { return trvtrout_import(d, t, t); }},
  };
}

std::map<std::string, Call> calls_without_text(Places& at) {
  return {
      {"set_stop", [](auto* d, auto*) { return trvtrout_set_stop(d, 0); }},
      {"set_report_folder", [](auto* d, auto*) { return trvtrout_set_report_folder(d, nullptr); }},
      {"get_damage", [&](auto* d, auto*) { return trvtrout_get_damage(d, &at.damage); }},
      {"get_salvaged", [&](auto* d, auto*) { return trvtrout_get_salvaged(d, &at.salvaged); }},
      {"get_text", [&](auto* d, auto*) { return trvtrout_get_text(d, 0, &at.text, nullptr); }},
      {"get_list", [&](auto* d, auto*) { return trvtrout_get_list(d, 0, &at.list); }},
      {"get_modified", [&](auto* d, auto*) { return trvtrout_get_modified(d, &at.modified); }},
      {"get_counts", [&](auto* d, auto*) { return trvtrout_get_comparison_counts(d, &at.counts); }},
      {"diff", [&](auto* d, auto*) { return trvtrout_diff(d, d, nullptr, append, &at.written, nullptr); }},
      {"export", [&](auto* d, auto*) { return trvtrout_export(d, 0, append, &at.written); }},
  };
}

TEST(EmbedHostile, HandlesThatAreNone) {
  Places at;
  auto calls = calls_with_text(at);
  calls.merge(calls_without_text(at));
  trvtrout_document* gone = nullptr;
  ASSERT_EQ(trvtrout_new(nullptr, &gone), TRVTROUT_OK);
  ASSERT_EQ(trvtrout_free(gone), TRVTROUT_OK);
  EXPECT_EQ(trvtrout_free(gone), TRVTROUT_INVALID_HANDLE);
  int here = 0;
  for (auto* const none :
       {static_cast<trvtrout_document*>(nullptr), gone, reinterpret_cast<trvtrout_document*>(&here)}) {
    for (const auto& [name, call] : calls) EXPECT_EQ(call(none, "x.vtr"), TRVTROUT_INVALID_HANDLE) << name;
    EXPECT_STREQ(trvtrout_last_message(none), trvtrout_result_text(TRVTROUT_INVALID_HANDLE));
  }
  EXPECT_EQ(trvtrout_free(nullptr), TRVTROUT_OK);
  const EmbeddedDocument document;
  EXPECT_EQ(trvtrout_diff(document, gone, nullptr, nullptr, nullptr, nullptr), TRVTROUT_INVALID_HANDLE);
  EXPECT_EQ(trvtrout_workbook_comparison(document, "a", "b", "c", document, gone, 1), TRVTROUT_INVALID_HANDLE);
}

TEST(EmbedHostile, TextsThatAreNone) {
  Places at;
  EmbeddedDocument document;
  document.read(sample_path("plant.vtr"));
  for (const auto& [name, call] : calls_with_text(at)) {
    EXPECT_EQ(call(document, nullptr), TRVTROUT_INVALID_ARGUMENT) << name;
    EXPECT_NE(document.message().find("is NULL"), std::string::npos) << name;
    EXPECT_EQ(call(document, "\xC3(.vtr"), TRVTROUT_INVALID_TEXT) << name;
    EXPECT_EQ(call(document, "\xED\xB2\x80"), TRVTROUT_INVALID_TEXT) << name;  // half a pair
    EXPECT_EQ(call(document, ""), TRVTROUT_INVALID_ARGUMENT) << name;
    EXPECT_EQ(call(document, "a\\b.vtr"), TRVTROUT_INVALID_ARGUMENT) << name;
  }
  EXPECT_EQ(at.text, nullptr);
  EXPECT_EQ(document.text(TRVTROUT_TEXT_CODE), "PLANT");
}

TEST(EmbedHostile, PlacesAndNumbersThatAreNone) {
  EmbeddedDocument document;
  const std::string path = sample_path("plant.vtr");
  document.read(path);
  char* text = nullptr;
  EXPECT_EQ(trvtrout_new(nullptr, nullptr), TRVTROUT_INVALID_ARGUMENT);
  EXPECT_EQ(trvtrout_get_text(document, 0, nullptr, nullptr), TRVTROUT_INVALID_ARGUMENT);
  EXPECT_EQ(trvtrout_get_modified(document, nullptr), TRVTROUT_INVALID_ARGUMENT);
  EXPECT_EQ(trvtrout_get_list(document, 0, nullptr), TRVTROUT_INVALID_ARGUMENT);
  EXPECT_EQ(trvtrout_report(document, 0, path.c_str(), 1, nullptr), TRVTROUT_INVALID_ARGUMENT);
  EXPECT_EQ(trvtrout_export(document, 0, nullptr, nullptr), TRVTROUT_INVALID_ARGUMENT);
  const trvtrout_diff_options options{.struct_size = sizeof options, .only = nullptr, .only_count = 2};
  EXPECT_EQ(trvtrout_diff(document, document, &options, nullptr, nullptr, nullptr), TRVTROUT_INVALID_ARGUMENT);
  std::string written;
  for (const int32_t none : {-1, 1000, INT32_MIN, INT32_MAX}) {
    trvtrout_list_info list{.struct_size = sizeof list};
    EXPECT_EQ(trvtrout_read(document, path.c_str(), none), TRVTROUT_INVALID_ARGUMENT);
    EXPECT_EQ(trvtrout_get_text(document, none, &text, nullptr), TRVTROUT_INVALID_ARGUMENT);
    EXPECT_EQ(trvtrout_get_list(document, none, &list), TRVTROUT_INVALID_ARGUMENT);
    EXPECT_EQ(trvtrout_report(document, none, path.c_str(), 1, &text), TRVTROUT_INVALID_ARGUMENT);
    EXPECT_EQ(trvtrout_export(document, none, append, &written), TRVTROUT_INVALID_ARGUMENT);
    EXPECT_EQ(trvtrout_part_name(none), nullptr);
    EXPECT_EQ(trvtrout_result_text(none), nullptr);
  }
}

TEST(EmbedHostile, SizesOfStructs) {
  struct Larger {
    trvtrout_host host;
    std::uint64_t later;
  } larger{{.struct_size = sizeof larger}, 0};
  trvtrout_document* document = nullptr;
  EXPECT_EQ(trvtrout_new(&larger.host, &document), TRVTROUT_OK);
  trvtrout_free(document);
  larger.later = 1;
  EXPECT_EQ(trvtrout_new(&larger.host, &document), TRVTROUT_WRONG_SIZE);
  EXPECT_EQ(document, nullptr);
  const EmbeddedDocument open;
  for (const std::uint32_t size : {0u, 4u, std::uint32_t{sizeof(trvtrout_host)} - 1, 0xFFFFFFFFu}) {
    const trvtrout_host host{.struct_size = size};
    EXPECT_EQ(trvtrout_new(&host, &document), TRVTROUT_WRONG_SIZE) << size;
  }
  for (const std::uint32_t size : {0u, 4u, std::uint32_t{sizeof(trvtrout_damage)} - 1, 0xFFFFFFFFu}) {
    trvtrout_damage damage{.struct_size = size};
    EXPECT_EQ(trvtrout_get_damage(open, &damage), TRVTROUT_WRONG_SIZE) << size;
  }
  for (const int32_t none : {-1, 1, 1200, 37}) {
    const trvtrout_host host{.struct_size = sizeof host, .code_page = none};
    EXPECT_EQ(trvtrout_new(&host, &document), TRVTROUT_NO_CODE_PAGE) << none;
  }
}

TEST(EmbedHostile, FilesThatAreNone) {
  const fakes::TemporaryFolder folder;
  const std::string other = folder.put("other.txt", "not a document at all"), empty = folder.put("empty.vtr", "");
  EmbeddedDocument document;
  document.read(folder.at("none.vtr"), TRVTROUT_PRIMARY, TRVTROUT_NO_FILE);
  document.read(folder.at("none/none.vtr"), TRVTROUT_PRIMARY, TRVTROUT_NO_FILE);
  document.read(folder.at(""), TRVTROUT_PRIMARY, TRVTROUT_FILE_ERROR);
  document.read(other, TRVTROUT_PRIMARY, TRVTROUT_NOT_A_DOCUMENT);
  document.read(empty, TRVTROUT_PRIMARY, TRVTROUT_NOT_A_DOCUMENT);
  document.read(sample_path("odd/version-01.02.01.vtr"), TRVTROUT_PRIMARY, TRVTROUT_UNSUPPORTED);
  EXPECT_EQ(document.host.prompts.size(), 1u);
  EXPECT_EQ(trvtrout_salvage(document, other.c_str(), 0), TRVTROUT_NOT_A_DOCUMENT);
  EXPECT_EQ(trvtrout_import(document, other.c_str(), folder.at("new.vtr").c_str()), TRVTROUT_FAILED);
  EXPECT_NE(document.message().find("line 1"), std::string::npos);
  EXPECT_EQ(trvtrout_recover(EmbeddedDocument(), folder.at("new.vtr").c_str(), nullptr), TRVTROUT_INVALID_ARGUMENT);
  const std::string held = folder.put("held.vtr", file_bytes(sample_path("plant.vtr")));
  const platform::FileHandle handle(held, "hold", platform::Access::kWrite, platform::Creation::kNever);
  document.read(held, TRVTROUT_PRIMARY, TRVTROUT_FILE_HELD);
}

}  // namespace
}  // namespace trvtrout::tests
