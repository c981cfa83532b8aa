/* The output utility for VTR files, for programs in C and for those that call C.
 *
 * Every call that can fail returns a trvtrout_result, and trvtrout_last_message() says why in a sentence for people.
 * Nothing is raised, nothing is printed, and the library ends no process.
 *
 * Texts are UTF-8 and end in a zero byte; paths are the machine's, with "/". Invalid UTF-8 and a backslash in a path
 * are refused. Texts go out valid: what Unicode can't say comes as U+FFFD.
 *
 * What a call hands out through a `char**` or a `trvtrout_document**` belongs to the caller, who gives it back to
 * trvtrout_free(). When a call fails such a place holds NULL. What a callback is given belongs to the library and is
 * gone when the callback returns.
 *
 * Threads: any number of documents may be used at once, each by one thread at a time, on whatever thread that is. A
 * call on a document that another thread is in, or on one from within its own callback, returns TRVTROUT_BUSY and does
 * nothing; trvtrout_set_stop() and trvtrout_free() may be called at any time.
 *
 * Structs begin with their size, so that they can grow: set `struct_size` to sizeof of the struct and all else that you
 * don't use to zero. A size that no version of the struct has had is TRVTROUT_WRONG_SIZE.
 */
#ifndef TRVTROUT_H
#define TRVTROUT_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define TRVTROUT_API __attribute__((visibility("default")))
#else
#define TRVTROUT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What a call returns. New values may come; take one that you don't know for a failure. */
typedef int32_t trvtrout_result;
enum {
  TRVTROUT_OK = 0,
  TRVTROUT_DAMAGED = 1,    /* the file is damaged; the document has what was read before the damage */
  TRVTROUT_INCOMPLETE = 2, /* done, but something of the document has no place in what was made */
  TRVTROUT_DECLINED = 3,   /* a question was answered with Cancel, or no path was named: nothing was touched */
  TRVTROUT_STOPPED = 4,    /* by trvtrout_set_stop() or a callback: nothing of what was being written stands */
  TRVTROUT_FAILED = 10,    /* for a reason without a number of its own */
  TRVTROUT_INVALID_ARGUMENT = 11,
  TRVTROUT_INVALID_HANDLE = 12, /* null, freed already, or none of this library's */
  TRVTROUT_INVALID_TEXT = 13,   /* no valid UTF-8 */
  TRVTROUT_WRONG_SIZE = 14,     /* of a struct */
  TRVTROUT_BUSY = 15,           /* another call on this document is running */
  TRVTROUT_OUT_OF_MEMORY = 16,
  TRVTROUT_NO_CODE_PAGE = 17,   /* the machine doesn't know it, or it doesn't hold ASCII */
  TRVTROUT_NO_FILE = 20,        /* there is no such file or folder */
  TRVTROUT_FILE_HELD = 21,      /* by another program, or the rights to it are missing */
  TRVTROUT_FILE_ERROR = 22,     /* the machine can't do it: disk full, bad medium, a folder where a file should be */
  TRVTROUT_NOT_A_DOCUMENT = 23, /* no VTR file, or one whose header is damaged (trvtrout_salvage() may read that) */
  TRVTROUT_UNSUPPORTED = 24     /* the file's format version */
};

/* What a result means, for people, in English; static. NULL for a number that is none. */
TRVTROUT_API const char* trvtrout_result_text(trvtrout_result result);

/* The library's version, "1.2.3"; static. */
TRVTROUT_API const char* trvtrout_version(void);

/* ---- What a host answers ---- */

/* A message box. Buttons and answers have the numbers of the class's own platform. */
enum { TRVTROUT_BUTTONS_OK = 0, TRVTROUT_BUTTONS_YES_NO_CANCEL = 3 };
enum { TRVTROUT_ANSWER_OK = 1, TRVTROUT_ANSWER_CANCEL = 2, TRVTROUT_ANSWER_YES = 6, TRVTROUT_ANSWER_NO = 7 };
typedef struct trvtrout_question {
  uint32_t struct_size;
  int32_t buttons;
  const char* prompt; /* "File a/plant_Product.CSV already exists. ..."; lines end in CR LF */
  const char* title;  /* NULL for the host's own */
} trvtrout_question;

