#include <nlohmann/json.hpp>

#include "tests/command.h"

namespace trvtrout::tests {
namespace {

using nlohmann::json;

class Batch : public Command {
 protected:
  // Samples under these paths.
  void fill(std::initializer_list<std::pair<const char*, const char*>> files) const {
    for (const auto& [path, name] : files) {
      fs::create_directories(at(path).parent_path());
      put(path, sample(name));
    }
  }
  std::vector<std::string> listed(const std::string& arguments) const {
    std::vector<std::string> files;
    for (const std::string& line : lines(vtrout("info --json " + arguments).out)) {
      files.push_back(json::parse(line)["file"]);
    }
    return files;
  }
  std::vector<std::string> all_below(const char* folder) const {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(at(folder))) {
      if (entry.is_regular_file()) paths.push_back(entry.path().lexically_relative(at(folder)));
    }
    std::ranges::sort(paths);
    return paths;
  }
};

using Paths = std::vector<std::string>;

TEST_F(Batch, TakesTheVtrFilesOfFolders) {
  fill({{"f/b.vtr", "plant.vtr"},
        {"f/a.VTR", "dense.vtr"},
        {"f/by-content", "plant.vtr"},
        {"f/.vtrout-1.tmp", "plant.vtr"},
        {"f/in/c\nd\xFF.vtr", "plant.vtr"},
        {"f/in/deep/no-eof.vtr", "damaged/no-eof.vtr"}});
  put("f/in/text.txt", "01.02.00");
  shell(
      "ln -s .. f/in/loop; ln -s ../b.vtr f/in/link.vtr; ln -s nowhere f/in/gone.vtr; mkfifo f/in/pipe.vtr; mkdir "
      "f/e.vtr");
  EXPECT_EQ(listed("f"), (Paths{"f/a.VTR", "f/b.vtr", "f/by-content"}));
  const Paths all = {"f/a.VTR",       "f/b.vtr",      "f/by-content", "f/in/c\nd\uFFFD.vtr", "f/in/deep/no-eof.vtr",
                     "f/in/gone.vtr", "f/in/link.vtr"};
  EXPECT_EQ(listed("f --recursive"), all);
  EXPECT_EQ(listed("f --recursive --jobs 7 f/in ./f/b.vtr").size(), all.size() + 1) << "named files stay";
  put("list", "f/b.vtr\r\n\nf/in\n");
  put("zeros", std::string("f/in/c\nd\xFF.vtr\0f/b.vtr\0", 22));
  EXPECT_EQ(listed("--files-from list f/a.VTR"), (Paths{"f/a.VTR", "f/b.vtr", all[3], all[5], all[6]}));
  EXPECT_EQ(listed("--files-from - <zeros"), (Paths{all[3], "f/b.vtr"}));
  EXPECT_EQ(vtrout("info --files-from /dev/null").status, 0);
  expect_refused("vtrout info --files-from none", "none: the list of files can't be read");
  expect_refused("vtrout info f/e.vtr", "no VTR file is in this folder; --recursive looks");
}

TEST_F(Batch, TellsEachFileInItsPlaceAndEndsWithTheWorst) {
  fill({{"f/1.vtr", "plant.vtr"}, {"f/2.vtr", "damaged/no-eof.vtr"}, {"f/3.vtr", "odd/version-01.02.01.vtr"}});
  std::string out, err;
  for (const char* name : {"1", "2", "3"}) {
    const Outcome alone = vtrout(std::string("info f/") + name + ".vtr");
    out += (out.empty() || alone.out.empty() ? "" : "\n") + alone.out;
    err += alone.err;
  }
  for (const char* jobs : {"1", "2", "9"}) {
    const Outcome run = vtrout(std::string("info f --log log --jobs ") + jobs);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, err + "3 files: 1 fine, 1 damaged, 1 in trouble\n");
  }
  const std::vector<std::string> log = lines(get("log"));
  ASSERT_EQ(log.size(), 12U);
  EXPECT_TRUE(log[0].starts_with("# vtrout info, ") && log[0].ends_with(", 3 files: exit status, file, why")) << log[0];
  EXPECT_EQ(log[1], "0\tf/1.vtr");
  EXPECT_TRUE(log[2].starts_with("1\tf/2.vtr\tdamaged: reading stopped at byte 13304")) << log[2];
  EXPECT_TRUE(log[3].starts_with("2\tf/3.vtr\tCannot open the VTR file. VTR Output does not support")) << log[3];
  const auto trouble = json::parse(lines(vtrout("info f --json").out).back());
  EXPECT_EQ(trouble["form"], "vtrout-trouble");
  EXPECT_EQ(trouble["file"], "f/3.vtr");
  expect_refused("vtrout info f --log f/1.vtr", "is no such log");
}

