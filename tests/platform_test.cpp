#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

#include "platform/console/console_message_box.h"
#include "platform/console/console_save_dialog.h"
#include "platform/console/printable.h"
#include "platform/files/local_files.h"
#include "platform/files/path.h"
#include "platform/locale/code_page.h"
#include "platform/locale/us_locale.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/outcome.h"
#include "tests/fakes/processes.h"
#include "tests/fakes/temporary_folder.h"

namespace trvtrout::platform {
namespace {

using namespace fakes;
namespace fs = std::filesystem;

class LocalFilesTest : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return folder_.at(name); }
  Outcome try_read(const std::string& path) {
    return outcome([&] { files_.OpenBinary(class_path(path)); });
  }
  Outcome try_create(const std::string& path, bool overwrite = true) {
    return outcome([&] { system_->CreateTextFile(class_path(path), overwrite, false); });
  }
  Outcome try_delete(const std::string& path) {
    return outcome([&] { system_->DeleteFile(class_path(path)); });
  }

  LocalFiles files_;
  std::unique_ptr<FileSystemObject> system_ = files_.CreateFileSystemObject();
  fakes::TemporaryFolder folder_;
};

TEST_F(LocalFilesTest, WritesLinesThroughTheBufferAndReadsThemBack) {
  // Shorter than, as long as and longer than the buffer, so that each way through it is taken.
  const std::string name = at("\xC3\xBCml\xE4ut \xF0\x9F\x98\x80.csv");
  std::string expected;
  auto stream = system_->CreateTextFile(class_path(name), true, false);
  for (const std::size_t length : {0, 5, 65535, 1, 65536, 65537, 200000, 3}) {
    const std::string line(length, static_cast<char>('a' + length % 26));
    stream->WriteLine(line);
    stream->Write(line);
    expected += line + "\r\n" + line;
  }
  stream->Close();
  EXPECT_EQ(get_file(name), expected);

  auto file = files_.OpenBinary(class_path(name));
  ASSERT_EQ(file->Size(), expected.size());
  std::vector<unsigned char> start(10);
  std::vector<unsigned char> rest(expected.size());
  EXPECT_EQ(file->Read(start), 10U);
  EXPECT_EQ(file->Read(rest), expected.size() - 10);
  EXPECT_EQ(std::string(rest.begin(), rest.end() - 10), expected.substr(10));
  EXPECT_EQ(file->Read(rest), 0U);
  file->Close();

  system_->CreateTextFile(class_path(name), true, false)->Write("kept without Close");
  EXPECT_EQ(get_file(name), "kept without Close");
  system_->DeleteFile(class_path(name));
  EXPECT_FALSE(fs::exists(name));
}

TEST_F(LocalFilesTest, MissingFileIsCreatedEmptyForReadingAndAnExistingOneIsKept) {
  EXPECT_EQ(files_.OpenBinary(class_path(at("new.vtr")))->Size(), 0U);
  EXPECT_TRUE(fs::is_regular_file(at("new.vtr")));
  put_file(at("old.vtr"), "bytes");
  EXPECT_EQ(files_.OpenBinary(class_path(at("old.vtr")))->Size(), 5U);
  EXPECT_EQ(get_file(at("old.vtr")), "bytes");
}

TEST_F(LocalFilesTest, EachRefusalHasItsNumberAndTellsWhatAndWhy) {
  put_file(at("file"), "kept");
  fs::create_directory(at("folder"));
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0666), 0);

  EXPECT_EQ(try_read(at("none/x")).number, 76);
  EXPECT_EQ(try_read(at("file/x")).number, 76);
  EXPECT_EQ(try_read(at("folder")).number, 75);
  EXPECT_EQ(try_read(at("pipe")).number, 75);
  EXPECT_EQ(try_read("/dev/null").number, 75);
  EXPECT_EQ(try_read(at(std::string(300, 'n'))).number, 52);
  EXPECT_EQ(try_read(at("file" + std::string(1, '\0') + "x")).number, 52);

  EXPECT_EQ(try_create("").number, 5);
  EXPECT_EQ(outcome([&] { system_->CreateTextFile(class_path(at("u")), true, true); }).number, 5);
  EXPECT_EQ(try_create(at("none/x")).number, 76);
  EXPECT_EQ(try_create(at("folder")).number, 58);
  EXPECT_EQ(try_create(at("file"), false).number, 58);
  EXPECT_EQ(try_create(at("pipe")).number, 75);
  EXPECT_EQ(try_create("/dev/full").number, 75);

  EXPECT_EQ(try_delete(at("none")).number, 53);
  EXPECT_EQ(try_delete(at("folder")).number, 53);
  EXPECT_EQ(try_delete(at("none/x")).number, 76);

  EXPECT_EQ(try_create(at("none/x.csv")).what, "can't write \"" + at("none/x.csv") + "\": its folder doesn't exist");
  EXPECT_EQ(get_file(at("file")), "kept");
  EXPECT_FALSE(fs::exists(at("u")));
  EXPECT_FALSE(system_->FileExists(class_path(at("folder"))));
  EXPECT_FALSE(system_->FileExists(class_path(at("none"))));
  EXPECT_FALSE(system_->FileExists(u""));
  EXPECT_TRUE(system_->FileExists(class_path(at("file"))));
}