/* The dialog that asks for the path of a file to write, after No to the question whether one may be overwritten. */
typedef struct trvtrout_path_question {
  uint32_t struct_size;
  int32_t filter_index; /* which pair of `filter` is chosen at first, counted from 1 */
  const char* filter;   /* pairs of description and pattern with "|" between them */
  const char* source;   /* the name of the file that is being reported on */
} trvtrout_path_question;

/* How far the work on one file is. */
typedef struct trvtrout_progress {
  uint32_t struct_size;
  int32_t reserved;
  const char* path; /* NULL when what is made goes to a callback */
  uint64_t done;    /* bytes read or written */
  uint64_t total;   /* of a file that is read; 0 when nobody knows */
} trvtrout_progress;

/* All members may be NULL or 0. The callbacks are called on the thread that made the call, with `context`. They must
 * return (no exception, no longjmp). */
typedef struct trvtrout_host {
  uint32_t struct_size;
  int32_t code_page; /* of the texts in the files: 1252, 932, ...; 0 for 1252 */
  void* context;
  /* Returns the answer; anything else counts as Cancel. Without it questions are answered with Cancel. */
  int32_t (*ask)(void* context, const trvtrout_question* question);
  /* Writes a path of fewer than `room` bytes and its zero byte to `path`, and returns 1; 0 for none. */
  int32_t (*choose_path)(void* context, const trvtrout_path_question* question, char* path, size_t room);
  /* Called for every 64 KiB or so. Returns 0, or anything else to stop. */
  int32_t (*progress)(void* context, const trvtrout_progress* progress);
  /* One turn of the host's message loop. */
  void (*do_events)(void* context);
} trvtrout_host;

/* Takes what is made, piece by piece. Returns 0, or anything else to stop. */
typedef int32_t (*trvtrout_write)(void* context, const char* bytes, size_t count);

/* ---- Documents ---- */

/* What was read last, and the two documents for comparisons: one object of the class. A handle is a number and no
 * address, and never comes twice: one that was freed is TRVTROUT_INVALID_HANDLE for ever. */
typedef struct trvtrout_document trvtrout_document;

/* Makes a document in which nothing was read: it has empty lists. `host` may be NULL; it's copied, its context isn't.
 * Fails with TRVTROUT_INVALID_ARGUMENT, TRVTROUT_WRONG_SIZE, TRVTROUT_NO_CODE_PAGE or TRVTROUT_OUT_OF_MEMORY. */
TRVTROUT_API trvtrout_result trvtrout_new(const trvtrout_host* host, trvtrout_document** document);

/* Frees a text or a document; NULL is fine. A document in which a call is running goes when that call returns. */
TRVTROUT_API trvtrout_result trvtrout_free(void* made);

/* Why the last call on the document returned what it did, for people; empty when there is nothing to tell. Never NULL.
 * Holds until the next call on the document. */
TRVTROUT_API const char* trvtrout_last_message(const trvtrout_document* document);

/* While `stop` isn't 0 every call on the document that does long work ends with TRVTROUT_STOPPED, the one that runs and
 * those that begin later. May be called by any thread. */
TRVTROUT_API trvtrout_result trvtrout_set_stop(trvtrout_document* document, int32_t stop);

/* Reports and comparisons go into this folder from now on; NULL for beside the file that they are named after. */
TRVTROUT_API trvtrout_result trvtrout_set_report_folder(trvtrout_document* document, const char* folder);

/* ---- Reading ---- */

/* Which of the two documents for comparisons a file becomes, beside the document last read. */
enum { TRVTROUT_PRIMARY = 0, TRVTROUT_SECONDARY = 1 };

/* ReadVTR: reads a file, which is never written. Nothing is cleared before: a section that the file doesn't have keeps
 * what an earlier file left. TRVTROUT_DAMAGED also where bytes in the middle had to be passed over. After any other
 * failure the document is as it was, but for TRVTROUT_UNSUPPORTED, where it has the header. */
