#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <new>

#include "component/TarvelVtrOut_InOut.h"
#include "platform/files/discarding_files.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"
#include "vtrfile/lists.h"

// What reading takes at its peak, by every byte that operator new hands out.
namespace {
std::atomic<std::size_t> g_now = 0;
std::atomic<std::size_t> g_peak = 0;
}  // namespace

void* operator new(std::size_t size) {
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (!memory) throw std::bad_alloc();
  const std::size_t now = g_now += malloc_usable_size(memory);
  std::size_t peak = g_peak;
  while (now > peak && !g_peak.compare_exchange_weak(peak, now)) {
  }
  return memory;
}
void operator delete(void* memory) noexcept {
  g_now -= memory ? malloc_usable_size(memory) : 0;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

std::size_t peak_of_reading(const std::string& bytes) {
  const std::size_t before = g_now;
  g_peak = before;
  Reading reading;
  reading.read(bytes);
  list_of(ListId::kFields).recount(reading.current);
  return g_peak - before;
}

// Reading and recovering by the class. What it writes goes nowhere.
std::size_t peak_of_recovering(const std::string& bytes) {
  fakes::Machine machine;
  std::u16string path = u"a.vtr", recovered = u"b.vtr", list;
  machine.memory.files[path] = bytes;
  platform::DiscardingFiles files(machine.memory);
  const std::size_t before = g_now;
  g_peak = before;
  TarvelVtrOut_InOut utility(
      {files, machine.message_box, machine.save_dialog, machine.message_loop, machine.locale, machine.spreadsheet});
  Boolean primary = False;
  utility.ReadVTR(path, list, primary);
  EXPECT_TRUE(utility.RecoverVTR(recovered, list));
  return g_peak - before;
}

std::string repeated(const std::string& unit, std::size_t times) {
  std::string all;
  all.reserve(unit.size() * times);
  for (std::size_t n = 0; n < times; ++n) all += unit;
  return all;
}

std::string list(std::uint32_t count) {
  std::string descriptor = "\x01\0....\x01\0\0\0"s;
  std::memcpy(descriptor.data() + 2, &count, 4);
  return descriptor;
}

TEST(Memory, StaysInProportionForHostileFiles) {
  constexpr std::uint32_t kAll = 0xFFFFFFFF;
  // An empty schema ends in the numbers and unallocated arrays of tables and lookups, three texts, four bytes, 20
  // slots.
  const std::size_t kProductBytes = bytes_of(SCHEMA_STRUCT{}).size() - (6 + 2 + 12 + 2 + 6 + 4 + 40);
  const std::string numbers = "\x01\0\x01\0\x01\0"s;
  const std::string schema = FileBuilder().tag("Schema").bytes() + std::string(kProductBytes, '\0');
  const std::vector<std::pair<const char*, std::string>> files = {
      {"sixty-four bytes of four thousand million tables", schema + numbers + list(kAll)},
      {"empty tables without end", schema + numbers + list(kAll) + std::string(1 << 20, '\0')},
      {"tables in front of lists without end", schema + numbers + list(9000) + repeated(list(9000), 100'000)},
      {"language texts without a byte", FileBuilder().tag("Language").bytes() + "\0\0\0\0"s + list(60'000) +
                                            std::string(std::size_t{60'000} * 40, '\0')},
      {"variants in variants",
       FileBuilder().tag("Module").bytes() + "\0\0\0\0\0\0"s + repeated("\x0C\x20\x01\0\x01\0\0\0\0\0\0\0"s, 100'000)},
      {"definitions, nodes and extras", FileBuilder().tag("TarvelDefinitionHeader").bytes() + std::string(38, '\0') +
                                            "\xFF\x7F"s + list(kAll) + std::string(1 << 20, '\0')},
      {"many sections", FileBuilder().tag("DSNList", 32'767).bytes() + std::string(1 << 20, '\0')},
      {"bytes of an import file", FileBuilder().tag("IncludeFileNew").bytes() + "\x01\0"s + list(1) +
                                      std::string(12, '\0') + list(kAll) + std::string(1 << 20, 'x')},
      {"hidden lookups three deep", FileBuilder().tag("Hidden").bytes() + std::string(8, '\0') + "\0\0\0\0\0\0"s +
                                        list(kAll) + repeated("\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s + list(kAll), 50'000)},
  };
  for (const auto& [what, bytes] : files) {
    const std::size_t bound = (std::size_t{64} << 20) + 40 * bytes.size();
    EXPECT_LE(peak_of_reading(bytes), bound) << what;
    EXPECT_LE(peak_of_recovering(bytes), bound) << what;
  }
  EXPECT_LE(peak_of_reading(files[0].second), std::size_t{64} << 10) << "refused at once";
}

// What a cut file only announced becomes bytes of the new file, but not all of them at once.
TEST(Memory, ARecoveryTakesNoRoomForItemsThatAreNotThere) {
  const std::string bytes = FileBuilder().tag("Language").bytes() + "\0\0\0\0"s + list(100'000);
  EXPECT_LE(peak_of_recovering(bytes), std::size_t{1} << 20);
}

// What a damaged file left announced must not become bytes when the next one is of the old format.
TEST(Memory, AnUpgradeTakesNoRoomForItemsThatAreNotThere) {
  SCHEMA_STRUCT schema{};
  const std::string whole = bytes_of(schema);
  const std::size_t product_list = whole.size() - (6 + 2 + 12 + 2 + 6 + 4 + 40) - (2 + 2 + 36) - 2;
  Reading reading;
  reading.read(FileBuilder().tag("Schema").bytes() + whole.substr(0, product_list) + list(100'000));
  ASSERT_EQ(reading.current.Schema->Product.ProductList.Items.size(), 100'000);
  const std::size_t before = g_now;
  g_peak = before;
  reading.read(FileBuilder("01.00.00").section("Schema", SCHEMA_STRUCT_OLD1{}).with_end());
  EXPECT_LE(g_peak - before, std::size_t{64} << 10);
  EXPECT_EQ(reading.current.Schema->Product.ProductList.Items.size(), 100'000);
}

}  // namespace
}  // namespace trvtrout::tests
