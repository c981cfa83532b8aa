#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "differences/differences.h"
#include "host/terminal/labels.h"
#include "host/terminal/painter.h"
#include "services/host_services.h"

namespace trvtrout::host {

// Writes differences as they come: under the name of each section its items, and under each of these what changed.
class DifferencesText {
 public:
  // `all`: those that are only bookkeeping too, one by one, and all values of removed and added items. What is given
  // must outlive the object.
  DifferencesText(std::ostream& out, Locale& locale, const Painter& painter, bool all)
      : out_(out), locale_(locale), painter_(painter), all_(all) {}

  void tell(const differences::Difference& difference);
  // Behind the last difference.
  void finish();

 private:
  // What is only bookkeeping in a list whose end hasn't come yet.
  struct Aside {
    std::string list;
    std::size_t unused_slots = 0, numbers = 0, spare = 0;
  };

  void begin_section(const std::string& section);
  void show_change(const Label& label, const differences::Difference& difference);
  void show_item(const Label& label, const differences::Difference& difference);
  void put_aside(const Label& label, const differences::Difference& difference);
  void end_item();
  // Of lists that `label` isn't in.
  void end_lists(const Label& label);
  void line(const char* mark, const std::string& text) { out_ << mark << ' ' << text << '\n'; }

  std::ostream& out_;
  Locale& locale_;
  const Painter& painter_;
  bool all_;
  std::string section_, item_;
  std::vector<std::vector<std::string>> changes_;  // of the item, each with its lines
  std::vector<Aside> aside_;                       // of the lists that stand in each other
};

}  // namespace trvtrout::host
