#include "tests/command.h"

#include <nlohmann/json.hpp>
#include <regex>

namespace trvtrout::tests {
namespace {

using nlohmann::json;

class Exchange : public Command {
 protected:
  Exchange() {
    for (const char* name : {"plant.vtr", "plant-next.vtr", "dense.vtr"}) put(name, sample(name));
    put("damaged.vtr", sample("damaged/no-eof.vtr"));
  }
  // The answer without its line end; with heads and rules in the form of a page.
  std::string query(const std::string& database, const std::string& sql, const char* form = "-list") const {
    put("query.sql", sql);
    const Outcome run = shell(std::string("sqlite3 ") + form + ' ' + database + " <query.sql");
    fs::remove(at("query.sql"));
    EXPECT_EQ(run.err, "") << sql;
    return run.out.substr(0, run.out.empty() ? 0 : run.out.size() - 1);
  }
};

TEST_F(Exchange, ThereAndBack) {
  const Outcome there = vtrout("export plant.vtr --json plant.json");
  EXPECT_EQ(there.status, 0) << there.err;
  EXPECT_EQ(there.out, "plant.json\n");
  EXPECT_EQ(vtrout("export plant.vtr --json").out, get("plant.json"));
  EXPECT_EQ(vtrout("export --json plant.vtr").out, get("plant.json"));
  const Outcome back = vtrout("import plant.json back.vtr");
  EXPECT_EQ(back.status, 0) << back.err;
  EXPECT_EQ(back.out, "back.vtr\n");
  EXPECT_TRUE(get("back.vtr") == sample("plant.vtr"));
  EXPECT_EQ(vtrout("export dense.vtr --pretty --json pretty.json").status, 0);
  EXPECT_EQ(vtrout("import pretty.json back.vtr --yes").status, 0);
  EXPECT_TRUE(get("back.vtr") == sample("dense.vtr"));
}

TEST_F(Exchange, NothingIsLost) {
  shell("vtrout export plant.vtr --json plant.json; vtrout export plant.vtr --sqlite plants.db");
  put("text.txt", "kept");
  put("broken.json", get("plant.json").substr(0, 9000));
  shell("sqlite3 other.db 'CREATE TABLE theirs (a)'");
  expect_refused("vtrout export plant-next.vtr --json plant.json", "use --yes to overwrite");
  expect_refused("vtrout import plant.json plant-next.vtr --no-clobber", "the existing file was left as it was");
  expect_refused("vtrout import broken.json plant-next.vtr --yes", "broken.json: line 1, $.sections.");
  expect_refused("vtrout import plant.vtr new.vtr", "no JSON");
  expect_refused("vtrout import absent.json new.vtr", "there is no such file");
  expect_refused("vtrout import plant.json plant.json --yes", "never overwritten");
  expect_refused("vtrout import plant.json no-folder/new.vtr", "no-folder");
  expect_refused("vtrout export plant.vtr --json plant.vtr --yes", "never overwritten");
  expect_refused("vtrout export plant.vtr dense.vtr --ndjson dense.vtr --yes", "never overwritten");
  expect_refused("vtrout export --json dense.vtr plant.vtr --yes", "name the files to export first");
  expect_refused("vtrout export --sqlite new.db", "FILE is required");
  expect_refused("vtrout export plant.vtr --ndjson --pretty", "--json");
  expect_refused("vtrout export damaged.vtr --json new.json", "vtrout recover");
  expect_refused("vtrout export plant.vtr dense.vtr --json new.json", "--json takes one file");
  expect_refused("vtrout export plant.vtr --sqlite dense.vtr", "never overwritten");
  expect_refused("vtrout export plant.vtr --sqlite text.txt", "file is not a database");
  expect_refused("vtrout export plant.vtr --sqlite other.db", "holds something else");
  expect_refused("vtrout export damaged.vtr --sqlite plants.db", "nothing was exported");
  expect_refused("vtrout export damaged.vtr damaged.vtr --sqlite new.db", "it wasn't exported");
  expect_refused("vtrout export plant.vtr", "--json");
}

TEST_F(Exchange, LinesHaveEachItem) {
  const Outcome run = vtrout("export plant.vtr dense.vtr --ndjson");
  std::map<std::string, json> items;
  for (const std::string& line : lines(run.out)) {
    const json item = json::parse(line);
    items[item["document"].get<std::string>() + ' ' + item["path"].get<std::string>()] = item;
  }
  const json& field = items["plant.vtr Schema/Tables/Items[2]/Fields/Items[4]"];
  EXPECT_EQ(field["list"], "fields");
  EXPECT_EQ(field["place"], 4);
  EXPECT_EQ(field["values"]["Fid"], "F004");
  EXPECT_EQ(field["values"]["Filter"]["FilterFlagY"], true);
  for (const auto& [name, item] : items) {
    const std::string parent = item["parent"];
    EXPECT_TRUE(parent.find('/') == std::string::npos ||
                items.contains(item["document"].get<std::string>() + ' ' + parent))
        << name;
  }
  // What has lines of its own isn't told twice.
  EXPECT_FALSE(items["plant.vtr Schema/Tables/Items[2]"]["values"]["Fields"].contains("Items"));
}

// The lists of `vtrout info`, and the tables that hold their items.
constexpr std::pair<const char*, const char*> kTables[] = {{"tables", "tables"},
                                                           {"lookups", "lookups"},
                                                           {"relations", "relations"},
                                                           {"hiddenTables", "hidden_tables"},
                                                           {"hiddenLookups", "hidden_lookups"},
                                                           {"tree", "tree_nodes"},
                                                           {"languages", "languages"},
                                                           {"modules", "modules"},
                                                           {"fieldMatches", "field_matches"},
                                                           {"extendedStorage", "extended_storage"},
                                                           {"includeFiles", "include_files"},
                                                           {"controlTags", "control_tags"},
                                                           {"dsnList", "dsn_list"},
                                                           {"importFiles", "import_files"},
                                                           {"residualTables", "residual_tables"}};

TEST_F(Exchange, TheDatabaseHoldsWhatInfoCounts) {
  // A document that is there already is replaced, also among others.
  for (const char* files : {"plant.vtr", "plant.vtr", "plant-next.vtr dense.vtr ./plant.vtr"}) {
    const Outcome run = vtrout(std::string("export ") + files + " --sqlite all.db");
    EXPECT_EQ(run.status, 0) << run.err;
  }
  EXPECT_EQ(query("all.db", "PRAGMA integrity_check"), "ok");
  EXPECT_EQ(query("all.db", "PRAGMA foreign_key_check"), "");
  for (const std::string file : {"plant.vtr", "plant-next.vtr", "dense.vtr"}) {
    const json info = json::parse(vtrout("info --json " + file).out)["lists"];
    const auto expect = [&](const std::string& what, const std::string& table, const json& number) {
      EXPECT_EQ(query("all.db", "SELECT " + what + " FROM " + table +
                                    " JOIN documents USING (document) WHERE documents.file = '" + file + '\''),
                number.dump())
          << file << ' ' << table;
    };
    for (const auto& [list, table] : kTables) expect("coalesce(max(place), 0)", table, info[list]["recounted"]);
    for (const auto& [list, table] : {std::pair{"fields", "fields"}, {"hiddenFields", "hidden_fields"}}) {
      expect("coalesce(sum(last), 0)",
             "(SELECT document, max(place) AS last FROM " + std::string(table) + " GROUP BY parent_row)",
             info[list]["recounted"]);
    }
    expect("count(*)", "definitions", info["dataSend"]["count"]);
    // There each slot of a definition counts, used or not.
    if (file != "dense.vtr") expect("count(*)", "nodes", info["dataSend"]["recounted"]);
    EXPECT_EQ(
        query("all.db", "SELECT sha256 || '  ' || file FROM documents WHERE documents.file = '" + file + '\'') + '\n',
        shell("sha256sum " + file).out);
  }
}

TEST_F(Exchange, ValuesKeepTheirTypes) {
  shell("vtrout export plant.vtr dense.vtr --sqlite all.db");
  EXPECT_EQ(query("all.db",
                  "SELECT typeof(Fid), Lenght, typeof(Raw1), Filter_FilterFlagY, Spare IS NULL FROM fields LIMIT 1"),
            "text|12.5|blob|0|1");
  EXPECT_EQ(query("all.db", "SELECT count(*) > 0, min(json_valid(Spare)) FROM residual_tables WHERE Spare IS NOT NULL"),
            "1|1");
  EXPECT_EQ(query("all.db", "SELECT group_concat(DISTINCT list) FROM relation_sides"), "SideA/Items");
  EXPECT_EQ(query("all.db", "SELECT Code FROM languages WHERE Texts_4 LIKE 'Kühl%'"), "TXT0006");
}

// The page's own steps make the database, and each of its questions gives the table that stands behind it.
TEST_F(Exchange, QuestionsHaveTheirAnswers) {
  const std::string docs = DOCS;
  const std::string page = file_bytes(docs + "/queries.md");
  shell("cp '" + docs + "/edit_document.py' .");
  const std::regex steps(R"(\n```\n(vtrout export plant.vtr --json[^`]*)```\n)");
  std::smatch found;
  ASSERT_TRUE(std::regex_search(page, found, steps));
  const Outcome run = shell("set -e; " + found[1].str());
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(vtrout("info draft.vtr").status, 0);
  int questions = 0;
  const std::regex question(R"(\n```sql\n([^`]*)\n```\n\n((\|[^\n]*\n)+))");
  for (auto at = std::sregex_iterator(page.begin(), page.end(), question); at != std::sregex_iterator(); ++at) {
    EXPECT_EQ(query("plants.db", (*at)[1], "-markdown") + '\n', (*at)[2]);
    ++questions;
  }
  EXPECT_EQ(questions, 10);
}

}  // namespace
}  // namespace trvtrout::tests