TEST_F(Batch, NoFileIsWrittenOverThatOfAnother) {
  fill({{"f/v1.2.vtr", "plant.vtr"},
        {"f/v1.3.vtr", "dense.vtr"},
        {"f/in/v1.vtr", "dense.vtr"},
        {"out/kept", "plant.vtr"}});
  for (const char* command :
       {"report f --recursive --temporary --yes", "report --jobs 3 f/in f/v1.2.vtr f/v1.3.vtr --temporary --yes"}) {
    const Outcome run = vtrout(command);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(lines(run.out).size(), 16U);
    EXPECT_NE(run.err.find("f/v1.3.vtr: what is written about it would have the same names as for f/v1.2.vtr"),
              std::string::npos)
        << run.err;
  }
  EXPECT_NE(get("f/~tmpv1_Table.CSV").find("v1.2.vtr"), std::string::npos);
  const Outcome into = vtrout("report f --recursive --temporary --output-dir out --part table");
  EXPECT_EQ(into.out, "out/in/~tmpv1_Table.CSV\nout/~tmpv1_Table.CSV\n");
  EXPECT_EQ(lines(vtrout("recover f --recursive --output-dir out -q").out).size(), 2U);
  EXPECT_EQ(all_below("out").size(), 5U);
  const Outcome again = vtrout("report f --recursive --temporary --output-dir out --part table");
  EXPECT_EQ(again.out, "");
  EXPECT_NE(again.err.find("use --yes to overwrite"), std::string::npos);
  expect_refused("vtrout report f --workbook w.xls", "--workbook takes the reports on one file");
  expect_refused("vtrout recover f --output new.vtr", "--output-dir takes those of several");
}

// The name of a recovered file has the minute in it, which may pass between two runs.
TEST_F(Batch, NoFileIsRecoveredIntoAnother) {
  fill({{"f/plant.vtr", "plant.vtr"}});
  Outcome run{};
  for (int attempt = 0; attempt < 2 && run.status == 0; ++attempt) {
    const std::string earlier = lines(vtrout("recover f/plant.vtr -q --yes").out).back();
    const std::string bytes = get(earlier);
    run = vtrout("recover f/plant.vtr '" + earlier + "' --yes");
    EXPECT_EQ(get(earlier), bytes);
  }
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("that's one of the files to recover"), std::string::npos) << run.err;
}

TEST_F(Batch, QuestionsComeInOrderAndOneAnswerCanStandForAll) {
  fill({{"1.vtr", "plant.vtr"}, {"2.vtr", "plant.vtr"}, {"3.vtr", "plant.vtr"}});
  ASSERT_EQ(vtrout("report . --temporary --part table --part field").status, 0);
  const auto before = files();
  const std::string command =
      " | TERM=dumb script -qec 'vtrout report . --temporary --part table --part field --jobs 3' typed";
  const Outcome some = shell("printf 'y\\nc\\na\\n'" + command);
  const auto at = [&](const char* text) { return some.out.find(text); };
  EXPECT_LT(at("File ./~tmp1_Table.CSV already exists."), at("./~tmp1_Table.CSV\r\n"));
  EXPECT_LT(at("./~tmp1_Table.CSV\r\n"), at("File ./~tmp1_Field.CSV already exists."));
  EXPECT_LT(at("File ./~tmp1_Field.CSV already exists."), at("File ./~tmp2_Table.CSV already exists."));
  EXPECT_EQ(at("File ./~tmp2_Field.CSV"), std::string::npos) << some.out;
  EXPECT_EQ(at("File ./~tmp3"), std::string::npos) << some.out;
  EXPECT_NE(at("3 files: 2 fine, 1 in trouble"), std::string::npos) << some.out;
  auto after = files();
  after.erase("typed");
  EXPECT_TRUE(after == before);
}

TEST_F(Batch, ExportGoesOnBehindAFileThatCantBeRead) {
  fill({{"f/1.vtr", "plant.vtr"}, {"f/2.vtr", "damaged/no-eof.vtr"}, {"f/3.vtr", "dense.vtr"}});
  const Outcome lines_run = vtrout("export f --ndjson all.ndjson");
  EXPECT_EQ(lines_run.status, 2);
  EXPECT_EQ(lines_run.out, "all.ndjson\n");
  EXPECT_EQ(get("all.ndjson"), vtrout("export f/1.vtr f/3.vtr --ndjson").out);
  EXPECT_EQ(vtrout("export f --sqlite all.db --jobs 3").status, 2);
  EXPECT_EQ(shell("sqlite3 all.db 'SELECT file FROM documents ORDER BY 1'").out, "1.vtr\n3.vtr\n");
  expect_refused("vtrout export f --json all.json", "--json takes one file");
}

