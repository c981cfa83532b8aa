#include <array>
#include <filesystem>
#include <fstream>
#include <set>

#include "component/TarvelVtrOut_InOut.h"
#include "platform/files/local_files.h"
#include "spreadsheet/workbook_file.h"
#include "tests/embed/host.h"
#include "tests/fakes/fake_services.h"

// The C interface beside the class that it leads to.
namespace trvtrout::tests {
namespace {

namespace fs = std::filesystem;

class Embed : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return folder_.at(name); }
  std::string copy_of(const std::string& name) const {
    fs::copy_file(sample_path(name), at(fs::path(name).filename()), fs::copy_options::overwrite_existing);
    return at(fs::path(name).filename());
  }
  std::set<std::string> files() const {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(at(""))) all.insert(entry.path().filename());
    return all;
  }

  fakes::TemporaryFolder folder_;
};

trvtrout_list_info list_of(const EmbeddedDocument& document, int32_t list) {
  trvtrout_list_info info{.struct_size = sizeof info};
  EXPECT_EQ(trvtrout_get_list(document, list, &info), TRVTROUT_OK) << list;
  return info;
}

// The accessors of the class by the number of their list; the one of the definitions has texts too.
using Numbers = std::array<std::int32_t, 4>;  // count, current, max, size
using Utility = TarvelVtrOut_InOut;
template <auto Operation>
std::u16string tell(Utility& utility, Numbers& numbers) {
  if constexpr (std::is_invocable_v<decltype(Operation), Utility&, int&, int&, int&, int&>) {
    return (utility.*Operation)(numbers[0], numbers[1], numbers[2], numbers[3]);
  } else if constexpr (std::is_invocable_v<decltype(Operation), Utility&, int&, int&>) {
    return (utility.*Operation)(numbers[0], numbers[3]);
  } else {
    return (utility.*Operation)(numbers[3]);
  }
}
std::u16string tell_data_send(Utility& utility, Numbers& numbers) {
  std::u16string file, version;
  return utility.GetDsmInfo(numbers[0], file, version, numbers[3]);
}
constexpr std::array kAccessors = {
    tell<&Utility::GetTableInfo>,   tell<&Utility::GetFieldsInfo>,   tell<&Utility::GetLookupInfo>,
    tell<&Utility::GetRelInfo>,     tell<&Utility::GetHidTableInfo>, tell<&Utility::GetHidFieldsInfo>,
    tell<&Utility::GetHidLookInfo>, tell<&Utility::GetTreInfo>,      tell<&Utility::GetLanInfo>,
    tell<&Utility::GetMdlInfo>,     tell<&Utility::GetFmsInfo>,      tell<&Utility::GetExtInfo>,
    tell<&Utility::GetInclInfo>,    tell<&Utility::GetTagInfo>,      tell<&Utility::GetDSNInfo>,
    tell<&Utility::GetIncNewInfo>,  tell<&Utility::GetResiTblInfo>,  tell_data_send,
};