TRVTROUT_API trvtrout_result trvtrout_read(trvtrout_document* document, const char* path, int32_t role);

/* SalvageVTR: reads on behind the damage of a file: the document becomes all that can be saved of it, sections that
 * weren't found empty. TRVTROUT_NOT_A_DOCUMENT when nothing of one can be found, and then the document is as it was. */
TRVTROUT_API trvtrout_result trvtrout_salvage(trvtrout_document* document, const char* path, int32_t role);

/* Where the last read met damage. */
typedef struct trvtrout_damage {
  uint32_t struct_size;
  int32_t broken_off;    /* 1: reading ended there. 0: there was no damage, or it was passed over */
  uint64_t offset;       /* bytes from the start of the file; of the first gap when it was passed over */
  uint64_t may_begin_at; /* the damage may begin as early as here */
  uint64_t gaps;         /* how many ranges of bytes were passed over */
} trvtrout_damage;
TRVTROUT_API trvtrout_result trvtrout_get_damage(trvtrout_document* document, trvtrout_damage* damage);

/* What the last trvtrout_salvage() found; all zero when there was none since the last read. */
typedef struct trvtrout_salvaged {
  uint32_t struct_size;
  int32_t version_guessed; /* 1: the header doesn't tell the format version, but the sections fit it */
  int32_t header_whole;    /* 1 or 0, as the next */
  int32_t end_found;
  uint64_t bytes;           /* of the file */
  uint64_t bytes_explained; /* of them, those that are in the document, or behind its end */
  uint64_t sections;        /* in the document */
  uint64_t sections_whole;  /* of them, without a loss */
} trvtrout_salvaged;
TRVTROUT_API trvtrout_result trvtrout_get_salvaged(trvtrout_document* document, trvtrout_salvaged* salvaged);

/* ---- What the document last read holds ---- */

enum {
  TRVTROUT_TEXT_CODE = 0, /* GetProdInfo: of the product */
  TRVTROUT_TEXT_DESCRIPTION = 1,
  TRVTROUT_TEXT_SERIAL = 2,
  TRVTROUT_TEXT_VERSION = 3,
  TRVTROUT_TEXT_DATABASE = 4,
  TRVTROUT_TEXT_DATA_SEND_FILE = 5, /* GetDsmInfo */
  TRVTROUT_TEXT_DATA_SEND_VERSION = 6,
  TRVTROUT_TEXT_FORMAT_VERSION = 7, /* of the header */
  TRVTROUT_TEXT_STRUCTURE_LIST = 8, /* of a damaged file: what was read and what wasn't */
  TRVTROUT_TEXT_DAMAGE_PATH = 9,    /* the record in which reading broke off: "Schema/Tables/Items[12]" */
  TRVTROUT_TEXT_DAMAGE_FOUND = 10   /* what stood there */
};

/* One of the texts above. `length` (NULL if it isn't wanted) gets its bytes: a text of a file can hold zero bytes. */
TRVTROUT_API trvtrout_result trvtrout_get_text(trvtrout_document* document, int32_t which, char** text, size_t* length);

enum {
  TRVTROUT_LIST_TABLES = 0,           /* GetTableInfo */
  TRVTROUT_LIST_FIELDS = 1,           /* GetFieldsInfo: of all tables */
  TRVTROUT_LIST_LOOKUPS = 2,          /* GetLookupInfo */
  TRVTROUT_LIST_RELATIONS = 3,        /* GetRelInfo */
  TRVTROUT_LIST_HIDDEN_TABLES = 4,    /* GetHidTableInfo */
  TRVTROUT_LIST_HIDDEN_FIELDS = 5,    /* GetHidFieldsInfo */
  TRVTROUT_LIST_HIDDEN_LOOKUPS = 6,   /* GetHidLookInfo */
  TRVTROUT_LIST_TREE = 7,             /* GetTreInfo */
  TRVTROUT_LIST_LANGUAGES = 8,        /* GetLanInfo */
  TRVTROUT_LIST_MODULES = 9,          /* GetMdlInfo */
  TRVTROUT_LIST_FIELD_MATCHES = 10,   /* GetFmsInfo */
  TRVTROUT_LIST_EXTENDED = 11,        /* GetExtInfo */
  TRVTROUT_LIST_INCLUDE_FILES = 12,   /* GetInclInfo */
  TRVTROUT_LIST_CONTROL_TAGS = 13,    /* GetTagInfo */
  TRVTROUT_LIST_DSN = 14,             /* GetDSNInfo */
  TRVTROUT_LIST_IMPORT_FILES = 15,    /* GetIncNewInfo */
  TRVTROUT_LIST_RESIDUAL_TABLES = 16, /* GetResiTblInfo */
  TRVTROUT_LIST_DATA_SEND = 17        /* GetDsmInfo: `count` definitions with `size` nodes in all */
};

