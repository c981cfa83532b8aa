#include <string_view>
#include <tuple>

#include "component/TarvelVtrOut_InOut.h"
#include "services/guard.h"
#include "vtrfile/format_version.h"
#include "vtrfile/own_record.h"
#include "vtrfile/sections.h"

// Writing the document anew, so that it reads to its end whatever it came from:
//
// 1. The header, with the moment, the new name and the current version.
// 2. Each section of the format in its order: the tag, then the record. Before the record is written its list is walked
//    by the accessor that tells of it. A list that doesn't hold together is emptied; all else goes out as it was read.
// 3. The end tag.
//
// The schema and the hidden tables hold several lists each. They are walked as a chain that ends at the first list that
// fails; what stands behind it in the chain is written unwalked.
namespace trvtrout {
namespace {

using Utility = TarvelVtrOut_InOut;
using namespace vtrfile;

constexpr std::string_view kLineEnd = "\r\n";

template <class... Told>
bool holds_together(Utility& utility, std::u16string (Utility::*accessor)(Told&...)) {
  std::tuple<Told...> told{};
  return std::apply([&](Told&... value) { return (utility.*accessor)(value...); }, told) == u"OK";
}

// Empties one list of a record; all else of the record stays.
template <class Record, class List>
void empty_list(Slot<Record>& slot, List list) {
  const Record whole = *slot;
  slot.renew({slot.keep()}, [&](Record& record, std::pmr::memory_resource&) {
    record = whole;
    record.*list = {};
  });
}

class Recovery {
 public:
  // All of it must outlive the recovery. `slots` are those that the accessors of `utility` tell of.
  Recovery(Utility& utility, DocumentSlots& slots, BinaryOutput& file)
      : utility_(utility), slots_(slots), file_(file) {}

  void write_header(std::string_view file_name, std::string_view moment) {
    const OwnText name(file_name), now(moment), version(kCurrentFormatVersion.text());
    HEADER_STRUCT header = *slots_.Header;
    if (header.Created.empty()) header.Created = now.text();
    header.Modified = now.text();
    header.FileName = name.text();
    header.Version = version.text();
    put_own(slots_.Header, header);
    write(*slots_.Header);
  }

  void write_schema(MessageLoop& message_loop) {
    write_tag(kSection<&DocumentSlots::Schema>.tag);
    message_loop.DoEvents();
    walk_schema();
    write(*slots_.Schema);
  }

  void write_hidden() {
    write_tag(kSection<&DocumentSlots::Hidden>.tag);
    walk_hidden();
    write(*slots_.Hidden);
  }

  template <auto Member, class Accessor>
  void write_section(Accessor accessor, std::string_view entry = kSection<Member>.structure) {
    write_tag(kSection<Member>.tag);
    if (!walk(accessor, entry)) (slots_.*Member).clear();
    write(*(slots_.*Member));
  }

  void write_end() { write_tag(kEndTag); }

  std::u16string account() const {
    std::string both;
    for (const std::string* list : {&recovered_, &corrupted_}) (both += kLineEnd) += *list;
    return {both.begin(), both.end()};
  }

 private:
  // Enters the list in the account; false when it doesn't hold together.
  template <class Accessor>
  bool walk(Accessor accessor, std::string_view entry) {
    const bool holds = holds_together(utility_, accessor);
    ((holds ? recovered_ : corrupted_) += entry) += kLineEnd;
    return holds;
  }

  void walk_schema() {
    if (!walk(&Utility::GetLookupInfo, "LOOKUPS_STRUCT")) return empty_list(slots_.Schema, &SCHEMA_STRUCT::Lookups);
    if (!walk(&Utility::GetTableInfo, "TABLES_STRUCT")) return empty_list(slots_.Schema, &SCHEMA_STRUCT::Tables);
    // The tables themselves hold together, so they stay, and their fields with them.
    walk(&Utility::GetFieldsInfo, "FIELDS_STRUCT");
  }

  void walk_hidden() {
    // Hidden lookups that fail are left as they are: nothing that could be read is given up without need.
    if (!holds_together(utility_, &Utility::GetHidLookInfo)) return;
    (recovered_ += "HIDEFIELDS_STRUCT") += kLineEnd;
    if (!walk(&Utility::GetHidTableInfo, "HIDETABLES_STRUCT")) {
      return empty_list(slots_.Hidden, &HIDETABLES_STRUCT::Tables);
    }
    walk(&Utility::GetHidFieldsInfo, "HIDDEN_FIELDS_STRUCT");
  }

  void write_tag(std::string_view name) {
    const OwnText text(name);
    SECTION_TAG_STRUCT tag = *slots_.SectionTag;
    tag.Tag = text.text();
    tag.Count = 1;
    put_own(slots_.SectionTag, tag);
    write(*slots_.SectionTag);
  }

  template <class Record>
  void write(const Record& record) {
    const auto drain = [this](std::string& bytes) {
      file_.Write(bytes);
      bytes.clear();
    };
    RecordWriter(bytes_, drain).write(record);
    drain(bytes_);
  }

  Utility& utility_;
  DocumentSlots& slots_;
  BinaryOutput& file_;
  std::string bytes_;
  std::string recovered_ = "List of recovered structures: \r\n";
  std::string corrupted_ = "List of the structures that were permanently corrupted and couldn't been recovered: \r\n";
};

void write_document(Recovery& recovery, MessageLoop& message_loop) {
  recovery.write_schema(message_loop);
  recovery.write_section<&DocumentSlots::Relation>(&Utility::GetRelInfo, "Relation");
  recovery.write_hidden();
  recovery.write_section<&DocumentSlots::Tree>(&Utility::GetTreInfo);
  recovery.write_section<&DocumentSlots::Language>(&Utility::GetLanInfo);
  recovery.write_section<&DocumentSlots::Module>(&Utility::GetMdlInfo);
  recovery.write_section<&DocumentSlots::DataSend>(&Utility::GetDsmInfo);
  recovery.write_section<&DocumentSlots::FieldMatches>(&Utility::GetFmsInfo);
  recovery.write_section<&DocumentSlots::Extended>(&Utility::GetExtInfo);
  recovery.write_section<&DocumentSlots::IncludeFile>(&Utility::GetInclInfo);
  recovery.write_section<&DocumentSlots::ControlTag>(&Utility::GetTagInfo);
  recovery.write_section<&DocumentSlots::DSNList>(&Utility::GetDSNInfo);
  recovery.write_section<&DocumentSlots::ImportFiles>(&Utility::GetIncNewInfo);
  recovery.write_section<&DocumentSlots::ResidualTable>(&Utility::GetResiTblInfo);
  recovery.write_end();
}

}  // namespace

Boolean TarvelVtrOut_InOut::RecoverVTR(std::u16string& RecoveredFname, std::u16string& msgRecover) {
  if (RecoveredFname.empty()) return fail({.what = "no file was named"});
  return guarded(
      [&] {
        const auto file = services_.files.OpenBinaryOutput(RecoveredFname);
        services_.message_loop.DoEvents();
        Recovery recovery(*this, current_, *file);
        const std::u16string moment = services_.locale.GeneralDate(services_.locale.Now());
        recovery.write_header(services_.locale.Encode(RecoveredFname), services_.locale.Encode(moment));
        write_document(recovery, services_.message_loop);
        file->Close();
        msgRecover += u"\r\n" + recovery.account();
        return True;
      },
      [&](const Failure& failure) {
        warn(u"File can not be recovered", u"VTR Output");
        return fail(failure);
      });
}

}  // namespace trvtrout