TEST_F(Embed, TellsOfEachSampleWhatTheClassTells) {
  for (const std::string& name : sample_names()) {
    SCOPED_TRACE(name);
    fakes::Machine machine;
    platform::LocalFiles files(platform::MissingFile::kRefuse);
    HostServices services = machine.services();
    TarvelVtrOut_InOut utility({files, services.message_box, services.save_dialog, services.message_loop,
                                services.locale, services.spreadsheet});
    std::u16string path = text::from_utf8(sample_path(name)), list;
    std::ranges::replace(path, u'/', u'\\');
    Boolean is_secondary = False;
    const bool whole = bool(utility.ReadVTR(path, list, is_secondary));

    EmbeddedDocument document;
    const trvtrout_result result = trvtrout_read(document, sample_path(name).c_str(), TRVTROUT_PRIMARY);
    if (result == TRVTROUT_NOT_A_DOCUMENT) continue;
    EXPECT_EQ(result == TRVTROUT_OK, whole && utility.LastRead().gaps.empty()) << document.message();
    EXPECT_EQ(document.text(TRVTROUT_TEXT_STRUCTURE_LIST), text::to_utf8(list));
    std::array<std::u16string, 5> texts;
    utility.GetProdInfo(texts[0], texts[1], texts[2], texts[3], texts[4]);
    for (int32_t which = 0; which < 5; ++which) {
      EXPECT_EQ(document.text(which), text::to_utf8(texts[static_cast<std::size_t>(which)]));
    }
    for (std::size_t at = 0; at < kAccessors.size(); ++at) {
      Numbers numbers{};
      const bool holds = kAccessors[at](utility, numbers) == u"OK";
      const trvtrout_list_info info = list_of(document, static_cast<int32_t>(at));
      EXPECT_EQ(info.holds == 1, holds) << info.name;
      EXPECT_EQ((Numbers{info.count, info.current, info.max, info.size}), numbers) << info.name;
    }
    trvtrout_damage damage{.struct_size = sizeof damage};
    ASSERT_EQ(trvtrout_get_damage(document, &damage), TRVTROUT_OK);
    const auto& met = utility.LastDamage();
    const bool passed_over = !met && !utility.LastRead().gaps.empty();
    EXPECT_EQ(damage.broken_off == 1, met.has_value());
    EXPECT_EQ(damage.offset, met ? met->offset() : passed_over ? utility.LastRead().gaps.front().begin : 0);
  }
}

TEST_F(Embed, ReportsAndComparisonsAreTheApprovedOnes) {
  const std::string first = copy_of("plant.vtr"), second = copy_of("plant-next.vtr");
  EmbeddedDocument document;
  document.read(second, TRVTROUT_SECONDARY);
  document.read(first);
  for (int32_t part = 0; part < TRVTROUT_PARTS; ++part) {
    char* path = nullptr;
    ASSERT_EQ(trvtrout_report(document, part, first.c_str(), 1, &path), TRVTROUT_OK) << document.message();
    EXPECT_EQ(without_moments(file_bytes(taken(path))), expected_report("plant.vtr", "report", part, first));
    ASSERT_EQ(trvtrout_compare(document, part, first.c_str(), second.c_str(), &path), TRVTROUT_OK);
    EXPECT_EQ(without_moments(file_bytes(taken(path))),
              expected_report("plant.vtr~plant-next.vtr", "compare", part, first, second));
  }
  trvtrout_comparison_counts counts{.struct_size = sizeof counts};
  ASSERT_EQ(trvtrout_get_comparison_counts(document, &counts), TRVTROUT_OK);
  EXPECT_GT(counts.unchanged + counts.changed + counts.deleted + counts.added, 0u);
  double modified = 0;
  EXPECT_EQ(trvtrout_get_modified(document, &modified), TRVTROUT_OK);
  EXPECT_EQ(static_cast<int>(modified), 38140);  // 2 June 2004
}

TEST_F(Embed, AsksAboutFilesThatExist) {
  const std::string file = copy_of("plant.vtr"), report = at("~tmpplant_Table.CSV");
  EmbeddedDocument document;
  document.read(file);
  std::ofstream(report) << "older";
  const auto write = [&](trvtrout_result expected) {
    char* path = nullptr;
    EXPECT_EQ(trvtrout_report(document, TRVTROUT_PART_TABLE, file.c_str(), 1, &path), expected) << document.message();
    return taken(path);
  };
  EXPECT_EQ(write(TRVTROUT_DECLINED), "");
  document.host.answer = TRVTROUT_ANSWER_NO;
  EXPECT_EQ(write(TRVTROUT_DECLINED), "");
  document.host.path = at("other.csv");
  EXPECT_EQ(write(TRVTROUT_OK), at("other.csv"));
  EXPECT_EQ(file_bytes(report), "older");
  document.host.path = file;  // the document itself
  EXPECT_EQ(write(TRVTROUT_FAILED), "");
  document.host.answer = TRVTROUT_ANSWER_YES;
  EXPECT_EQ(write(TRVTROUT_OK), report);
  EXPECT_EQ(without_moments(file_bytes(report)), without_moments(file_bytes(at("other.csv"))));
  EXPECT_EQ(document.host.prompts.back(), "File " + report + " already exists. Do you want to overwite it?");
  EXPECT_EQ(trvtrout_delete_report(document, report.c_str()), TRVTROUT_OK);
  EXPECT_EQ(trvtrout_delete_report(document, report.c_str()), TRVTROUT_NO_FILE);
  EXPECT_EQ(file_bytes(file), file_bytes(sample_path("plant.vtr")));

  char *path = nullptr, *base = nullptr;
  ASSERT_EQ(trvtrout_output_name(document, file.c_str(), "Recovered", &path, &base), TRVTROUT_OK);
  EXPECT_TRUE(taken(path).starts_with(at("plant_Recovered_")));
  EXPECT_EQ(taken(base), "plant");
  EXPECT_EQ(trvtrout_output_name(document, file.c_str(), "Elsewhere", &path, nullptr), TRVTROUT_FAILED);
}

