#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <unistd.h>

#include "tests/command.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

class RecoverCommand : public Command {
 protected:
  void expect_nothing_written(const std::string& commands, const std::string& reason) const {
    EXPECT_NE(expect_refused(commands, reason).err.find("nothing was written"), std::string::npos) << commands;
  }
};

TEST_F(RecoverCommand, RewritesEverySampleAndTellsWhatWasLost) {
  const std::map<std::string, int> statuses = {
      {"damaged/bad-variant-in-hidden.vtr", 1}, {"damaged/no-eof.vtr", 1},   {"damaged/sick-lists.vtr", 1},
      {"damaged/unknown-section.vtr", 1},       {"odd/module-twice.vtr", 1},  // a record for which there is no place
      {"odd/version-01.02.01.vtr", 2}};
  for (const std::string& name : sample_names()) {
    const std::string bytes = sample(name);
    put("s.vtr", bytes);
    const Outcome run = vtrout("recover s.vtr --output new.vtr --log log.txt --yes");
    const auto expected = statuses.find(name);
    ASSERT_EQ(run.status, expected == statuses.end() ? 0 : expected->second) << name << run.err;
    EXPECT_TRUE(get("s.vtr") == bytes) << name;
    EXPECT_EQ(run.err.find("(100.0%)") != std::string::npos, run.status == 0 || name == "damaged/no-eof.vtr")
        << name << run.err;
    if (run.status == 2) continue;
    EXPECT_EQ(run.out, "new.vtr\n");
    EXPECT_EQ(vtrout("info new.vtr").status, 0) << name;
    std::string log = file_bytes(SAMPLES "/expected/" + name + "/recover.txt");
    const std::string read = file_bytes(SAMPLES "/expected/" + name + "/read.txt");
    const std::size_t list = read.find("StructureList:\r\n");
    const std::string given = list == std::string::npos ? "" : read.substr(list + 16, read.size() - list - 18);
    EXPECT_EQ(get("log.txt"), log.replace(log.find("@GIVEN@"), 7, given)) << name;
  }
}

TEST_F(RecoverCommand, AccountsForProgramsAndPeople) {
  const std::string whole = sample("plant.vtr");
  const SectionPlace language = section_places(whole)[4];
  ASSERT_EQ(language.tag, "Language");
  put("d.vtr", whole.substr(0, language.begin + 500));
  const Outcome programs = vtrout("recover d.vtr --output new.vtr --json --first-damage");
  EXPECT_EQ(programs.status, 1);
  const auto account = nlohmann::json::parse(programs.out);
  EXPECT_EQ(account["output"], "new.vtr");
  EXPECT_EQ(account["nothingLost"], false);
  EXPECT_EQ(account["damage"]["offset"], language.begin + 500);
  EXPECT_EQ(account["bytesKept"], language.begin + 500);
  EXPECT_EQ(account["parts"]["Schema"]["lists"]["fields"],
            nlohmann::json::parse(R"({"announced": 48, "kept": 48, "surplus": 0, "empty": 0, "test": "passed"})"));
  EXPECT_EQ(account["parts"]["Language"]["outcome"], "partlyRead");
  EXPECT_EQ(account["parts"]["Language"]["lists"]["languages"]["announced"], 12);
  EXPECT_GT(account["parts"]["Language"]["lists"]["languages"]["kept"], 3);
  EXPECT_LT(account["parts"]["Language"]["lists"]["languages"]["kept"], 12);
  EXPECT_EQ(account["parts"]["Module"]["outcome"], "notReached");
  EXPECT_TRUE(account["message"].get<std::string>().starts_with("List of the structures that were sucessfuly read"));

  const Outcome people = vtrout("recover d.vtr --output other.vtr --first-damage");
  EXPECT_TRUE(std::regex_search(
      people.err,
      std::regex("damaged: reading stopped at byte [0-9]+, SectionTag\\[6\\]: the file .*, from byte [0-9]+ on\n")))
      << people.err;
  EXPECT_TRUE(std::regex_search(people.err, std::regex("Language +partly read +[0-9]+ +[0-9]+\n")));
  EXPECT_TRUE(std::regex_search(people.err, std::regex("Language texts +[4-9] of 12 records")));
  EXPECT_TRUE(std::regex_search(people.err, std::regex("ResidualTable +never reached")));

  // What the upgrade of the old format leaves behind is a loss.
  SCHEMA_STRUCT_OLD1 schema{};
  for (const char* left : {"", "left behind"}) {
    schema.Product.Text10 = text(left);
    put("old.vtr", FileBuilder("01.00.00").section("Schema", schema).with_end());
    EXPECT_EQ(vtrout("recover old.vtr --output o.vtr --yes").status, *left ? 1 : 0);
  }
}