/* A list's own numbers beside a recount. */
typedef struct trvtrout_list_info {
  uint32_t struct_size;
  int32_t holds;               /* 1: the list holds together; 0: it doesn't, and `size` is how far the recount came */
  int32_t count, current, max; /* 0 where the list has no such number */
  int32_t size;                /* index of the last used slot, counted from 1 */
  const char* name;            /* "tables": static */
} trvtrout_list_info;
TRVTROUT_API trvtrout_result trvtrout_get_list(trvtrout_document* document, int32_t list, trvtrout_list_info* info);

/* GetHedInfo: when the document was modified, in days since 30 December 1899 with the time of day as the fraction.
 * TRVTROUT_FAILED when the header's text isn't a date; `modified` stays as it was then. */
TRVTROUT_API trvtrout_result trvtrout_get_modified(trvtrout_document* document, double* modified);

/* ---- Reports and comparisons ---- */

enum {
  TRVTROUT_PART_PRODUCT = 0,     /* ASCII_Output_Product, Compare_Product */
  TRVTROUT_PART_TABLE = 1,       /* ASCII_Output_Table, Compare_Table */
  TRVTROUT_PART_FIELD = 2,       /* ASCII_Output_Field, Compare_Field */
  TRVTROUT_PART_TREE = 3,        /* ASCII_Output_Tree, Compare_Tree */
  TRVTROUT_PART_LOOKUP = 4,      /* ASCII_Output_Lookup, Compare_Lookup */
  TRVTROUT_PART_CONTROL_TAG = 5, /* ASCII_Output_CtrlTag, Compare_CtrlTag */
  TRVTROUT_PART_LANGUAGE = 6,    /* ASCII_Output_Lang, Compare_Lang */
  TRVTROUT_PART_DATA_SEND = 7    /* ASCII_Output_DSend, Compare_DSend */
};
enum { TRVTROUT_PARTS = 8 };

/* "product", "table", ...; static. NULL for a number that is no part. */
TRVTROUT_API const char* trvtrout_part_name(int32_t part);

/* Writes one detail report on the document last read, named after the file `source`, in the bytes of the code page.
 * `temporary` not 0 asks for the name without the moment. About a file that stands there the host is asked; it's
 * replaced when the report is whole. `path` gets the report's path. */
TRVTROUT_API trvtrout_result trvtrout_report(trvtrout_document* document, int32_t part, const char* source,
                                             int32_t temporary, char** path);

/* Compares one part of the two documents read, under the temporary name of `primary`. Else as trvtrout_report(). */
TRVTROUT_API trvtrout_result trvtrout_compare(trvtrout_document* document, int32_t part, const char* primary,
                                              const char* secondary, char** path);

/* The rows of the last comparison; a changed pair counts once. */
typedef struct trvtrout_comparison_counts {
  uint32_t struct_size;
  int32_t reserved;
  uint64_t unchanged, changed, deleted, added;
} trvtrout_comparison_counts;
TRVTROUT_API trvtrout_result trvtrout_get_comparison_counts(trvtrout_document* document,
                                                            trvtrout_comparison_counts* counts);

/* GetOutputFileName: the path for a workbook (`kind` "Statistics" or "Compared"), a rewritten file ("Recovered") or a
 * log ("Log") beside `source`, and the name of `source` up to its first full stop. Asks about a file that stands there.
 * `base_name` may be NULL. */