TEST_F(Embed, ADamagedDocumentIsNotTakenForAWholeOne) {
  std::string bytes = file_bytes(sample_path("plant.vtr"));
  bytes.replace(9000, 3000, 3000, '\xFF');
  std::ofstream(at("struck.vtr"), std::ios::binary) << bytes;
  EmbeddedDocument document;
  document.read(at("struck.vtr"), TRVTROUT_PRIMARY, TRVTROUT_DAMAGED);
  EXPECT_NE(document.message().find("byte"), std::string::npos);
  EXPECT_NE(document.text(TRVTROUT_TEXT_DAMAGE_PATH), "");
  std::string json;
  EXPECT_EQ(trvtrout_export(document, TRVTROUT_JSON, append, &json), TRVTROUT_DAMAGED);
  EXPECT_EQ(trvtrout_diff(document, document, nullptr, append, &json, nullptr), TRVTROUT_DAMAGED);
  EXPECT_EQ(json, "");

  ASSERT_EQ(trvtrout_salvage(document, at("struck.vtr").c_str(), TRVTROUT_PRIMARY), TRVTROUT_OK) << document.message();
  trvtrout_salvaged salvaged{.struct_size = sizeof salvaged};
  ASSERT_EQ(trvtrout_get_salvaged(document, &salvaged), TRVTROUT_OK);
  EXPECT_EQ(salvaged.bytes, bytes.size());
  EXPECT_LT(salvaged.bytes_explained, salvaged.bytes);
  EXPECT_LT(salvaged.sections_whole, salvaged.sections);
  EXPECT_EQ(trvtrout_export(document, TRVTROUT_JSON, append, &json), TRVTROUT_OK);
  char* account = nullptr;
  ASSERT_EQ(trvtrout_recover(document, at("saved.vtr").c_str(), &account), TRVTROUT_OK) << document.message();
  EXPECT_NE(taken(account).find("List of recovered structures"), std::string::npos);
  EmbeddedDocument saved;
  saved.read(at("saved.vtr"));
}

