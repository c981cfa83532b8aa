#include "embed/call.h"

#include <new>
#include <utility>

#include "differences/path_filter.h"
#include "embed/arguments.h"

namespace trvtrout::embed {
namespace {

trvtrout_result result_of(ErrorNumber number) noexcept {
  switch (number) {
    case ErrorNumber::kNoSuchFile:
    case ErrorNumber::kNoSuchFolder:
      return TRVTROUT_NO_FILE;
    case ErrorNumber::kFileHeld:
      return TRVTROUT_FILE_HELD;
    case ErrorNumber::kBadFileName:
    case ErrorNumber::kDeviceError:
    case ErrorNumber::kFileExists:
    case ErrorNumber::kDiskFull:
    case ErrorNumber::kTooManyFiles:
    case ErrorNumber::kPathAccess:
      return TRVTROUT_FILE_ERROR;
    default:
      return TRVTROUT_FAILED;
  }
}

// A document while a call is in it.
class Occupied {
 public:
  explicit Occupied(Document& document) : document_(document), mine_(!document.busy.exchange(true)) {}
  ~Occupied() {
    if (mine_) document_.busy = false;
  }
  Occupied(const Occupied&) = delete;
  Occupied& operator=(const Occupied&) = delete;
  explicit operator bool() const { return mine_; }

 private:
  Document& document_;
  bool mine_;
};

}  // namespace

trvtrout_result guarded_result(const std::function<trvtrout_result()>& work, std::string& message) noexcept {
  const auto end = [&message](trvtrout_result result, const char* why) noexcept {
    try {
      message = why;
    } catch (...) {
      message.clear();
    }
    return result;
  };
  try {
    return work();
  } catch (const Refusal& refusal) {
    return end(refusal.result(), refusal.what());
  } catch (const Stopped& stopped) {
    return end(TRVTROUT_STOPPED, stopped.what());
  } catch (const ServiceError& error) {
    return end(result_of(error.number()), error.what());
  } catch (const differences::UnknownPath& error) {
    return end(TRVTROUT_INVALID_ARGUMENT, error.what());
  } catch (const std::bad_alloc&) {
    return end(TRVTROUT_OUT_OF_MEMORY, "there is not enough memory");
  } catch (const std::exception& error) {
    return end(TRVTROUT_FAILED, error.what());
  } catch (...) {
    return end(TRVTROUT_FAILED, "a callback of the host raised an exception");
  }
}

trvtrout_result enter(trvtrout_document* handle, const std::function<trvtrout_result(Document&)>& work) noexcept {
  const std::shared_ptr<Document> document = document_of(handle);
  if (!document) return TRVTROUT_INVALID_HANDLE;
  const Occupied occupied(*document);
  if (!occupied) return TRVTROUT_BUSY;
  document->begin();
  const auto run = [&] { return work(*document); };
  const trvtrout_result result = guarded_result(std::ref(run), document->message);
  document->end();
  return result;
}

SecondDocument::SecondDocument(trvtrout_document* handle, Document& first) : document_(document_of(handle)) {
  if (!document_) throw Refusal(TRVTROUT_INVALID_HANDLE, "the second document is none, or was freed");
  is_first_ = document_.get() == &first;
  if (!is_first_ && document_->busy.exchange(true)) {
    throw Refusal(TRVTROUT_BUSY, "another call on the second document is running");
  }
}

SecondDocument::~SecondDocument() {
  if (!is_first_) document_->busy = false;
}

trvtrout_result failure_of(Document& document) {
  if (document.watch.stopped()) throw Stopped();
  if (document.declined) throw Refusal(TRVTROUT_DECLINED, document.utility.LastFailure());
  document.message = text::valid_utf8(document.utility.LastFailure());
  return result_of(document.utility.LastErrorNumber());
}

}  // namespace trvtrout::embed