TEST_F(RecoverCommand, TellsOfASectionThatHidesBehindABadTag) {
  std::string bytes = sample("odd/reversed-sections.vtr");
  bytes[bytes.find("\x0A\0ControlTag"s) + 2] = 'c';
  put("d.vtr", bytes);
  for (const char* command : {"info d.vtr --json", "recover d.vtr --output new.vtr --json --first-damage"}) {
    const Outcome run = vtrout(command);
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_NE(run.err.find("were skipped: \"controlTag\""), std::string::npos) << run.err;
    const auto account = nlohmann::json::parse(run.out);
    EXPECT_TRUE(account["damage"].is_null());
    ASSERT_EQ(account["gaps"].size(), 1U);
    EXPECT_EQ(account["gaps"][0]["begin"], bytes.find("\x0A\0controlTag"s));
    if (!account.contains("parts")) continue;
    EXPECT_EQ(account["nothingLost"], false);
    EXPECT_EQ(account["bytesBehindEnd"], 0);
    EXPECT_EQ(account["parts"]["ControlTag"]["outcome"], "notFound");
  }
  for (const char* empty : {"--output ''", "--log ''"}) {
    EXPECT_EQ(vtrout("recover d.vtr --yes " + std::string(empty)).status, 2) << empty;
  }
}

TEST_F(RecoverCommand, SavesWhatStandsBehindTheDamage) {
  std::string bytes = sample("plant.vtr");
  const auto places = section_places(bytes);
  const SectionPlace &hidden = places[2], &tree = places[3];
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(tree.begin + 200), 300, '\0');
  bytes[bytes.find("\x0A\0ControlTag"s) + 2] = 'c';
  put("d.vtr", bytes);
  fs::create_directory(at("pieces"));
  const Outcome run = vtrout("recover d.vtr --output new.vtr --json --unexplained pieces");
  EXPECT_EQ(run.status, 1);
  const auto account = nlohmann::json::parse(run.out);
  EXPECT_EQ(account["nothingLost"], false);
  EXPECT_EQ(account["parts"]["Hidden"]["outcome"], "whole");
  EXPECT_EQ(account["parts"]["Module"]["outcome"], "whole");
  const auto& nodes = account["parts"]["TreeHierarchy"]["lists"]["tree"];
  EXPECT_EQ(nodes["announced"], 7);
  EXPECT_LT(nodes["kept"], 7);
  EXPECT_GT(nodes["kept"], 2);
  std::uint64_t unexplained = 0;
  for (const auto& range : account["salvage"]["unexplained"]) {
    const std::uint64_t begin = range["begin"], end = range["end"];
    unexplained += end - begin;
    const std::string piece = "pieces/d.vtr." + std::to_string(begin) + '-' + std::to_string(end);
    EXPECT_TRUE(get(piece) == bytes.substr(begin, end - begin)) << piece;
  }
  EXPECT_EQ(account["salvage"]["bytesExplained"], bytes.size() - unexplained);
  EXPECT_EQ(account["unexplainedFiles"].size(), account["salvage"]["unexplained"].size());
  Reading reading;
  reading.read(get("new.vtr"));
  EXPECT_TRUE(section_bytes(reading, "Hidden") == bytes.substr(hidden.begin, hidden.end - hidden.begin));

  const Outcome people = vtrout("recover d.vtr --output other.vtr");
  EXPECT_NE(people.err.find("ControlTag: whole, found behind damage at byte "), people.err.npos) << people.err;
  EXPECT_NE(people.err.find("missing in TreeHierarchy/Items: bytes "), people.err.npos) << people.err;
  // Only looking writes nothing.
  const Outcome info = vtrout("info d.vtr --salvage");
  EXPECT_EQ(info.status, 1);
  EXPECT_NE(info.err.find("read on behind the damage"), info.err.npos) << info.err;
  EXPECT_NE(info.out.find("ControlTag: whole, found behind damage"), info.out.npos) << info.out;
  EXPECT_EQ(vtrout("report d.vtr --salvage --temporary --part ctrltag").status, 1);
  EXPECT_NE(vtrout("report d.vtr --temporary --part ctrltag --yes").err, "");
  EXPECT_TRUE(get("d.vtr") == bytes);

  // A struck header is no hindrance any more.
  bytes.replace(bytes.find("01.02.00"), 2, "\x01\x02");
  put("h.vtr", bytes);
  EXPECT_EQ(vtrout("recover h.vtr --output h2.vtr --first-damage").status, 2);
  const Outcome headless = vtrout("recover h.vtr --output h2.vtr");
  EXPECT_EQ(headless.status, 1) << headless.err;
  EXPECT_NE(headless.err.find("the sections fit that of 01.02.00"), headless.err.npos) << headless.err;
}