TEST_F(Batch, FoldersAreComparedPairByPair) {
  fill({{"old/a.vtr", "plant.vtr"},
        {"new/a.vtr", "plant-next.vtr"},
        {"old/in/same.vtr", "dense.vtr"},
        {"new/in/same.vtr", "dense.vtr"},
        {"old/in/gone.vtr", "dense.vtr"},
        {"new/came", "dense.vtr"},
        {"old/z.vtr", "damaged/no-eof.vtr"},
        {"new/z.vtr", "plant.vtr"}});
  const Outcome diff = vtrout("diff old new --recursive --summary");
  EXPECT_EQ(diff.status, 2);
  EXPECT_EQ(diff.out,
            "    changed    removed      added      moved  file\n"
            "         17          1          3          0  a.vtr\n"
            "          -          -          -          -  came  (only in the new folder)\n"
            "          -          -          -          -  in/gone.vtr  (only in the old folder)\n"
            "          0          0          0          0  in/same.vtr\n"
            "          -          -          -          -  z.vtr  (not compared)\n");
  const auto text = vtrout("diff old new").out;
  EXPECT_TRUE(text.starts_with("vtrout diff old/a.vtr new/a.vtr\n" + vtrout("diff old/a.vtr new/a.vtr").out)) << text;
  std::string forms;
  for (const std::string& line : lines(vtrout("diff old new --recursive --json").out)) {
    forms += json::parse(line)["form"].get<std::string>() + ' ';
  }
  EXPECT_EQ(forms, "vtr-differences vtrout-unpaired vtrout-unpaired vtr-differences vtrout-trouble ");
  const Outcome compare = vtrout("compare old new --recursive --json --part table --output-dir .");
  const auto pair = json::parse(lines(compare.out).front()), unpaired = json::parse(lines(compare.out)[1]);
  EXPECT_EQ(pair["parts"]["table"]["report"], "./~tmpa_Tables_Compared.CSV");
  EXPECT_TRUE(unpaired["old"].is_null() && unpaired["new"] == "new/came") << unpaired;
  EXPECT_TRUE(fs::exists(at("in/~tmpsame_Tables_Compared.CSV")));
  EXPECT_EQ(vtrout("compare old/in new/in --summary").status, 1) << "a file is gone";
  EXPECT_EQ(vtrout("compare new new --recursive --summary").status, 0);
  expect_refused("vtrout diff old new/a.vtr", "old is a folder and new/a.vtr isn't");
  expect_refused("vtrout diff old new --html page.html", "--html takes two files");
}

// The pipe is full long before all is told, so the signal comes in the middle.
TEST_F(Batch, ASignalEndsItCleanly) {
  put("stop.py", R"(
import os, signal, subprocess, sys
run = subprocess.Popen(['vtrout'] + sys.argv[2:], stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0)
run.stdout.readline()
os.kill(run.pid, getattr(signal, sys.argv[1]))
out, err = run.communicate()
print(run.returncode, len(out.splitlines()) + 1, err.decode().splitlines()[0])
)");
  fs::create_directory(at("f"));
  for (int file = 0; file < 700; ++file) put("f/" + std::to_string(file) + ".vtr", sample("plant.vtr"));
  for (const auto& [name, number] : {std::pair("SIGINT", "-2"), {"SIGTERM", "-15"}}) {
    std::istringstream told(
        shell(std::string("python3 stop.py ") + name + " report f --temporary --yes --jobs 2 --log log").out);
    std::string status, stopped;
    std::size_t reports = 0, done = 0;
    told >> status >> reports >> stopped >> stopped >> done;
    EXPECT_EQ(status, number);
    EXPECT_EQ(reports, 8 * done) << "all that was begun was done, and told";
    EXPECT_LT(done, 700U);
    EXPECT_EQ(lines(get("log")).size(), done + 1);
    for (const std::string& path : all_below("f")) EXPECT_EQ(path.find(".tmp"), std::string::npos) << path;
    EXPECT_EQ(all_below("f").size(), 700 + reports);
    shell("rm f/*.CSV log");
  }
}

}  // namespace
}  // namespace trvtrout::tests
