#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

#include "compare/comparisons.h"
#include "component/parts.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"
#include "tests/walks.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;

using Node = TREE_HIERARCHY_ITEM_STRUCT;

bool tree_match(const Node& p, const Node& entry) {
  if (!p.Tid.empty()) return entry.Tid == p.Tid && entry.Control == p.Control;
  if (p.TableInternalCode.empty() && p.Control == 2) return entry.Control == 2;
  if (p.Control == 1) return entry.Control == 1 && entry.TableInternalCode == p.TableInternalCode;
  return false;
}

bool tree_leave(const Node& p, const Node& entry) {
  if (p.Tid.empty() && p.Control == 2) return entry.Level == p.Level && entry.Control == p.Control;
  if (!p.Tid.empty() && p.Control == 3) return entry.Tid == p.Tid;
  return entry.Description == p.Description && entry.Tid == p.Tid;
}

class Comparing : public Walks {
 protected:
  void read(const std::u16string& name, const std::string& bytes, Boolean is_secondary) {
    machine.memory.files[name] = bytes;
    std::u16string fname = name, list;
    ASSERT_TRUE(utility.ReadVTR(fname, list, is_secondary));
  }
  template <class Record>
  void read_both(const char* tag, const Record& one, const Record& other) {
    read(u"p.vtr", FileBuilder().section(tag, one).with_end(), False);
    read(u"s.vtr", FileBuilder().section(tag, other).with_end(), True);
  }
  // The report's rows behind the column heads, which begin with `heads`.
  std::vector<std::string> rows(Boolean (TarvelVtrOut_InOut::*operation)(std::u16string&, std::u16string&,
                                                                         std::u16string&),
                                const std::string& heads) {
    machine.memory.files.erase(path);
    result = (utility.*operation)(primary, secondary, path);
    std::vector<std::string> all;
    std::istringstream report(machine.memory.files[path]);
    bool behind = false;
    for (std::string line; std::getline(report, line);) {
      if (line.ends_with('\r')) line.pop_back();
      if (behind) all.push_back(line);
      behind = behind || line.starts_with(heads);
    }
    return all;
  }

  fakes::Machine machine;
  TarvelVtrOut_InOut utility{machine.services()};
  std::u16string primary = u"p.vtr", secondary = u"s.vtr", path;
  Boolean result = False;
};

TEST_F(Comparing, TreeWalksAreThoseOfTheNestedScan) {
  const auto node = [&] {
    const char* texts[] = {"", "a", "b"};
    return Node{.Description = text(texts[upto(2)]),
                .Level = static_cast<std::int16_t>(upto(1)),
                .Control = static_cast<std::int16_t>(upto(3)),
                .Tid = text(texts[upto(2)]),
                .TableInternalCode = text(texts[upto(1)])};
  };
  for (int round = 0; round < 1000; ++round) {
    TREE_HIERARCHY_STRUCT lists[2] = {};
    for (auto& list : lists) {
      std::vector<Node> nodes(static_cast<std::size_t>(upto(40)));
      for (std::size_t at = 0; at < nodes.size(); ++at) {
        nodes[at] = node();
        nodes[at].CodePath = text(std::to_string(at + 1));
      }
      list.Count = static_cast<std::int16_t>(nodes.size());
      list.Items = array(std::move(nodes));
    }
    const auto& one = lists[0];
    const auto& other = lists[1];
    const auto expected = nested_scan(
        one.Count, other.Count, [&](auto p, auto s) { return tree_match(one.Items.at(p), other.Items.at(s)); },
        [&](auto p, auto s) { return tree_leave(one.Items.at(p), other.Items.at(s)); });

    // The last cell tells which node a row shows.
    read_both("TreeHierarchy", one, other);
    std::vector<Row> found;
    for (const std::string& row : rows(&TarvelVtrOut_InOut::Compare_Tree, ",,,Description")) {
      const std::int32_t number = std::stoi(row.substr(row.rfind(',') + 1));
      // An unlabelled row has a partner of the same number, for nodes differ in their CodePath.
      if (row.starts_with("Changed")) {
        found.back().secondary = number;
      } else if (row.starts_with("Added")) {
        found.push_back({0, number});
      } else {
        found.push_back({number, row.starts_with(",") ? number : 0});
      }
    }
    ASSERT_EQ(found, expected) << "round " << round;
  }
}

// A list within a list: the key of each outer record with the keys of its inner ones.
using Nested = std::vector<std::pair<std::string, std::vector<int>>>;