// A list that fails its test and can't be emptied, or isn't reached, is named, here and by `info` on the new file.
TEST_F(RecoverCommand, NamesTheListsThatStillFail) {
  SCHEMA_STRUCT schema{};
  schema.Lookups.Max = schema.Tables.Max = 1;
  HIDETABLES_STRUCT hidden{};
  hidden.Lookups.Count = hidden.Tables.Max = 1;
  put("d.vtr", FileBuilder().section("Schema", schema).section("Hidden", hidden).with_end());
  const Outcome first = vtrout("recover d.vtr --output one.vtr");
  EXPECT_EQ(first.status, 1);
  for (const char* list : {"Tables", "Hidden tables", "Hidden lookups"}) {
    EXPECT_TRUE(std::regex_search(
        first.err, std::regex(list + " +0 of [01] records; fails its test, and is in the new file as it was read"s)))
        << list << first.err;
  }
  EXPECT_NE(vtrout("info one.vtr").err.find("hold together: Tables, Hidden tables, Hidden lookups;"),
            std::string::npos);
  // Now that the lookups pass, the tables are reached.
  const auto second = nlohmann::json::parse(vtrout("recover one.vtr --output two.vtr --json").out);
  EXPECT_EQ(second["parts"]["Schema"]["lists"]["tables"]["test"], "emptied");
  EXPECT_EQ(second["parts"]["Hidden"]["lists"]["hiddenLookups"]["test"], "kept");
  EXPECT_NE(
      second["message"].get<std::string>().find("couldn't been recovered: \r\nTABLES_STRUCT\r\nHIDEFIELDS_STRUCT"),
      std::string::npos);
  EXPECT_NE(vtrout("info two.vtr").err.find("hold together: Hidden tables, Hidden lookups;"), std::string::npos);
}

TEST_F(RecoverCommand, NeverWritesOverTheDamagedFile) {
  put("p.vtr", sample("damaged/no-eof.vtr"));
  fs::create_symlink("p.vtr", at("symbolic.vtr"));
  fs::create_hard_link(at("p.vtr"), at("hard.vtr"));
  for (const char* arguments : {"--output p.vtr", "--output ./p.vtr", "--output symbolic.vtr", "--output hard.vtr",
                                "--output new.vtr --log p.vtr", "--output new.vtr --log hard.vtr"}) {
    expect_nothing_written("vtrout recover p.vtr --yes " + std::string(arguments), "never overwritten");
  }
  expect_nothing_written("vtrout recover symbolic.vtr --yes --output p.vtr", "never overwritten");
  expect_nothing_written("vtrout recover p.vtr --output new.vtr --log ./new.vtr",
                         "the log can't be the recovered file");
  EXPECT_TRUE(get("p.vtr") == sample("damaged/no-eof.vtr"));
}

