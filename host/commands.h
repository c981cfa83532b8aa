#pragma once

#include <string>
#include <vector>

#include "host/batch/folder_pairs.h"
#include "host/batch/inputs.h"
#include "host/machine.h"

// What each subcommand does. Those with InputOptions do it for all files that these name: for one as the function of
// one file says, for several each on its own, in a run that tells them in order.
namespace trvtrout::host {

struct InfoTask {
  std::string file;
  bool json = false;
  bool salvage = false;          // of a damaged file, what can be saved of it
  bool follows_another = false;  // file of which people were told
};

// `vtrout info`: what the file holds, and how each list's numbers stand beside a recount.
ExitStatus info(const Settings& settings, const InfoTask& task);
ExitStatus info_files(const Settings& settings, const InputOptions& options, const InfoTask& task);

struct ReportTask {
  std::string file;
  std::vector<std::string> parts;  // all when empty
  bool temporary = false;
  std::string output_dir;  // empty for reports beside the file
  std::string workbook;    // empty for reports in files
  bool salvage = false;    // of a damaged file, what can be saved of it
};

// `vtrout report`: the detail reports, beside the file, in a folder or in the sheets of a workbook.
ExitStatus report(const Settings& settings, const ReportTask& task);
ExitStatus report_files(const Settings& settings, const InputOptions& options, const ReportTask& task);

struct ComparisonTask {
  std::string primary, secondary;
  std::vector<std::string> parts;  // all when empty
  bool json = false;
  bool summary = false;    // the counts alone, no files
  std::string output_dir;  // empty for reports beside the primary file
  std::string workbook;    // empty for reports in files
  bool color = true;       // of the labels in a workbook
};

// `vtrout compare`: the comparisons of two documents, beside the primary one, in a folder or in the sheets of a
// workbook, and how many rows have which form. kRemarkable when a row is labelled.
// `counts`, unless it's null, gets the rows of each form and the differences beside them, and no table shows them.
ExitStatus compare(const Settings& settings, const ComparisonTask& task, PairCounts* counts = nullptr);
// Of two files, or of the pairs in two folders.
ExitStatus compare_files(const Settings& settings, const InputOptions& options, const ComparisonTask& task);

enum class ColorWhen { kAuto, kAlways, kNever };

struct DiffTask {
  // OLD and NEW, or the one or seven to nine arguments with which git calls a command that shows differences.
  std::vector<std::string> arguments;
  std::vector<std::string> parts, only, ignore;  // everything when all are empty
  bool json = false;
  std::string html;      // the page to write; empty for none
  bool summary = false;  // the counts alone, by section
  bool all = false;      // what is only bookkeeping, too
  ColorWhen color = ColorWhen::kAuto;
  bool salvage = false;  // of a damaged file, what can be saved of it
};

// `vtrout diff`: every difference between two documents. kRemarkable when there are any outside the header; called by
// git always kFine, for git takes anything else for a failure of its own.
// `counts`, unless it's null, gets the differences of each kind; the files are then one pair of many, of which nothing
// is shown when they're the same.
ExitStatus diff(const Settings& settings, const DiffTask& task, PairCounts* counts = nullptr);
// Of two files, or of the pairs in two folders.
ExitStatus diff_files(const Settings& settings, const InputOptions& options, const DiffTask& task);

struct TextTask {
  std::string file;
  bool salvage = false;  // of a damaged file, what can be saved of it
};

// `vtrout text`: all that a document holds as lines that can be compared by line. kRemarkable when the file is damaged
// and the lines are what could be read.
ExitStatus text(const Settings& settings, const TextTask& task);

struct StatisticsTask {
  std::string workbook;
  std::string report;
  std::string sheet_name;
};

// `vtrout statistics`: a detail report that exists, moved into a sheet of a workbook that exists.
ExitStatus statistics(const Settings& settings, const StatisticsTask& task);

struct RecoveryTask {
  std::string file;
  std::string output;      // empty: a name beside the file
  std::string output_dir;  // for a name in this folder in place of that one; empty for none
  std::string log;         // empty: none
  bool json = false;
  bool first_damage = false;                   // only what stands in front of it
  std::string unexplained;                     // a folder for the bytes of which nothing can be told; empty: none
  const std::vector<Input>* inputs = nullptr;  // all files of the run, none of which is replaced; null: this one alone
};

// `vtrout recover`: writes what could be read of the file to a new one and tells what became of each section. The file
// itself is never written, and one that stands where the new one goes is replaced only when the new one is complete.
// kRemarkable when something was lost, kTrouble when nothing was written.
ExitStatus recover(const Settings& settings, const RecoveryTask& task);
ExitStatus recover_files(const Settings& settings, const InputOptions& options, const RecoveryTask& task);

enum class ExportForm { kNone, kJson, kLines, kDatabase };

struct ExportTask {
  ExportForm form = ExportForm::kNone;
  std::string output;  // empty for stdout
  bool pretty = false;
  bool salvage = false;  // of a damaged file, what can be saved of it
};

// `vtrout export`: documents for other programs, as JSON (of one file), as lines of JSON or in a database. A damaged
// document is refused without `salvage`; the others are exported. kRemarkable when something of a document isn't in
// what was exported.
ExitStatus export_documents(const Settings& settings, const InputOptions& options, const ExportTask& task);

struct ImportTask {
  std::string document;
  std::string output;
};

// `vtrout import`: writes the file that a document's JSON describes. One that stands there is replaced only when the
// new one is complete and was read back.
ExitStatus import_document(const Settings& settings, const ImportTask& task);

}  // namespace trvtrout::host
