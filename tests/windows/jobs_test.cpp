#include "tests/windows/jobs.h"

#include <cstring>
#include <deque>
#include <gtest/gtest.h>

#include "tests/support.h"
#include "vtrfile/lists.h"

// What the registered class makes of the sample documents, in the hands of hosts of every kind, beside the approved
// texts.
namespace trvtrout::tests {
namespace {

constexpr Way kWays[] = {Way::kEarly, Way::kLate, Way::kLateVariants};

using Pair = std::pair<const char*, const char*>;
constexpr Pair kPairs[] = {
    {"plant.vtr", "plant-next.vtr"}, {"dense.vtr", "dense-next.vtr"}, {"plant-old-format.vtr", "plant.vtr"}};

class SampleJobs : public testing::TestWithParam<Way> {};

TEST_P(SampleJobs, LeaveTheApprovedTexts) {
  for (const std::string& name : sample_names()) {
    // A name that the code page has, but ASCII hasn't.
    const Folder folder(L"Stra\u00dfe und Pl\u00e4ne");
    const std::wstring document = folder.add_sample(name);
    Answers answers;
    report_on(GetParam(), document);
    expect_approved_files(folder, name, {document}, answers.stop());
  }
  for (const auto& [first, second] : kPairs) {
    const Folder folder;
    const std::wstring one = folder.add_sample(first), two = folder.add_sample(second);
    compare(GetParam(), one, two);
    expect_approved_files(folder, std::string(first) + "~" + second, {one, two}, {});
  }
}

// The stored numbers, the recount and the answer of each list, in the order of the parameters.
struct ListAccessor {
  const wchar_t* name;
  vtrfile::ListId list;
};
constexpr ListAccessor kListAccessors[] = {{L"GetInclInfo", vtrfile::ListId::kIncludeFiles},
                                           {L"GetMdlInfo", vtrfile::ListId::kModules},
                                           {L"GetTreInfo", vtrfile::ListId::kTree},
                                           {L"GetTableInfo", vtrfile::ListId::kTables},
                                           {L"GetFieldsInfo", vtrfile::ListId::kFields},
                                           {L"GetLookupInfo", vtrfile::ListId::kLookups},
                                           {L"GetTagInfo", vtrfile::ListId::kControlTags},
                                           {L"GetLanInfo", vtrfile::ListId::kLanguages},
                                           {L"GetDSNInfo", vtrfile::ListId::kDsnList},
                                           {L"GetExtInfo", vtrfile::ListId::kExtendedStorage},
                                           {L"GetFmsInfo", vtrfile::ListId::kFieldMatches},
                                           {L"GetIncNewInfo", vtrfile::ListId::kImportFiles},
                                           {L"GetRelInfo", vtrfile::ListId::kRelations},
                                           {L"GetResiTblInfo", vtrfile::ListId::kResidualTables},
                                           {L"GetHidLookInfo", vtrfile::ListId::kHiddenLookups},
                                           {L"GetHidTableInfo", vtrfile::ListId::kHiddenTables},
                                           {L"GetHidFieldsInfo", vtrfile::ListId::kHiddenFields}};

using Numbers = std::vector<LONG>;

// What the accessor tells; -1 stands for a number that it doesn't have.
std::pair<std::wstring, Numbers> told(Utility& utility, const wchar_t* name) {
  LONG count = -1, current = -1, max = -1, size = -1;
  std::wstring answer;
  switch (std::strlen(operation_named(name).parameters)) {
    case 1:
      answer = utility.call(name, {&size});
      break;
    case 2:
      answer = utility.call(name, {&count, &size});
      break;
    default:
      answer = utility.call(name, {&count, &current, &max, &size});
  }
  return {answer, {count, current, max, size}};
}

TEST_P(SampleJobs, AccessorsTellWhatWasRead) {
  for (const std::string& name : sample_names()) {
    const Folder folder;
    std::wstring document = folder.add_sample(name), list;
    VARIANT_BOOL secondary = VARIANT_TRUE;  // they read what was read last, whichever it was
    Reading reading;
    reading.read(sample(name));
    const vtrfile::DocumentSlots& slots = reading.current;
    Answers answers;
    Utility utility(GetParam());
    utility.call(L"ReadVTR", {&document, &list, &secondary});
    for (const auto& [accessor, id] : kListAccessors) {
      const vtrfile::DocumentList& of_list = vtrfile::list_of(id);
      const vtrfile::ListInfo info = of_list.recount(slots);
      const std::u16string answer(info.ok ? u"OK" : of_list.error);
      EXPECT_EQ(told(utility, accessor), std::pair(std::wstring(answer.begin(), answer.end()),
                                                   Numbers{info.count.value_or(-1), info.current.value_or(-1),
                                                           info.max.value_or(-1), info.size}))
          << name << ' ' << narrow(accessor);
    }
    std::vector<std::wstring> texts(7);
    LONG count = -1, size = -1;
    EXPECT_EQ(utility.call(L"GetProdInfo", {&texts[0], &texts[1], &texts[2], &texts[3], &texts[4]}), L"OK");
    EXPECT_EQ(utility.call(L"GetDsmInfo", {&count, &texts[5], &texts[6], &size}), L"OK");
    const auto& product = slots.Schema->Product;
    const auto& sent = *slots.DataSend;
    std::size_t at = 0;
    for (const vtrfile::Text text : {product.Code, product.Description, product.SerialIndex, product.Version,
                                     product.Database, sent.File.FileHeader, sent.File.Version}) {
      EXPECT_EQ(in_code_page(texts[at++]), text.bytes()) << name;
    }
    const auto info = vtrfile::list_of(vtrfile::ListId::kDataSend).recount(slots);
    EXPECT_EQ(std::pair(count, size), std::pair(LONG{*info.count}, LONG{info.size})) << name;

    DATE modified = 0, expected = 0;
    std::wstring text = widen(std::string(slots.Header->Modified.bytes()));
    const bool is_date = SUCCEEDED(VarDateFromStr(text.data(), LOCALE_USER_DEFAULT, 0, &expected));
    EXPECT_EQ(utility.call(L"GetHedInfo", {&modified, &size}), is_date ? L"OK" : L"ErrHedInfo") << name;
    EXPECT_EQ(modified, is_date ? expected : 0) << name;
    EXPECT_EQ(size, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(All, SampleJobs, testing::ValuesIn(kWays));

// Script hosts do the same jobs. One that can't pass variables by reference gets nothing back of them.
class ScriptJobs : public testing::TestWithParam<const char*> {};

TEST_P(ScriptJobs, LeaveTheApprovedTexts) {
  std::deque<Folder> folders;
  std::wstring jobs;
  const bool has_references = std::string_view(GetParam()) == "jobs.vbs";
  std::vector<std::string> names = sample_names();
  std::erase(names, "odd/version-01.02.01.vtr");  // it isn't read, and a script sees that by the list alone
  for (const std::string& name : names) jobs += L" \"" + folders.emplace_back().add_sample(name) + L"\"";
  for (const auto& [first, second] : kPairs) {
    const Folder& folder = folders.emplace_back();
    jobs += L" \"" + folder.add_sample(first) + L"*" + folder.add_sample(second) + L"\"";
  }
  const std::wstring script = native_path(std::string(TESTS "/") + GetParam());
  ASSERT_EQ(run_program(L"cscript //nologo \"" + script + L"\"" + jobs), 0U);
  for (std::size_t at = 0; at < names.size(); ++at) {
    const std::wstring document = folders[at].path(std::filesystem::path(names[at]).filename().wstring());
    expect_approved_files(folders[at], names[at], {document}, {}, has_references);
  }
  for (std::size_t at = 0; at < std::size(kPairs); ++at) {
    const Folder& folder = folders[names.size() + at];
    const auto& [first, second] = kPairs[at];
    expect_approved_files(folder, std::string(first) + "~" + second,
                          {folder.path(widen(first)), folder.path(widen(second))}, {});
  }
}

INSTANTIATE_TEST_SUITE_P(All, ScriptJobs, testing::Values("jobs.vbs", "jobs.js"));

TEST(Examples, WriteTheirReports) {
  const Folder folder;
  const std::wstring one = L" \"" + folder.add_sample("plant.vtr") + L"\"";
  const std::wstring other = L" \"" + folder.add_sample("plant-next.vtr") + L"\"";
  EXPECT_EQ(run_program(L"cscript //nologo \"" + native_path(EXAMPLES "/report.vbs") + L"\"" + one), 0U);
  EXPECT_EQ(run_program(L"\"" + native_path(EXAMPLE_PROGRAM) + L"\"" + one + other), 0U);
  int reports = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    const std::wstring name = entry.path().filename();
    reports += name.starts_with(L"plant_Table_") || name == L"~tmpplant_Tables_Compared.CSV";
  }
  EXPECT_EQ(reports, 2);
}

}  // namespace
}  // namespace trvtrout::tests
