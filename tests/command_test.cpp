#include "tests/command.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <unistd.h>

#include "component/parts.h"
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

TEST_F(Command, ComparesPartByPart) {
  put("a.vtr", sample("plant.vtr"));
  put("b.vtr", sample("plant-next.vtr"));
  const Outcome run = vtrout("compare a.vtr b.vtr");
  EXPECT_EQ(run.status, 1) << run.err;
  EXPECT_EQ(lines(run.out).size(), 8U);
  for (const auto& path : lines(run.out)) EXPECT_TRUE(fs::exists(at(path))) << path;
  EXPECT_EQ(lines(run.err).size(), 9U);
  EXPECT_NE(run.err.find("field              38          1          9          9"), std::string::npos) << run.err;

  const auto files_before = files().size();
  EXPECT_EQ(vtrout("compare a.vtr b.vtr --summary").out, run.err);
  const auto account = nlohmann::json::parse(vtrout("compare a.vtr b.vtr --json --summary --part lang").out);
  EXPECT_EQ(account["parts"]["lang"]["changed"], 1);
  EXPECT_EQ(account["different"], true);
  EXPECT_EQ(vtrout("compare a.vtr a.vtr --summary").status, 0);
  EXPECT_EQ(files().size(), files_before);

  std::string with_gap = sample("odd/reversed-sections.vtr");
  with_gap[with_gap.find(std::string("\x0A\0ControlTag", 12)) + 2] = 'c';
  for (const std::string& damaged : {sample("damaged/no-eof.vtr"), with_gap}) {
    put("d.vtr", damaged);
    for (const char* files : {"a.vtr d.vtr", "d.vtr a.vtr"}) {
      const Outcome refused = vtrout(std::string("compare --yes ") + files);
      EXPECT_EQ(refused.status, 2);
      EXPECT_EQ(refused.out, "");
      EXPECT_NE(refused.err.find("it can't be compared: see `vtrout info`, and `vtrout recover`"), std::string::npos);
    }
  }
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

// In one line, and without a byte of its content on the terminal; only a later version of the format is called that.
TEST_F(Command, WhatIsNoVtrFileIsCalledThat) {
  const std::string cases[] = {std::string("\x7F"
                                           "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0\x1B[31m",
                                           21),
                               "Dear all,\r\nplease find attached\x1B[31m",
                               "",
                               std::string(100'000, '\0'),
                               std::string("\x89PNG\r\n\x1A\n") + std::string(70'000, '\xFF'),
                               "PK\x03\x04",
                               sample("plant.vtr").substr(0, 30),
                               FileBuilder("1.2").with_end()};
  for (const std::string& bytes : cases) {
    put("x.vtr", bytes);
    put("p.vtr", sample("plant.vtr"));
    for (const char* command : {"info x.vtr", "info x.vtr --json", "report x.vtr", "recover x.vtr",
                                "compare x.vtr p.vtr", "compare p.vtr x.vtr --summary"}) {
      const Outcome run = expect_refused(std::string("vtrout ") + command, "x.vtr: not a VTR file");
      EXPECT_EQ(lines(run.err).size(), 1U) << command << run.err;
      EXPECT_TRUE(std::ranges::all_of(run.err, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); })) << run.err;
    }
  }
  put("x.vtr", FileBuilder("01.03.00").with_end());
  expect_refused("vtrout info x.vtr", "VTR Output does not support strcture version: 01.03.00");
  put("x.vtr", FileBuilder("01.02.00").with_end());
  EXPECT_EQ(vtrout("info x.vtr").status, 0);
}

TEST_F(Command, InfoTellsOfListsThatDoNotHoldTogether) {
  put("s.vtr", sample("damaged/sick-lists.vtr"));
  const Outcome people = vtrout("info s.vtr");
  EXPECT_EQ(people.status, 1);
  EXPECT_EQ(people.err,
            "vtrout: s.vtr: these lists don't hold together: Lookups, Tree nodes, Language texts, Control tags; see "
            "`vtrout recover`\n");
  const Outcome programs = vtrout("info s.vtr --json");
  EXPECT_EQ(programs.status, 1);
  const auto account = nlohmann::json::parse(programs.out);
  EXPECT_EQ(account["result"], true) << "the file was read to its end";
  EXPECT_EQ(account["listsHoldTogether"], false);
}

TEST_F(Command, InfoTellsPeopleAndPrograms) {
  put("p.vtr", sample("plant.vtr"));
  const Outcome people = vtrout("info p.vtr");
  EXPECT_EQ(people.status, 0);
  EXPECT_NE(people.out.find("01.02.00"), std::string::npos);
  EXPECT_NE(people.out.find("6/2/2004 9:05:00 AM"), std::string::npos);
  EXPECT_TRUE(std::regex_search(people.out, std::regex("Tables +6 +6 +10 +6  OK\n"))) << people.out;
  EXPECT_TRUE(std::regex_search(people.out, std::regex("Language texts +12 +- +- +12  OK\n"))) << people.out;

  const auto whole = nlohmann::json::parse(vtrout("info --json p.vtr").out);
  EXPECT_EQ(whole["result"], true);
  EXPECT_EQ(whole["listsHoldTogether"], true);
  EXPECT_TRUE(whole["structureList"].is_null());
  EXPECT_EQ(whole["product"]["code"], "PLANT");
  EXPECT_EQ(whole["lists"]["tables"],
            nlohmann::json::parse(R"({"count": 6, "current": 6, "max": 10, "recounted": 6, "result": "OK"})"));
}

TEST_F(Command, InfoOnADamagedFileShowsTheListsAndWhere) {
  put("d.vtr", sample("damaged/bad-variant-in-hidden.vtr"));
  const Outcome people = vtrout("info d.vtr");
  EXPECT_EQ(people.status, 1);
  EXPECT_NE(people.out.find("List of the structures that were sucessfuly read: \nHEADER_STRUCT\n"), std::string::npos);
  ASSERT_EQ(lines(people.err).size(), 1U);
  EXPECT_TRUE(
      std::regex_search(people.err, std::regex("d.vtr: damaged: reading stopped at byte [0-9]+, Hidden/[^;]*\n$")))
      << people.err;

  const Outcome programs = vtrout("info d.vtr --json");
  EXPECT_EQ(programs.status, 1);
  const auto account = nlohmann::json::parse(programs.out);
  EXPECT_EQ(account["result"], false);
  const std::string expected = file_bytes(SAMPLES "/expected/damaged/bad-variant-in-hidden.vtr/read.txt");
  EXPECT_EQ("result: False\r\nStructureList:\r\n" + account["structureList"].get<std::string>() + "\r\n", expected);
  EXPECT_EQ(account["damage"]["path"].get<std::string>().substr(0, 7), "Hidden/");
}

TEST_F(Command, TroubleIsOneLineAndExitStatusTwo) {
  put("new.vtr", sample("odd/version-01.02.01.vtr"));
  put("empty.vtr", "");
  put("noextension", sample("plant.vtr"));
  fs::create_directory(at("folder.vtr"));
  for (const char* command :
       {"info new.vtr", "info missing.vtr", "info nowhere/missing.vtr", "info folder.vtr", "info empty.vtr",
        "info new.vtr --json", "report missing.vtr", "report noextension", "report new.vtr",
        "report p.vtr --part nothing", "info /dev/null", "info $'x\\e[31m\\n.vtr'", "info 'a\\b.vtr'"}) {
    const Outcome run = vtrout(command);
    EXPECT_EQ(run.status, 2) << command;
    EXPECT_EQ(run.out, "") << command;
    EXPECT_EQ(lines(run.err).size(), 1U) << run.err;
    EXPECT_TRUE(run.err.starts_with("vtrout: ")) << run.err;
  }
  EXPECT_FALSE(fs::exists(at("missing.vtr"))) << "no file is created";
  EXPECT_EQ(files().size(), 4U);
}

TEST_F(Command, HelpOpensWithExamples) {
  const Outcome help = vtrout("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.out.starts_with("Examples:\n  vtrout ")) << help.out;
  EXPECT_EQ(vtrout("--version").out.substr(0, 7), "vtrout ");
  EXPECT_EQ(vtrout("help").out, help.out);

  const Outcome none = vtrout("");
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.out, "");
  for (const char* name : {"info", "report", "compare", "recover", "statistics"}) {
    EXPECT_NE(none.err.find("\n  " + std::string(name) + ' '), std::string::npos) << none.err;
    const Outcome own = vtrout("help " + std::string(name));
    EXPECT_EQ(own.status, 0);
    EXPECT_EQ(own.out, vtrout(name + std::string(" --help")).out);
    const auto own_lines = lines(own.out);
    const std::string example = "  vtrout " + std::string(name) + ' ';
    EXPECT_EQ(std::ranges::count_if(own_lines, [&](const auto& line) { return line.starts_with(example); }), 2)
        << own.out;
    EXPECT_NE(own.out.find("\nExit status:\n  0  "), std::string::npos) << own.out;
  }
}

TEST_F(Command, WhatIsMistypedIsNamedWithTheNearest) {
  put("p.vtr", sample("plant.vtr"));
  const std::pair<const char*, const char*> cases[] = {
      {"compair p.vtr p.vtr", "there is no subcommand \"compair\"; did you mean compare?"},
      {"rec p.vtr", "there is no subcommand \"rec\"; did you mean recover?"},
      {"help inof", "there is no subcommand \"inof\"; did you mean info?"},
      {"frobnicate p.vtr", "there is no subcommand \"frobnicate\""},
      {"'' p.vtr", "there is no subcommand \"\""},
      {"compare p.vtr p.vtr --sumary", "there is no option \"--sumary\"; did you mean --summary?"},
      {"info --jsno=1 p.vtr", "there is no option \"--jsno\"; did you mean --json?"},
      {"--yes report p.vtr", "there is no option \"--yes\""},
      {"report p.vtr --part tabel", "there is no part \"tabel\"; did you mean table?"},
      {"report p.vtr --part x",
       "there is no part \"x\"; the parts are product, table, field, tree, lookup, ctrltag, lang, dsend"},
      {"info p.vtr p.vtr", "\"p.vtr\" is one argument too many"},
      {"compare p.vtr", "SECONDARY is required; see vtrout help compare"},
  };
  for (const auto& [arguments, told] : cases) {
    EXPECT_EQ(expect_refused(std::string("vtrout ") + arguments, told).err, std::string("vtrout: ") + told + "\n");
  }
}

// The class would take the one in a name for the end of a folder's.
TEST_F(Command, NoPathHasABackslash) {
  put("p.vtr", sample("plant.vtr"));
  put("a\\b.vtr", sample("plant.vtr"));
  for (const char* arguments :
       {"info 'a\\b.vtr'", "report 'a\\b.vtr'", "compare p.vtr 'a\\b.vtr'", "compare 'a\\b.vtr' p.vtr",
        "recover 'a\\b.vtr'", "recover p.vtr --output 'a\\b.vtr'", "recover p.vtr --log 'a\\b.vtr'",
        "report p.vtr --workbook 'a\\b.vtr'", "statistics 'a\\b.vtr' r.csv S", "statistics w.xls 'a\\b.vtr' S"}) {
    EXPECT_EQ(expect_refused(std::string("vtrout ") + arguments, "").err,
              "vtrout: a\\b.vtr: a path can't contain a backslash; rename the file or its folder\n");
  }
}

TEST_F(Command, AReaderThatHasSeenEnoughIsNoTrouble) {
  put("p.vtr", sample("plant.vtr"));
  const Outcome gone =
      shell("(sleep 0.2; vtrout info p.vtr; echo $? >status) | true; while [ ! -s status ]; do sleep 0.1; done");
  EXPECT_EQ(gone.err, "");
  EXPECT_EQ(get("status"), "141\n");
  const Outcome full = shell("vtrout info p.vtr >/dev/full");
  EXPECT_EQ(full.status, 2);
  EXPECT_NE(full.err.find("the output can't be written"), std::string::npos) << full.err;
}

TEST_F(Command, QuietLeavesErrorsAlone) {
  put("a.vtr", sample("plant.vtr"));
  put("b.vtr", sample("plant-next.vtr"));
  for (const char* arguments : {"compare a.vtr b.vtr --yes --quiet", "recover a.vtr --output new.vtr -q"}) {
    const Outcome run = vtrout(arguments);
    EXPECT_EQ(run.err, "") << arguments;
    EXPECT_NE(run.out, "") << arguments;
  }
  EXPECT_EQ(lines(vtrout("info -q missing.vtr").err).size(), 1U);
}

// What a terminal is sent, which has both outputs.
TEST_F(Command, ATerminalIsToldWhatGoesOn) {
  put("p.vtr", sample("plant.vtr"));
  put("~tmpp_Tree.CSV", "mine");
  put("~tmpp_Lang.CSV", "mine");
  const auto terminal = [&](const std::string& kind, const std::string& options) {
    return shell("printf 'a\\n' | TERM=" + kind + " script -qec 'vtrout report p.vtr --temporary " + options +
                 "' /dev/null")
        .out;
  };
  const std::string shown = terminal("xterm", "--part tree --part lang");
  EXPECT_NE(shown.find("\033[KReading p.vtr"), std::string::npos) << shown;
  EXPECT_EQ(shown.find("yes to [a]ll"), shown.rfind("yes to [a]ll")) << shown;
  EXPECT_NE(shown.find("yes to [a]ll"), std::string::npos) << shown;
  for (const char* name : {"~tmpp_Tree.CSV", "~tmpp_Lang.CSV"}) EXPECT_NE(get(name), "mine");

  const std::string dumb = terminal("dumb", "--part tree");
  EXPECT_EQ(dumb.find('\033'), std::string::npos) << dumb;
  EXPECT_NE(dumb.find("yes to [a]ll"), std::string::npos) << dumb;
  EXPECT_EQ(terminal("xterm", "--part tree --yes -q").find("Reading"), std::string::npos);
}

// Of a file in the old format the schema alone reaches a comparison.
TEST_F(Command, WhatTheOldFormatKeepsFromAComparisonIsntCalledTheSame) {
  put("old.vtr", sample("plant-old-format.vtr"));
  put("new.vtr", sample("plant.vtr"));
  const std::string told =
      "vtrout: old.vtr: the old format, 01.00.00, doesn't let product (include files, modules), tree, ctrltag, lang "
      "and dsend be compared; `vtrout recover` makes a current file of such a one";
  for (const char* files : {"old.vtr new.vtr", "new.vtr old.vtr", "old.vtr old.vtr"}) {
    const Outcome run = vtrout(std::string("compare --summary ") + files);
    EXPECT_EQ(run.status, 2) << files;
    EXPECT_EQ(run.err, told + "\n") << files;
    EXPECT_EQ(lines(run.out).size(), 4U) << run.out;
    EXPECT_EQ(vtrout(std::string("compare --summary --part table --part field --part lookup ") + files).status, 0);
  }
  const Outcome programs = vtrout("compare --json old.vtr new.vtr --part table --part lang");
  EXPECT_EQ(programs.status, 2);
  const auto account = nlohmann::json::parse(programs.out);
  EXPECT_EQ(account["notCompared"], nlohmann::json({"lang"}));
  EXPECT_EQ(account["parts"].size(), 1U);
  EXPECT_FALSE(fs::exists(at("~tmpold_Language_Compared.CSV")));

  // All sheets or none.
  expect_refused("vtrout compare old.vtr new.vtr --workbook w.xlsx", "so nothing was");
  EXPECT_EQ(vtrout("compare old.vtr new.vtr --part table --workbook w.xlsx").status, 0);

  EXPECT_EQ(vtrout("recover old.vtr --output current.vtr").status, 0);
  EXPECT_EQ(vtrout("compare current.vtr new.vtr --summary --part tree --part dsend").status, 0);
}

TEST_F(Command, EachJsonFormSaysWhichItIs) {
  put("p.vtr", sample("plant.vtr"));
  for (const char* arguments : {"info p.vtr", "compare p.vtr p.vtr --summary", "recover p.vtr --output new.vtr"}) {
    const std::string form = std::string(arguments).substr(0, std::string(arguments).find(' '));
    const Outcome run = vtrout(arguments + std::string(" --json"));
    EXPECT_TRUE(run.out.starts_with("{\n  \"form\": \"vtrout-" + form + "\",\n  \"version\": 1,\n")) << run.out;
  }
}

// Nothing is written under a name, so any file will do.
TEST_F(Command, ASummaryNeedsNoNames) {
  put("first", sample("plant.vtr"));
  put("second", sample("plant-next.vtr"));
  put("~tmpsummary_Tree_Compared.CSV", "mine");
  const Outcome run = vtrout("compare first second --summary");
  EXPECT_EQ(run.status, 1) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(files().size(), 3U);
}

// What it brings along takes longer to load than most commands take to run.
TEST_F(Command, TheZipLibraryIsLoadedForPackagesAlone) {
  put("p.vtr", sample("plant.vtr"));
  const auto loads_it = [&](const std::string& arguments) {
    return shell("LD_DEBUG=libs vtrout " + arguments).err.find("libzip") != std::string::npos;
  };
  for (const char* arguments : {"info p.vtr", "compare p.vtr p.vtr --summary", "report p.vtr --workbook w.xls"}) {
    EXPECT_FALSE(loads_it(arguments)) << arguments;
  }
  EXPECT_TRUE(loads_it("report p.vtr --workbook w.xlsx"));
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