// The rows of a nested scan by a key of the elements of two vectors.
auto scan(const auto& one, const auto& other, auto key) {
  const auto same = [&](auto p, auto s) {
    return key(one[static_cast<std::size_t>(p - 1)]) == key(other[static_cast<std::size_t>(s - 1)]);
  };
  return nested_scan(static_cast<std::int32_t>(one.size()), static_cast<std::int32_t>(other.size()), same, same);
}

// The rows of two nested scans, as label, outer key and inner key.
std::vector<std::string> nested_rows(const Nested& one, const Nested& other) {
  std::vector<std::string> rows;
  const auto of = [](const auto& list, std::int32_t number) {
    return number ? list[static_cast<std::size_t>(number - 1)] : std::remove_cvref_t<decltype(list[0])>{};
  };
  for (const Row& outer : scan(one, other, [](const auto& record) { return record.first; })) {
    const auto primary = of(one, outer.primary), secondary = of(other, outer.secondary);
    const std::string cell = ",," + (outer.primary ? primary.first : secondary.first) + ",";
    for (const Row& inner : scan(primary.second, secondary.second, [](int key) { return key; })) {
      const char* label = !inner.primary ? "Added in Secondary" : inner.secondary ? "" : "Deleted from Primary";
      rows.push_back(label + cell +
                     std::to_string(of(primary.second, inner.primary) +
                                    (inner.primary ? 0 : of(secondary.second, inner.secondary))));
    }
  }
  return rows;
}

TEST_F(Comparing, ListsWithinListsAreThoseOfTwoNestedScans) {
  const auto random_nested = [&](bool by_place) {
    Nested list;
    for (auto& key : keys()) list.push_back({by_place ? std::to_string(list.size() + 1) : key, {}});
    for (auto& [key, inner] : list) std::generate_n(std::back_inserter(inner), upto(20), [&] { return upto(9); });
    return list;
  };
  const auto schema_of = [](const Nested& list) {
    std::vector<TABLES_ITEM_STRUCT> tables;
    for (const auto& [key, inner] : list) {
      std::vector<FIELDS_ITEM_STRUCT> fields;
      for (const int fid : inner) fields.push_back({.Fid = text(std::to_string(fid))});
      tables.push_back(
          {.Tid = text(key), .Fields = {.Count = static_cast<std::int16_t>(fields.size()), .Items = array(fields)}});
    }
    SCHEMA_STRUCT schema{};
    schema.Tables = {.Count = static_cast<std::int16_t>(tables.size()), .Items = array(tables)};
    return schema;
  };
  const auto data_send_of = [](const Nested& list) {
    std::vector<DATASEND_ITEM_STRUCT> items;
    for (const auto& [key, inner] : list) {
      std::vector<DATASEND_NODE_STRUCT> nodes;
      for (const int index : inner) nodes.push_back({.Index = index});
      items.push_back({.Count = static_cast<std::int16_t>(nodes.size()), .Nodes = array(nodes)});
    }
    return DATASEND_STRUCT{.Count = static_cast<std::int16_t>(items.size()), .Items = array(items)};
  };
  for (int round = 0; round < 300; ++round) {
    const bool by_place = round % 2 == 1;
    const Nested one = random_nested(by_place), other = random_nested(by_place);
    by_place ? read_both("TarvelDefinitionHeader", data_send_of(one), data_send_of(other))
             : read_both("Schema", schema_of(one), schema_of(other));
    auto found = by_place ? rows(&TarvelVtrOut_InOut::Compare_DSend, ",,Header,Index")
                          : rows(&TarvelVtrOut_InOut::Compare_Field, ",,Tid,Fid");
    // The label, an empty cell, the outer key and the inner one.
    for (auto& row : found) row.resize(row.find(',', row.find(',', row.find(",,") + 2) + 1));
    ASSERT_EQ(found, nested_rows(one, other)) << "round " << round;
  }
}

LOOKUPS_STRUCT lookups(std::vector<LOOKUPS_ITEM_STRUCT> items) {
  const auto count = static_cast<std::int32_t>(items.size());
  return {.Count = count, .Items = array(std::move(items))};
}

