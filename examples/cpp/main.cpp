// Writes the reports on the tables and fields of the VTR file that comes on stdin to stdout. No file is read or
// written.
//
//   reports_in_memory <FILE.vtr
#include <iostream>
#include <iterator>
#include <trvtrout/component/TarvelVtrOut_InOut.h>
#include <trvtrout/platform/console/console_message_box.h>
#include <trvtrout/platform/console/console_save_dialog.h>
#include <trvtrout/platform/console/quiet_message_loop.h>
#include <trvtrout/platform/locale/us_locale.h>
#include <trvtrout/platform/program/spreadsheet_program.h>

#include "memory_files.h"

using namespace trvtrout;

int main() {
  MemoryFiles files;
  std::u16string name = u"stdin.vtr";
  files.files[name].assign(std::istreambuf_iterator<char>(std::cin), {});

  platform::ConsoleMessageBox message_box(platform::Overwrite::kYes, std::cin, std::cerr, false);
  platform::ConsoleSaveDialog save_dialog(files, std::cin, std::cerr, false);
  platform::QuietMessageLoop message_loop;
  platform::UsLocale locale;
  platform::SpreadsheetProgram spreadsheet(files, locale);
  TarvelVtrOut_InOut utility({files, message_box, save_dialog, message_loop, locale, spreadsheet});

  std::u16string structure_list, report;
  Boolean is_secondary = False, is_temp = True;
  if (!utility.ReadVTR(name, structure_list, is_secondary)) {
    std::cerr << utility.LastFailure() << '\n';
    return 2;
  }
  for (const auto write : {&TarvelVtrOut_InOut::ASCII_Output_Table, &TarvelVtrOut_InOut::ASCII_Output_Field}) {
    if (!(utility.*write)(name, report, is_temp)) {
      std::cerr << utility.LastFailure() << '\n';
      return 2;
    }
    std::cout << files.files[report];
  }
}
