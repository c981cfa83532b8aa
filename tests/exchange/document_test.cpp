#include <gtest/gtest.h>
#include <sstream>

#include "exchange/json_document.h"
#include "tests/exchange/texts.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using exchange::JsonWriter;

std::string exported(const DocumentSlots& document, JsonWriter::Layout layout = JsonWriter::Layout::kCompact) {
  std::ostringstream out;
  JsonWriter json(out, layout);
  exchange::Texts texts = texts_of();
  exchange::write_document(json, texts, document);
  json.flush();
  return out.str();
}

std::string imported(std::string_view json) {
  const auto source = [&](std::span<char> into) {
    const std::size_t count = json.copy(into.data(), into.size());
    json.remove_prefix(count);
    return count;
  };
  std::string bytes;
  for (const std::string& piece : exchange::read_document(source, [](int page) { return texts_of(page); }))
    bytes += piece;
  return bytes;
}

TEST(Documents, SamplesComeBack) {
  for (const std::string& name : sample_names()) {
    Reading reading;
    const std::string bytes = sample(name);
    reading.read(bytes);
    if (!reading.complete || name == "plant-old-format.vtr") continue;
    SCOPED_TRACE(name);
    const std::string json = exported(reading.current);
    std::string back;
    ASSERT_NO_THROW(back = imported(json));
    std::cout << name << " " << bytes.size() << " " << json.size() << (back == bytes ? " same" : " other") << "\n";
    Reading again;
    again.read(back);
    EXPECT_TRUE(again.complete);
    EXPECT_TRUE(exported(again.current) == json);
    EXPECT_TRUE(imported(exported(reading.current, JsonWriter::Layout::kPretty)) == back);
  }
}

}  // namespace
}  // namespace trvtrout::tests
