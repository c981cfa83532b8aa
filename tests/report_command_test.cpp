#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <unistd.h>

#include "component/parts.h"
#include "tests/command.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

TEST_F(Command, ReportsEverySampleAsApproved) {
  for (const std::string& name : sample_names()) {
    const fs::path expected = fs::path(SAMPLES) / "expected" / name;
    if (!fs::exists(expected / "report-product.csv")) continue;
    const std::string bytes = sample(name);
    put("s.vtr", bytes);
    for (const auto& [file, content] : files()) {
      if (file != "s.vtr") fs::remove(at(file));
    }
    const Outcome run = vtrout("report s.vtr --temporary");
    bool fails = false;
    for (const Part& operations : document_parts()) {
      const std::u16string_view desc_name = operations.detail_report->desc_name;
      const std::string part = operations.name, file(desc_name.begin(), desc_name.end());
      std::string wanted = file_bytes((expected / ("report-" + part + ".csv")).string());
      std::string written = get("~tmps_" + file + ".CSV");
      wanted = std::regex_replace(wanted, std::regex("@FNAME@"), "s.vtr");
      written = std::regex_replace(written, std::regex("created:,[0-9/]+( [0-9:]+ [AP]M)?\r"), "created:,@DATE@\r");
      EXPECT_EQ(written, wanted) << name << " " << part;
      const bool part_fails = fs::exists(expected / ("report-" + part + ".result"));
      EXPECT_EQ(run.out.find("~tmps_" + file + ".CSV\n") == std::string::npos, part_fails) << name << " " << part;
      EXPECT_EQ(run.err.find("no complete report on " + part) != std::string::npos, part_fails) << name << " " << part;
      fails = fails || part_fails;
    }
    const bool damaged = file_bytes((expected / "read.txt").string()).starts_with("result: False");
    EXPECT_EQ(run.status, fails ? 2 : damaged ? 1 : 0) << name << run.err;
    EXPECT_EQ(get("s.vtr"), bytes);
  }
}

TEST_F(Command, NamesTheReportsItWrites) {
  put("Pl\xC3\xA4nt one.vtr", sample("plant.vtr"));
  const Outcome run = vtrout("report 'Pl\xC3\xA4nt one.vtr' --part tree --part product --part tree");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "") << "no progress in a pipe";
  const auto paths = lines(run.out);
  ASSERT_EQ(paths.size(), 2U);
  EXPECT_TRUE(std::regex_match(
      paths[0], std::regex("Pl\xC3\xA4nt one_Product_[0-9]{1,2}-[A-Z][a-z]{2}-[0-9]{2} [0-9]{2}-[0-9]{2} [AP]M.CSV")))
      << paths[0];
  for (const auto& path : paths) EXPECT_TRUE(fs::exists(at(path)));
}

TEST_F(Command, OverwritesOnlyWhenTold) {
  put("p.vtr", sample("plant.vtr"));
  put("~tmpp_Tree.CSV", "mine");
  for (const char* how : {"", " --no-clobber"}) {
    const Outcome run = vtrout(std::string("report p.vtr --temporary --part tree") + how);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("~tmpp_Tree.CSV"), std::string::npos);
    EXPECT_EQ(get("~tmpp_Tree.CSV"), "mine");
  }
  EXPECT_EQ(vtrout("report p.vtr --temporary --part tree --yes").status, 0);
  EXPECT_NE(get("~tmpp_Tree.CSV"), "mine");
}

TEST_F(Command, NeverWritesOverADocument) {
  const std::string document = sample("plant.vtr");
  put("p.vtr", document);
  fs::create_symlink("p.vtr", at("~tmpp_Tree.CSV"));
  fs::create_hard_link(at("p.vtr"), at("~tmpp_Table.CSV"));
  const Outcome run = vtrout("report --part tree --part table p.vtr --temporary --yes");
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("the document itself"), std::string::npos) << run.err;
  EXPECT_EQ(get("p.vtr"), document);
}

