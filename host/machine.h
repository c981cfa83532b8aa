#pragma once

#include <iostream>
#include <memory>

#include "component/TarvelVtrOut_InOut.h"
#include "host/console.h"
#include "platform/console/console_message_box.h"
#include "platform/console/console_save_dialog.h"
#include "platform/console/quiet_message_loop.h"
#include "platform/files/discarding_files.h"
#include "platform/files/held_files.h"
#include "platform/files/local_files.h"
#include "platform/files/report_files.h"
#include "platform/locale/us_locale.h"
#include "platform/program/spreadsheet_program.h"
#include "text/utf8.h"
#include "vtrfile/damage_text.h"

namespace trvtrout::host {

// Exit statuses, and what a command returns.
enum ExitStatus : int {
  kFine = 0,
  kRemarkable = 1,  // damaged, different, with losses
  kTrouble = 2,     // one line on stderr says what, where and what to do
};

// Settings that all commands share.
struct Settings {
  int code_page = 1252;
  platform::Overwrite overwrite = platform::Overwrite::kAsk;
  bool quiet = false;                                       // errors and questions alone on stderr
  bool replace_sheets = false;                              // of earlier reports, in workbooks
  unsigned wait_seconds = 0;                                // for a workbook that another program holds
  std::shared_ptr<platform::SharedTerminal> terminal = {};  // of many files
};

// What becomes of the texts that operations write: files, nothing (only the results count), or texts in memory
// (on their way into a workbook).
enum class Output { kFiles, kNone, kHeld };

// What the class has to say to the user is a complaint, too.
class HostMessageBox : public platform::ConsoleMessageBox {
 public:
  using ConsoleMessageBox::ConsoleMessageBox;
  MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                     const std::optional<std::u16string>& title) override {
    if (buttons == MessageButtons::kOk) note_complaint(text::to_utf8(prompt));
    return ConsoleMessageBox::Show(prompt, buttons, title);
  }
};

// The stand-ins for the desktop on this machine. Questions go to the terminal, on stderr; data have stdout alone.
class Machine {
 public:
  explicit Machine(const Settings& settings, Output output = Output::kFiles);
  HostServices services() { return services(output_); }
  // The same with other files, which must outlive them. Spreadsheets read the machine's own.
  HostServices services(Files& files) {
    return {files, message_box_, save_dialog_, message_loop_, locale_, spreadsheet_};
  }
  // Of Output::kFiles.
  platform::ReportFiles& reports() { return report_files_; }
  // Why no file can be overwritten, for people; null when somebody can be asked or has agreed.
  const char* keeps_files() const { return message_box_.keeps_files(); }
  Locale& locale() { return locale_; }
  platform::SpreadsheetProgram& spreadsheet() { return spreadsheet_; }
  // Messages name this file (a path of the machine) from now on.
  void speak_of(const std::string& file) { message_box_.set_subject(u"vtrout: " + text::from_utf8(file)); }

 private:
  platform::LocalFiles files_{platform::MissingFile::kRefuse};
  platform::DiscardingFiles no_files_{files_};
  platform::HeldFiles held_files_{files_};
  platform::ReportFiles report_files_{files_};
  Files& output_;
  HostMessageBox message_box_;
  platform::ConsoleSaveDialog save_dialog_;
  platform::QuietMessageLoop message_loop_;
  platform::UsLocale locale_;
  platform::SpreadsheetProgram spreadsheet_{output_, locale_};
};

// One line on stderr, with the program's name in front.
void complain(const std::string& line);

// What the host is doing, on one line of the terminal that each call replaces; nothing where stderr is no terminal, or
// one that can't erase a line.
class Progress {
 public:
  // From now on none is shown.
  static void turn_off() { is_off_ = true; }

  Progress();
  ~Progress() { show({}); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  void show(const std::string& doing);

 private:
  static inline bool is_off_ = false;
  bool has_line_;
  bool shown_ = false;
};

// Reads `file` (a path of the machine) into `utility`. kFine, kRemarkable for a damaged file, kTrouble for one that
// can't be read, of which the user has been told. When the damage ended the reading `structure_list` has the two lists;
// when it was passed over the file was read to its end, and the user has been told. Never creates the file.
ExitStatus read(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, std::u16string& structure_list,
                Boolean is_secondary = False);

// One line on stderr: no complete `what` `part`, where its file is if there is one, and why.
void complain_of_part(const char* what, const char* part, const std::u16string& path, const std::string& why);

using vtrfile::damage_text;
using vtrfile::gap_text;

}  // namespace trvtrout::host