TEST_F(RecoverCommand, AnOlderFileIsLostOnlyToACompleteOneAndAfterAYes) {
  put("p.vtr", sample("plant.vtr"));
  put("old.vtr", "mine");
  put("log.txt", "mine");
  const std::string whole = "vtrout recover p.vtr --output old.vtr --log log.txt";
  expect_nothing_written(whole, "left as it was");
  expect_nothing_written(whole + " --no-clobber", "--no-clobber");
  // A full disk, while the new file is written: a shell counts the limit in blocks of 512 bytes.
  expect_nothing_written("ulimit -f 8; " + whole + " --yes", "larger than allowed");
  // The same while the log is written, which comes last.
  expect_nothing_written("flock log.txt " + whole + " --yes", "in use by another program");
  expect_nothing_written("flock old.vtr " + whole + " --yes", "in use by another program");
  expect_nothing_written("vtrout recover p.vtr --output nowhere/new.vtr", "its folder doesn't exist");
  expect_nothing_written("vtrout recover p.vtr --output old.vtr --log nowhere/log.txt --yes",
                         "its folder doesn't exist");
  fs::create_directory(at("folder.vtr"));
  expect_nothing_written("vtrout recover p.vtr --output folder.vtr --yes", "a folder");
  expect_nothing_written("vtrout recover p.vtr --output /dev/null --yes", "a device");
  EXPECT_EQ(get("old.vtr"), "mine");
  EXPECT_EQ(get("log.txt"), "mine");

  fs::permissions(at("old.vtr"), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(shell(whole + " --yes").status, 0);
  EXPECT_EQ(vtrout("info old.vtr").status, 0);
  EXPECT_EQ(fs::status(at("old.vtr")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(RecoverCommand, RefusesWhatItCannotRead) {
  HEADER_STRUCT header{.Version = text("01.02.00")};
  header.Spare = VarRun<5>(var("\x03\0\0\0\0\0\0\0\0\0\0\0\0\0"s).at());
  std::string broken = bytes_of(header);
  put("cut.vtr", broken.substr(0, broken.size() - 4));
  broken[broken.size() - 14] = '\x63';
  put("broken.vtr", broken);
  for (const char* file : {"cut.vtr", "broken.vtr"}) {
    expect_nothing_written("vtrout recover " + std::string(file) + " --output new.vtr", "without a header");
  }
  EXPECT_EQ(vtrout("recover missing.vtr --output new.vtr").status, 2);
  EXPECT_EQ(files().size(), 2U);
  put("future.vtr", FileBuilder("01.02.01").with_end());
  expect_nothing_written("vtrout recover future.vtr --output new.vtr", "may be damaged");
  put("noextension", sample("plant.vtr"));
  expect_nothing_written("vtrout recover noextension", "give one with --output");
  EXPECT_EQ(vtrout("recover noextension --output n.vtr").status, 0);
}

TEST_F(RecoverCommand, TakesNamesAsTheyCome) {
  const std::string longest = std::string(200, 'x') + ".vtr";
  for (const std::string& name : {"Pl\xC3\xA4nt \"one\" '.vtr"s, "$(touch x);.vtr"s, longest}) {
    put("in.vtr", sample("damaged/no-eof.vtr"));
    fs::rename(at("in.vtr"), at(name));
    const std::string quoted = "'" + std::regex_replace(name, std::regex("'"), "'\\''") + "'";
    const Outcome run = vtrout("recover " + quoted);
    EXPECT_EQ(run.status, 1) << run.err;
    ASSERT_EQ(lines(run.out).size(), 1U) << name;
    const std::string path = lines(run.out)[0];
    EXPECT_TRUE(path.starts_with(name.substr(0, name.find('.')) + "_Recovered_") && path.ends_with(".VTR")) << path;
    EXPECT_TRUE(fs::exists(at(path))) << path;
  }
}

TEST_F(RecoverCommand, AFolderOrFileWithoutRightsIsLeftAlone) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is forbidden to root";
  put("p.vtr", sample("plant.vtr"));
  put("old.vtr", "mine");
  fs::permissions(at("old.vtr"), fs::perms::owner_read);
  expect_nothing_written("vtrout recover p.vtr --output old.vtr --yes", "old.vtr");
  fs::create_directory(at("closed"));
  fs::permissions(at("closed"), fs::perms::owner_read | fs::perms::owner_exec);
  expect_nothing_written("vtrout recover p.vtr --output closed/new.vtr", "closed/new.vtr");
}

}  // namespace
}  // namespace trvtrout::tests
