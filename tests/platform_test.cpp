#include <cmath>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/console/console_message_box.h"
#include "platform/console/console_save_dialog.h"
#include "platform/console/printable.h"
#include "platform/files/local_files.h"
#include "platform/files/path.h"
#include "platform/files/report_files.h"
#include "platform/files/staged_files.h"
#include "platform/files/unfinished.h"
#include "platform/locale/code_page.h"
#include "platform/locale/us_locale.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/temporary_folder.h"

namespace trvtrout::platform {
namespace {

using namespace fakes;
namespace fs = std::filesystem;

class LocalFilesTest : public testing::Test {
 protected:
  using Numbers = std::vector<int>;

  // Of reading, creating and deleting a file.
  Numbers numbers(const std::string& path) {
    const std::u16string at = class_path(path);
    return {error_number([&] { files.OpenBinary(at); }), error_number([&] { system->CreateTextFile(at, true, false); }),
            error_number([&] { system->DeleteFile(at); })};
  }

  TemporaryFolder folder;
  LocalFiles files;
  std::unique_ptr<FileSystemObject> system = files.CreateFileSystemObject();
  const std::string file = folder.put("\xC3\xBCml\xE4ut \xF0\x9F\x98\x80", "kept");
  const std::u16string name = class_path(file);
};

TEST_F(LocalFilesTest, WritesLinesThroughTheBuffer) {
  std::string expected;
  auto stream = system->CreateTextFile(name, true, false);
  // Shorter than, as long as and longer than the buffer, so that each way through it is taken.
  for (const std::size_t length : {0U, 5U, 65535U, 1U, 65536U, 65537U, 200000U, 3U}) {
    const std::string line(length, static_cast<char>('a' + length % 26));
    stream->WriteLine(line);
    stream->Write(line);
    expected += line + "\r\n" + line;
  }
  stream.reset();
  EXPECT_EQ(get_file(file), expected) << "kept without Close";
}

// What a signal finds unfinished goes, what was finished before it stays.
TEST_F(LocalFilesTest, OnlyUnfinishedFilesAreRemoved) {
  const std::string done = folder.put("done", ""), other = folder.put("other", "");
  { const Unfinished first(done); }
  const Unfinished second(other);
  remove_unfinished();
  EXPECT_TRUE(fs::exists(done));
  EXPECT_FALSE(fs::exists(other));
}

TEST_F(LocalFilesTest, EachRefusalHasItsNumberAndLeavesEverythingAsItWas) {
  const std::string inner = folder.at("folder"), pipe = folder.at("pipe"), device = folder.at("device");
  const std::string missing = folder.at("missing"), long_name = folder.at(std::string(300, 'n'));
  fs::create_directory(inner);
  fs::create_symlink("/dev/full", device);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0666), 0);
  for (const auto& path : {missing + "/x", file + "/x"}) EXPECT_EQ(numbers(path), (Numbers{76, 76, 76})) << path;
  for (const auto& path : {pipe, device}) EXPECT_EQ(numbers(path), (Numbers{75, 75, 75})) << path;
  for (const auto& path : {long_name, file + '\0'}) EXPECT_EQ(numbers(path), (Numbers{52, 52, 53})) << path;
  EXPECT_EQ(numbers(inner), (Numbers{75, 58, 53}));
  EXPECT_EQ(numbers(""), (Numbers{53, 5, 53}));
  EXPECT_EQ(error_number([&] { system->CreateTextFile(name, false, false); }), 58);
  EXPECT_EQ(error_number([&] { system->DeleteFile(class_path(missing)); }), 53);
  EXPECT_EQ(files.OpenBinary(class_path(missing))->Size(), 0U);
  EXPECT_TRUE(fs::is_regular_file(missing));
  EXPECT_EQ(get_file(file), "kept");
}

TEST_F(LocalFilesTest, WriteProtectedFileIsNeitherWrittenNorDeleted) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write every file, so file rights can't be tested";
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_EQ(numbers(file), (Numbers{0, 70, 70}));
  EXPECT_EQ(get_file(file), "kept");
}

