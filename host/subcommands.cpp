#include "host/subcommands.h"

namespace trvtrout::host {
namespace {

constexpr const char* kTroubleStatus = "trouble: a line on stderr says what, where and what to do";

constexpr const char* kCutCells =
    "Some texts lose their commas and line ends in a report; docs/reports.md says which.\n";

constexpr const char* kCompared =
    "Compared are the records of the eight parts, paired by their keys. Nothing is said of the product's own values\n"
    "(shown side by side), relations, hidden tables and lookups, field matches, extended storage, the DSN list,\n"
    "import files, residual tables and spare slots; docs/reports.md lists every column. Of a file in the old format,\n"
    "01.00.00, only table, field and lookup can be compared. In a workbook the labels of the last rows can stay\n"
    "plain; docs/workbooks.md says when. The last line says whether anything else differs; vtrout diff tells it.\n";

constexpr const char* kDiffered =
    "Compared are all values of all fourteen sections; vtrout compare looks at the columns of its reports alone.\n"
    "Paths are those of --json: Schema/Tables/Items[3]/Name. In a GLOB \"*\" stands for any characters of a step,\n"
    "\"**\" for any steps, and a list's name for all of its items. docs/git.md tells how git can call it.\n";

constexpr const char* kManyFiles =
    "Of several files each is told in its turn, the trouble of one doesn't stop the others, and the exit status is "
    "the\n"
    "worst of all; docs/batch.md tells all about folders, lists and names.\n";
constexpr const char* kManyPairs =
    "Two folders are compared file by file, with a table of all pairs at the end; docs/batch.md tells how.\n";

constexpr Subcommand kSubcommands[] = {
    {"info",
     "Show what a file holds, and whether its lists hold together",
     add_info,
     [](const Request& request) { return info_files(request.settings, request.inputs, request.info); },
     {kManyFiles},
     {"vtrout info plant.vtr", "vtrout info --json --recursive archive"},
     {"the whole file was read, and its lists hold together",
      "the file is damaged, and what could be read is shown; or a list doesn't hold together", kTroubleStatus}},
    {"report",
     "Write detail reports beside a file, and print their paths",
     add_report,
     [](const Request& request) { return report_files(request.settings, request.inputs, request.report); },
     {kCutCells, kManyFiles},
     {"vtrout report plant.vtr --part table --part field", "vtrout report plant.vtr --workbook plant.xlsx"},
     {"fine", "the file is damaged; the reports hold what could be read", kTroubleStatus}},
    {"compare",
     "Compare two files part by part; print the reports' paths, and count the rows",
     add_compare,
     [](const Request& request) { return compare_files(request.settings, request.inputs, request.comparison); },
     {kCompared, kCutCells, kManyPairs},
     {"vtrout compare old.vtr new.vtr --summary", "vtrout compare old.vtr new.vtr --workbook changes.xlsx"},
     {"nothing differs outside the header", "a row changed, was deleted or was added, or something else differs",
      "trouble, explained on stderr; also when a part that was asked for\n     couldn't be compared to its end"}},
    {"diff",
     "Show every difference between two files, item by item",
     add_diff,
     [](const Request& request) { return diff_files(request.settings, request.inputs, request.diff); },
     {kDiffered, kManyPairs},
     {"vtrout diff old.vtr new.vtr", "vtrout diff old.vtr new.vtr --html changes.html"},
     {"nothing differs outside the header", "something differs", kTroubleStatus}},
    {"text",
     "Print all that a file holds as lines, to be compared line by line",
     add_text,
     [](const Request& request) { return text(request.settings, request.text); },
     {},
     {"vtrout text plant.vtr", "git config diff.vtr.textconv 'vtrout text'"},
     {"the whole file was read", "the file is damaged; the lines are what could be read", kTroubleStatus}},
    {"recover",
     "Write what can be saved of a file to a new one; print its path, and what became of each section",
     add_recover,
     [](const Request& request) { return recover_files(request.settings, request.inputs, request.recovery); },
     {kManyFiles},
     {"vtrout recover damaged.vtr", "vtrout recover old.vtr --output new.vtr --log lost.txt"},
     {"nothing was lost", "something was lost, or may have been",
      "nothing was written; a line on stderr says why and what to do"}},
    {"export",
     "Write the content of files for other programs: as JSON, or in a database",
     add_export,
     [](const Request& request) { return export_documents(request.settings, request.inputs, request.exported); },
     {"docs/json.md tells the forms of JSON, docs/queries.md what can be asked of a database.\n", kManyFiles},
     {"vtrout export plant.vtr --json plant.json", "vtrout export plant.vtr plant-next.vtr --sqlite plants.db"},
     {"fine", "something of a file in the old format has no place in the current one",
      "nothing was exported, or one of several files wasn't; a line on stderr\n     says why and what to do"}},
    {"import",
     "Write the VTR file that a document's JSON describes",
     add_import,
     [](const Request& request) { return import_document(request.settings, request.imported); },
     {"The file is read back and compared before it takes its place.\n"},
     {"vtrout import plant.json plant.vtr"},
     {"the file was written", nullptr, "nothing was written; a line on stderr says why and what to do"}},
    {"statistics",
     "Add an existing detail report to an existing workbook, as a sheet",
     add_statistics,
     [](const Request& request) { return statistics(request.settings, request.statistics); },
     {},
     {"vtrout statistics plant.xlsx plant_Table.CSV Tables", "vtrout statistics plant.xls '~tmpplant_Tree.CSV' Tree"},
     {"the sheet was added", nullptr, kTroubleStatus}},
};

}  // namespace

std::span<const Subcommand> subcommands() { return kSubcommands; }

}  // namespace trvtrout::host