TEST_F(LocalFilesTest, WriteProtectedFileIsNeitherWrittenNorDeleted) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write every file, so file rights can't be tested";
  put_file(at("file"), "kept");
  fs::permissions(at("file"), fs::perms::owner_read);
  EXPECT_EQ(try_create(at("file")).number, 70);
  EXPECT_EQ(try_delete(at("file")).number, 70);
  EXPECT_EQ(try_read(at("file")).number, 0);
  EXPECT_EQ(get_file(at("file")), "kept");
}

TEST_F(LocalFilesTest, FileLockedByAnotherProcessIsHeldAndStaysAsItWas) {
  const std::string name = at("held");
  put_file(name, "kept");
  for (const auto& lock : {flock_alone, record_lock}) {
    const Holder holder(name, lock);
    EXPECT_EQ(try_read(name).number, 70);
    EXPECT_EQ(try_create(name).number, 70);
    const Outcome deleting = try_delete(name);
    EXPECT_EQ(deleting.number, 70);
    EXPECT_EQ(deleting.what, "can't delete \"" + name + "\": it's held by another program");
  }
  {
    const Holder reader(name, flock_shared);
    EXPECT_EQ(try_read(name).number, 0);
    EXPECT_EQ(try_create(name).number, 70);
    EXPECT_EQ(try_delete(name).number, 70);
  }
  EXPECT_EQ(get_file(name), "kept");
  EXPECT_EQ(try_delete(name).number, 0);
}

TEST_F(LocalFilesTest, OwnOpenFileIsLockedForOthersUntilItIsClosed) {
  const std::string name = at("own");
  const auto others_may = [&](bool read, bool write) {
    return in_child([&] {
      LocalFiles other;
      const int reading = outcome([&] { other.OpenBinary(class_path(name)); }).number;
      const int writing =
          outcome([&] { other.CreateFileSystemObject()->CreateTextFile(class_path(name), true, false); }).number;
      return reading == (read ? 0 : 70) && writing == (write ? 0 : 70);
    });
  };
  auto stream = system_->CreateTextFile(class_path(name), true, false);
  EXPECT_TRUE(others_may(false, false));
  stream->Close();
  auto file = files_.OpenBinary(class_path(name));
  EXPECT_TRUE(others_may(true, false));
  file->Close();
  EXPECT_TRUE(others_may(true, true));
}