TEST_F(Comparing, ComparesStoredValuesAndNotTheCells) {
  SCHEMA_STRUCT one{}, other{};
  const auto lookup = [](const char* id, const char* description) {
    return LOOKUPS_ITEM_STRUCT{.Id = text(id), .Description = text(description)};
  };
  one.Lookups = lookups({lookup("K", "a,b"), lookup("k", "x"), lookup("K", "y"), lookup("D", "gone")});
  other.Lookups = lookups({lookup("N", "new"), lookup("K", "a b"), lookup("k", "X")});
  other.Lookups.Max = 99;
  read_both("Schema", one, other);
  EXPECT_EQ(rows(&TarvelVtrOut_InOut::Compare_Lookup, ",,,Id"),
            (std::vector<std::string>{"Original in Primary,,,K,,a b,0", "Changed in Secondary,,,K,,a b,0",
                                      "Original in Primary,,,k,,x,0", "Changed in Secondary,,,k,,X,0",
                                      "Deleted from Primary,,,K,,y,0", "Deleted from Primary,,,D,,gone,0",
                                      "Added in Secondary,,,N,,new,0"}));
  EXPECT_EQ(utility.LastCounts().changed, 2U);
  EXPECT_EQ(utility.LastCounts().deleted, 2U);
  EXPECT_EQ(utility.RepeatedKeys(false), std::vector<std::u16string>{u"K"});
  EXPECT_TRUE(utility.RepeatedKeys(true).empty());
}

TEST_F(Comparing, AModuleMayBePartnerToSeveral) {
  const auto modules = [](std::int32_t count) {
    return MODULE_STRUCT{.Count = count, .Items = array(std::vector<MODULE_ITEM_STRUCT>(2))};
  };
  read_both("Module", modules(2), modules(1));
  EXPECT_EQ(rows(&TarvelVtrOut_InOut::Compare_Product, ",,,Id:"), std::vector<std::string>(2, ",,,0,,,,,,0"));
}

TEST_F(Comparing, ATableNodeWithoutTidHasItsCodeAsKey) {
  const auto nodes = [](const char* first, const char* second) {
    return TREE_HIERARCHY_STRUCT{.Count = 2,
                                 .Items = array<Node>({Node{.Control = 1, .TableInternalCode = text(first)},
                                                       Node{.Control = 1, .TableInternalCode = text(second)}})};
  };
  read_both("TreeHierarchy", nodes("T", "T"), nodes("T", "U"));
  rows(&TarvelVtrOut_InOut::Compare_Tree, ",,,Description");
  EXPECT_EQ(utility.RepeatedKeys(false), std::vector<std::u16string>{u"TableInternalCode T"});
  EXPECT_TRUE(utility.RepeatedKeys(true).empty());
}

TEST_F(Comparing, ARootsPartnerMayHaveAnotherCode) {
  const auto root = [](const char* code) {
    return TREE_HIERARCHY_STRUCT{.Count = 1,
                                 .Items = array<Node>({Node{.Control = 2, .TableInternalCode = text(code)}})};
  };
  read_both("TreeHierarchy", root(""), root("x"));
  EXPECT_EQ(rows(&TarvelVtrOut_InOut::Compare_Tree, ",,,Description"), std::vector<std::string>{",,, ,0,2,,,,,"});
}

// Where a list is shorter than its count says, the rows in front of its end stay and nothing is made up.
TEST_F(Comparing, ListsShorterThanTheirCountsFailWhereTheyEnd) {
  for (const int there : {2, 40}) {
    const auto list = [&](int count) {
      return DATASEND_STRUCT{.Count = static_cast<std::int16_t>(count),
                             .Items = array(std::vector<DATASEND_ITEM_STRUCT>(static_cast<std::size_t>(there)))};
    };
    read_both("TarvelDefinitionHeader", list(there + 1), list(there));
    EXPECT_EQ(rows(&TarvelVtrOut_InOut::Compare_DSend, ",,,Header").size(), static_cast<std::size_t>(there));
    EXPECT_FALSE(result);
    read_both("TarvelDefinitionHeader", list(there), list(there + 1));
    EXPECT_TRUE(rows(&TarvelVtrOut_InOut::Compare_DSend, ",,,Header").empty());
    EXPECT_FALSE(result);
  }
}

// A number that is none differs from itself by value; the same document on both sides has no labelled row all the same.
TEST_F(Comparing, NumbersThatAreNoneAreTheSameByTheirBits) {
  constexpr std::uint32_t kNone = 0x7FC00000, kOtherNone = 0x7FC00001, kMinusZero = 0x80000000;
  const auto fields = [](std::uint32_t lenght) {
    SCHEMA_STRUCT schema{};
    TABLES_ITEM_STRUCT table{.Tid = text("T")};
    const FIELDS_ITEM_STRUCT field{.Fid = text("F"), .Lenght = std::bit_cast<float>(lenght)};
    table.Fields = {.Count = 1, .Items = array<FIELDS_ITEM_STRUCT>({field})};
    schema.Tables = {.Count = 1, .Items = array<TABLES_ITEM_STRUCT>({table})};
    return schema;
  };
  const auto labelled = [&](std::uint32_t one, std::uint32_t other) {
    read_both("Schema", fields(one), fields(other));
    return rows(&TarvelVtrOut_InOut::Compare_Field, ",,Tid,Fid").size() != 1;
  };
  EXPECT_FALSE(labelled(kNone, kNone));
  EXPECT_TRUE(labelled(kNone, kOtherNone));
  EXPECT_TRUE(labelled(kNone, 0));
  EXPECT_FALSE(labelled(kMinusZero, 0));
}

