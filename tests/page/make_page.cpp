#include <fstream>
#include <iostream>

#include "host/page/differences_page.h"

// make_page DIFFERENCES OLD NEW CHANGED REMOVED ADDED MOVED: the page of differences that stand as JSON in a file.
int main(int count, char** words) {
  if (count != 8) return 2;
  const auto number = [&](int at) -> std::size_t { return std::strtoull(words[at], nullptr, 10); };
  std::ifstream json(words[1], std::ios::binary);
  trvtrout::host::write_differences_page(
      std::cout,
      {.compared = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()),
       .old_file = trvtrout::host::page_file(words[2]),
       .new_file = trvtrout::host::page_file(words[3]),
       .of_kind = {number(4), number(5), number(6), number(7)}},
      [&](std::ostream& page) { page << json.rdbuf(); });
  return std::cout.flush() ? 0 : 1;
}
