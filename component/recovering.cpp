#include <algorithm>
#include <string_view>
#include <vector>

#include "component/store.h"
#include "vtrfile/format_version.h"
#include "vtrfile/lists.h"
#include "vtrfile/own_record.h"
#include "vtrfile/sections.h"

// Writing the document anew, so that it reads to its end whatever it came from:
//
// 1. The header, with the moment, the new name and the current version.
// 2. Each section of the format in its order: the tag, then the record. Before the record is written its list is
//    recounted. A list that doesn't hold together is emptied; all else goes out as it was read.
// 3. The end tag.
//
// The schema and the hidden tables hold several lists each. They are recounted as a chain that ends at the first list
// that fails; what stands behind it in the chain is written as it is.
namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr std::string_view kLineEnd = "\r\n";

// The lists of a section in the order in which they are walked; of most sections there is one.
std::vector<ListId> lists_of(std::string_view section) {
  if (section == kSection<&DocumentSlots::Schema>.tag) return {ListId::kLookups, ListId::kTables, ListId::kFields};
  if (section == kSection<&DocumentSlots::Hidden>.tag) {
    return {ListId::kHiddenLookups, ListId::kHiddenTables, ListId::kHiddenFields};
  }
  return {std::ranges::find(document_lists(), section, &DocumentList::section)->id};
}

class Recovery {
 public:
  // All of them must outlive the recovery.
  Recovery(DocumentSlots& slots, BinaryOutput& file, MessageLoop& message_loop)
      : slots_(slots), file_(file), message_loop_(message_loop) {}

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

  template <auto Member>
  void write_section() {
    write_tag(kSection<Member>.tag);
    if (kSection<Member>.tag == kSection<&DocumentSlots::Schema>.tag) message_loop_.DoEvents();
    walk(kSection<Member>.tag);
    write(*(slots_.*Member));
  }

  void write_end() { write_tag(kEndTag); }

  std::u16string account() const {
    std::string both;
    for (const std::string* list : {&recovered_, &corrupted_}) (both += kLineEnd) += *list;
    return {both.begin(), both.end()};
  }

 private:
  // Enters the lists of a section in the account, up to the first that doesn't hold together, which is emptied.
  void walk(std::string_view section) {
    for (const ListId id : lists_of(section)) {
      const DocumentList& list = list_of(id);
      const bool holds = list.recount(slots_).ok;
      ((holds ? recovered_ : corrupted_) += list.structure) += kLineEnd;
      if (holds) continue;
      if (list.empty) list.empty(slots_);
      return;
    }
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

  DocumentSlots& slots_;
  BinaryOutput& file_;
  MessageLoop& message_loop_;
  std::string bytes_;
  std::string recovered_ = "List of recovered structures: \r\n";
  std::string corrupted_ = "List of the structures that were permanently corrupted and couldn't been recovered: \r\n";
};

}  // namespace

Boolean TarvelVtrOut_InOut::RecoverVTR(std::u16string& RecoveredFname, std::u16string& msgRecover) {
  const HostServices& services = store_->services;
  if (RecoveredFname.empty()) return store_->fail({.what = "no file was named"});
  std::unique_ptr<BinaryOutput> file;
  return guarded(
      [&] {
        file = services.files.OpenBinaryOutput(RecoveredFname);
        services.message_loop.DoEvents();
        Recovery recovery(store_->current, *file, services.message_loop);
        const std::u16string moment = services.locale.GeneralDate(services.locale.Now());
        recovery.write_header(services.locale.Encode(RecoveredFname), services.locale.Encode(moment));
        for_each_section([&]<auto Member>(const Section<Member>&) { recovery.write_section<Member>(); });
        recovery.write_end();
        close_done(file);
        msgRecover += u"\r\n" + recovery.account();
        return True;
      },
      [&](const Failure& failure) {
        close_failed(file);
        store_->warn(u"File can not be recovered", u"VTR Output");
        return store_->fail(failure);
      });
}

}  // namespace trvtrout