TEST_F(LocalFilesTest, FullDiskIsToldAtEveryCallAndNothingIsWrittenBehindTheGap) {
  constexpr rlim_t kRoom = 100'000;
  const std::string name = at("full");
  EXPECT_TRUE(in_child([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit room{kRoom, kRoom};
    if (setrlimit(RLIMIT_FSIZE, &room) != 0) return false;
    auto stream = system_->CreateTextFile(class_path(name), true, false);
    const std::string block(60'000, 'x');
    int failures = 0;
    for (int count = 0; count < 4; ++count) failures += outcome([&] { stream->Write(block); }).number == 61;
    // Room again: bytes that were refused mustn't follow now.
    if (truncate(name.c_str(), 10) != 0) return false;
    const bool writing_fails = outcome([&] { stream->WriteLine("late"); }).number == 61;
    const bool closing_fails = outcome([&] { stream->Close(); }).number == 61;
    return failures == 2 && writing_fails && closing_fails && fs::file_size(name) == 10;
  }));
}

TEST(Paths, EveryByteStringSurvivesTheRoundTrip) {
  EXPECT_EQ(class_path("/a/\xC3\xA4.vtr"), u"\\a\\\u00E4.vtr");
  EXPECT_EQ(machine_path(u"a\\b/\U0001F600"), "a/b/\xF0\x9F\x98\x80");
  // Overlong forms, surrogates, beyond the last code point, cut off, stray continuation.
  for (const std::string invalid : {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                    "\xF8\x88\x80\x80\x80", "\xE2\x82", "\xFF", "\x80"}) {
    std::u16string carried;
    for (const char byte : invalid) carried += static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(byte));
    EXPECT_EQ(class_path("x" + invalid + "y"), u"x" + carried + u"y");
  }
  std::mt19937 random(1);
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes(random() % 12, ' ');
    for (char& byte : bytes) byte = static_cast<char>(random() % 3 == 0 ? random() : 0x80 + random() % 0x80);
    std::replace(bytes.begin(), bytes.end(), '\\', '/');
    ASSERT_EQ(machine_path(class_path(bytes)), bytes);
  }
}

TEST(Console, TextCantSteerTheTerminal) {
  EXPECT_EQ(printable(u"a\r\nb\nc\rd\te\u001B[2J\u007F\u009B\u00E4\u20AC"),
            "a\nb\nc\\x0Dd\\x09e\\x1B[2J\\x7F\\x9B\xC3\xA4\xE2\x82\xAC");
  EXPECT_EQ(printable(class_path("n\xE4me")), "n\xE4me");
  // Two lone bytes that would be U+009B together; the second half of a real pair stays.
  EXPECT_EQ(printable(u"\xDCC2\xDC9B"), "\xC2\\x9B");
  EXPECT_EQ(printable(u"\U0001F480"), "\xF0\x9F\x92\x80");
}

TEST(Console, QuestionIsAnsweredByPolicyOrByAPerson) {
  const std::string question = "x exists. [y]es, [n]o (name another file), [c]ancel: ";
  const std::tuple<Overwrite, bool, std::string, MessageAnswer, std::string> cases[] = {
      {Overwrite::kYes, true, "c\n", MessageAnswer::kYes, ""},
      {Overwrite::kNever, true, "y\n", MessageAnswer::kCancel, "x exists. Not overwritten (--no-clobber).\n"},
      {Overwrite::kAsk, false, "y\n", MessageAnswer::kCancel, "x exists. Not overwritten: say --yes to overwrite.\n"},
      {Overwrite::kAsk, true, " Yes\n", MessageAnswer::kYes, question},
      {Overwrite::kAsk, true, "\nmaybe\nN\n", MessageAnswer::kNo, question + question + question},
      {Overwrite::kAsk, true, "c", MessageAnswer::kCancel, question},
      {Overwrite::kAsk, true, "q\n", MessageAnswer::kCancel, question + question + "\n"},
  };
  for (const auto& [overwrite, interactive, typed, answer, shown] : cases) {
    std::istringstream in(typed);
    std::ostringstream out;
    ConsoleMessageBox message_box(overwrite, in, out, interactive);
    EXPECT_EQ(message_box.Show(u"x exists.", MessageButtons::kYesNoCancel, u"T"), answer) << typed;
    EXPECT_EQ(out.str(), shown);
  }

  std::istringstream in;
  std::ostringstream out;
  ConsoleMessageBox message_box(Overwrite::kNever, in, out, false);
  EXPECT_EQ(message_box.Show(u"done", MessageButtons::kOk, u"Title"), MessageAnswer::kOk);
  message_box.Show(u"two\r\nlines", MessageButtons::kOk, std::nullopt);
  EXPECT_EQ(out.str(), "Title: done\ntwo lines\n");
}

