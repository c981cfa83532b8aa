#pragma once

#include <string>

namespace trvtrout::bench {

// How the records stand in the lists of a document; the records themselves are the same.
enum class Order { kAsMade, kReversed, kShuffled };

// How many items the lists of a made-up document hold. What the format counts with 16 bits is at most 32,767: all but
// `language_texts` and `modules`.
struct DocumentSize {
  int tables = 0;
  int fields_per_table = 0;
  int lookups = 0;
  int tree_nodes = 0;
  int language_texts = 0;
  int modules = 0;
  int definitions = 0;
  int nodes_per_definition = 0;
  int others = 0;  // in each list that has no number above
  unsigned seed = 1;
  // Not 0: every nth description gets other words. All else is the same as with 0, so that a comparison of the
  // two documents finds these differences and no more; but a tree node that got other words also stays behind as added.
  int every_nth_changed = 0;
  Order order = Order::kAsMade;
  int first_number = 1;  // of the items of each list, which their keys are made of
  bool one_key = false;  // all records of a list have the key of the first one
};

// What a large plant keeps in one file: about 50 MB, nearly all of it fields.
DocumentSize fifty_megabytes();

// The bytes of a whole valid file of the current format version; equal sizes give equal bytes.
std::string generate_document(const DocumentSize& size);

}  // namespace trvtrout::bench
