#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "component/TarvelVtrOut_InOut.h"
#include "embed/callbacks.h"
#include "platform/files/local_files.h"
#include "platform/files/report_files.h"
#include "platform/files/staged_files.h"
#include "platform/files/watched_files.h"
#include "platform/locale/us_locale.h"
#include "platform/program/spreadsheet_program.h"

namespace trvtrout::embed {

// Files of which the one that is written last stands beside its place until it's put there.
class NewFiles : public Files {
 public:
  // `files` must outlive it.
  explicit NewFiles(Files& files) : files_(files) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override { return files_.CreateFileSystemObject(); }
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override { return files_.OpenBinary(path); }
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override {
    return staged_.emplace(files_).OpenBinaryOutput(path);
  }
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return files_.SameFile(path, other);
  }

  // What was opened for writing last, once it was closed. Raises ServiceError.
  std::u16string content_path() const { return staged_->content_path(); }
  void commit(bool replaces) { staged_->commit(replaces); }
  // Nothing comes of what isn't in its place.
  void give_up() { staged_.reset(); }

 private:
  Files& files_;
  std::optional<platform::StagedFiles> staged_;
};

// What stands behind a handle: one object of the class, with a machine of its own.
class Document {
 public:
  // Raises std::invalid_argument for a code page that the machine doesn't have.
  explicit Document(const trvtrout_host& host);

  HostServices services() { return {files_, message_box_, save_dialog_, message_loop_, locale, spreadsheet_}; }
  int code_page() const { return host_.code_page; }
  // A call begins, and ends: nothing of it is remembered but its message.
  void begin();
  void end();

  // Whether a call is in it.
  std::atomic<bool> busy = false;
  std::string message;
  std::string source;          // the machine's path of the file that was read last
  std::string structure_list;  // of the last read
  bool damaged = false;        // the document isn't all of its file, and wasn't salvaged
  bool declined = false;       // by the host, in this call

 private:
  trvtrout_host host_;
  platform::LocalFiles local_{platform::MissingFile::kRefuse};
  HostMessageBox message_box_{host_, declined};
  HostSaveDialog save_dialog_{host_, declined};
  HostMessageLoop message_loop_{host_};

 public:
  HostWatch watch{host_};
  NewFiles new_files{local_};
  platform::ReportFiles reports{new_files};
  platform::UsLocale locale;

 private:
  platform::WatchedFiles files_{reports, watch};
  platform::SpreadsheetProgram spreadsheet_{files_, locale};

 public:
  TarvelVtrOut_InOut utility{services()};
};

// The handle of a document. A handle is odd and so no address; no number is given out twice.
trvtrout_document* handle_for(std::shared_ptr<Document> document);
// Null for what is no handle, or that of a document that was let go.
std::shared_ptr<Document> document_of(const trvtrout_document* handle);
bool is_handle(const void* made) noexcept;
// False when there is no such document.
bool let_go(const trvtrout_document* handle);

}  // namespace trvtrout::embed
