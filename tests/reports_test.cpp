#include <cmath>
#include <gtest/gtest.h>

#include "component/parts.h"
#include "reports/cells.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

class Reports : public testing::Test {
 protected:
  Boolean read(const std::u16string& path, const std::string& bytes) {
    machine.memory.files[path] = bytes;
    std::u16string name = path, list;
    Boolean secondary = False;
    return utility.ReadVTR(name, list, secondary);
  }
  Boolean write(decltype(Part::report) operation, std::u16string fname, Boolean temporary = True) {
    return (utility.*operation)(fname, report_path, temporary);
  }
  std::string report() { return machine.memory.files[report_path]; }
  std::u16string output_name(const std::u16string& desc_name) {
    return utility.GetOutputFileName(u"C:\\Data\\Plant.One.VTR", desc_name, base_name);
  }

  fakes::Machine machine;
  TarvelVtrOut_InOut utility{machine.services()};
  std::u16string report_path = u"before";
  std::u16string base_name;
};

TEST(Cells, TurnValuesIntoTextByPlainConversion) {
  const auto single = [](float number) {
    std::string cell;
    append_single(cell, number);
    return cell;
  };
  EXPECT_EQ(single(10), "10");
  EXPECT_EQ(single(12.5F), "12.5");
  EXPECT_EQ(single(-0.0F), "0");
  EXPECT_EQ(single(0.1F), "0.1");
  EXPECT_EQ(single(9'999'999), "9999999");
  EXPECT_EQ(single(1e7F), "1E+07");
  EXPECT_EQ(single(NAN), "NAN");

  fakes::FixedLocale locale;
  const auto variant = [&](const std::string& bytes) {
    std::string cell;
    append_variant(cell, value_of(var(bytes)), locale);
    return cell;
  };
  EXPECT_EQ(variant("\x06\0\xF0\xD8\xFF\xFF\xFF\xFF\xFF\xFF"s), "-1");
  EXPECT_EQ(variant("\x06\0\x39\x30\0\0\0\0\0\0"s), "1.2345");
  EXPECT_EQ(variant("\x06\0\xF4\x01\0\0\0\0\0\0"s), "0.05");
  EXPECT_EQ(variant("\x06\0\0\0\0\0\0\0\0\x80"s), "-922337203685477.5808");
  EXPECT_EQ(variant("\x05\0\0\0\0\0\0\0\xF8\x3F"s), "1.5");
  EXPECT_EQ(variant("\x07\0\0\0\0\0\x60\x9F\xE2\x40"s), "6/1/2004");
  EXPECT_EQ(variant("\x0B\0\x05\0"s), "True");
  EXPECT_EQ(variant("\x01\0"s), "");
  EXPECT_THROW(variant("\x08\x20\0\0"s), SubscriptOutOfRange);
}

TEST_F(Reports, AFreshObjectReportsEmptyLists) {
  for (const auto& operations : document_parts()) {
    EXPECT_TRUE(write(operations.report, u"C:\\Data\\Plant.VTR"));
    EXPECT_TRUE(
        report().starts_with("Detailed Statistic for file: C:\\Data\\Plant.VTR\r\n"
                             "Date and time created:,6/1/2004 2:11:05 PM\r\n\r\r\n"));
    EXPECT_NE(report().find("Counted in VTR:,0\r\n"), std::string::npos);
  }
  EXPECT_TRUE(machine.message_box.calls.empty());
}

