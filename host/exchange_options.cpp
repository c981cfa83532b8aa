#include "host/exchange_options.h"

#include "host/options.h"

namespace trvtrout::host {
namespace {

// An option that says which form is wanted, and where it goes.
CLI::Option* add_form(CLI::App& command, const char* name, ExportTask& task, ExportForm form, const char* description,
                      CheckPath check_path) {
  return command
      .add_option_function<std::string>(
          name,
          [&task, form](const std::string& output) {
            task.form = form;
            task.output = output;
          },
          description)
      ->check(check_path, "", kTakesFile);
}

}  // namespace

void add_export_options(CLI::App& command, ExportTask& task, CheckPath check_path) {
  auto& forms = *command.add_option_group("Forms", "One of these is wanted");
  forms.require_option(1);
  const auto optional = [](CLI::Option* option) { return option->expected(0, 1)->option_text("[OUT]"); };
  auto* const json =
      optional(add_form(forms, "--json", task, ExportForm::kJson,
                        "The whole document as JSON, to OUT or stdout; vtrout import is the way back", check_path));
  optional(add_form(forms, "--ndjson", task, ExportForm::kLines,
                    "A line of JSON for each item of each list, to OUT or stdout", check_path));
  add_form(forms, "--sqlite", task, ExportForm::kDatabase,
           "Tables in this SQLite database, which is created if needed; rows of the same file are replaced", check_path)
      ->option_text("DB");
  command.add_flag("--pretty", task.pretty, "Indent the JSON, for people")->needs(json);
}

void add_import_options(CLI::App& command, ImportTask& task, CheckPath check_path) {
  command.add_option("DOC", task.document, "A document as vtrout export --json writes it")
      ->required()
      ->type_name("")
      ->check(check_path, "", kTakesFile);
  command.add_option("OUT", task.output, "The VTR file to write")
      ->required()
      ->type_name("")
      ->check(check_path, "", kTakesFile);
}

}  // namespace trvtrout::host
