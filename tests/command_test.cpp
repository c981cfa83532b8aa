#include "tests/command.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>

#include "tests/support.h"

namespace trvtrout::tests {
namespace {

TEST_F(Command, ComparesPartByPart) {
  put("a.vtr", sample("plant.vtr"));
  put("b.vtr", sample("plant-next.vtr"));
  const Outcome run = vtrout("compare a.vtr b.vtr");
  EXPECT_EQ(run.status, 1) << run.err;
  EXPECT_EQ(lines(run.out).size(), 8U);
  for (const auto& path : lines(run.out)) EXPECT_TRUE(fs::exists(at(path))) << path;
  EXPECT_EQ(lines(run.err).size(), 10U);
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
      {"text p.vtr p.vtr", "\"p.vtr\" is one argument too many"},
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
    EXPECT_EQ(lines(run.out).size(), 5U) << run.out;
    EXPECT_EQ(vtrout(std::string("compare --summary --part table --part field --part lookup ") + files).status,
              std::string(files) == "old.vtr old.vtr" ? 0 : 1);  // the old format has no import files
  }
  const Outcome programs = vtrout("compare --json old.vtr new.vtr --part table --part lang");
  EXPECT_EQ(programs.status, 2);
  const auto account = nlohmann::json::parse(programs.out);
  EXPECT_EQ(account["notCompared"], nlohmann::json({"lang"}));
  EXPECT_EQ(account["parts"].size(), 1U);
  EXPECT_FALSE(fs::exists(at("~tmpold_Language_Compared.CSV")));

  // All sheets or none.
  expect_refused("vtrout compare old.vtr new.vtr --workbook w.xlsx", "so nothing was");
  EXPECT_EQ(vtrout("compare old.vtr new.vtr --part table --workbook w.xlsx").status, 1);

  EXPECT_EQ(vtrout("recover old.vtr --output current.vtr").status, 0);
  EXPECT_EQ(vtrout("compare current.vtr new.vtr --summary --part tree --part dsend").status, 1);
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

}  // namespace
}  // namespace trvtrout::tests
