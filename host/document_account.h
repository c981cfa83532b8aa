#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "component/TarvelVtrOut_InOut.h"
#include "host/list_counts.h"

namespace trvtrout::host {

// A text of the file, with its title for people and its key for programs.
struct AccountText {
  const char* title;
  const char* key;
  std::u16string text;
};

// What a list says of itself beside its recount; no value where the list has no such number.
struct AccountList {
  std::string_view section;  // tag of the section that holds the list
  const char* title;
  const char* key;
  std::optional<std::int32_t> count, current, max;
  std::int32_t size = 0;
  std::u16string result;
  RecordCount records;
};

// What the accessors tell of the document last read.
struct DocumentAccount {
  std::vector<AccountText> header;
  std::vector<AccountText> product;
  std::vector<AccountList> lists;
};

DocumentAccount account_for(TarvelVtrOut_InOut& utility, Locale& locale);

}  // namespace trvtrout::host
