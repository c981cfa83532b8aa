#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "exchange/json_document.h"
#include "host/exchanged_texts.h"
#include "tests/exchange/random_file.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using exchange::JsonWriter;
using Layout = JsonWriter::Layout;
using Json = nlohmann::ordered_json;

std::string exported(std::string_view file, Layout layout = Layout::kCompact, int code_page = 1252) {
  Reading reading;
  reading.read(file);
  EXPECT_TRUE(reading.complete);
  std::ostringstream out;
  JsonWriter json(out, layout);
  exchange::Texts texts = host::texts_of(code_page);
  exchange::write_document(json, texts, reading.current);
  json.flush();
  return out.str();
}

// The source gives its bytes in pieces of this size.
std::string imported(std::string_view json, std::size_t piece = SIZE_MAX) {
  const auto source = [&](std::span<char> into) {
    const std::size_t count = json.copy(into.data(), std::min(piece, into.size()));
    json.remove_prefix(count);
    return count;
  };
  std::string bytes;
  for (const std::string& part : exchange::read_document(source, host::texts_of)) bytes += part;
  return bytes;
}

// What importing it is refused with; empty when it isn't.
std::string refusal_of(const std::string& json) {
  try {
    imported(json);
  } catch (const exchange::ImportError& error) {
    return error.what();
  }
  return {};
}

TEST(Documents, SamplesComeBack) {
  // The system writes all sections once, in their order.
  const std::set<std::string> kOtherBytes{"odd/header-and-eof.vtr", "odd/module-twice.vtr", "odd/reversed-sections.vtr",
                                          "plant-old-format.vtr"};
  int count = 0;
  for (const std::string& name : sample_names()) {
    SCOPED_TRACE(name);
    const std::string bytes = sample(name);
    Reading reading;
    reading.read(bytes);
    if (!reading.complete) continue;
    ++count;
    const std::string json = exported(bytes), back = imported(json);
    EXPECT_EQ(back == bytes, !kOtherBytes.contains(name));
    EXPECT_TRUE(exported(back) == json);
    EXPECT_TRUE(imported(exported(bytes, Layout::kPretty)) == back);
  }
  EXPECT_GE(count, 10);
}

TEST(Documents, AnyDocumentComesBack) {
  constexpr int kDocuments = 300;
  std::mt19937 random(2004);
  for (int number = 0; number < kDocuments; ++number) {
    SCOPED_TRACE(number);
    const std::string bytes = random_file(random);
    const std::string json = exported(bytes, number % 2 == 0 ? Layout::kCompact : Layout::kPretty,
                                      std::array{1252, 1251, 932, 950}[static_cast<std::size_t>(number) % 4]);
    ASSERT_TRUE(Json::accept(json));
    ASSERT_TRUE(imported(json) == bytes);
  }
}

TEST(Documents, MembersComeInAnyOrder) {
  std::mt19937 random(7);
  for (const std::string& bytes : {sample("dense.vtr"), random_file(random)}) {
    const std::string json = exported(bytes);
    EXPECT_TRUE(imported(nlohmann::json::parse(json).dump()) == bytes);  // sorted by name
    EXPECT_TRUE(imported("\xEF\xBB\xBF" + json + " \n", 1) == bytes);
  }
}

