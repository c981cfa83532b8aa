#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "tests/command.h"

namespace trvtrout::tests {
namespace {

class Diff : public Command {
 protected:
  Diff() {
    put("a.vtr", sample("plant.vtr"));
    put("b.vtr", sample("plant-next.vtr"));
  }
};

// The policy and the data of the page, without what changes with the day: all else in it are its sources.
std::string page_to_approve(std::string page) {
  static const std::pair<std::regex, const char*> kMarks[] = {
      {std::regex("'sha256-[^']*'"), "'@DIGEST@'"},
      {std::regex("20..-..-..T..:..:..Z"), "@MOMENT@"},
      {std::regex("\"version\":\"[^\"]*\""), "\"version\":\"@VERSION@\""}};
  for (const auto& [found, mark] : kMarks) page = std::regex_replace(page, found, mark);
  std::string approved;
  for (const char* const begin : {"<meta http-equiv", "<title>", "<noscript>", "<script type="}) {
    approved += page.substr(page.find(begin), page.find('\n', page.find(begin)) - page.find(begin)) + '\n';
  }
  const std::size_t differences = page.rfind("<script type=");
  return approved + page.substr(differences, page.rfind("<script>") - differences);
}

TEST_F(Diff, TheSamplesInAllForms) {
  for (const auto& [one, other] : {std::pair("plant.vtr", "plant-next.vtr"),
                                   {"dense.vtr", "dense-next.vtr"},
                                   {"plant-old-format.vtr", "plant.vtr"}}) {
    put(one, sample(one));
    put(other, sample(other));
    const std::string files = std::string(one) + ' ' + other;
    const std::string approved = SAMPLES "/expected/" + std::string(one) + "~" + other + "/diff";
    expect_approved(approved + ".txt", vtrout("diff " + files).out);
    expect_approved(approved + "-all.txt", vtrout("diff --all " + files).out);
    expect_approved(approved + ".json", vtrout("diff --json " + files).out);
    EXPECT_EQ(vtrout("diff --yes --html page.html " + files).status, 1);
    expect_approved(approved + ".html", page_to_approve(get("page.html")));
  }
}

TEST_F(Diff, TheJsonHoldsToItsSchema) {
  put("c.vtr", sample("dense.vtr"));
  put("d.vtr", sample("odd/header-and-eof.vtr"));
  put("check.py", R"(
import json, jsonschema, sys
with open(sys.argv[1]) as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for line in sys.stdin:
    differences = json.loads(line)
    validator.validate(differences)
    for wrong in ({"kind": "moved", "path": "Tree/Items"}, {**differences["changes"][0], "kind": "other"}):
        if validator.is_valid({**differences, "changes": [wrong]}):
            sys.exit("a wrong change is held to be right")
)");
  const Outcome run = shell(
      "for pair in 'a.vtr b.vtr' 'b.vtr c.vtr' 'c.vtr d.vtr' 'd.vtr a.vtr'; do vtrout diff --json $pair; done | "
      "/usr/bin/python3 check.py '" DOCS "/vtr-differences.schema.json'");
  EXPECT_EQ(run.status, 0) << run.err;
}

TEST_F(Diff, TheStatusSaysWhetherAnythingDiffersOutsideTheHeader) {
  EXPECT_EQ(vtrout("diff a.vtr b.vtr").status, 1);
  const Outcome same = vtrout("diff a.vtr a.vtr");
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.out, "no differences\n");

  // The same sections in another order, with another moment in the header.
  std::string reversed = sample("odd/reversed-sections.vtr");
  reversed.replace(reversed.find("6/1/2004"), 8, "7/2/2005");
  put("c.vtr", reversed);
  const Outcome moment = vtrout("diff a.vtr c.vtr");
  EXPECT_EQ(moment.status, 0);
  EXPECT_EQ(lines(moment.out).back(), "no differences; 1 in the header, which don't count");
  const auto json = nlohmann::json::parse(vtrout("diff --json a.vtr c.vtr").out);
  EXPECT_EQ(json["different"], false);
  EXPECT_EQ(json["header"].size(), 1);
  EXPECT_EQ(json["header"][0]["path"], "Header/Created");

