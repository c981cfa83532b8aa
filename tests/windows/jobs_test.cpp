#include <cctype>
#include <gtest/gtest.h>

#include "tests/support.h"
#include "tests/windows/jobs.h"
#include "vtrfile/lists.h"

// What the registered class makes of the sample documents, in the hands of hosts of every kind, beside the approved
// texts.
namespace trvtrout::tests {
namespace {

constexpr Way kWays[] = {Way::kEarly, Way::kLate, Way::kLateVariants};

std::string test_name(std::string text) {
  for (char& c : text) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return text;
}

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
    const std::string ansi = folder.path().string();
    expect_approved_files(folder, name, {document}, answers.stop());
  }
  for (const auto& [first, second] : kPairs) {
    const Folder folder;
    const std::wstring one = folder.add_sample(first), two = folder.add_sample(second);
    compare(GetParam(), one, two);
    expect_approved_files(folder, std::string(first) + "~" + second, {one, two}, {});
  }
}

INSTANTIATE_TEST_SUITE_P(All, SampleJobs, testing::ValuesIn(kWays));

}  // namespace
}  // namespace trvtrout::tests
