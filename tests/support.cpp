#include "tests/support.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

#include "vtrfile/record_reader.h"
#include "vtrfile/sections.h"

namespace trvtrout::tests {

using namespace vtrfile;

std::string file_bytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

const std::vector<std::string>& sample_names() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SAMPLES)) {
      const auto path = std::filesystem::relative(entry.path(), SAMPLES);
      if (entry.is_regular_file() && path.extension() == ".vtr") found.push_back(path.generic_string());
    }
    std::ranges::sort(found);
    return found;
  }();
  return names;
}

std::string sample(const std::string& name) { return file_bytes(SAMPLES "/" + name); }

void expect_approved(const std::string& path, const std::optional<std::string>& made) {
  if (std::getenv("VTR_APPROVE") == nullptr) {
    const bool stands = std::filesystem::exists(path);
    const std::string none = "no such file";
    EXPECT_EQ(made.value_or(none), stands ? file_bytes(path) : none)
        << path << "; ./dev approve writes what was made there, to be read with git diff";
  } else if (made) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << *made;
  } else {
    std::filesystem::remove(path);
  }
}

std::shared_ptr<const Image> image_of(std::string_view bytes) {
  return vtrfile::image_of({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

namespace {

const unsigned char* keep(std::string bytes) {
  static std::deque<std::string> kept;
  return reinterpret_cast<const unsigned char*>(kept.emplace_back(std::move(bytes)).data());
}

std::string length_and(std::string_view bytes) {
  return {static_cast<char>(bytes.size() & 0xFF), static_cast<char>(bytes.size() >> 8)};
}

}  // namespace

Text text(std::string_view bytes) {
  return bytes.empty() ? Text() : Text(keep(length_and(bytes) + std::string(bytes)));
}

Var var(std::string_view tag_and_body) { return Var(keep(std::string(tag_and_body))); }

FileBuilder::FileBuilder(std::string_view version) {
  HEADER_STRUCT header{};
  header.Version = text(version);
  record(header);
}

FileBuilder& FileBuilder::tag(std::string_view name, std::int16_t count) {
  SECTION_TAG_STRUCT tag{};
  tag.Tag = text(name);
  tag.Count = count;
  return record(tag);
}

void Reading::read(std::string_view bytes) {
  DocumentReader reader(current, group, schema_old);
  damage.reset();
  complete = false;
  try {
    image = image_of(bytes);
    complete = reader.read(image);
  } catch (const ReadError& error) {
    damage = std::make_unique<ReadError>(error);
  }
  structure_list = reader.structure_list();
}

namespace {

struct KnownSection {
  std::function<std::string(const Reading&)> bytes;
  std::function<void(RecordReader&)> skip;
};

template <class Record>
void skip(RecordReader& reader) {
  std::pmr::monotonic_buffer_resource memory;
  Record record{};
  reader.read(record, memory);
}

template <auto Member>
KnownSection known() {
  return {[](const Reading& reading) { return bytes_of(*(reading.current.*Member)); },
          skip<std::remove_cvref_t<decltype(*(std::declval<DocumentSlots&>().*Member))>>};
}

const KnownSection& known_section(std::string_view tag, bool old_format) {
  static const KnownSection none;
  static const KnownSection old_schema = {[](const Reading& reading) { return bytes_of(*reading.schema_old); },
                                          skip<SCHEMA_STRUCT_OLD1>};
  static const std::map<std::string_view, KnownSection> sections = std::apply(
      []<auto... Member>(const Section<Member>&... section) {
        return std::map<std::string_view, KnownSection>{{section.tag, known<Member>()}...};
      },
      kSections);
  if (old_format && tag == "Schema") return old_schema;
  const auto found = sections.find(tag);
  return found == sections.end() ? none : found->second;
}

bool is_old(const HEADER_STRUCT& header) { return classify(header.Version.bytes()) == FormatClass::kOld; }

}  // namespace

std::string section_bytes(const Reading& reading, std::string_view tag) {
  return known_section(tag, is_old(*reading.current.Header)).bytes(reading);
}

std::vector<SectionPlace> section_places(std::string_view bytes) {
  const auto image = image_of(bytes);
  RecordReader reader(*image);
  std::pmr::monotonic_buffer_resource memory;
  HEADER_STRUCT header{};
  reader.read(header, memory);
  std::vector<SectionPlace> places;
  try {
    while (!reader.at_end()) {
      SECTION_TAG_STRUCT tag{};
      const std::size_t tag_begin = reader.offset();
      reader.read(tag, memory);
      std::size_t begin = reader.offset();
      const KnownSection& section = known_section(tag.Tag.bytes(), is_old(header));
      if (!section.skip) break;
      for (int number = 0; number < tag.Count; ++number) {
        begin = reader.offset();
        section.skip(reader);
      }
      places.push_back({std::string(tag.Tag.bytes()), tag_begin, begin, reader.offset()});
    }
  } catch (const ReadError&) {
  }
  return places;
}

void expect_sections_before(const Reading& reading, const std::string& whole, const std::vector<SectionPlace>& places,
                            std::size_t damage_at, const std::string& what) {
  for (const SectionPlace& place : places) {
    if (place.end > damage_at) break;
    if (std::ranges::count(places, place.tag, &SectionPlace::tag) > 1) continue;
    ASSERT_TRUE(section_bytes(reading, place.tag) == whole.substr(place.begin, place.end - place.begin))
        << place.tag << ": " << what;
  }
}

}  // namespace trvtrout::tests
