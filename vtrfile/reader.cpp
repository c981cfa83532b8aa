#include "vtrfile/reader.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

#include "vtrfile/sections.h"
#include "vtrfile/upgrade.h"

namespace trvtrout::vtrfile {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeaderName = "HEADER_STRUCT";
constexpr std::string_view kOldHeaderName = "HEADER_STRUCT_OLD1";

void replace_all(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}

std::string entry(std::string_view name) { return std::string(name) + ", "; }

std::string not_read(std::string_view header, std::string_view last) {
  return "List of the structures that were not sucessfuly read: " + entry(header) +
         "SCHEMA_STRUCT, "
         "LOOKUPS_STRUCT, TABLES_STRUCT, FIELDS_STRUCT, RELATION_STRUCT, HIDETABLES_STRUCT, TREE_HIERARCHY_STRUCT, "
         "LANGUAGE_STRUCT, MODULE_STRUCT, DATASEND_STRUCT, FIELD_MATCHES_STRUCT, EXTENDED_STORAGE_STRUCT, "
         "INCLUDEFILE_STRUCT, CONTROLTAG_STRUCT, DSNMAIN_STRUCT, " +
         std::string(last) + "EOF";
}

template <class Class, class Member>
Class class_of(Member Class::*);

constexpr const SectionName& kSchema = kSection<&DocumentSlots::Schema>;

// Whether the group of a comparison has a slot for this member of a document.
template <auto Member>
constexpr bool kInGroup = std::is_same_v<decltype(class_of(Member)), GroupSlots>;

// A tag as people may see it in a message, whatever bytes a damaged file put there.
std::string shown(std::string_view tag) {
  constexpr std::size_t kMost = 32;
  std::string text;
  for (const char c : tag.substr(0, kMost)) text += c >= ' ' && c <= '~' ? c : '?';
  return '"' + text + (tag.size() > kMost ? "...\"" : "\"");
}

// The error stands in the tag with this number, counted from 1.
void enter_tag(ReadError& error, int number) {
  error.enter(static_cast<std::uint64_t>(number));
  error.enter("SectionTag");
}

}  // namespace

struct DocumentReader::KnownSection : SectionName {
  void (DocumentReader::*read)(int count);
};

std::span<const DocumentReader::KnownSection> DocumentReader::known_sections() {
  static constexpr auto kKnown = std::apply(
      []<auto... Member>(const Section<Member>&... section) {
        return std::array{KnownSection{section, &DocumentReader::read_section<Member>}...};
      },
      kSections);
  return kKnown;
}

DocumentReader::DocumentReader(DocumentSlots& current, GroupSlots& group, Slot<SCHEMA_STRUCT_OLD1>& schema_old)
    : current_(current),
      group_(group),
      schema_old_(schema_old),
      read_list_("List of the structures that were sucessfuly read: \r\n"),
      not_read_list_(not_read(kHeaderName, "RESIDUAL_TABLES_STRUCT, IMPORT_FILES, ")),
      old_not_read_list_(not_read(kOldHeaderName, "")) {}

bool DocumentReader::read(std::shared_ptr<const Image> image) {
  image_ = std::move(image);
  met_.bytes = image_->file_size();
  records_ = std::make_unique<RecordReader>(*image_);
  read_part({.name = PartRead::kHeader}, [this] { read_records(current_.Header, 1); });
  (read_list_ += kHeaderName) += kLineEnd;
  replace_all(not_read_list_, entry(kHeaderName), "");
  replace_all(old_not_read_list_, entry(kOldHeaderName), "");
  group_.Header = current_.Header;

  records_->set_version(current_.Header->Version.bytes());
  const FormatClass format = classify(current_.Header->Version.bytes());
  if (format == FormatClass::kUnsupported) return false;
  if (format == FormatClass::kOld) not_read_list_ = old_not_read_list_;
  read_sections(format == FormatClass::kOld);
  return true;
}

void DocumentReader::read_sections(bool old_format) {
  for (int number = 1; number <= kMaxTags; ++number) {
    const std::uint64_t offset = records_->offset();
    const std::string_view tag = next_tag(number);
    if (tag == kEndTag) {
      read_part(part_behind_tag(kEndTag, offset), [] {});
      (read_list_ += kEndTag) += kLineEnd;
      return;
    }
    const auto sections = known_sections();
    const auto section = std::ranges::find_if(
        sections, [&](const KnownSection& known) { return known.tag == tag && (known.in_old_format || !old_format); });
    if (section == sections.end()) {
      enter_unknown_tag(number, offset);
      continue;
    }
    read_part(part_behind_tag(section->tag, offset), [&] {
      const int count = current_.SectionTag->Count;
      if (old_format && section->tag == kSchema.tag) {
        read_old_schema(count);
      } else {
        (this->*section->read)(count);
      }
    });
    account(*section, old_format);
  }
  give_up();
}