TEST_F(Reports, AreNamedAfterTheSourceItsPartAndTheMoment) {
  EXPECT_TRUE(write(&TarvelVtrOut_InOut::ASCII_Output_Table, u"C:\\Da.ta\\Plant.One.VTR", False));
  EXPECT_EQ(report_path, u"C:\\Da.ta\\Plant_Table_1-Jun-04 02-11 PM.CSV");
  EXPECT_TRUE(write(&TarvelVtrOut_InOut::ASCII_Output_DSend, u"Plant.VTR"));
  EXPECT_EQ(report_path, u"~tmpPlant_DSend.CSV");
  EXPECT_TRUE(write(&TarvelVtrOut_InOut::ASCII_Output_Tree, u"a/b.c/d.vtr"));
  EXPECT_EQ(report_path, u"~tmpa/b_Tree.CSV") << "a forward slash is an ordinary character";
  EXPECT_FALSE(write(&TarvelVtrOut_InOut::ASCII_Output_Product, u"C:\\Da.ta\\Plant"));
  EXPECT_EQ(report_path, u"");
  EXPECT_TRUE(machine.message_box.calls.empty());
}

TEST_F(Reports, GoIntoTheFolderThatTheHostNames) {
  std::u16string first = u"C:\\Data\\Plant.VTR", second = u"C:\\Data\\Next.VTR";
  machine.message_box.answers = {MessageAnswer::kYes};
  for (const std::u16string folder : {u"D:\\Out", u"D:\\Out\\"}) {
    utility.SetReportFolder(folder);
    EXPECT_TRUE(write(&TarvelVtrOut_InOut::ASCII_Output_Tree, first));
    EXPECT_EQ(report_path, u"D:\\Out\\~tmpPlant_Tree.CSV");
    EXPECT_TRUE(report().starts_with("Detailed Statistic for file: C:\\Data\\Plant.VTR\r\n"));
  }
  ASSERT_EQ(machine.message_box.calls.size(), 1U);
  EXPECT_TRUE(machine.message_box.calls[0].prompt.starts_with(u"File D:\\Out\\~tmpPlant_Tree.CSV already"));
  EXPECT_TRUE(utility.Compare_Tree(first, second, report_path));
  EXPECT_EQ(report_path, u"D:\\Out\\~tmpPlant_Tree_Compared.CSV");
  utility.SetReportFolder({});
  EXPECT_TRUE(write(&TarvelVtrOut_InOut::ASCII_Output_Tree, first));
  EXPECT_EQ(report_path, u"C:\\Data\\~tmpPlant_Tree.CSV");
}

TEST_F(Reports, AskBeforeTheyReplaceAFile) {
  const std::u16string path = u"C:\\Data\\~tmpPlant_Tree.CSV";
  const auto run = [&](MessageAnswer answer) {
    machine.memory.files[path] = "old";
    machine.message_box.calls.clear();
    machine.message_box.answers = {answer};
    return write(&TarvelVtrOut_InOut::ASCII_Output_Tree, u"C:\\Data\\Plant.VTR");
  };
  EXPECT_FALSE(run(MessageAnswer::kCancel));
  EXPECT_EQ(report(), "old");
  EXPECT_EQ(report_path, path);
  ASSERT_EQ(machine.message_box.calls.size(), 1U);
  EXPECT_EQ(machine.message_box.calls[0].prompt, u"File " + path + u" already exists. Do you want to overwite it?");
  EXPECT_EQ(machine.message_box.calls[0].buttons, MessageButtons::kYesNoCancel);
  EXPECT_FALSE(machine.message_box.calls[0].title);

  EXPECT_TRUE(run(MessageAnswer::kYes));
  EXPECT_NE(report(), "old");

  machine.save_dialog.file_name = u"D:\\other.txt";
  EXPECT_TRUE(run(MessageAnswer::kNo));
  EXPECT_EQ(report_path, u"D:\\other.txt");
  EXPECT_EQ(machine.memory.files[path], "old");
  EXPECT_EQ(machine.save_dialog.calls,
            (std::vector<std::string>{"SetFilter All Files (*.*)|*.*|VTR Files (*.CSV)|*.CSV", "SetFilterIndex 2",
                                      "SetText Plant.VTR", "ShowSave", "FileName"}));

  // A document is never written over, whatever the dialog says.
  machine.memory.files[u"C:\\Data\\Plant.VTR"] = "years of work";
  machine.save_dialog.file_name = u"C:\\Data\\Plant.VTR";
  EXPECT_FALSE(run(MessageAnswer::kNo));
  EXPECT_EQ(machine.memory.files[u"C:\\Data\\Plant.VTR"], "years of work");
  machine.save_dialog.file_name = u"";
  EXPECT_FALSE(run(MessageAnswer::kNo));
}