TEST_F(Command, AFileHeldByAnotherProgramStaysAsItIs) {
  put("p.vtr", sample("plant.vtr"));
  put("~tmpp_Product.CSV", "mine");
  const Outcome run = shell("flock '~tmpp_Product.CSV' vtrout report --part product p.vtr --temporary --yes");
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("File is in use. Please close file and try again."), std::string::npos) << run.err;
  EXPECT_EQ(get("~tmpp_Product.CSV"), "mine");
}

// The temporary names of two files can be one, and a second comparison has those of the first.
TEST_F(Command, NamesThatAreTakenAreToldBeforeTheWork) {
  put("v1.2.vtr", sample("plant.vtr"));
  put("v1.3.vtr", sample("plant-next.vtr"));
  EXPECT_EQ(vtrout("compare v1.2.vtr v1.3.vtr").status, 1);
  EXPECT_EQ(vtrout("report v1.2.vtr --temporary --part tree").status, 0);
  const std::pair<const char*, const char*> cases[] = {
      {"compare v1.3.vtr v1.2.vtr",
       "~tmpv1_Product_Compared.CSV and 7 more of the reports exist already, and there is"},
      {"compare v1.2.vtr v1.3.vtr --json --no-clobber", "--no-clobber was given"},
      {"report v1.3.vtr --temporary", "~tmpv1_Tree.CSV exists already"},
  };
  for (const auto& [arguments, reason] : cases) {
    const Outcome run = expect_refused(std::string("vtrout ") + arguments, reason);
    EXPECT_EQ(lines(run.err).size(), 1U) << run.err;
    EXPECT_NE(run.err.find("use --yes to overwrite, or --output-dir"), std::string::npos) << run.err;
  }
  fs::create_directory(at("other"));
  for (const char* way_out : {" --yes", " --output-dir other"}) {
    EXPECT_EQ(vtrout(std::string("compare v1.3.vtr v1.2.vtr") + way_out).status, 1) << way_out;
    EXPECT_EQ(vtrout(std::string("report v1.3.vtr --temporary") + way_out).status, 0) << way_out;
  }
}

TEST_F(Command, AsksOnceAndOnlyAboutTheFileThatIsWritten) {
  put("a.vtr", sample("plant.vtr"));
  put("b.vtr", sample("plant-next.vtr"));
  put("~tmpb_Tree_Compared.CSV", "mine");
  const Outcome unasked = vtrout("compare a.vtr b.vtr --part tree");
  EXPECT_EQ(unasked.status, 1);
  EXPECT_EQ(unasked.err.find("exists"), std::string::npos) << unasked.err;
  EXPECT_EQ(get("~tmpb_Tree_Compared.CSV"), "mine");

  put("a.2.vtr", sample("plant-next.vtr"));
  put("~tmpa_Tree_Compared.CSV", "mine");
  for (const std::string answer : {"c", "y"}) {
    const Outcome asked =
        shell("printf '" + answer + "\n' | script -qec 'vtrout compare a.vtr a.2.vtr --part tree' /dev/null");
    const std::size_t question = asked.out.find("~tmpa_Tree_Compared.CSV already exists");
    ASSERT_NE(question, std::string::npos) << asked.out;
    EXPECT_EQ(asked.out.find("already exists", question + 30), std::string::npos) << asked.out;
    EXPECT_EQ(get("~tmpa_Tree_Compared.CSV") == "mine", answer == "c");
  }
}

TEST_F(Command, ReportsGoIntoAnotherFolder) {
  fs::create_directory(at("in"));
  fs::create_directory(at("out"));
  put("in/a.vtr", sample("plant.vtr"));
  put("in/b.vtr", sample("plant-next.vtr"));
  for (const std::string folder : {"out", "./out/"}) {
    const std::string name = folder + (folder.ends_with('/') ? "" : "/") + "~tmpa_Tree";
    const std::string options = " --yes --part tree --output-dir " + folder;
    EXPECT_EQ(vtrout("report --temporary in/a.vtr" + options).out, name + ".CSV\n");
    EXPECT_TRUE(get("out/~tmpa_Tree.CSV").starts_with("Detailed Statistic for file: in\\a.vtr\r\n"));
    const auto account = nlohmann::json::parse(vtrout("compare --json in/a.vtr in/b.vtr" + options).out);
    EXPECT_EQ(account["parts"]["tree"]["report"], name + "_Compared.CSV");
    EXPECT_TRUE(get("out/~tmpa_Tree_Compared.CSV").starts_with(",Compared Statistic for files: ,in\\a.vtr\r\n"));
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(at("in")), {}), 2);
  for (const std::string folder : {"none", "in/a.vtr", "''"}) {
    for (const std::string command : {"report in/a.vtr", "compare in/a.vtr in/b.vtr", "report missing.vtr"}) {
      const Outcome run = expect_refused("vtrout " + command + " --output-dir " + folder, "--output-dir");
      EXPECT_EQ(lines(run.err).size(), 1U) << run.err;
    }
  }
}

