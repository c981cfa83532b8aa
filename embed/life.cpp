#include <cstdlib>

#include "embed/arguments.h"
#include "embed/call.h"

// The calls that documents come and go by.
using namespace trvtrout::embed;

namespace {

struct ResultText {
  trvtrout_result result;
  const char* text;
};

constexpr ResultText kResultTexts[] = {
    {TRVTROUT_OK, "done"},
    {TRVTROUT_DAMAGED, "the file is damaged"},
    {TRVTROUT_INCOMPLETE, "something of the document has no place in what was made"},
    {TRVTROUT_DECLINED, "a question was declined, and nothing was touched"},
    {TRVTROUT_STOPPED, "stopped by the host"},
    {TRVTROUT_FAILED, "the operation failed"},
    {TRVTROUT_INVALID_ARGUMENT, "an argument isn't allowed"},
    {TRVTROUT_INVALID_HANDLE, "no document: the handle is null, was freed, or isn't this library's"},
    {TRVTROUT_INVALID_TEXT, "a text isn't valid UTF-8"},
    {TRVTROUT_WRONG_SIZE, "a struct has a size that no version has"},
    {TRVTROUT_BUSY, "another call on the document is running"},
    {TRVTROUT_OUT_OF_MEMORY, "there is not enough memory"},
    {TRVTROUT_NO_CODE_PAGE, "the machine doesn't have the code page, or it doesn't hold ASCII"},
    {TRVTROUT_NO_FILE, "there is no such file or folder"},
    {TRVTROUT_FILE_HELD, "the file is held by another program, or the rights to it are missing"},
    {TRVTROUT_FILE_ERROR, "the machine can't read or write the file"},
    {TRVTROUT_NOT_A_DOCUMENT, "not a VTR file, or one whose header is damaged"},
    {TRVTROUT_UNSUPPORTED, "the format version is not supported"},
};

std::shared_ptr<Document> document_for(const trvtrout_host* given) {
  const trvtrout_host host = given ? struct_of(given, "host") : trvtrout_host{};
  try {
    return std::make_shared<Document>(host);
  } catch (const std::invalid_argument& error) {
    throw Refusal(TRVTROUT_NO_CODE_PAGE, error.what());
  }
}

}  // namespace

extern "C" {

const char* trvtrout_result_text(trvtrout_result result) {
  for (const ResultText& row : kResultTexts) {
    if (row.result == result) return row.text;
  }
  return nullptr;
}

const char* trvtrout_version(void) { return TRVTROUT_VERSION; }

trvtrout_result trvtrout_new(const trvtrout_host* host, trvtrout_document** document) {
  std::string message;
  const auto work = [&] {
    place(document, "document") = nullptr;
    *document = handle_for(document_for(host));
    return TRVTROUT_OK;
  };
  return guarded_result(std::ref(work), message);
}

trvtrout_result trvtrout_free(void* made) {
  if (!is_handle(made)) {
    std::free(made);
    return TRVTROUT_OK;
  }
  std::string message;
  const auto work = [&] {
    return let_go(static_cast<trvtrout_document*>(made)) ? TRVTROUT_OK : TRVTROUT_INVALID_HANDLE;
  };
  return guarded_result(std::ref(work), message);
}

const char* trvtrout_last_message(const trvtrout_document* document) {
  const auto found = document_of(document);
  if (!found) return trvtrout_result_text(TRVTROUT_INVALID_HANDLE);
  return found->busy ? trvtrout_result_text(TRVTROUT_BUSY) : found->message.c_str();
}

trvtrout_result trvtrout_set_stop(trvtrout_document* document, int32_t stop) {
  const auto found = document_of(document);
  if (!found) return TRVTROUT_INVALID_HANDLE;
  found->watch.set_stop(stop != 0);
  return TRVTROUT_OK;
}

trvtrout_result trvtrout_set_report_folder(trvtrout_document* document, const char* folder) {
  return call(document, [=](Document& at) {
    at.utility.SetReportFolder(folder ? path_of(folder, "folder") : std::u16string());
    return TRVTROUT_OK;
  });
}

}  // extern "C"