TEST_F(Reports, OutputFilesAreNamedByWhatTheyAre) {
  EXPECT_EQ(output_name(u"Statistics"), u"C:\\Data\\Plant_Statistics_1-Jun-04 02-11 PM.XLS");
  EXPECT_EQ(base_name, u"Plant");
  EXPECT_EQ(output_name(u"Recovered"), u"C:\\Data\\Plant_Recovered_1-Jun-04 02-11 PM.VTR");
  EXPECT_EQ(output_name(u"Log"), u"C:\\Data\\Plant_Log_1-Jun-04 02-11 PM.txt");
  base_name.clear();
  EXPECT_EQ(output_name(u"statistics"), u"");
  EXPECT_EQ(base_name, u"Plant");

  const std::u16string path = u"C:\\Data\\Plant_Compared_1-Jun-04 02-11 PM.XLS";
  machine.memory.files[path] = "old";
  machine.message_box.answers = {MessageAnswer::kCancel, MessageAnswer::kNo};
  EXPECT_EQ(output_name(u"Compared"), path);
  machine.save_dialog.file_name = u"x";
  EXPECT_EQ(output_name(u"Compared"), u"x");
  EXPECT_EQ(utility.GetOutputFileName(u"no stop", u"Log", base_name), u"");
  EXPECT_EQ(base_name, u"Plant") << "only a name that was found is handed out";
  EXPECT_EQ(machine.save_dialog.calls[0], "SetFilter All Files (*.*)|*.*|VTR Files (*.XLS)|*.XLS");
}

TEST_F(Reports, DeleteASCIITellsOfAMissingFile) {
  machine.memory.files[u"a.csv"] = "x";
  EXPECT_EQ(utility.Delete_ASCII(u"a.csv"), True);
  EXPECT_EQ(utility.Delete_ASCII(u"a.csv"), False);
  ASSERT_EQ(machine.message_box.calls.size(), 1U);
  EXPECT_EQ(machine.message_box.calls[0].prompt, u"File a.csv does not exists.");
  machine.memory.files[u"a.csv"] = "x";
  machine.memory.held = {u"a.csv"};
  EXPECT_EQ(utility.Delete_ASCII(u"a.csv"), False);
  EXPECT_EQ(machine.message_box.calls.size(), 1U);
}

TEST_F(Reports, OnlyTheProductReportTellsOfAFileInUse) {
  for (const auto& operations : document_parts()) {
    machine.message_box.calls.clear();
    write(operations.report, u"Plant.VTR", False);
    machine.memory.held = {report_path};
    machine.memory.files.clear();
    EXPECT_FALSE(write(operations.report, u"Plant.VTR", False));
    if (operations.name == std::string("product")) {
      ASSERT_EQ(machine.message_box.calls.size(), 1U);
      EXPECT_EQ(machine.message_box.calls[0].prompt,
                u"Can not create file: " + report_path + u"\r\nFile is in use. Please close file and try again.");
      EXPECT_EQ(machine.message_box.calls[0].title, u"VTR Output Warning");
    } else {
      EXPECT_TRUE(machine.message_box.calls.empty());
    }
    machine.memory.held.clear();
  }
}

TEST_F(Reports, AListBeyondSixteenBitsFailsBeforeItsFirstItem) {
  CONTROLTAG_STRUCT tags{.Count = 32'768, .Items = array(std::vector<CONTROLTAG_ITEM_STRUCT>(32'768))};
  ASSERT_TRUE(read(u"p.vtr", FileBuilder().section("ControlTag", tags).with_end()));
  EXPECT_FALSE(write(&TarvelVtrOut_InOut::ASCII_Output_CtrlTag, u"p.vtr"));
  EXPECT_TRUE(report().ends_with(",,ControlTag,Tagvalue\r\n"));
}