TEST_F(Command, AFolderThatCannotBeWrittenIsToldOnce) {
  put("p.vtr", sample("plant.vtr"));
  fs::permissions(at(""), fs::perms(0555));
  // Nothing is forbidden to root.
  const std::string person = geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups vtrout " : "vtrout ";
  if (shell(person + "--version").status != 0) GTEST_SKIP() << "nobody else may run the command here";
  for (const char* command : {"report p.vtr", "compare p.vtr p.vtr", "report p.vtr --output-dir ."}) {
    const Outcome run = expect_refused(person + command, "name another folder with --output-dir");
    EXPECT_EQ(lines(run.err).size(), 1U) << run.err;
  }
  fs::permissions(at(""), fs::perms::owner_all);
}

TEST_F(Command, AFullDiskIsToldAndTheOtherReportsAreStillWritten) {
  put("p.vtr", sample("plant.vtr"));
  // A limit on the size of files that only the largest report exceeds; a shell counts it in blocks of 512 bytes.
  const std::string report = "ulimit -f 4; vtrout report p.vtr --temporary --yes";
  const Outcome run = shell(report);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("no complete report on field"), std::string::npos) << run.err;
  EXPECT_NE(run.out.find("~tmpp_DSend.CSV"), std::string::npos);
  EXPECT_EQ(get("~tmpp_Field.CSV").size(), 2048U) << "what there was room for";

  for (const char* name : {"~tmpp_Field.CSV", "~tmpp_DSend.CSV"}) put(name, "mine");
  const auto before = files();
  const Outcome again = shell(report);
  EXPECT_EQ(again.status, 2);
  EXPECT_NE(again.err.find("~tmpp_Field.CSV: can't write \"~tmpp_Field.CSV\": "), std::string::npos) << again.err;
  EXPECT_NE(again.err.find("; the file that stood there is as it was\n"), std::string::npos) << again.err;
  EXPECT_EQ(get("~tmpp_Field.CSV"), "mine");
  EXPECT_NE(get("~tmpp_DSend.CSV"), "mine");
  EXPECT_EQ(files().size(), before.size()) << "nothing unfinished";
}

// A report that ends early takes no place from an older one, and JSON names no report that isn't there.
TEST_F(Command, AnOlderReportIsLostOnlyToACompleteOne) {
  put("sick.vtr", sample("damaged/sick-lists.vtr"));
  put("p.vtr", sample("plant.vtr"));
  const std::string compare = "vtrout compare sick.vtr p.vtr --part tree --json";
  const auto report = [](const Outcome& run) { return nlohmann::json::parse(run.out)["parts"]["tree"]["report"]; };
  const Outcome fresh = shell(compare);
  EXPECT_EQ(fresh.status, 2);
  EXPECT_EQ(report(fresh), "~tmpsick_Tree_Compared.CSV");
  EXPECT_NE(get("~tmpsick_Tree_Compared.CSV"), "") << "as far as it came";
  put("~tmpsick_Tree_Compared.CSV", "mine");
  const Outcome over = shell(compare + " --yes");
  EXPECT_EQ(over.status, 2);
  EXPECT_TRUE(report(over).is_null());
  EXPECT_EQ(get("~tmpsick_Tree_Compared.CSV"), "mine");
}

}  // namespace
}  // namespace trvtrout::tests
