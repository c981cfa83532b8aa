#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>

#include "component/parts.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"
#include "vtrfile/sections.h"

// What every operation makes of the sample documents, byte for byte, beside the approved texts in samples/expected.
namespace trvtrout::tests {
namespace {

class Samples : public testing::TestWithParam<std::string> {
 protected:
  static std::string expected(const std::string& file) { return SAMPLES "/expected/" + GetParam() + "/" + file; }
};

// The form in which a report is approved: marks stand where the file names and the moment first occur.
std::string marked(std::string report, std::initializer_list<std::pair<std::string, std::string>> marks) {
  const auto replace = [&report](const std::string& value, const std::string& mark) {
    if (const std::size_t at = report.find(value); at != std::string::npos) report.replace(at, value.size(), mark);
  };
  for (const auto& [value, mark] : marks) replace(value, mark);
  replace("6/1/2004 2:11:05 PM", "@DATE@");
  return report;
}

// Holds what one operation made to `path` with ".csv", and its result to `path` with ".result", which stands for False.
void expect_approved_report(const std::string& path, const std::string& report, Boolean result) {
  expect_approved(path + ".csv", report);
  expect_approved(path + ".result", result ? std::nullopt : std::optional("False\r\n"));
}

// Of a file of an unsupported version nothing but the header is read, so there is nothing to report or recover.
bool is_refused(const TarvelVtrOut_InOut& utility, Boolean result) { return !result && !utility.LastDamage(); }

TEST_P(Samples, AreReadAndReported) {
  fakes::Machine machine;
  std::u16string fname = u"C:\\Data\\Sample.VTR";
  machine.memory.files[fname] = sample(GetParam());
  TarvelVtrOut_InOut utility(machine.services());

  std::u16string list = u"unchanged";
  Boolean secondary = False;
  const Boolean result = utility.ReadVTR(fname, list, secondary);
  std::string account = std::string("result: ") + (result ? "True" : "False") +
                        "\r\nStructureList:" + (list == u"unchanged" ? " " : "\r\n") + text::to_utf8(list) + "\r\n";
  for (const auto& call : machine.message_box.calls) {
    account += "message:\r\n" + text::to_utf8(call.prompt) + "\r\n";
    EXPECT_EQ(call.title, u"VTR Output Warning");
  }
  expect_approved(expected("read.txt"), account);
  EXPECT_EQ(machine.memory.files[fname], sample(GetParam())) << "the input is never written";

  for (const Part& part : document_parts()) {
    if (is_refused(utility, result)) break;
    std::u16string path;
    Boolean temporary = True;
    const Boolean written = (utility.*part.report)(fname, path, temporary);
    expect_approved_report(expected(std::string("report-") + part.name),
                           marked(machine.memory.files[path], {{text::to_utf8(fname), "@FNAME@"}}), written);
  }
  EXPECT_EQ(machine.memory.open_objects(), 0);
}

TEST_P(Samples, AreRecovered) {
  fakes::Machine machine;
  std::u16string damaged = u"C:\\Data\\Sample.VTR", fname = u"C:\\New.VTR", list, message = u"@GIVEN@";
  machine.memory.files[damaged] = sample(GetParam());
  TarvelVtrOut_InOut utility(machine.services());
  Boolean primary = False;
  if (is_refused(utility, utility.ReadVTR(damaged, list, primary))) return;
  machine.message_loop.count = 0;
  ASSERT_TRUE(utility.RecoverVTR(fname, message)) << utility.LastFailure();
  expect_approved(expected("recover.txt"), text::to_utf8(message));
  EXPECT_EQ(machine.message_loop.count, 2);
  EXPECT_EQ(machine.memory.files[damaged], sample(GetParam())) << "the input is never written";

  // Only what the lists call corrupted may differ from what was read.
  Reading before, after;
  before.read(sample(GetParam()));
  after.read(machine.memory.files[fname]);
  EXPECT_TRUE(after.complete);
  EXPECT_EQ(after.current.Header->Version.bytes(), "01.02.00");
  const std::string corrupted = text::to_utf8(message.substr(message.find(u"permanently")));
  vtrfile::for_each_section([&](const auto& section) {
    const bool named = corrupted.find(section.tag == "Schema" ? "LOOKUPS" : section.structure) != std::string::npos;
    EXPECT_EQ(bytes_of(*(after.current.*section.kSlot)) == bytes_of(*(before.current.*section.kSlot)), !named)
        << section.tag;
  });
}

class SamplePairs : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(SamplePairs, AreCompared) {
  const std::string primary = GetParam().first, secondary = GetParam().second;
  fakes::Machine machine;
  std::u16string first = u"C:\\Data\\" + text::from_utf8(primary);
  std::u16string second = u"C:\\Next\\" + text::from_utf8(secondary);
  machine.memory.files = {{first, sample(primary)}, {second, sample(secondary)}};
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string list;
  Boolean no = False, yes = True;
  ASSERT_TRUE(utility.ReadVTR(second, list, yes));
  ASSERT_TRUE(utility.ReadVTR(first, list, no));

  for (const Part& part : document_parts()) {
    std::u16string path;
    const Boolean written = (utility.*part.compare)(first, second, path);
    expect_approved_report(SAMPLES "/expected/" + primary + "~" + secondary + "/compare-" + part.name,
                           marked(machine.memory.files[path],
                                  {{text::to_utf8(first), "@PRIMFNAME@"}, {text::to_utf8(second), "@SECFNAME@"}}),
                           written);
    EXPECT_TRUE(path.starts_with(u"C:\\Data\\~tmp")) << text::to_utf8(path);
  }
}

INSTANTIATE_TEST_SUITE_P(All, SamplePairs,
                         testing::Values(std::pair("plant.vtr", "plant-next.vtr"),
                                         std::pair("dense.vtr", "dense-next.vtr"),
                                         std::pair("plant-old-format.vtr", "plant.vtr")));

INSTANTIATE_TEST_SUITE_P(All, Samples, testing::ValuesIn(sample_names()), [](const auto& name) {
  std::string id = name.param;
  for (char& c : id) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return id;
});

}  // namespace
}  // namespace trvtrout::tests
