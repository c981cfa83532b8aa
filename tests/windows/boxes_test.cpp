#include <gtest/gtest.h>

#include "tests/support.h"
#include "tests/windows/holder.h"
#include "tests/windows/jobs.h"

// Questions, warnings and dialogs as the user has them on the screen.
namespace trvtrout::tests {
namespace {

const std::vector<int> kYesNoCancel = {IDCANCEL, IDYES, IDNO};
const std::string kMine = "what stood there before";

// An object that has read plant.vtr from a folder of its own.
struct Reader {
  Folder folder;
  std::wstring document = folder.add_sample("plant.vtr"), list;
  VARIANT_BOOL primary = VARIANT_FALSE, secondary = VARIANT_TRUE, temporary = VARIANT_TRUE;
  Utility utility;

  Reader() { EXPECT_TRUE(utility.is_true(L"ReadVTR", {&document, &list, &primary})); }
};

void expect_question(const Shown& shown, const std::wstring& path) {
  EXPECT_EQ(shown.text, L"File " + path + L" already exists. Do you want to overwite it?");
  EXPECT_EQ(shown.buttons, kYesNoCancel);
}

TEST(Boxes, AnExistingReportIsAskedAbout) {
  Reader reader;
  const std::wstring standing = reader.folder.path(L"~tmpplant_Table.CSV"), other = reader.folder.path(L"other.txt");
  std::wstring path;
  ASSERT_TRUE(reader.utility.is_true(L"ASCII_Output_Table", {&reader.document, &path, &reader.temporary}));
  const std::string report = file_bytes(standing);
  const auto rows = [](const std::string& text) { return text.substr(text.find("TABLES")); };

  const auto run = [&](std::deque<Answer> answers, bool written, const std::wstring& target) {
    save(standing, kMine);
    Answers user(std::move(answers));
    EXPECT_EQ(reader.utility.is_true(L"ASCII_Output_Table", {&reader.document, &path, &reader.temporary}), written);
    EXPECT_EQ(path, target);
    const auto shown = user.stop();
    if (!shown.empty()) expect_question(shown[0], standing);
    return shown;
  };
  EXPECT_EQ(run({{IDYES}}, true, standing).size(), 1U);
  EXPECT_EQ(rows(file_bytes(standing)), rows(report));
  EXPECT_EQ(run({{IDCANCEL}}, false, standing).size(), 1U);
  EXPECT_EQ(file_bytes(standing), kMine);
  const auto shown = run({{IDNO}, {IDOK, other}}, true, other);
  EXPECT_EQ(file_bytes(standing), kMine);
  EXPECT_EQ(rows(file_bytes(other)), rows(report));
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_EQ(shown[1].filter, L"VTR Files (*.CSV)");
  EXPECT_EQ(shown[1].title, L"plant.vtr");
  // Nothing is named, so nothing is written.
  EXPECT_EQ(run({{IDNO}, {IDCANCEL}}, false, L"").size(), 2U);
  EXPECT_EQ(file_bytes(standing), kMine);
}

TEST(Boxes, OutputNamesAreAskedAbout) {
  Reader reader;
  for (const auto& [kind, ending] :
       {std::pair(L"Statistics", L".XLS"), {L"Compared", L".XLS"}, {L"Recovered", L".VTR"}, {L"Log", L".txt"}}) {
    std::wstring name = kind, base;
    const std::wstring extension = ending, other = reader.folder.path(L"other" + extension);
    const auto path_of = [&] { return reader.utility.call(L"GetOutputFileName", {&reader.document, &name, &base}); };
    std::vector<Shown> shown;
    // The name has the minute in it, which may have passed when it's asked for again.
    for (int attempt = 0; attempt < 3 && shown.empty(); ++attempt) {
      const std::wstring path = path_of();
      EXPECT_EQ(base, L"plant");
      EXPECT_TRUE(path.starts_with(reader.folder.path(L"plant_") + kind) && path.ends_with(extension)) << narrow(path);
      save(path, kMine);
      Answers user({{IDNO}, {IDOK, other}});
      const std::wstring answered = path_of();
      shown = user.stop();
      if (shown.empty()) continue;
      expect_question(shown[0], path);
      EXPECT_EQ(answered, other);
    }
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[1].filter, L"VTR Files (*" + extension + L")");
  }
}

// What another process holds is told of, or refused in silence, and stays as it is.
TEST(Boxes, HeldFilesAreLeftAlone) {
  Reader reader;
  std::wstring next = reader.folder.add_sample("plant-next.vtr"), path, message = L"given";
  std::wstring held_path = reader.folder.path(L"held.vtr");
  ASSERT_TRUE(reader.utility.is_true(L"ReadVTR", {&next, &reader.list, &reader.secondary}));
  const std::wstring kInUse = L"File is in use. Please close file and try again.";
  const struct {
    const wchar_t* target;
    const wchar_t* operation;
    std::initializer_list<Argument> arguments;
    bool asks;
    std::wstring tells;  // nothing if it's empty
  } cases[] = {
      {L"~tmpplant_Product.CSV", L"ASCII_Output_Product", {&reader.document, &path, &reader.temporary}, true, kInUse},
      {L"~tmpplant_Table.CSV", L"ASCII_Output_Table", {&reader.document, &path, &reader.temporary}, true, L""},
      {L"~tmpplant_Tables_Compared.CSV", L"Compare_Table", {&reader.document, &next, &path}, true, kInUse},
      {L"held.vtr", L"RecoverVTR", {&held_path, &message}, false, L"File can not be recovered"},
      {L"held.vtr", L"ReadVTR", {&held_path, &reader.list, &reader.primary}, false, L""},
      {L"held.vtr", L"Delete_ASCII", {&held_path}, false, L""},
  };
  for (const auto& [target, operation, arguments, asks, tells] : cases) {
    const std::wstring standing = reader.folder.path(target);
    save(standing, kMine);
    std::vector<Shown> shown;
    {
      const Holder holder(standing);
      Answers user(asks ? std::deque<Answer>{{IDYES}} : std::deque<Answer>{});
      EXPECT_FALSE(reader.utility.is_true(operation, arguments)) << narrow(operation);
      shown = user.stop();
    }
    EXPECT_EQ(file_bytes(standing), kMine) << narrow(operation);
    ASSERT_EQ(shown.size(), static_cast<std::size_t>(asks + !tells.empty())) << narrow(operation);
    if (tells.empty()) continue;
    EXPECT_TRUE(shown.back().title.starts_with(L"VTR Output"));
    EXPECT_NE(shown.back().text.find(tells), std::wstring::npos) << narrow(shown.back().text);
  }
  EXPECT_EQ(message, L"given");
}

TEST(Boxes, AMissingReportIsToldOf) {
  Reader reader;
  std::wstring path = reader.folder.path(L"report.CSV");
  save(path, kMine);
  Answers user;
  EXPECT_TRUE(reader.utility.is_true(L"Delete_ASCII", {&path}));
  EXPECT_FALSE(reader.utility.is_true(L"Delete_ASCII", {&path}));
  const auto& shown = user.stop();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].title, L"VTR Output Warning");
  EXPECT_EQ(shown[0].text, L"File " + path + L" does not exists.");
  EXPECT_EQ(shown[0].buttons, std::vector<int>{IDOK});
}

}  // namespace
}  // namespace trvtrout::tests