  put("d.vtr", sample("damaged/no-eof.vtr"));
  expect_refused("vtrout diff a.vtr d.vtr", "it can't be compared: see `vtrout info`, and `vtrout recover`");
  expect_refused("vtrout diff a.vtr", "");
  expect_refused("vtrout diff a.vtr b.vtr c.vtr", "diff takes two files, OLD and NEW");
  expect_refused("vtrout diff --yes a.vtr b.vtr --html a.vtr",
                 "that's the old document itself, which is never overwritten");
  expect_refused("vtrout diff --yes a.vtr b.vtr --html b.vtr", "that's the new document, which is never overwritten");
}

TEST_F(Diff, PathsAreChosen) {
  const auto last_line = [&](const std::string& options) {
    return lines(vtrout("diff a.vtr b.vtr " + options).out).back();
  };
  EXPECT_EQ(last_line("--only '**/Fid'"), "2 differences: 1 removed, 1 added");  // the items that have one
  EXPECT_EQ(last_line("--only 'Schema/Tables/Items[1]' --only 'Module/Count'"), "4 differences: 3 changed, 1 removed");
  EXPECT_EQ(last_line("--only Schema --ignore 'Schema/**/Fields' --ignore 'Schema/Pro?uct'"),
            "4 differences: 4 changed");
  EXPECT_EQ(last_line("--part lang --part ctrltag"), "2 differences: 2 changed");
  EXPECT_EQ(vtrout("diff a.vtr b.vtr --only Hidden").status, 0);
  const auto json = nlohmann::json::parse(vtrout("diff a.vtr b.vtr --json --only Language").out);
  EXPECT_EQ(json["changes"].size(), 1);
  EXPECT_EQ(json["counts"]["changed"], 1);
  // A pattern with a slip of the pen would call all files the same.
  for (const char* pattern : {"Schema/Tabels", "Schema/Tables/Items[*]/Tids", "schema", "**/Items[1]/Count/Count"}) {
    expect_refused(std::string("vtrout diff a.vtr b.vtr --only '") + pattern + "'", "no document has a path");
  }
}

// Bookkeeping stands in one line behind its list.
TEST_F(Diff, UnusedSlotsAndTheirNumbersStandAside) {
  ASSERT_EQ(vtrout("export a.vtr --json a.json").status, 0);
  auto document = nlohmann::ordered_json::parse(get("a.json"));
  auto& fields = document["sections"]["Schema"]["Tables"]["Items"][1]["Fields"];
  fields["Max"] = 12;
  fields["Items"].push_back(fields["Items"].back());
  fields["Items"].push_back(fields["Items"].back());
  put("c.json", document.dump());
  ASSERT_EQ(vtrout("import c.json c.vtr").status, 0);
  const Outcome run = vtrout("diff a.vtr c.vtr");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out,
            "Schema\n  Tables T002 / Fields: only bookkeeping: 2 unused slots, 1 number of slots\n"
            "3 differences: 1 changed, 2 added; 3 of them only bookkeeping\n");
  const std::string all = vtrout("diff --all a.vtr c.vtr").out;
  EXPECT_NE(all.find("  Tables T002: Fields/Max 10 -> 12\n+ Tables T002 / Fields #11: an unused slot\n"),
            std::string::npos)
      << all;
}

TEST_F(Diff, LongTextsAreShownWhereTheyDiffer) {
  ASSERT_EQ(vtrout("export a.vtr --json a.json").status, 0);
  auto document = nlohmann::ordered_json::parse(get("a.json"));
  auto& product = document["sections"]["Schema"]["Product"];
  std::string words, text;
  for (int nth = 0; nth < 100; ++nth) words += "word" + std::to_string(nth) + " ";
  for (int nth = 0; nth < 100; ++nth) text += "line " + std::to_string(nth) + "\r\n";
  const auto import = [&](const std::string& name) {
    product["Text1"] = words;
    product["Text2"] = text;
    put(name + ".json", document.dump());
    EXPECT_EQ(vtrout("import " + name + ".json " + name + ".vtr").status, 0);
  };
  import("c");
  words.replace(words.find("word50 "), 7, "other ");
  text.erase(text.find("line 70"), 9);
  import("d");
  EXPECT_EQ(vtrout("diff c.vtr d.vtr").out,
            "Schema\n  Product/Text1 ... word47 word48 word49 [-word50 -]{+other +}word51 word52 word53 ... \n"
            "  Product/Text2 \n      line 71:\n      - line 70\n2 differences: 2 changed\n");
  text.replace(text.find("\r\n"), 2, "\n");
  import("e");
  EXPECT_EQ(vtrout("diff d.vtr e.vtr --only '**/Text2'").out,
            "Schema\n  Product/Text2 only the line ends differ\n1 difference: 1 changed\n");
}