TEST_F(Reports, ScriptTextsAreFourElementsOrNone) {
  const auto definition = [](Var scripts) {
    DATASEND_ITEM_STRUCT item{};
    item.Header.VBSInfo = scripts;
    return DATASEND_STRUCT{.Count = 1, .Items = array<DATASEND_ITEM_STRUCT>({item})};
  };
  const auto row = [&](Var scripts) {
    read(u"p.vtr", FileBuilder().section("TarvelDefinitionHeader", definition(scripts)).with_end());
    machine.message_box.answers = {MessageAnswer::kYes};
    const Boolean written = write(&TarvelVtrOut_InOut::ASCII_Output_DSend, u"p.vtr");
    const std::size_t at = report().find(",,1,");
    return written ? report().substr(at, report().find('\r', at) - at) : "False";
  };
  EXPECT_EQ(row(Var()), ",,1,0,0,,0,,,,,");
  EXPECT_EQ(row(var("\x02\x20\x01\0\x04\0\0\0\0\0\0\0\x01\0\x02\0\x03\0\xFF\xFF"s)), ",,1,0,0,,0,1,2,3,-1");
  EXPECT_EQ(row(var("\x02\x20\x01\0\x03\0\0\0\0\0\0\0\x01\0\x02\0\x03\0"s)), "False");
  EXPECT_EQ(row(var("\x02\x20\x01\0\x04\0\0\0\x01\0\0\0\x01\0\x02\0\x03\0\x04\0"s)), "False") << "no element 0";
  EXPECT_EQ(row(var("\x02\0\x01\0"s)), "False");
  EXPECT_EQ(utility.LastFailure(), "the scripts (VBSInfo) of definition 1 aren't four values, numbered from 0 to 3");
}

TEST_F(Reports, TextsStayInTheirCodePage) {
  fakes::Machine japanese(932);
  TarvelVtrOut_InOut there(japanese.services());
  const std::string kanji = "\x95\x5C,\x83\x5C";  // the second bytes are backslashes
  CONTROLTAG_STRUCT tags{.Count = 1,
                         .Items = array<CONTROLTAG_ITEM_STRUCT>({CONTROLTAG_ITEM_STRUCT{.ControlTag = text(kanji)}})};
  std::u16string name = u"\u8868.vtr", list;
  japanese.memory.files[name] = FileBuilder().section("ControlTag", tags).with_end();
  Boolean no = False, yes = True;
  ASSERT_TRUE(there.ReadVTR(name, list, no));
  ASSERT_TRUE(there.ASCII_Output_CtrlTag(name, report_path, yes));
  const std::string written = japanese.memory.files[report_path];
  EXPECT_TRUE(written.starts_with("Detailed Statistic for file: \x95\x5C.vtr\r\n"));
  EXPECT_NE(written.find(",,\x95\x5C \x83\x5C,\r\n"), std::string::npos);
}

TEST_F(Reports, ReadingReportsWhatCanNotBeOpened) {
  std::u16string name, list = u"given";
  Boolean no = False;
  EXPECT_FALSE(utility.ReadVTR(name, list, no));
  EXPECT_EQ(list, u"given");
  EXPECT_EQ(machine.files.calls(), 0);
  EXPECT_EQ(machine.message_loop.count, 0);

  name = u"held.vtr";
  machine.memory.held = {name};
  EXPECT_FALSE(utility.ReadVTR(name, list, no));
  EXPECT_TRUE(
      list.starts_with(u"List of the structures that were sucessfuly read: \r\n\r\nList of the structures that "
                       u"were not sucessfuly read: HEADER_STRUCT, SCHEMA_STRUCT, "));

  name = u"new.vtr";
  list = u"given";
  EXPECT_FALSE(utility.ReadVTR(name, list, no));
  EXPECT_EQ(machine.memory.files.at(name), "") << "the open creates a missing file";
  EXPECT_EQ(machine.message_loop.count, 1);
  EXPECT_EQ(list, u"given");
  EXPECT_EQ(machine.message_box.calls.back().prompt,
            u"Cannot open the VTR file. VTR Output does not support strcture version: \r\nPlease send the file to "
            u"Tarvel Software.");
}