TEST_F(Comparing, DocumentsThatWereNeverReadAreEmpty) {
  EXPECT_TRUE(rows(&TarvelVtrOut_InOut::Compare_Tree, ",,,Description").empty());
  EXPECT_TRUE(result);
  EXPECT_NE(machine.memory.files[path].find("\r\n,,Count:,0,,,,Count:,0\r\n"), std::string::npos);
}

TEST_F(Comparing, ScriptsOfTheSecondaryCountOnlyBesideScriptsOfThePrimary) {
  using namespace std::string_literals;
  const Var scripts = var("\x08\x20\x01\0\x04\0\0\0\0\0\0\0\x01\0a\0\0\0\0\0\0"s);
  const auto list = [](Var vbs_info) {
    DATASEND_ITEM_STRUCT item{};
    item.Header.VBSInfo = vbs_info;
    return DATASEND_STRUCT{.Count = 1, .Items = array<DATASEND_ITEM_STRUCT>({item})};
  };
  const auto header_rows = [&](Var one, Var other) {
    read_both("TarvelDefinitionHeader", list(one), list(other));
    auto all = rows(&TarvelVtrOut_InOut::Compare_DSend, ",,,Header");
    all.resize(static_cast<std::size_t>(std::ranges::find(all, "\r") - all.begin()));
    return all;
  };
  EXPECT_EQ(header_rows(Var(), scripts), std::vector<std::string>{",,,1,0,0,,0,,,,,"});
  EXPECT_EQ(header_rows(scripts, scripts), std::vector<std::string>{",,,1,0,0,,0,a,,,"});
  EXPECT_TRUE(header_rows(scripts, Var()).empty());
  EXPECT_FALSE(result);
  EXPECT_EQ(utility.LastFailure(),
            "definition 1 of the secondary document has no scripts (VBSInfo), but its partner has");
  EXPECT_TRUE(machine.message_box.calls.empty());
}

TEST_F(Comparing, QuestionsAndFaultsLoseNothing) {
  read(u"C:\\p.vtr", sample("plant.vtr"), False);
  read(u"D:\\s.vtr", sample("plant-next.vtr"), True);
  primary = u"C:\\p.vtr";
  secondary = u"D:\\s.vtr";
  const std::u16string first = u"D:\\~tmps_Tree_Compared.CSV", second = u"C:\\~tmpp_Tree_Compared.CSV";
  const auto compare = [&](std::deque<MessageAnswer> answers) {
    machine.message_box.calls.clear();
    machine.message_box.answers = std::move(answers);
    machine.memory.files[first] = machine.memory.files[second] = "old";
    return utility.Compare_Tree(primary, secondary, path);
  };
  // The first question is about a path that is dropped, and so is its answer.
  EXPECT_FALSE(compare({MessageAnswer::kCancel, MessageAnswer::kCancel}));
  EXPECT_FALSE(compare({MessageAnswer::kYes, MessageAnswer::kCancel}));
  EXPECT_EQ(machine.memory.files[second], "old");
  EXPECT_EQ(path, second);
  EXPECT_TRUE(compare({MessageAnswer::kYes, MessageAnswer::kYes}));
  EXPECT_EQ(machine.memory.files[first], "old");
  EXPECT_NE(machine.memory.files[second], "old");

  machine.memory.files.erase(first);
  machine.memory.files.erase(second);
  machine.memory.held = {second};
  machine.message_box.calls.clear();
  EXPECT_FALSE(utility.Compare_Tree(primary, secondary, path));
  ASSERT_EQ(machine.message_box.calls.size(), 1U);
  EXPECT_EQ(machine.message_box.calls[0].prompt,
            u"Can not create file: " + second + u"\r\nFile is in use. Please close file and try again.");
  machine.memory.held.clear();

  // A fault of the naming step for the path that is dropped fails nothing; that step makes two calls.
  int call = 2;
  for (Boolean done = False; !done;) {
    machine.memory.files.erase(second);
    machine.files.fail_at(++call);
    done = utility.Compare_Tree(primary, secondary, path);
    EXPECT_EQ(machine.memory.open_objects(), 0) << call;
    EXPECT_EQ(machine.memory.files[primary], sample("plant.vtr"));
  }
  EXPECT_GT(call, 15);
}

}  // namespace
}  // namespace trvtrout::tests