TEST(Documents, WhatIsNotAsItMustBeIsRefused) {
  const Json whole = Json::parse(exported(sample("plant.vtr")));
  const auto with = [&](const char* pointer, const Json& value) {
    Json changed = whole;
    changed[Json::json_pointer(pointer)] = value;
    return changed.dump();
  };
  const auto without = [&](const char* pointer, const char* name) {
    Json changed = whole;
    changed[Json::json_pointer(pointer)].erase(name);
    return changed.dump();
  };
  const std::string kField = "/sections/Schema/Tables/Items/0/Fields/Items/3";
  const std::string kFieldPlace = "$.sections.Schema.Tables.Items[0].Fields.Items[3]";
  Json nested = {{"type", 2}, {"value", 1}};
  for (int depth = 0; depth < 33; ++depth) nested = {{"type", 8204}, {"lower", 0}, {"items", {nested}}};
  const char* const kSpare = "/header/Spare";
  const auto spare = [](const Json& variant) { return Json{variant, nullptr, nullptr, nullptr, nullptr}; };

  const std::pair<std::string, std::string> kRefused[] = {
      {with((kField + "/Lenght").c_str(), "12"), kFieldPlace + ".Lenght: here must stand a number"},
      {with((kField + "/SQLType").c_str(), 32768), kFieldPlace + ".SQLType: here must stand an integer from -32768"},
      {with((kField + "/SQLType").c_str(), 1.5), "found"},
      {with((kField + "/Fid").c_str(), nullptr), kFieldPlace + ".Fid: here must stand a text"},
      {with((kField + "/Fid").c_str(), std::string(65536, 'x')), "at most 65,535"},
      {with((kField + "/Fid").c_str(), "\u4E00"), "a text that code page 1252 can express"},
      {with((kField + "/Raw1").c_str(), "0000000G"), kFieldPlace + ".Raw1: here must stand"},
      {with((kField + "/Raw1").c_str(), "00"), "8 digits"},
      {with((kField + "/Filter/FilterFlagY").c_str(), 1), kFieldPlace + ".Filter.FilterFlagY: here must stand true or"},
      {with((kField + "/Colour").c_str(), 1), kFieldPlace + ": there is no member \"Colour\" here"},
      {without(kField.c_str(), "Text12"), kFieldPlace + ": the member \"Text12\" is missing"},
      {without("/sections", "Module"), "$.sections: the member \"Module\" is missing"},
      {without("", "codePage"), "$.header: \"codePage\" must stand in front of this"},
      {with("/codePage", 1200), "$.codePage: "},
      {with("/form", "vtrout-info"), "$.form: here must stand \"vtr-document\""},
      {with("/version", 2), "$.version: here must stand the version 1"},
      {with("/header/Version", "01.00.00"), "$.header: a file of version \"01.00.00\" can't be written"},
      {with("/sections/Language/Items/0/Texts/15", Json()), "Texts[15]: here must stand a text"},
      {with("/sections/Language/Items/0/Texts/16", "x"), "more than the 16 values"},
      {with("/sections/Language/Items/0/Texts", {"x"}), "this ends after 1 of 16 values"},
      {with("/sections/Module/Items", {{"lower", 0}}), "$.sections.Module.Items: the member \"items\" is missing"},
      {with("/sections/Module/Items", {{"lower", 0}, {"hex", ""}}), "$.sections.Module.Items.hex: "},
      {with("/sections/Module/Items", 5), "here must stand an array, null, or an object with lower and items"},
      {with(kSpare, spare({{"type", 9}, {"value", 1}})), "$.header.Spare[0].value: the variant type 9"},
      {with(kSpare, spare({{"type", 17}, {"value", 256}})),
       "$.header.Spare[0].value: here must stand an integer from 0"},
      {with(kSpare, spare({{"type", 6}, {"value", 1}})), "a text of the decimal digits"},
      {with(kSpare, spare({{"type", 1}, {"value", 1}})), "a member \"value\", which"},
      {with(kSpare, spare({{"type", 8194}, {"lower", 0}, {"items", {1, 70000}}})), "$.header.Spare[0].items[1]: "},
      {with(kSpare, spare(nested)), "variants nested more than 32 deep"},
      {R"({"form":"vtr-document","form":"vtr-document"})", "$: the member \"form\" stands here twice"},
      {whole.dump() + "x", "no JSON"},
      {whole.dump() + std::string(1, '\0') + "x", "something stands behind its end"},
      {whole.dump().substr(0, 5000), "no JSON"},
      {"", "line 1, $: no JSON"},
      {"[]", "line 1, $: here must stand an object"},
      {R"({"form":"vtr-document","version":1,"codePage":1252,"header":{"Created":")"
       "\xFF"
       R"(","Modified":"")",
       "UTF-8"},
      {R"({"form":"vtr-document","version":1,"codePage":1252,"header":{"Created":"\udc80"})", "UTF-8"},
      {std::string(100000, '['), "here must stand an object"},
      {R"({"form":)" + std::string(100000, '['), "$.form: here must stand"},
      {R"({"form":"vtr-document","version":1e999})", "$.version: "},
  };
  for (const auto& [json, reason] : kRefused) {
    const std::string refusal = refusal_of(json);
    if (reason == "found") {
      EXPECT_NE(refusal, "");
    } else {
      EXPECT_NE(refusal.find(reason), std::string::npos) << reason << "\n  " << refusal;
    }
  }
  Json pretty = whole;
  pretty["sections"]["Hidden"]["Raw1"] = 0;
  const std::string lines = pretty.dump(1);
  const auto line =
      1 + std::count(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(lines.find("\"Raw1\": 0")), '\n');
  EXPECT_TRUE(refusal_of(lines).starts_with("line " + std::to_string(line) + ", $.sections.Hidden.Raw1: "))
      << refusal_of(lines);
}

}  // namespace
}  // namespace trvtrout::tests