// A box comes while the file that it is about is still open, and a failing path closes what it opened.
TEST_F(Reports, BoxesComeBeforeTheFileIsClosed) {
  std::vector<int> open;
  machine.message_box.on_show = [&] { open.push_back(machine.memory.open_objects()); };
  std::u16string fname = u"later.vtr", list;
  Boolean no = False;
  machine.memory.files[fname] = FileBuilder("01.02.01").with_end();
  EXPECT_FALSE(utility.ReadVTR(fname, list, no));
  EXPECT_EQ(open, std::vector{1});

  // The stream of the product report is taken away while it is written.
  open.clear();
  machine.memory.taken_at_write = 3;
  EXPECT_FALSE(write(&TarvelVtrOut_InOut::ASCII_Output_Product, u"Plant.VTR"));
  EXPECT_EQ(open, std::vector{1});
  EXPECT_EQ(machine.memory.closed, 2) << "the document and the report";
  machine.memory.taken_at_write = 0;
  EXPECT_EQ(machine.memory.open_objects(), 0);
}

// Each file call in turn fails: the operation says so, lets everything go, and what stood there before still stands.
TEST_F(Reports, SurviveAFaultInAnyFileCall) {
  const std::string document = sample("plant.vtr");
  const std::u16string path = u"C:\\Plant.VTR";
  const auto try_all = [&](const auto& operation) {
    int call = 0;
    for (bool done = false; !done;) {
      machine.memory.files = {{path, document}, {u"C:\\other.csv", "other"}};
      machine.files.fail_at(++call);
      done = bool(operation());
      EXPECT_EQ(done, call > machine.files.calls());
      EXPECT_EQ(machine.files.open_objects(), 0) << "call " << call;
      EXPECT_EQ(machine.memory.open_objects(), 0) << "call " << call;
      EXPECT_EQ(machine.memory.files[path], document);
      EXPECT_EQ(machine.memory.files[u"C:\\other.csv"], "other");
    }
    machine.files.fail_at(0);
    return call;
  };
  std::u16string fname = path, list;
  Boolean no = False;
  EXPECT_EQ(try_all([&] { return utility.ReadVTR(fname, list, no); }), 5);  // open, size, read, close
  for (const auto& operations : document_parts()) {
    EXPECT_GT(try_all([&] { return write(operations.report, path); }), 10);
  }
  // A report that stands there is lost only when the user gave it up.
  const std::u16string old = u"C:\\~tmpPlant_Tree.CSV";
  machine.save_dialog.file_name = u"C:\\chosen.csv";
  for (const MessageAnswer answer : {MessageAnswer::kCancel, MessageAnswer::kNo}) {
    for (int call = 1; call < 40; ++call) {
      machine.memory.files = {{path, document}, {old, "old"}};
      machine.message_box.answers = {answer};
      machine.files.fail_at(call);
      const Boolean written = write(&TarvelVtrOut_InOut::ASCII_Output_Tree, path);
      EXPECT_EQ(machine.memory.files[old], "old");
      EXPECT_TRUE(!written || (answer == MessageAnswer::kNo && call > machine.files.calls()));
    }
  }
  machine.files.fail_at(2);
  EXPECT_EQ(output_name(u"Statistics"), u"");
  EXPECT_EQ(machine.memory.open_objects(), 0);
  EXPECT_EQ(try_all([&] {
              machine.memory.files[u"C:\\made.csv"] = "report";
              const Boolean deleted = utility.Delete_ASCII(u"C:\\made.csv");
              EXPECT_EQ(machine.memory.files.contains(u"C:\\made.csv"), !deleted);
              return deleted;
            }),
            4);
}

}  // namespace
}  // namespace trvtrout::tests