TEST_F(Embed, ExportsComeBackAndDifferencesAreCounted) {
  const std::string first = copy_of("dense.vtr"), second = copy_of("dense-next.vtr");
  EmbeddedDocument one, other;
  one.read(first);
  other.read(second);
  std::string json, pretty, lines, difference;
  ASSERT_EQ(trvtrout_export(one, TRVTROUT_JSON, append, &json), TRVTROUT_OK);
  ASSERT_EQ(trvtrout_export(one, TRVTROUT_JSON_PRETTY, append, &pretty), TRVTROUT_OK);
  ASSERT_EQ(trvtrout_export(one, TRVTROUT_LINES, append, &lines), TRVTROUT_OK);
  EXPECT_GT(pretty.size(), json.size());
  EXPECT_EQ(lines.back(), '\n');
  std::ofstream(at("dense.json"), std::ios::binary) << json;
  ASSERT_EQ(trvtrout_import(one, at("dense.json").c_str(), at("back.vtr").c_str()), TRVTROUT_OK) << one.message();
  EXPECT_EQ(file_bytes(at("back.vtr")), file_bytes(first));

  trvtrout_diff_counts counts{.struct_size = sizeof counts};
  ASSERT_EQ(trvtrout_diff(one, other, nullptr, append, &difference, &counts), TRVTROUT_OK);
  EXPECT_NE(difference.find("\"changed\":" + std::to_string(counts.changed) + ','), std::string::npos);
  const char* const only[] = {"Language"};
  const trvtrout_diff_options options{.struct_size = sizeof options, .only = only, .only_count = 1};
  trvtrout_diff_counts fewer{.struct_size = sizeof fewer};
  ASSERT_EQ(trvtrout_diff(one, other, &options, nullptr, nullptr, &fewer), TRVTROUT_OK) << one.message();
  EXPECT_LT(fewer.changed, counts.changed);
  ASSERT_EQ(trvtrout_diff(one, one, nullptr, nullptr, nullptr, &counts), TRVTROUT_OK);
  EXPECT_EQ(counts.changed + counts.removed + counts.added + counts.moved, 0u);

  ASSERT_EQ(trvtrout_export_database(one, at("all.db").c_str()), TRVTROUT_OK) << one.message();
  EXPECT_TRUE(file_bytes(at("all.db")).starts_with("SQLite format 3"));
  EXPECT_EQ(trvtrout_export_database(one, second.c_str()), TRVTROUT_INVALID_ARGUMENT);
}

TEST_F(Embed, ReportsBecomeSheets) {
  const std::string first = copy_of("plant.vtr"), second = copy_of("plant-next.vtr"), book = at("book.xlsx");
  std::ofstream(book, std::ios::binary) << spreadsheet::empty_workbook(spreadsheet::WorkbookFormat::kOoxml);
  EmbeddedDocument document, other;
  document.read(second, TRVTROUT_SECONDARY);
  document.read(first);
  other.read(second);
  char* path = nullptr;
  ASSERT_EQ(trvtrout_report(document, TRVTROUT_PART_TREE, first.c_str(), 1, &path), TRVTROUT_OK);
  const std::string report = taken(path);
  ASSERT_EQ(trvtrout_compare(document, TRVTROUT_PART_TREE, first.c_str(), second.c_str(), &path), TRVTROUT_OK);
  const std::string comparison = taken(path);
  const auto move = [&](const char* sheet, const EmbeddedDocument& secondary) {
    return trvtrout_workbook_comparison(document, book.c_str(), comparison.c_str(), sheet, document, secondary, 1);
  };
  EXPECT_EQ(trvtrout_workbook_report(document, book.c_str(), report.c_str(), "Tree"), TRVTROUT_OK)
      << document.message();
  EXPECT_EQ(move("Fields", other), TRVTROUT_OK) << document.message();
  EXPECT_EQ(move("Languages", document), TRVTROUT_OK) << document.message();
  const std::string bytes = file_bytes(book);
  EXPECT_EQ(move("Tree", other), TRVTROUT_FAILED);
  EXPECT_NE(document.message().find("already has a sheet"), std::string::npos) << document.message();
  EXPECT_EQ(trvtrout_workbook_report(document, at("none.xlsx").c_str(), report.c_str(), "Tree"), TRVTROUT_NO_FILE)
      << document.message();
  EXPECT_EQ(file_bytes(book), bytes);
}