TEST_F(Diff, TextsOfDocumentsThatDifferAreUnlike) {
  ASSERT_EQ(vtrout("export a.vtr --json a.json").status, 0);
  const auto document = nlohmann::ordered_json::parse(get("a.json"));
  const auto text_with = [&](const char* place, const char* value) {
    auto edited = document;
    edited["sections"][nlohmann::ordered_json::json_pointer(place)] = nlohmann::ordered_json::parse(value);
    put("c.json", edited.dump());
    EXPECT_EQ(vtrout("import --yes c.json c.vtr").status, 0);
    return vtrout("text c.vtr").out;
  };
  const char* const data = "/IncludeFileNew/Items/0/Data";
  EXPECT_NE(text_with(data, R"("0102")"), text_with(data, R"("0103")"));
  const char* const text = "/Schema/Product/SQLInitialize";
  EXPECT_NE(text_with(text, R"("a\r\nb")"), text_with(text, R"("a\nb")"));
  EXPECT_NE(text_with(text, R"("a\r\nb")"), text_with(text, R"("a\r\nb\r\n")"));
  const char* const variant = "/Module/Var1";
  const char* const values[] = {R"({"type": 2, "value": 5})",
                                R"({"type": 3, "value": 5})",
                                R"({"type": 8195, "items": null})",
                                R"({"type": 8195, "lower": 0, "items": [0, 1, 2, 3, 4, 5, 6, 7, 8]})",
                                R"({"type": 8195, "lower": 1, "items": [0, 1, 2, 3, 4, 5, 6, 7, 8]})",
                                R"({"type": 8195, "lower": 1, "items": [0, 1, 2, 3, 4, 5, 6, 7, 9]})"};
  std::set<std::string> texts;
  for (const char* const value : values) texts.insert(text_with(variant, value));
  EXPECT_EQ(texts.size(), std::size(values));
}

TEST_F(Diff, ColoursAndThePagerAreForPeople) {
  const std::string colored = vtrout("diff --color always a.vtr b.vtr").out;
  EXPECT_NE(colored.find("\033[31m12.5\033[0m -> \033[32m40\033[0m"), std::string::npos) << colored;
  EXPECT_EQ(vtrout("diff a.vtr b.vtr").out.find('\033'), std::string::npos);
  const auto terminal = [&](const std::string& settings, const std::string& options) {
    const std::string command = "stty rows 10; " + settings + " vtrout diff a.vtr b.vtr " + options;
    return shell("TERM=xterm script -qec '" + command + "' /dev/null").out;
  };
  EXPECT_NE(terminal("", "").find("\033[31m"), std::string::npos);
  EXPECT_EQ(terminal("NO_COLOR=1", "").find("\033[3"), std::string::npos);
  EXPECT_EQ(terminal("", "--color never").find("\033[3"), std::string::npos);
  EXPECT_NE(terminal("PAGER=\"sed s/^/paged:/\"", "").find("paged:"), std::string::npos);
  EXPECT_EQ(terminal("PAGER=\"sed s/^/paged:/\"", "--part lang").find("paged:"), std::string::npos);
  EXPECT_NE(terminal("PAGER=no-such-pager", "--color never").find("F004: Lenght 12.5 -> 40"), std::string::npos);
  EXPECT_EQ(shell("PAGER='sed s/^/paged:/' vtrout diff a.vtr b.vtr").out.find("paged:"), std::string::npos);
}

TEST_F(Diff, CompareTellsOfWhatItDoesntLookAt) {
  ASSERT_EQ(vtrout("export a.vtr --json a.json").status, 0);
  auto document = nlohmann::ordered_json::parse(get("a.json"));
  document["sections"]["Hidden"]["Text1"] = "new";
  document["sections"]["Schema"]["Tables"]["Items"][0]["Fields"]["Items"][0]["Filter"]["FilterText"] = "new";
  std::swap(document["sections"]["Module"]["Items"][0], document["sections"]["Module"]["Items"][1]);
  put("c.json", document.dump());
  ASSERT_EQ(vtrout("import c.json c.vtr").status, 0);
  const Outcome run = vtrout("compare --summary a.vtr c.vtr");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(lines(run.out).back(),
            "and beside what these comparisons look at: 3 differences: 2 changed, 1 moved (`vtrout diff` tells them)");
  const auto json = nlohmann::json::parse(vtrout("compare --summary --json a.vtr c.vtr").out);
  EXPECT_EQ(json["different"], false);
  EXPECT_EQ(json["differencesBeside"], 3);
}

