#pragma once

#include <functional>
#include <memory>

#include "embed/document.h"

namespace trvtrout::embed {

// The one way from a function of the interface to its work: finds the document, keeps out others while a call is in it,
// and makes a result and a message of whatever the work raises.
trvtrout_result enter(trvtrout_document* handle, const std::function<trvtrout_result(Document&)>& work) noexcept;

template <class Work>
trvtrout_result call(trvtrout_document* handle, Work work) noexcept {
  return enter(handle, std::ref(work));  // a reference takes no memory, so nothing is raised out here
}

// The result of a piece of work that has no document.
trvtrout_result guarded_result(const std::function<trvtrout_result()>& work, std::string& message) noexcept;

// A second document that a call uses, kept from others meanwhile; `first` itself when both are one. Raises Refusal.
class SecondDocument {
 public:
  SecondDocument(trvtrout_document* handle, Document& first);
  ~SecondDocument();
  SecondDocument(const SecondDocument&) = delete;
  SecondDocument& operator=(const SecondDocument&) = delete;

  Document& operator*() const { return *document_; }
  Document* operator->() const { return document_.get(); }

 private:
  std::shared_ptr<Document> document_;
  bool is_first_;
};

// The result of an operation of the class that was False, with its message.
trvtrout_result failure_of(Document& document);

}  // namespace trvtrout::embed
