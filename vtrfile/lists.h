#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "vtrfile/document.h"

namespace trvtrout::vtrfile {

// The lists that a document has, in the order in which people are told of them.
enum class ListId {
  kTables,
  kFields,
  kLookups,
  kRelations,
  kHiddenTables,
  kHiddenFields,
  kHiddenLookups,
  kTree,
  kLanguages,
  kModules,
  kFieldMatches,
  kExtendedStorage,
  kIncludeFiles,
  kControlTags,
  kDsnList,
  kImportFiles,
  kResidualTables,
  kDataSend,
};

// What a list says of itself and what a recount of its used slots finds, which doesn't trust the list's numbers.
struct ListInfo {
  std::optional<std::int32_t> count, current, max;  // no value where the list has no such number
  // Index of the last used slot, counted from 1; what the recount had reached when it failed.
  std::int32_t size = 0;
  // False: the list doesn't hold together (an array that was announced and isn't there, no used slot in it, a lower
  // bound with which the walk comes to an index that the array doesn't have).
  bool ok = false;
};

// The records of a list, counted one by one: a recount tells where the last used slot stands.
struct RecordCount {
  std::int64_t announced = 0;
  std::int64_t used = 0;     // of the slots that the file held
  std::int64_t surplus = 0;  // used slots beyond those announced
  std::int64_t empty = 0;    // slots that the file only announced; nothing of them was in it

  // Used slots that were announced.
  std::int64_t expected() const { return used - surplus; }
  RecordCount& operator+=(const RecordCount& other);
};

// One list of a document.
struct DocumentList {
  ListId id;
  std::string_view section;    // tag of the section that holds it
  std::string_view structure;  // in the lists of what was recovered and what was lost
  const char* title;           // for people
  const char* key;             // for programs
  std::u16string_view error;   // what its accessor answers when it doesn't hold together
  // The fields of all tables are one list, which has no numbers of its own. Of the data send definitions `count` is
  // their number, and `size` counts the nodes of all of them, used or not.
  ListInfo (*recount)(const DocumentSlots& document);
  RecordCount (*records)(const DocumentSlots& document);
  // Takes the list out of the document, when it doesn't hold together; null for one that then stays as it is.
  void (*empty)(DocumentSlots& document);
};

std::span<const DocumentList> document_lists();
const DocumentList& list_of(ListId id);

// No definition and no node has a field that tells whether it's used: each one counts.
RecordCount definition_records(const DATASEND_STRUCT& definitions);
RecordCount node_records(const DATASEND_STRUCT& definitions);

}  // namespace trvtrout::vtrfile