TEST(Console, SaveDialogNeverOverwritesUnasked) {
  fakes::MemoryFiles files;
  files.files[u"out\\old.csv"] = "kept";
  const auto chosen = [&](const std::string& typed, bool interactive = true) {
    std::istringstream in(typed);
    std::ostringstream out;
    ConsoleSaveDialog dialog(files, in, out, interactive);
    dialog.SetFilter(u"Any|*.*|Values|*.csv");
    dialog.SetFilterIndex(2);
    dialog.SetText(u"plant.vtr");
    dialog.ShowSave();
    EXPECT_EQ(out.str().find("Path of the file to write, Values, from plant.vtr; Enter for none: "),
              interactive ? 0 : std::string::npos);
    return dialog.FileName();
  };
  EXPECT_EQ(chosen("new/\xC3\xA4.csv\n"), u"new\\\u00E4.csv");
  EXPECT_EQ(chosen("\n"), u"");
  EXPECT_EQ(chosen(""), u"");
  EXPECT_EQ(chosen("new.csv\n", false), u"");
  EXPECT_EQ(chosen("out/old.csv\ny\n"), u"out\\old.csv");
  EXPECT_EQ(chosen("out/old.csv\nn\nother.csv\n"), u"other.csv");
  EXPECT_EQ(chosen("out/old.csv\n"), u"");
  EXPECT_EQ(files.open_objects(), 0);

  std::istringstream in("x\n");
  std::ostringstream out;
  ConsoleSaveDialog odd(files, in, out, true);
  odd.SetFilter(u"half a pair");
  odd.SetFilterIndex(-3);
  odd.ShowSave();
  EXPECT_EQ(odd.FileName(), u"x");
}

TEST(CodePages, EveryByteStringComesBack) {
  std::mt19937 random(2);
  for (const int number : {1252, 932, 936, 949, 950, 1250, 1251, 1253, 1254, 1255, 1256, 1257, 1258, 437, 850, 857}) {
    const CodePage page(number);
    for (unsigned two = 0; two < 0x10000; ++two) {
      const std::string bytes = {static_cast<char>(two >> 8), static_cast<char>(two & 0xFF)};
      ASSERT_EQ(page.encode(page.decode(bytes)), bytes) << number << " " << two;
    }
    for (int round = 0; round < 200; ++round) {
      std::string bytes(random() % 500, ' ');
      for (char& byte : bytes) byte = static_cast<char>(random() % 4 == 0 ? random() % 0x80 : random());
      ASSERT_EQ(page.encode(page.decode(bytes)), bytes) << number;
    }
  }
}

TEST(CodePages, CharactersStandWhereTheyBelong) {
  const CodePage western(1252);
  EXPECT_EQ(western.decode("a\x80\xE4\x81\x8D\x8F\x90\x9D"), u"a\u20AC\u00E4\u0081\u008D\u008F\u0090\u009D");
  EXPECT_EQ(western.encode(u"\u20AC\u4E9C\U0001F600\xD83Dx\u0081"), "\x80???x\x81");
  EXPECT_EQ(western.encode(std::u16string(u"a\0b", 3)), std::string("a\0b", 3));

  const CodePage japanese(932);
  EXPECT_EQ(japanese.decode("\x88\x9F\\\xB1"), u"\u4E9C\\\uFF71");
  EXPECT_EQ(japanese.encode(u"\u4E9C\u2460"), "\x88\x9F\x87\x40");
  // A cut-off pair, and one that means nothing in front of a comma: the comma stays one.
  EXPECT_EQ(japanese.decode("\x88"), u"\uF788");
  EXPECT_EQ(japanese.decode("\x88,x"), u"\uF788,x");
  // A second code of a character is carried, not merged with the first.
  EXPECT_NE(japanese.decode("\xED\x40"), japanese.decode("\xFA\x5C"));
  EXPECT_EQ(CodePage(936).decode("\xB0\xA1"), u"\u554A");
  EXPECT_EQ(CodePage(949).decode("\xB0\xA1"), u"\uAC00");
  EXPECT_EQ(CodePage(950).decode("\xA4\x40"), u"\u4E00");

  for (const int number : {-1, 0, 37, 99999}) EXPECT_THROW(CodePage{number}, std::invalid_argument) << number;
}

std::string text(const std::u16string& ascii) { return {ascii.begin(), ascii.end()}; }

std::vector<std::u16string> apart(const std::u16string& texts) {
  std::vector<std::u16string> parts;
  for (std::size_t at = 0; at <= texts.size(); at += parts.back().size() + 1) {
    parts.push_back(texts.substr(at, texts.find(u'|', at) - at));
  }
  return parts;
}