// Locks and limits count for a process, so what others may do is tried in another one.
TEST_F(LocalFilesTest, FileHeldByAnotherProcessStaysAsItWas) {
  const auto others_get = [&](const Numbers& expected) {
    EXPECT_EXIT(_exit(numbers(file) != expected), testing::ExitedWithCode(0), "") << testing::PrintToString(expected);
  };
  const int descriptor = open(file.c_str(), O_RDWR);
  flock(descriptor, LOCK_EX);
  others_get({70, 70, 70});
  flock(descriptor, LOCK_SH);
  others_get({0, 70, 70});
  flock(descriptor, LOCK_UN);
  EXPECT_EQ(lockf(descriptor, F_LOCK, 1), 0);
  others_get({70, 70, 70});
  ::close(descriptor);
  auto input = files.OpenBinary(name);
  others_get({0, 70, 70});
  input->Close();
  EXPECT_EQ(get_file(file), "kept");
  auto stream = system->CreateTextFile(name, true, false);
  others_get({70, 70, 70});
  stream->Close();
  others_get({0, 0, 0});
}

TEST_F(LocalFilesTest, FullDiskIsToldAtEveryCallAndNothingIsWrittenBehindTheGap) {
  const auto fill = [&] {
    signal(SIGXFSZ, SIG_IGN);
    rlimit room{};
    getrlimit(RLIMIT_FSIZE, &room);
    room.rlim_cur = 100'000;
    setrlimit(RLIMIT_FSIZE, &room);
    auto stream = system->CreateTextFile(name, true, false);
    for (const int told : {0, 0, 61, 61})
      EXPECT_EQ(error_number([&] { stream->Write(std::string(60'000, 'x')); }), told);
    // Room again: bytes that were refused mustn't follow now.
    room.rlim_cur = room.rlim_max;
    setrlimit(RLIMIT_FSIZE, &room);
    EXPECT_EQ(error_number([&] { stream->WriteLine("late"); }), 61);
    EXPECT_EQ(error_number([&] { stream->Close(); }), 61);
    _exit(HasFailure());
  };
  EXPECT_EXIT(fill(), testing::ExitedWithCode(0), "");
  EXPECT_EQ(fs::file_size(file), 100'000U);
}

TEST_F(LocalFilesTest, ABinaryOutputIsWrittenInPlaceOrBesideIt) {
  const auto write = [&](Files& to, std::string_view bytes) {
    const auto output = to.OpenBinaryOutput(name);
    EXPECT_EQ(error_number([&] { files.OpenBinary(name); }), 70) << "while it is written";
    output->Write(bytes);
    output->Close();
  };
  write(files, "ne");
  EXPECT_EQ(get_file(file), "nept") << "not emptied, and the tail stays";
  fs::permissions(file, fs::perms::owner_all);
  fs::create_symlink(file, folder.at("link"));
  {
    StagedFiles given_up(files);
    write(given_up, "given up");
    EXPECT_EQ(get_file(file), "nept");
  }
  {
    StagedFiles staged(files);
    write(staged, "long enough");
    EXPECT_EQ(files.OpenBinary(staged.content_path())->Size(), 11U);
    EXPECT_EQ(get_file(file), "nept");
    EXPECT_EQ(error_number([&] { staged.commit(false); }), 58) << "nobody has agreed that the file goes";
    EXPECT_EQ(get_file(file), "nept");
    staged.commit(true);
  }
  EXPECT_EQ(get_file(folder.at("link")), "long enough");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_all);
  {
    StagedFiles fresh(files, file);
    fresh.OpenBinaryOutput(class_path(folder.at("new")))->Close();
    fresh.commit(false);
  }
  EXPECT_EQ(fs::status(folder.at("new")).permissions(), fs::perms::owner_all) << "those of its model";
  fs::remove(folder.at("new"));
  fs::create_symlink("nowhere", folder.at("new"));
  EXPECT_THROW(StagedFiles(files).OpenBinaryOutput(class_path(folder.at("new"))), ServiceError);
  fs::remove(folder.at("new"));
  const fs::path parent = fs::path(file).parent_path();
  EXPECT_EQ(std::distance(fs::directory_iterator(parent), {}), 2) << "nothing is left beside them";
}

// A text comes to its place as a whole, and only over a file that somebody was told of.
TEST_F(LocalFilesTest, ReportsReplaceOnlyWhatTheyWereToldOf) {
  ReportFiles reports(files);
  const auto staging = reports.CreateFileSystemObject();
  const auto create = [&](const std::u16string& path) {
    const auto stream = staging->CreateTextFile(path, true, false);
    stream->Write("report");
    stream->Close();
  };
  EXPECT_EQ(reports.place(true), Placed::kNothing);
  EXPECT_EQ(error_number([&] { create(name); }), 58) << "it came after the question";
  reports.pass_over(name);
  EXPECT_FALSE(staging->FileExists(name));
  EXPECT_EQ(error_number([&] { create(name); }), 58) << "nobody was asked";
  EXPECT_TRUE(staging->FileExists(name)) << "passed over once";
  create(name);
  EXPECT_EQ(reports.place(false), Placed::kOldStays);
  EXPECT_EQ(get_file(file), "kept");
  create(name);
  EXPECT_EQ(get_file(file), "kept");
  EXPECT_EQ(error_number([&] { files.OpenBinary(name); }), 70) << "held until the report is in its place";
  EXPECT_EQ(reports.place(true), Placed::kText);
  EXPECT_EQ(get_file(file), "report");

  const std::u16string fresh = class_path(folder.at("new"));
  for (const bool whole : {true, false}) {
    create(fresh);
    folder.put("new", "theirs");
    EXPECT_EQ(error_number([&] { reports.place(whole); }), 58) << "it came while the report was written";
    EXPECT_EQ(get_file(folder.at("new")), "theirs");
    fs::remove(folder.at("new"));
  }
  create(fresh);
  EXPECT_EQ(reports.place(false), Placed::kText) << "what there is of it, where nothing stood";
  EXPECT_EQ(get_file(folder.at("new")), "report");
  create(class_path(folder.at("given up")));
  const fs::path parent = fs::path(file).parent_path();
  EXPECT_EQ(std::distance(fs::directory_iterator(parent), {}), 3) << "and one unfinished text";
  EXPECT_THROW(create(class_path(folder.at("none/x"))), ServiceError);
  EXPECT_EQ(reports.place(true), Placed::kNothing);
  EXPECT_EQ(std::distance(fs::directory_iterator(parent), {}), 2);
}

TEST(Paths, SeparatorsAreTranslatedAndNoByteIsLost) {
  EXPECT_EQ(class_path("/a/\xC3\xA4.vtr"), u"\\a\\\u00E4.vtr");
  EXPECT_EQ(machine_path(u"a\\b/\U0001F600"), "a/b/\xF0\x9F\x98\x80");
  EXPECT_EQ(machine_path(class_path("/\xE4/\xFF")), "/\xE4/\xFF");
}

TEST(Console, TextCantSteerTheTerminal) {
  EXPECT_EQ(printable(u"a\r\nb\nc\rd\te\u001B[2J\u007F\u009B\u00E4\u20AC"),
            "a\nb\nc\\x0Dd\\x09e\\x1B[2J\\x7F\\x9B\xC3\xA4\xE2\x82\xAC");
  // A lone byte; two of them that would be U+009B together; the second half of a real pair.
  EXPECT_EQ(printable(u"\xDCE4 \xDCC2\xDC9B \U0001F480"), "\xE4 \xC2\\x9B \xF0\x9F\x92\x80");
}

TEST(Console, QuestionIsAnsweredByPolicyOrByAPerson) {
  using enum Overwrite;
  const auto check = [](Overwrite overwrite, bool interactive, const std::string& typed, MessageAnswer answer,
                        const std::string& shown) {
    std::istringstream in(typed);
    std::ostringstream out;
    ConsoleMessageBox message_box(overwrite, in, out, interactive);
    EXPECT_EQ(message_box.Show(u"x exists.", MessageButtons::kYesNoCancel, u"T"), answer) << typed;
    EXPECT_EQ(message_box.Show(u"two\r\nlines", MessageButtons::kOk, u"Title"), MessageAnswer::kOk);
    EXPECT_EQ(out.str(), shown + "Title: two lines\n");
  };
  const std::string asked = "x exists. [y]es, yes to [a]ll, [n]o (name another file), [c]ancel: ";
  check(kYes, true, "c\n", MessageAnswer::kYes, "");
  check(kNever, true, "y\n", MessageAnswer::kCancel, "x exists. Not overwritten (--no-clobber).\n");
  check(kAsk, false, "y\n", MessageAnswer::kCancel, "x exists. Not overwritten: use --yes to overwrite.\n");
  check(kAsk, true, " Yes\n", MessageAnswer::kYes, asked);
  check(kAsk, true, "\nmaybe\nN\n", MessageAnswer::kNo, asked + asked + asked);
  check(kAsk, true, "q\n", MessageAnswer::kCancel, asked + asked + "\n");

  std::istringstream in("a\nc\n");
  std::ostringstream out;
  ConsoleMessageBox message_box(kAsk, in, out, true);
  for (int question = 0; question < 3; ++question) {
    EXPECT_EQ(message_box.Show(u"x exists.", MessageButtons::kYesNoCancel, {}), MessageAnswer::kYes);
  }
  EXPECT_EQ(out.str(), asked) << "one answer for all";
}

TEST(Console, SaveDialogNeverOverwritesUnasked) {
  MemoryFiles files;
  files.files[u"out\\old.csv"] = "kept";
  const auto check = [&](const std::string& typed, const std::u16string& chosen, bool interactive = true) {
    std::istringstream in(typed);
    std::ostringstream out;
    ConsoleSaveDialog dialog(files, in, out, interactive);
    dialog.ShowSave();
    EXPECT_EQ(dialog.FileName(), chosen) << typed;
    EXPECT_EQ(out.str().empty(), !interactive);
  };
  check("new/\xC3\xA4.csv\n", u"new\\\u00E4.csv");
  check("\nx\n", u"");
  check("new.csv\n", u"", false);
  check("out/old.csv\ny\n", u"out\\old.csv");
  check("out/old.csv\nn\nother.csv\n", u"other.csv");
  check("out/old.csv\n", u"");
  check("out\\old.csv\nnew.csv\n", u"new.csv");
}

TEST(CodePages, EveryByteStringComesBack) {
  std::mt19937 random(2);
  for (const int number : {1252, 932, 936, 949, 950, 1250, 1251, 1253, 1254, 1255, 1256, 1257, 1258, 437, 850, 857}) {
    const CodePage page(number);
    for (unsigned two = 0; two < 0x10000; ++two) {
      std::string bytes = {static_cast<char>(two >> 8), static_cast<char>(two & 0xFF)};
      ASSERT_EQ(page.encode(page.decode(bytes)), bytes) << number << " " << two;
      for (int more = 0; more < 4; ++more) bytes += static_cast<char>(random());
      ASSERT_EQ(page.encode(page.decode(bytes)), bytes) << number << " " << two;
    }
  }
}

TEST(CodePages, CharactersStandWhereTheyBelong) {
  const auto check = [](int number, const std::string& bytes, const std::u16string& text) {
    EXPECT_EQ(CodePage(number).decode(bytes), text) << number;
    EXPECT_EQ(CodePage(number).encode(text), bytes) << number;
  };
  check(1252, "a\x80\xE4\x81\x8D\x8F\x90\x9D", u"a\u20AC\u00E4\u0081\u008D\u008F\u0090\u009D");
  check(932, "\x88\x9F\\\xB1\x87\x40", u"\u4E9C\\\uFF71\u2460");
  // One that means nothing in front of a comma, which stays one, and a cut-off pair.
  check(932, "\x88,\x88", u"\uF788,\uF788");
  check(936, "\xB0\xA1", u"\u554A");
  check(950, "\xA4\x40", u"\u4E00");
  EXPECT_EQ(CodePage(1252).encode(u"\u20AC\u4E9C\U0001F600\xD83Dx"), "\x80???x");
  for (const int number : {-1, 0, 37, 99999}) EXPECT_THROW(CodePage{number}, std::invalid_argument) << number;
}

TEST(Dates, AreShownInTheirForms) {
  UsLocale locale;
  const auto check = [&](Date date, const std::u16string& general, const std::u16string& stamp) {
    EXPECT_EQ(locale.GeneralDate(date), general);
    EXPECT_EQ(locale.StampDate(date), stamp);
  };
  check(38139 + 0.4 / 86400, u"6/1/2004", u"1-Jun-04 12:00 AM");
  check(38139.999999999, u"6/2/2004", u"2-Jun-04 12:00 AM");
  check(0, u"12:00:00 AM", u"30-Dec-99 12:00 AM");
  check(-0.75, u"6:00:00 PM", u"30-Dec-99 06:00 PM");
  check(-1.25, u"12/29/1899 6:00:00 AM", u"29-Dec-99 06:00 AM");
  check(-1.999999999, u"12:00:00 AM", u"30-Dec-99 12:00 AM");
  check(-657434, u"1/1/100", u"1-Jan-00 12:00 AM");
  check(2958465.5, u"12/31/9999 12:00:00 PM", u"31-Dec-99 12:00 PM");
  check(-657435, u"-657435", u"-657435");
  check(2958465.999999999, u"2958465.999999999", u"2958465.999999999");
  check(std::nan(""), u"nan", u"nan");
}

TEST(Dates, AreTakenAsTheGeneralConversionTakesThem) {
  UsLocale locale;
  const auto check = [&](std::optional<Date> date, const std::vector<std::u16string>& forms) {
    for (const auto& form : forms) EXPECT_EQ(locale.ParseDate(form), date) << testing::PrintToString(form);
  };
  const Date afternoon = 38139 + 51065 / 86400.0;
  check(afternoon, {u"6/1/2004 2:11:05 PM", u"  06/01/04 14:11:05\t", u"6/1/2004   2:11:05pm", u"2:11:05 PM 6/1/2004"});
  check(afternoon,
        {u"1-Jun-2004 2:11:05 PM", u"June 1, 2004 14:11:05", u"6-1-2004 2:11:05 pm", u"2004/06/01 14:11:05"});
  check(38139, {u"6/1/2004", u"2004-06-01", u"6/1/2004 12:00 am", u"6/1/04", u"6/1/4", u"2004-6-1", u"6-1-04"});
  check(38139, {u"1-Jun-04", u"1 June 2004", u"JUNE 1 2004", u"jun-1-2004", u"1/jun/2004"});
  check(38139, {u"June 1,2004"});
  check(38120, {u"13/5/2004", u"5/13/2004", u"13-May-2004"});
  check(38139.5, {u"6/1/2004 12:00 PM", u"2004-06-01 12:00", u"6/1/2004 12 PM"});
  check(0.75, {u"6:00 PM", u"18:00", u"6 PM", u"6pm"});
  check(38139 + 3900 / 86400.0, {u"6/1/2004 1:5", u"6/1/2004 1:05 AM"});
  check(36585, {u"2/29/2000"});
  check(47119, {u"1/1/29"});
  check(10959, {u"1/1/30"});
  check({}, {u"", u" ", u"x", u"2/30/2004", u"2/29/1900", u"13/13/2004", u"0/1/2004", u"6/0/2004", u"2004-13-32"});
  check({}, {u"6/1/20045", u"6/1/0099", u"6/1/99999", u"+6/1/2004", u"6/1-2004", u"6//1/2004", u"6/1", u"38139"});
  check({}, {u"Juni 1, 2004", u"Jun 31, 2004", u"June 2004 1", u"Tuesday, June 1, 2004", u"1-Jun-2004-", u"1Jun2004x"});
  check({}, {u"6/1/2004 25:00", u"6/1/2004 13:00 PM", u"6/1/2004 0:10 AM", u"6/1/2004 1:60", u"6/1/2004 1:00:60"});
  check({}, {u"6/1/2004 1", u"6/1/2004 1:00 XM", u"6/1/2004 1:00 PMx", u"6/1/20041:00", u"6/1/2004 1:00 2:00"});
  check({}, {u"2004-06-01T14:11:05", u"2004-06-01 14:11:05Z", u"2004-06-01 14:11:05.5", u"2004-06-01 12:00:00+02"});
  check({}, {u"6/1/2004\u0661", u"6/1/2004 6/2/2004", u"18:00 6 PM"});
  std::mt19937 random(3);
  for (int round = 0; round < 20'000; ++round) {
    const int day = static_cast<int>(random() % 3'615'900) - 657'434;
    const Date date = day + std::copysign(static_cast<double>(random() % 86'400) / 86'400, day);
    check(date, {locale.GeneralDate(date)});
  }
  // The time zones differ from it by 14 hours at most.
  EXPECT_NEAR(locale.Now(), 25569 + static_cast<double>(std::time(nullptr)) / 86400, 0.6);
}

}  // namespace
}  // namespace trvtrout::platform
