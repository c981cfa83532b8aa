#pragma once

#include <memory>
#include <memory_resource>
#include <utility>
#include <vector>

#include "vtrfile/image.h"
#include "vtrfile/records/data_send.h"
#include "vtrfile/records/header.h"
#include "vtrfile/records/hidden.h"
#include "vtrfile/records/language.h"
#include "vtrfile/records/lists.h"
#include "vtrfile/records/module.h"
#include "vtrfile/records/relation.h"
#include "vtrfile/records/schema.h"
#include "vtrfile/records/tree.h"

namespace trvtrout::vtrfile {

// Holds one record together with all that it points into. A record isn't changed after it was read, so a copy of a
// slot shares it and behaves as a deep copy. A slot that was never filled holds the empty record.
template <class Record>
class Slot {
 public:
  const Record& operator*() const noexcept {
    static constexpr Record kEmpty{};
    return record_ ? *record_ : kEmpty;
  }
  const Record* operator->() const noexcept { return &**this; }
  void clear() noexcept { record_.reset(); }

  // Puts a new empty record into the slot and calls fill(record, memory), which gives the record's arrays their room
  // from `memory`. Each of `keeps` (images, records of other slots) lives as long as the record. What `fill` did stays
  // in the slot when it raises.
  template <class Fill>
  void renew(const std::vector<std::shared_ptr<const void>>& keeps, Fill&& fill) {
    auto store = std::make_shared<Store>();
    store->keeps = keeps;
    record_ = std::shared_ptr<const Record>(store, &store->record);
    fill(store->record, store->memory);
  }
  // For renew on another slot whose record points into this one's.
  std::shared_ptr<const void> keep() const noexcept { return record_; }

 private:
  struct Store {
    std::vector<std::shared_ptr<const void>> keeps;
    std::pmr::monotonic_buffer_resource memory;
    Record record{};
  };

  std::shared_ptr<const Record> record_;
};

// What a comparison sees of a document.
struct GroupSlots {
  Slot<HEADER_STRUCT> Header;
  Slot<SCHEMA_STRUCT> Schema;
  Slot<TREE_HIERARCHY_STRUCT> Tree;
  Slot<LANGUAGE_STRUCT> Language;
  Slot<MODULE_STRUCT> Module;
  Slot<DATASEND_STRUCT> DataSend;
  Slot<INCLUDEFILE_STRUCT> IncludeFile;
  Slot<CONTROLTAG_STRUCT> ControlTag;
};

// A document, one record of each kind.
struct DocumentSlots : GroupSlots {
  Slot<SECTION_TAG_STRUCT> SectionTag;  // the tag last read or written
  Slot<RELATION_STRUCT> Relation;
  Slot<HIDETABLES_STRUCT> Hidden;
  Slot<FIELD_MATCHES_STRUCT> FieldMatches;
  Slot<EXTENDED_STORAGE_STRUCT> Extended;
  Slot<DSNMAIN_STRUCT> DSNList;
  Slot<RESIDUAL_TABLES_STRUCT> ResidualTable;
  Slot<IMPORT_FILES> ImportFiles;
};

}  // namespace trvtrout::vtrfile