template <class Read>
void DocumentReader::read_part(PartRead part, Read&& read) {
  met_.parts.push_back(std::move(part));
  try {
    read();
  } catch (ReadError& error) {
    // Of a list that is too long all was read that the file holds.
    met_.parts.back().end = records_->cut() ? image_->size() : error.offset();
    met_.parts.back().whole = false;
    error.enter(std::string(met_.parts.back().name));
    error.read_since(met_.parts.back().begin);
    throw;
  }
  met_.parts.back().end = records_->offset();
  if (records_->cut()) met_.parts.back().whole = false;
}

std::string_view DocumentReader::next_tag(int number) {
  // What the end of the file left of one tag's name may be the name of another.
  tag_is_cut_ = records_->at_end() || records_->next_text_is_cut();
  try {
    read_record(current_.SectionTag);
  } catch (ReadError& error) {
    enter_tag(error, number);
    throw;
  }
  return tag_is_cut_ ? std::string_view() : current_.SectionTag->Tag.bytes();
}

template <class Record>
void DocumentReader::read_records(Slot<Record>& slot, int count) {
  PartRead& part = met_.parts.back();
  for (int number = 1; number <= count; ++number) {
    // A record that was read isn't given up for one that the file only announces.
    if (number > 1 && records_->at_end()) {
      part.whole = false;
      break;
    }
    part.records = number;
    part.record = records_->offset();
    read_record(slot);
  }
}

template <class Record>
void DocumentReader::read_record(Slot<Record>& slot) {
  slot.clear();
  slot.renew({image_}, [this](Record& record, std::pmr::memory_resource& memory) { records_->read(record, memory); });
}

template <auto Member>
void DocumentReader::read_section(int count) {
  read_records(current_.*Member, count);
  if constexpr (kInGroup<Member>) {
    if (classify(current_.Header->Version.bytes()) == FormatClass::kCurrent) group_.*Member = current_.*Member;
  }
}

void DocumentReader::read_old_schema(int count) {
  Carried& carried = met_.parts.back().carried;
  carried = Carried::kNone;
  read_records(schema_old_, count);
  UpgradeSchema(kOldFormatVersion.text(), schema_old_, current_.Schema);
  carried = UpgradeLeavesBehind(*schema_old_) ? Carried::kPart : Carried::kAll;
  group_.Schema = current_.Schema;
}

void DocumentReader::account(const KnownSection& section, bool old_format) {
  const bool is_schema = section.tag == kSchema.tag;
  read_list_ += section.structure;
  if (is_schema && old_format) read_list_ += "_OLD1";
  read_list_ += kLineEnd;
  replace_all(not_read_list_, entry(section.structure), "");
  if (!is_schema) return;
  // The schema's record holds three collections. The blank in front keeps "TABLES_STRUCT, " from cutting into
  // "HIDETABLES_STRUCT, " and "RESIDUAL_TABLES_STRUCT, ".
  read_list_ += "LOOKUPS_STRUCT\r\nTABLES_STRUCT\r\nFIELDS_STRUCT\r\n";
  replace_all(not_read_list_, " TABLES_STRUCT, ", " ");
  replace_all(not_read_list_, "LOOKUPS_STRUCT, ", "");
  replace_all(not_read_list_, "FIELDS_STRUCT, ", "");
}

PartRead DocumentReader::part_behind_tag(std::string_view name, std::uint64_t begin) const {
  return {.name = name,
          .begin = begin,
          .content = records_->offset(),
          .tag_texts = TagTexts{current_.SectionTag->Text1.bytes(), current_.SectionTag->Text2.bytes()}};
}

void DocumentReader::enter_unknown_tag(int number, std::uint64_t offset) {
  const std::string found = tag_is_cut_ ? "the file ends here, without its \"EOF\" tag"
                                        : shown(current_.SectionTag->Tag.bytes()) + " where a section tag was expected";
  if (!astray_) {
    astray_.emplace(offset, found, ReadError::Cause::kOutOfStep);
    enter_tag(*astray_, number);
    astray_->read_since(met_.parts.back().begin);
  }
  if (tag_is_cut_) return;
  if (met_.gaps.empty() || met_.gaps.back().end != offset) met_.gaps.push_back({.begin = offset, .found = found});
  met_.gaps.back().end = records_->offset();
}

void DocumentReader::give_up() {
  if (!astray_) {
    astray_.emplace(records_->offset(), "more than " + std::to_string(kMaxTags) + " section tags");
    enter_tag(*astray_, kMaxTags + 1);
  }
  throw *astray_;
}

}  // namespace trvtrout::vtrfile
