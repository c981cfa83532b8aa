#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

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

void replace(std::string& text, const std::string& mark, const std::string& by) {
  if (const std::size_t at = text.find(mark); at != std::string::npos) text.replace(at, mark.size(), by);
}

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
  EXPECT_EQ(account, file_bytes(expected("read.txt")));
  EXPECT_EQ(machine.memory.files[fname], sample(GetParam())) << "the input is never written";

  for (const Part& operations : document_parts()) {
    const std::string part = operations.name;
    const std::string path = expected("report-" + part + ".csv");
    if (!std::filesystem::exists(path)) continue;
    std::string wanted = file_bytes(path);
    replace(wanted, "@FNAME@", "C:\\Data\\Sample.VTR");
    replace(wanted, "@DATE@", "6/1/2004 2:11:05 PM");
    std::u16string report_path;
    Boolean temporary = True;
    const Boolean written = (utility.*operations.report)(fname, report_path, temporary);
    EXPECT_EQ(machine.memory.files[report_path], wanted) << part;
    const bool fails = std::filesystem::exists(expected("report-" + part + ".result"));
    EXPECT_EQ(bool(written), !fails) << part;
  }
  EXPECT_EQ(machine.memory.open_objects(), 0);
}

TEST_P(Samples, AreRecovered) {
  if (!std::filesystem::exists(expected("recover.txt"))) return;  // nothing but the header of it can be read
  fakes::Machine machine;
  std::u16string damaged = u"C:\\Data\\Sample.VTR", fname = u"C:\\New.VTR", list, message = u"@GIVEN@";
  machine.memory.files[damaged] = sample(GetParam());
  TarvelVtrOut_InOut utility(machine.services());
  Boolean primary = False;
  utility.ReadVTR(damaged, list, primary);
  machine.message_loop.count = 0;
  ASSERT_TRUE(utility.RecoverVTR(fname, message)) << utility.LastFailure();
  EXPECT_EQ(text::to_utf8(message), file_bytes(expected("recover.txt")));
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

  for (const Part& operations : document_parts()) {
    const std::string part = operations.name;
    std::string wanted = file_bytes(SAMPLES "/expected/" + primary + "~" + secondary + "/compare-" + part + ".csv");
    replace(wanted, "@PRIMFNAME@", text::to_utf8(first));
    replace(wanted, "@SECFNAME@", text::to_utf8(second));
    replace(wanted, "@DATE@", "6/1/2004 2:11:05 PM");
    std::u16string path;
    const std::string result = SAMPLES "/expected/" + primary + "~" + secondary + "/compare-" + part + ".result";
    EXPECT_EQ(bool((utility.*operations.compare)(first, second, path)), !std::filesystem::exists(result)) << part;
    EXPECT_EQ(machine.memory.files[path], wanted) << part;
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
