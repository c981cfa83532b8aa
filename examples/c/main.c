/* Writes the report on the tables of NEW into a folder, and the differences between OLD and NEW to stdout, as JSON.
 *
 *   differences_in_c OLD.vtr NEW.vtr FOLDER
 */
#include <stdio.h>
#include <trvtrout.h>

/* Takes the JSON as it comes. */
static int32_t write_out(void* context, const char* bytes, size_t count) {
  return fwrite(bytes, 1, count, (FILE*)context) == count ? 0 : 1;
}

/* Tells what is to be told; a report that exists may be overwritten. */
static int32_t ask(void* context, const trvtrout_question* question) {
  (void)context;
  fprintf(stderr, "%s\n", question->prompt);
  return question->buttons == TRVTROUT_BUTTONS_YES_NO_CANCEL ? TRVTROUT_ANSWER_YES : TRVTROUT_ANSWER_OK;
}

/* Tells why a call failed. Returns whether it did. */
static int failed(trvtrout_result result, const trvtrout_document* document) {
  if (result == TRVTROUT_OK) return 0;
  fprintf(stderr, "%s: %s\n", trvtrout_result_text(result), trvtrout_last_message(document));
  return 1;
}

static int run(trvtrout_document* old_document, trvtrout_document* new_document, char** arguments) {
  char* report = NULL;
  trvtrout_diff_counts counts = {sizeof counts, 0, 0, 0, 0, 0};
  if (failed(trvtrout_read(old_document, arguments[1], TRVTROUT_PRIMARY), old_document) ||
      failed(trvtrout_read(new_document, arguments[2], TRVTROUT_PRIMARY), new_document) ||
      failed(trvtrout_set_report_folder(new_document, arguments[3]), new_document) ||
      failed(trvtrout_report(new_document, TRVTROUT_PART_TABLE, arguments[2], 1, &report), new_document)) {
    return 2;
  }
  fprintf(stderr, "%s\n", report);
  trvtrout_free(report);
  if (failed(trvtrout_diff(old_document, new_document, NULL, write_out, stdout, &counts), old_document)) return 2;
  return counts.changed + counts.removed + counts.added + counts.moved > 0;
}

int main(int count, char** arguments) {
  trvtrout_host host = {sizeof host, 0, NULL, ask, NULL, NULL, NULL};
  trvtrout_document *old_document = NULL, *new_document = NULL;
  int status = 2;
  if (count != 4) {
    fprintf(stderr, "usage: %s OLD.vtr NEW.vtr FOLDER\n", arguments[0]);
    return 2;
  }
  if (trvtrout_new(&host, &old_document) == TRVTROUT_OK && trvtrout_new(&host, &new_document) == TRVTROUT_OK) {
    status = run(old_document, new_document, arguments);
  }
  trvtrout_free(new_document);
  trvtrout_free(old_document);
  return status;
}