// What a comparison looks at may be less than a value or an item.
TEST_F(Diff, CompareNeverCallsDocumentsTheSameThatDiffer) {
  ASSERT_EQ(vtrout("export a.vtr --json a.json").status, 0);
  const auto document = nlohmann::ordered_json::parse(get("a.json"));
  const auto expect_beside = [&](const nlohmann::ordered_json& one, const nlohmann::ordered_json& other) {
    put("one.json", one.dump());
    put("other.json", other.dump());
    ASSERT_EQ(vtrout("import --yes one.json one.vtr").status, 0);
    ASSERT_EQ(vtrout("import --yes other.json other.vtr").status, 0);
    const Outcome run = vtrout("compare --summary one.vtr other.vtr");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("and beside what these comparisons look at: "), std::string::npos) << run.out;
  };
  const auto with_scripts = [&](const char* scripts) {
    auto edited = document;
    auto& header = edited["sections"]["TarvelDefinitionHeader"]["Items"][0]["Header"];
    header["VBSInfo"] = nlohmann::ordered_json::parse(scripts);
    return edited;
  };
  const char* const scripts = R"({"type": 8200, "lower": 0, "items": ["a", "b", "c", "d", "e"]})";
  expect_beside(with_scripts(scripts),
                with_scripts(R"({"type": 8200, "lower": 0, "items": ["a", "b", "c", "d", "f"]})"));
  expect_beside(with_scripts("null"), with_scripts(scripts));
  // Two nodes that are unlike but for what the comparison goes by.
  auto one = document, other = document;
  auto& old_node = one["sections"]["TarvelDefinitionHeader"]["Items"][0]["Nodes"][0];
  for (auto& [name, value] : old_node.items()) {
    if (value.is_string()) value = "";
  }
  auto& new_node = other["sections"]["TarvelDefinitionHeader"]["Items"][0]["Nodes"][0] = old_node;
  for (const char* name : {"Var1", "Var2", "Var3", "Var4"}) new_node[name] = {{"type", 2}, {"value", 7}};
  expect_beside(one, other);
}

TEST_F(Diff, WhatCanBeSavedOfADamagedFileIsComparedAndExported) {
  put("d.vtr", sample("damaged/unknown-section.vtr"));
  const Outcome saved = vtrout("diff --salvage a.vtr d.vtr");
  EXPECT_EQ(saved.status, 1);  // of what couldn't be saved nobody knows
  EXPECT_EQ(saved.out, "no differences\n");
  EXPECT_NE(saved.err.find("d.vtr: read on behind the damage"), std::string::npos) << saved.err;
  EXPECT_EQ(vtrout("diff --salvage a.vtr a.vtr").status, 0);
  expect_refused("vtrout export d.vtr --json", "--salvage exports what vtrout recover would save of it");
  const Outcome exported = vtrout("export --salvage d.vtr --json d.json");
  EXPECT_EQ(exported.status, 1) << exported.err;
  EXPECT_EQ(vtrout("import d.json e.vtr && vtrout diff a.vtr e.vtr").out, "e.vtr\nno differences\n");
  EXPECT_EQ(vtrout("text --salvage d.vtr").out, vtrout("text a.vtr").out);
}

// In a real repository.
TEST_F(Diff, GitShowsDifferencesBetweenVersions) {
  const std::string git = "git -c user.name=A -c user.email=a@b -c init.defaultBranch=main ";
  const auto run = [&](const std::string& commands) {
    const Outcome outcome = shell("export GIT_CONFIG_NOSYSTEM=1 HOME=$PWD GIT_PAGER=cat; " + commands);
    EXPECT_EQ(outcome.status, 0) << commands << outcome.err;
    return outcome.out;
  };
  run(git + "init -q . && echo '*.vtr diff=vtr' >.gitattributes && mv a.vtr p.vtr && git add p.vtr .gitattributes && " +
      git + "commit -qm one && mv b.vtr p.vtr && " + git + "commit -qam two");
  const std::string expected = "  Tables T001 / Fields F004: Lenght 12.5 -> 40\n";
  const std::string by_command = run("git config diff.vtr.command 'vtrout diff' && git diff HEAD~1 HEAD");
  EXPECT_TRUE(by_command.starts_with("vtrout diff a/p.vtr b/p.vtr\nSchema\n")) << by_command;
  EXPECT_NE(by_command.find(expected), std::string::npos) << by_command;
  EXPECT_NE(run("git log -p --ext-diff --all -- p.vtr").find(expected), std::string::npos);
  EXPECT_NE(run("git config --unset diff.vtr.command; GIT_EXTERNAL_DIFF='vtrout diff' git diff HEAD~1 HEAD -- p.vtr")
                .find(expected),
            std::string::npos);
  // Of a file that isn't merged git has one name alone, which may hold anything.
  EXPECT_EQ(run("GIT_DIFF_PATH_COUNTER=1 vtrout diff \"$(printf 'a\\033b')\""), "a\\x1Bb isn't merged\n");
  // Renamed, and damaged: git goes on.
  run(git + "mv p.vtr q.vtr && printf x >>q.vtr && head -c 9000 q.vtr >r.vtr && mv r.vtr q.vtr && git add -A");
  EXPECT_NE(run("git config diff.vtr.command 'vtrout diff' && git diff --cached -M10 HEAD").find("can't be compared"),
            std::string::npos);

  const std::string by_text =
      run("git config --unset diff.vtr.command; git config diff.vtr.textconv 'vtrout text' && git diff HEAD~1 HEAD");
  EXPECT_NE(
      by_text.find("\n-Schema/Tables/T001/Fields/F004/Lenght: 12.5\n+Schema/Tables/T001/Fields/F004/Lenght: 40\n"),
      std::string::npos)
      << by_text;
}

}  // namespace
}  // namespace trvtrout::tests
