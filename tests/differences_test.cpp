#include <gtest/gtest.h>
#include <map>

#include "tests/edited_documents.h"
#include "tests/support.h"
#include "vtrfile/reader.h"

namespace trvtrout::tests {
namespace {

Json sample(const std::string& name) {
  vtrfile::DocumentSlots document;
  vtrfile::GroupSlots group;
  vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> schema_old;
  vtrfile::DocumentReader(document, group, schema_old).read(image_of(file_bytes(std::string(SAMPLES) + "/" + name)));
  return json_of(document);
}

// "Schema/Tables/Items[]/Name"
std::string without_numbers(std::string path) {
  for (std::size_t open = 0; (open = path.find('[', open)) != std::string::npos; ++open) {
    path.erase(open + 1, path.find(']', open) - open - 1);
  }
  return path;
}

TEST(Differences, OneChangedValueIsOneChangeAtItsPath) {
  std::mt19937 random(1);
  for (const char* name : {"plant.vtr", "dense.vtr"}) {
    Json edited = sample(name);
    const Json before = edited;
    const auto old_document = document_of(before);
    std::map<std::string, int> tried;  // each value of each record type in a few items
    for (const Leaf& leaf : leaves_of(edited)) {
      if (++tried[without_numbers(leaf.path)] > 2) continue;
      const Json old_value = *leaf.value;
      change(leaf, random);
      const Json differences = differences_between(old_document, document_of(edited));
      ASSERT_EQ(differences["changes"].size(), 1) << leaf.path << differences.dump(1);
      const Json& change = differences["changes"][0];
      EXPECT_EQ(change["kind"], "changed") << leaf.path;
      EXPECT_EQ(change["path"], leaf.path);
      EXPECT_EQ(change["newPath"], leaf.path);
      EXPECT_EQ(change["old"], old_value) << leaf.path;
      EXPECT_EQ(change["new"], *leaf.value) << leaf.path;
      *leaf.value = old_value;
    }
  }
}

TEST(Differences, AppliedToTheOldDocumentTheyGiveTheNewOne) {
  std::mt19937 random(7);
  std::vector<double> told_per_edit;
  const Json documents[] = {sample("plant.vtr"), sample("dense.vtr")};
  for (int round = 0; round < 300; ++round) {
    const Json& before = documents[round % 2];
    Json after = before;
    const int edits = 1 + static_cast<int>(random() % 12);
    for (int nth = 0; nth < edits; ++nth) edit(after, random);
    const Json differences = differences_between(document_of(before), document_of(after));
    ASSERT_EQ(applied(before, differences), after) << differences.dump(1);
    told_per_edit.push_back(static_cast<double>(differences["changes"].size()) / edits);
  }
  std::ranges::sort(told_per_edit);
  EXPECT_LE(told_per_edit[told_per_edit.size() / 2], 1.2);
}

// Many items are like each other: none is taken for another, however many came in front of them.
TEST(Differences, ItemsThatOccurOftenStayWhereTheyAre) {
  Json before = sample("plant.vtr");
  Json& texts = before["sections"]["TarvelDefinitionHeader"]["TextList"];
  texts = Json::array();
  std::mt19937 random(5);
  for (int nth = 0; nth < 200; ++nth) texts.push_back(std::string(1, static_cast<char>('A' + random() % 20)));
  for (const int added : {1, 5, 9, 40}) {
    Json after = before;
    Json& new_texts = after["sections"]["TarvelDefinitionHeader"]["TextList"];
    new_texts.erase(150);
    new_texts.back() = "changed";
    for (int nth = 0; nth < added; ++nth) new_texts.insert(new_texts.begin(), "new " + std::to_string(nth));
    const Json differences = differences_between(document_of(before), document_of(after));
    EXPECT_EQ(applied(before, differences), after);
    EXPECT_EQ(differences["counts"],
              Json::parse(R"({"changed":1,"removed":1,"added":)" + std::to_string(added) + R"(,"moved":0})"));
  }
}

TEST(Differences, UnlikeDocumentsToo) {
  const Json documents[] = {sample("plant.vtr"), sample("dense.vtr"), sample("odd/header-and-eof.vtr"),
                            sample("plant-old-format.vtr"), sample("dense-next.vtr")};
  for (const Json& before : documents) {
    for (const Json& after : documents) {
      const Json differences = differences_between(document_of(before), document_of(after));
      EXPECT_EQ(applied(before, differences)["sections"], after["sections"]);
      EXPECT_EQ(differences["different"], before["sections"] != after["sections"]);
    }
  }
}

}  // namespace
}  // namespace trvtrout::tests