TEST(Dates, FormsOfADate) {
  UsLocale locale;
  const double second = 1 / 86400.0;
  const std::tuple<Date, std::string, std::string> cases[] = {
      {38139 + 51065 * second, "6/1/2004 2:11:05 PM", "1-Jun-04 02:11 PM"},
      {38139, "6/1/2004", "1-Jun-04 12:00 AM"},
      {38139.5, "6/1/2004 12:00:00 PM", "1-Jun-04 12:00 PM"},
      {38139 + 0.4 * second, "6/1/2004", "1-Jun-04 12:00 AM"},
      {38139.999999999, "6/2/2004", "2-Jun-04 12:00 AM"},
      {0, "12:00:00 AM", "30-Dec-99 12:00 AM"},
      {-0.75, "6:00:00 PM", "30-Dec-99 06:00 PM"},
      {-1.25, "12/29/1899 6:00:00 AM", "29-Dec-99 06:00 AM"},
      {-1.999999999, "12:00:00 AM", "30-Dec-99 12:00 AM"},
      {-657434, "1/1/100", "1-Jan-00 12:00 AM"},
      {2958465.5, "12/31/9999 12:00:00 PM", "31-Dec-99 12:00 PM"},
      {-657435, "-657435", "-657435"},
      {2958465.999999999, "2958465.999999999", "2958465.999999999"},
      {1e300, "1e+300", "1e+300"},
      {std::numeric_limits<double>::infinity(), "inf", "inf"},
      {std::nan(""), "nan", "nan"},
  };
  for (const auto& [date, general, stamp] : cases) {
    EXPECT_EQ(text(locale.GeneralDate(date)), general);
    EXPECT_EQ(text(locale.StampDate(date)), stamp);
  }
}

TEST(Dates, ParseTakesBothFormsAndNothingElse) {
  UsLocale locale;
  const Date afternoon = 38139 + 51065 / 86400.0;
  const std::pair<std::u16string, Date> taken[] = {
      {u"6/1/2004 2:11:05 PM|  06/01/04 14:11:05\t|6/1/2004   2:11:05pm", afternoon},
      {u"2004-06-01T14:11:05|2004-06-01 14:11:05.123Z|2004-06-01T14:11:05.9", afternoon},
      {u"6/1/2004|2004-06-01|6/1/2004 12:00 am", 38139},
      {u"6/1/2004 12:00 PM|2004-06-01 12:00", 38139.5},
      {u"6:00 PM|18:00", 0.75},
      {u"2/29/2000", 36585},
      {u"1/1/29", 47119},
      {u"1/1/30", 10959},
  };
  for (const auto& [forms, date] : taken) {
    for (const auto& form : apart(forms)) EXPECT_EQ(locale.ParseDate(form), date) << text(form);
  }
  const std::u16string refused =
      u"| |x|2/30/2004|2/29/1900|13/1/2004|0/1/2004|6/0/2004|6/1/4|6/1/20045|6/1/0099|6/1/2004 25:00|"
      u"6/1/2004 13:00 PM|6/1/2004 0:10 AM|6/1/2004 1:60|6/1/2004 1:5|6/1/2004 1|6/1/2004 1:00:60|"
      u"6/1/2004 1:00 XM|6/1/2004 1:00 PMx|6/1/20041:00|6-1-2004|2004-6-1|2004-13-01|2004-06-01T|"
      u"2004-06-01T24:00:00|2004-06-01T1:00:00|2004-06-01 12:00:00.|2004-06-01 12:00:00+02|+6/1/2004|"
      u"6/ 1/2004|6/1/2004\u0661";
  for (const auto& form : apart(refused)) EXPECT_EQ(locale.ParseDate(form), std::nullopt) << text(form);
}

TEST(Dates, GeneralFormOfEverySecondParsesToTheSameSecond) {
  UsLocale locale;
  std::mt19937 random(3);
  for (int round = 0; round < 20'000; ++round) {
    const int day = static_cast<int>(random() % 3'615'900) - 657'434;
    const double time = static_cast<double>(random() % 86'400) / 86'400;
    const Date date = day < 0 ? day - time : day + time;
    ASSERT_EQ(locale.ParseDate(locale.GeneralDate(date)), date) << day << " " << time;
  }
  const Date now = locale.Now();
  EXPECT_EQ(locale.ParseDate(locale.GeneralDate(now)), now);
  EXPECT_GT(now, 45'000);
}

}  // namespace
}  // namespace trvtrout::platform
