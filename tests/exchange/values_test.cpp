#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include "exchange/json_values.h"
#include "host/exchanged_texts.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace std::string_literals;
using namespace vtrfile;

std::string json_of(auto value, int code_page = 1252) {
  std::ostringstream out;
  exchange::JsonWriter json(out);
  exchange::Texts texts = host::texts_of(code_page);
  exchange::write_value(json, texts, value);
  json.flush();
  return out.str();
}

// The value of a record's member, once written to a file and read from it.
template <class Record>
std::string json_of(std::string_view tag, const Record& record, std::string_view member, int code_page = 1252) {
  Reading reading;
  reading.read(FileBuilder().section(tag, record).with_end());
  for (const SectionValue& section : sections_of(reading.current)) {
    if (section.tag == tag) return json_of(section.record.member(member), code_page);
  }
  return {};
}

TEST(JsonValues, VariantsOfAllTypes) {
  const std::pair<std::string, const char*> kVariants[] = {
      {"\x01\x00"s, R"({"type":1})"},
      {"\x02\x00\xFE\xFF"s, R"({"type":2,"value":-2})"},
      {"\x03\x00\x00\x00\x00\x80"s, R"({"type":3,"value":-2147483648})"},
      {"\x04\x00\xCD\xCC\xCC\x3D"s, R"({"type":4,"value":0.1})"},
      {"\x04\x00\x01\x00\xC0\x7F"s, R"({"type":4,"value":{"hex":"0100c07f"}})"},
      {"\x05\x00\x9A\x99\x99\x99\x99\x99\xB9\x3F"s, R"({"type":5,"value":0.1})"},
      {"\x05\x00\x00\x00\x00\x00\x00\x00\x00\x80"s, R"({"type":5,"value":-0.0})"},
      {"\x06\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F"s, R"({"type":6,"value":"9223372036854775807"})"},
      {"\x07\x00\x00\x00\x00\x00\x00\x00\xF0\xFF"s, R"({"type":7,"value":{"hex":"000000000000f0ff"}})"},
      {"\x08\x00\x03\x00"s + "a\"\xFC", "{\"type\":8,\"value\":\"a\\\"\u00FC\"}"},
      {"\x0B\x00\x01\x00"s, R"({"type":11,"value":true})"},
      {"\x11\x00\xFF"s, R"({"type":17,"value":255})"},
      {"\x08\x20\x00\x00"s, R"({"type":8200,"items":null})"},
      {"\x08\x20\x01\x00\x02\x00\x00\x00\x00\x00\x00\x00\x01\x00x\x00\x00"s,
       R"({"type":8200,"lower":0,"items":["x",""]})"},
      {"\x0C\x20\x01\x00\x03\x00\x00\x00\xFF\xFF\xFF\xFF\x00\x00\x02\x00\x07\x00\x0C\x20\x00\x00"s,
       R"({"type":8204,"lower":-1,"items":[null,{"type":2,"value":7},{"type":8204,"items":null}]})"},
  };
  EXPECT_EQ(json_of(Var()), "null");
  for (const auto& [bytes, json] : kVariants) EXPECT_EQ(json_of(var(bytes)), json);
}

TEST(JsonValues, TextsComeBackOrAreHex) {
  MODULE_STRUCT modules{};
  modules.Text1 = text("\x80\x81\x8D\x7F\x01/");
  EXPECT_EQ(json_of("Module", modules, "Text1"), "\"\u20AC\u0081\u008D\x7F\\u0001/\"");
  // A converter that doesn't bring the bytes back.
  exchange::Texts lossy(
      1252, [](std::string_view bytes) { return std::u16string(bytes.size(), u'?'); },
      [](const std::u16string& units) { return std::string(units.size(), '?'); });
  std::ostringstream out;
  exchange::JsonWriter json(out);
  exchange::write_value(json, lossy, var("\x08\x00\x02\x00"s + "a\xFC"));
  json.flush();
  EXPECT_EQ(out.str(), R"({"type":8,"value":{"hex":"61fc"}})");
}

TEST(JsonValues, ArraysAndRuns) {
  MODULE_STRUCT modules{};
  EXPECT_EQ(json_of("Module", modules, "Items"), "null");
  modules.Items = array<MODULE_ITEM_STRUCT>({}, 1);
  EXPECT_EQ(json_of("Module", modules, "Items"), "[]");
  modules.Items = array<MODULE_ITEM_STRUCT>({{.Id = -1, .Raw1 = {1, 0xAB}}}, 0);
  EXPECT_EQ(json_of("Module", modules, "Items"),
            R"({"lower":0,"items":[{"Id":-1,"Description":"","ControlTag":"","ProductIDScipt":"","Password":"",)"
            R"("Attributes":"","Text1":"","GlobalAttributes":0,"Var1":null,"Raw1":"01ab000000000000"}]})");

  HEADER_STRUCT header{};
  header.Version = text("01.02.00");
  EXPECT_EQ(json_of(header_of({}).member("Spare")), "null");
  header.Spare = VarRun<5>(var("\0\0\x11\0\x01\0\0\0\0\0\0"s).at());
  Reading reading;
  reading.read(bytes_of(header));
  EXPECT_EQ(json_of(header_of(reading.current).member("Spare")), R"([null,{"type":17,"value":1},null,null,null])");

  IMPORT_FILES files{};
  files.Items = array<IMPORT_FILE_ITEM_STRUCT>({{.Data = array<unsigned char>({0, 0xFF}, 5)}});
  EXPECT_NE(json_of("IncludeFileNew", files, "Items").find(R"("Data":{"lower":5,"hex":"00ff"})"), std::string::npos);
}

}  // namespace
}  // namespace trvtrout::tests
