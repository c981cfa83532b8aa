#pragma once

#include <cstdint>

#include "vtrfile/document.h"

namespace trvtrout::vtrfile {

// Whether a slot of a list is used.
inline bool is_used(const INCLUDEFILE_ITEM_STRUCT& item) { return !item.FileName.empty(); }
inline bool is_used(const MODULE_ITEM_STRUCT& item) { return !item.ControlTag.empty(); }
inline bool is_used(const TABLES_ITEM_STRUCT& item) { return !item.Tid.empty(); }
inline bool is_used(const LOOKUPS_ITEM_STRUCT& item) { return !item.Id.empty(); }
inline bool is_used(const CONTROLTAG_ITEM_STRUCT& item) { return !item.ControlTag.empty(); }
inline bool is_used(const LANGUAGE_ITEM_STRUCT& item) { return !item.Code.empty(); }
inline bool is_used(const DSN_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const EXTENDED_STORAGE_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const FIELD_MATCH_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const IMPORT_FILE_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const RELATION_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const RESIDUAL_TABLE_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const HIDDEN_LOOKUP_ITEM_STRUCT& item) { return !item.Key.empty(); }
inline bool is_used(const FIELDS_ITEM_STRUCT& item) { return !item.Fid.empty(); }
inline bool is_used(const TREE_HIERARCHY_ITEM_STRUCT& node) { return !node.Description.empty() || !node.Tid.empty(); }

// What a list says of itself and what a recount of its used slots finds, which doesn't trust the list's numbers.
struct ListInfo {
  std::int32_t count = 0;
  std::int32_t current = 0;  // 0 in a list that has no such number
  std::int32_t max = 0;      // the same
  // Index of the last used slot, counted from 1; what the recount had reached when it failed.
  std::int32_t size = 0;
  // False: the list doesn't hold together (an array that was announced and isn't there, no used slot in it, a lower
  // bound with which the walk comes to an index that the array doesn't have).
  bool ok = false;
};

ListInfo recount(const INCLUDEFILE_STRUCT& list);
ListInfo recount(const MODULE_STRUCT& list);
ListInfo recount(const TREE_HIERARCHY_STRUCT& list);
ListInfo recount(const TABLES_STRUCT& list);
ListInfo recount(const LOOKUPS_STRUCT& list);
ListInfo recount(const CONTROLTAG_STRUCT& list);
ListInfo recount(const LANGUAGE_STRUCT& list);
ListInfo recount(const DSNMAIN_STRUCT& list);
ListInfo recount(const EXTENDED_STORAGE_STRUCT& list);
ListInfo recount(const FIELD_MATCHES_STRUCT& list);
ListInfo recount(const IMPORT_FILES& list);
ListInfo recount(const RELATION_LIST_STRUCT& list);
ListInfo recount(const RESIDUAL_TABLES_STRUCT& list);
ListInfo recount(const HIDDEN_LOOKUP_LIST_STRUCT& list);

// The used slots of the fields of all tables; only `size` and `ok` are set.
ListInfo recount_fields(const TABLES_STRUCT& tables);

// The nodes of all definitions, used or not; `count` is the number of definitions.
ListInfo recount_nodes(const DATASEND_STRUCT& definitions);

}  // namespace trvtrout::vtrfile