TRVTROUT_API trvtrout_result trvtrout_output_name(trvtrout_document* document, const char* source, const char* kind,
                                                  char** path, char** base_name);

/* Delete_ASCII: removes a report. */
TRVTROUT_API trvtrout_result trvtrout_delete_report(trvtrout_document* document, const char* path);

/* ---- Workbooks (.xls, .xlsx, .xlsm) ---- */

/* XL_Output_Statistics: adds a sheet to a workbook that exists and moves a detail report into it. The sheets "Product",
 * "Tables", "Fields", "Tree", "Lookups", "Control Tags", "Languages" and "Data Send" get the formats of their part. On
 * failure the workbook is as it was. The report stays. */
TRVTROUT_API trvtrout_result trvtrout_workbook_report(trvtrout_document* document, const char* workbook,
                                                      const char* report, const char* sheet);

/* XL_Output_Compared: the same with a comparison. With `color` not 0 the labels of changed, deleted and added rows get
 * their colours; then `primary` and `secondary` must be the documents that were compared, each last read into that
 * handle, and may both be `document`. Without it they may be NULL. */
TRVTROUT_API trvtrout_result trvtrout_workbook_comparison(trvtrout_document* document, const char* workbook,
                                                          const char* report, const char* sheet,
                                                          trvtrout_document* primary, trvtrout_document* secondary,
                                                          int32_t color);

/* ---- Recovery ---- */

/* RecoverVTR: writes the document last read to a new file that reads to its end. The file takes its place when it was
 * read back; about one that stands there the host is asked. `account` (NULL if it isn't wanted) gets the lists of what
 * was recovered and of what was lost. */
TRVTROUT_API trvtrout_result trvtrout_recover(trvtrout_document* document, const char* path, char** account);

/* ---- Differences ---- */

/* Patterns that choose differences, as `vtrout diff --only` and `--ignore` take them. */
typedef struct trvtrout_diff_options {
  uint32_t struct_size;
  int32_t reserved;
  const char* const* only;
  size_t only_count;
  const char* const* ignore;
  size_t ignore_count;
} trvtrout_diff_options;

typedef struct trvtrout_diff_counts {
  uint32_t struct_size;
  int32_t reserved;
  uint64_t changed, removed, added, moved;
} trvtrout_diff_counts;

/* Every difference between the documents last read into two handles. `write` gets the form "vtr-differences" of
 * `vtrout diff --json`. `options`, `write` and `counts` may be NULL; `context` goes to `write`. The result is
 * TRVTROUT_OK whether there are any; TRVTROUT_DAMAGED, and nothing is compared, when one of the documents is damaged
 * and wasn't salvaged. Messages and progress are those of `old_document`. */
TRVTROUT_API trvtrout_result trvtrout_diff(trvtrout_document* old_document, trvtrout_document* new_document,
                                           const trvtrout_diff_options* options, trvtrout_write write, void* context,
                                           trvtrout_diff_counts* counts);

/* ---- Other programs ---- */

enum { TRVTROUT_JSON = 0, TRVTROUT_JSON_PRETTY = 1, TRVTROUT_LINES = 2 };

/* The document last read as JSON, or as lines of JSON, one for each item, as `vtrout export` writes them. A document
 * that is damaged and wasn't salvaged is TRVTROUT_DAMAGED, and nothing is written. */
TRVTROUT_API trvtrout_result trvtrout_export(trvtrout_document* document, int32_t form, trvtrout_write write,
                                             void* context);

/* The same as tables in an SQLite database, which is made when it isn't there. The rows take the place of those that
 * are there for the document's path. On failure the database is as it was. */
TRVTROUT_API trvtrout_result trvtrout_export_database(trvtrout_document* document, const char* database);

/* Writes the file that the JSON in the file `json` describes, as `vtrout import` does. The new file takes its place
 * when it was read back; about one that stands there the host is asked. The document stays as it is. */
TRVTROUT_API trvtrout_result trvtrout_import(trvtrout_document* document, const char* json, const char* path);

#ifdef __cplusplus
}
#endif

#endif