// Stops each piece of long work at each place where it can be stopped, one after the other.
TEST_F(Embed, WhatIsStoppedLeavesNothingBehind) {
  const std::string first = copy_of("plant.vtr"), second = copy_of("plant-next.vtr");
  EmbeddedDocument document, other;
  document.read(second, TRVTROUT_SECONDARY);
  document.read(first);
  other.read(second);
  std::string json;
  ASSERT_EQ(trvtrout_export(document, TRVTROUT_JSON, append, &json), TRVTROUT_OK);
  std::ofstream(at("plant.json"), std::ios::binary) << json;
  const auto before = files();
  char* made = nullptr;
  const std::map<std::string, std::function<trvtrout_result()>> works = {
      {"read", [&] { return trvtrout_read(document, first.c_str(), TRVTROUT_PRIMARY); }},
      {"salvage", [&] { return trvtrout_salvage(document, first.c_str(), TRVTROUT_PRIMARY); }},
      {"report", [&] { return trvtrout_report(document, TRVTROUT_PART_FIELD, first.c_str(), 1, &made); }},
      {"compare",
       [&] { return trvtrout_compare(document, TRVTROUT_PART_FIELD, first.c_str(), second.c_str(), &made); }},
      {"recover", [&] { return trvtrout_recover(document, at("recovered.vtr").c_str(), nullptr); }},
      {"diff", [&] { return trvtrout_diff(document, other, nullptr, append, &json, nullptr); }},
      {"export", [&] { return trvtrout_export(document, TRVTROUT_LINES, append, &json); }},
      {"database", [&] { return trvtrout_export_database(document, at("plant.db").c_str()); }},
      {"import", [&] { return trvtrout_import(document, at("plant.json").c_str(), at("new.vtr").c_str()); }},
  };
  for (const auto& [name, work] : works) {
    SCOPED_TRACE(name);
    ASSERT_EQ(trvtrout_set_stop(document, 1), TRVTROUT_OK);
    EXPECT_EQ(work(), TRVTROUT_STOPPED);
    ASSERT_EQ(trvtrout_set_stop(document, 0), TRVTROUT_OK);
    trvtrout_result result = TRVTROUT_STOPPED;
    for (document.host.stop_at = 1; result == TRVTROUT_STOPPED; ++document.host.stop_at) {
      EXPECT_EQ(files(), before);
      document.host.told = 0;
      made = nullptr;
      result = work();
    }
    EXPECT_EQ(result, TRVTROUT_OK) << document.message();
    EXPECT_GT(document.host.stop_at, 2) << "it can't be stopped";
    document.host.stop_at = 0;
    taken(made);
    for (const std::string& file : files()) {
      if (!before.contains(file)) fs::remove(at(file));
    }
  }
  document.host.on_progress = [] { throw std::runtime_error("not allowed, and caught"); };
  EXPECT_EQ(trvtrout_read(document, first.c_str(), TRVTROUT_PRIMARY), TRVTROUT_FAILED);
  document.host.on_progress = [] { throw 7; };
  EXPECT_EQ(trvtrout_read(document, first.c_str(), TRVTROUT_PRIMARY), TRVTROUT_FAILED);
}

TEST_F(Embed, ProgressComesToTheEndOfTheFile) {
  EmbeddedDocument document;
  document.read(sample_path("dense.vtr"));
  EXPECT_EQ(document.host.done, fs::file_size(sample_path("dense.vtr")));
  EXPECT_EQ(document.host.total, document.host.done);
}

TEST_F(Embed, CallsFromCallbacksDoNothing) {
  EmbeddedDocument document;
  trvtrout_result inner = TRVTROUT_OK;
  document.host.on_progress = [&] {
    inner = trvtrout_read(document, sample_path("plant.vtr").c_str(), TRVTROUT_PRIMARY);
    EXPECT_STREQ(trvtrout_last_message(document), trvtrout_result_text(TRVTROUT_BUSY));
  };
  document.read(sample_path("plant.vtr"));
  EXPECT_EQ(inner, TRVTROUT_BUSY);
  EXPECT_EQ(document.text(TRVTROUT_TEXT_CODE), "PLANT");
  // The document goes when the call returns.
  document.host.on_progress = [&] { inner = trvtrout_free(document); };
  trvtrout_read(document, sample_path("plant.vtr").c_str(), TRVTROUT_PRIMARY);
  EXPECT_EQ(trvtrout_read(document, sample_path("plant.vtr").c_str(), TRVTROUT_PRIMARY), TRVTROUT_INVALID_HANDLE);
}

}  // namespace
}  // namespace trvtrout::tests
