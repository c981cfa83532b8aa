#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/locale/us_locale.h"
#include "platform/text/utf8.h"
#include "reports/host_services.h"
#include "tests/fakes/faulty_files.h"

namespace trvtrout::fakes {

// Files in memory, with the rules of the real ones. A file that is open for writing is held, and so is, for writing
// and deleting, one that is open for reading.
class MemoryFiles : public Files {
 public:
  std::map<std::u16string, std::string> files;
  // Files that another program holds.
  std::set<std::u16string> held;

  // Objects handed out and not yet destroyed.
  int open_objects() const { return live_; }

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override { return std::make_unique<FileSystem>(*this); }

  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override {
    if (path.empty()) refuse(53, path);
    require_free(path, kReader);
    files.try_emplace(path);
    return std::make_unique<Input>(*this, path);
  }
  bool SameFile(const std::u16string& path, const std::u16string& other) override { return path == other; }

 private:
  static constexpr int kWriter = -1;
  static constexpr int kReader = 1;

  [[noreturn]] static void refuse(int number, const std::u16string& path) {
    throw ServiceError(number, "error " + std::to_string(number) + " on \"" + platform::to_utf8(path) + "\"");
  }

  void require_free(const std::u16string& path, int use) const {
    auto found = uses_.find(path);
    const int now = found == uses_.end() ? 0 : found->second;
    if (held.contains(path) || now == kWriter || (use == kWriter && now != 0)) refuse(kErrorFileHeld, path);
  }

  class Live {
   public:
    explicit Live(MemoryFiles& owner) : owner_(owner) { ++owner_.live_; }
    ~Live() { --owner_.live_; }
    Live(const Live&) = delete;
    Live& operator=(const Live&) = delete;
    MemoryFiles& owner() const { return owner_; }

   private:
    MemoryFiles& owner_;
  };

  class OpenFile {
   public:
    OpenFile(MemoryFiles& owner, std::u16string path, int use) : live_(owner), path_(std::move(path)), use_(use) {
      owner.uses_[path_] += use_;
    }
    ~OpenFile() { close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    void close() { live_.owner().uses_[path_] -= std::exchange(use_, 0); }
    std::string& bytes() const {
      if (use_ == 0) refuse(52, path_);
      return live_.owner().files[path_];
    }

   private:
    Live live_;
    std::u16string path_;
    int use_;
  };

  class Output : public TextStream {
   public:
    Output(MemoryFiles& owner, const std::u16string& path) : file_(owner, path, kWriter) {}
    void WriteLine(std::string_view text) override { file_.bytes().append(text).append("\r\n"); }
    void Write(std::string_view text) override { file_.bytes().append(text); }
    void Close() override { file_.close(); }

   private:
    OpenFile file_;
  };

  class Input : public BinaryFile {
   public:
    Input(MemoryFiles& owner, const std::u16string& path) : file_(owner, path, kReader) {}
    std::uint64_t Size() override { return file_.bytes().size(); }
    std::size_t Read(std::span<unsigned char> into) override {
      const std::string& bytes = file_.bytes();
      const std::size_t count = std::min(into.size(), bytes.size() - std::min(position_, bytes.size()));
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(position_), count, into.begin());
      position_ += count;
      return count;
    }
    void Close() override { file_.close(); }

   private:
    OpenFile file_;
    std::size_t position_ = 0;
  };

  class FileSystem : public FileSystemObject {
   public:
    explicit FileSystem(MemoryFiles& owner) : live_(owner) {}
    std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) override {
      if (path.empty() || unicode) refuse(5, path);
      if (!overwrite && FileExists(path)) refuse(58, path);
      live_.owner().require_free(path, kWriter);
      live_.owner().files[path].clear();
      return std::make_unique<Output>(live_.owner(), path);
    }
    bool FileExists(const std::u16string& path) override { return live_.owner().files.contains(path); }
    void DeleteFile(const std::u16string& path) override {
      if (!FileExists(path)) refuse(53, path);
      live_.owner().require_free(path, kWriter);
      live_.owner().files.erase(path);
    }

   private:
    Live live_;
  };

  std::map<std::u16string, int> uses_;
  int live_ = 0;
};

class ScriptedMessageBox : public MessageBox {
 public:
  struct Call {
    std::u16string prompt;
    MessageButtons buttons;
    std::optional<std::u16string> title;
  };
  std::vector<Call> calls;
  // Answers to give, first one first; without one a question is cancelled.
  std::deque<MessageAnswer> answers;

  MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                     const std::optional<std::u16string>& title) override {
    calls.push_back({prompt, buttons, title});
    if (answers.empty()) return buttons == MessageButtons::kOk ? MessageAnswer::kOk : MessageAnswer::kCancel;
    const MessageAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

class ScriptedSaveDialog : public SaveDialog {
 public:
  // One entry for each call: its name, then a blank and the argument in UTF-8 where there is one.
  std::vector<std::string> calls;
  std::u16string file_name;

  void SetFilter(const std::u16string& filter) override { calls.push_back("SetFilter " + platform::to_utf8(filter)); }
  void SetFilterIndex(int index) override { calls.push_back("SetFilterIndex " + std::to_string(index)); }
  void SetText(const std::u16string& text) override { calls.push_back("SetText " + platform::to_utf8(text)); }
  void ShowSave() override { calls.emplace_back("ShowSave"); }
  std::u16string FileName() override {
    calls.emplace_back("FileName");
    return file_name;
  }
};

class CountingMessageLoop : public MessageLoop {
 public:
  int count = 0;
  void DoEvents() override { ++count; }
};

class FixedLocale : public platform::UsLocale {
 public:
  using UsLocale::UsLocale;
  // 1 June 2004, 14:11:05.
  Date now = 38139 + 51065 / 86400.0;
  Date Now() override { return now; }
};

// A machine to run the class on.
struct Machine {
  explicit Machine(int code_page = 1252) : locale(code_page) {}
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  MemoryFiles memory;
  FaultyFiles files{memory};
  ScriptedMessageBox message_box;
  ScriptedSaveDialog save_dialog;
  CountingMessageLoop message_loop;
  FixedLocale locale;

  HostServices services() { return {files, message_box, save_dialog, message_loop, locale}; }
};

}  // namespace trvtrout::fakes
