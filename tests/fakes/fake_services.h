#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/locale/us_locale.h"
#include "services/host_services.h"
#include "tests/fakes/recording_spreadsheet.h"
#include "text/utf8.h"

namespace trvtrout::fakes {

// The number of the service error that came of an action; 0: none came.
int error_number(const auto& action) try {
  action();
  return 0;
} catch (const ServiceError& error) {
  return static_cast<int>(error.number());
}

// Files in memory, with the rules of the real ones; one call can be made to fail.
class MemoryFiles : public Files {
 public:
  std::map<std::u16string, std::string> files;
  // What another program holds, and what is open here.
  std::set<std::u16string> held;
  // The stream's write with this number, counted from 1, finds that another program holds the file; 0: none does.
  int taken_at_write = 0;
  int closed = 0;  // calls of Close
  // Where a file's medium is bad: nothing from this byte on can be read.
  std::map<std::u16string, std::size_t> bad_from;
  // Where it's bad for a while: from the first byte up to the second nothing can be read.
  std::map<std::u16string, std::pair<std::size_t, std::size_t>> bad_range;

  // Counts anew from 1, the calls on the files and on all objects that come from them together, and lets call `call`
  // raise an error in place of doing its work; 0: none fails. Destroying an object is no call.
  void fail_at(int call) {
    calls_ = 0;
    failing_call_ = call;
  }
  int calls() const { return calls_; }
  // Objects handed out and not yet destroyed.
  int open_objects() const { return live_; }

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override {
    count();
    return std::make_unique<FileSystem>(*this);
  }
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override { return open<Input>(path); }
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override {
    return open<BinaryWriter>(path);
  }
  bool SameFile(const std::u16string& path, const std::u16string& other) override { return path == other; }

 private:
  [[noreturn]] static void refuse(ErrorNumber number, const std::u16string& path) {
    throw ServiceError(number,
                       "error " + std::to_string(static_cast<int>(number)) + " on \"" + text::to_utf8(path) + "\"");
  }
  template <class Opened>
  std::unique_ptr<Opened> open(const std::u16string& path) {
    count();
    if (path.empty()) refuse(ErrorNumber::kNoSuchFile, path);
    if (held.contains(path)) refuse(ErrorNumber::kFileHeld, path);
    files.try_emplace(path);
    return std::make_unique<Opened>(*this, path);
  }
  void count() {
    if (++calls_ == failing_call_)
      throw ServiceError(ErrorNumber::kDeviceError, "injected fault in call " + std::to_string(calls_));
  }

  template <class Interface>
  class Object : public Interface {
   public:
    explicit Object(MemoryFiles& owner, std::u16string path = {}) : owner_(owner), path_(std::move(path)) {
      ++owner_.live_;
      if (!path_.empty()) owner_.held.insert(path_);
    }
    ~Object() override {
      release();
      --owner_.live_;
    }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

   protected:
    MemoryFiles& counted() {
      owner_.count();
      return owner_;
    }
    std::string& bytes() {
      if (path_.empty()) refuse(ErrorNumber::kBadFileName, path_);
      return counted().files[path_];
    }
    void finish() {
      ++counted().closed;
      release();
    }
    MemoryFiles& owner() { return owner_; }
    const std::u16string& path() const { return path_; }
    void release() {
      owner_.held.erase(path_);
      path_.clear();
    }

   private:
    MemoryFiles& owner_;
    std::u16string path_;
  };

  class Output : public Object<TextStream> {
   public:
    using Object::Object;
    void WriteLine(std::string_view text) override { written().append(text).append("\r\n"); }
    void Write(std::string_view text) override { written().append(text); }
    void Close() override { finish(); }

   private:
    std::string& written() {
      if (++writes_ == owner().taken_at_write) refuse(ErrorNumber::kFileHeld, path());
      return bytes();
    }

    int writes_ = 0;
  };

  class Input : public Object<BinaryFile> {
   public:
    using Object::Object;
    std::uint64_t Size() override { return bytes().size(); }
    std::size_t Read(std::span<unsigned char> into) override {
      const std::size_t readable = std::min(into.size(), readable_to() - std::min(readable_to(), position_));
      const bool bad = owner().bad_from.contains(path()) || owner().bad_range.contains(path());
      if (readable == 0 && !into.empty() && bad) {
        refuse(ErrorNumber::kDeviceError, path());
      }
      const std::size_t length = bytes().copy(reinterpret_cast<char*>(into.data()), readable, position_);
      position_ += length;
      return length;
    }
    bool SkipTo(std::uint64_t offset) override {
      position_ = static_cast<std::size_t>(offset);
      return true;
    }
    void Close() override { finish(); }

   private:
    std::size_t readable_to() {
      const auto range = owner().bad_range.find(path());
      if (range != owner().bad_range.end() && position_ < range->second.second) return range->second.first;
      const auto bad = owner().bad_from.find(path());
      return bad == owner().bad_from.end() ? std::string::npos : bad->second;
    }

    std::size_t position_ = 0;
  };

  class BinaryWriter : public Object<BinaryOutput> {
   public:
    using Object::Object;
    void Write(std::string_view text) override {
      std::string& all = bytes();
      all.replace(position_, std::min(text.size(), all.size() - position_), text);
      position_ += text.size();
    }
    void Close() override { finish(); }

   private:
    std::size_t position_ = 0;
  };

  class FileSystem : public Object<FileSystemObject> {
   public:
    using Object::Object;
    std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) override {
      MemoryFiles& owner = counted();
      if (path.empty() || unicode) refuse(ErrorNumber::kInvalidCall, path);
      if (!overwrite && owner.files.contains(path)) refuse(ErrorNumber::kFileExists, path);
      if (owner.held.contains(path)) refuse(ErrorNumber::kFileHeld, path);
      owner.files[path].clear();
      return std::make_unique<Output>(owner, path);
    }
    bool FileExists(const std::u16string& path) override { return counted().files.contains(path); }
    void DeleteFile(const std::u16string& path) override {
      MemoryFiles& owner = counted();
      if (owner.held.contains(path)) refuse(ErrorNumber::kFileHeld, path);
      if (owner.files.erase(path) == 0) refuse(ErrorNumber::kNoSuchFile, path);
    }
  };

  int calls_ = 0;
  int failing_call_ = 0;
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
  std::function<void()> on_show = [] {};
  // Answers to give, first one first; without one a question is cancelled.
  std::deque<MessageAnswer> answers;

  MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                     const std::optional<std::u16string>& title) override {
    calls.push_back({prompt, buttons, title});
    on_show();
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

  void SetFilter(const std::u16string& filter) override { calls.push_back("SetFilter " + text::to_utf8(filter)); }
  void SetFilterIndex(int index) override { calls.push_back("SetFilterIndex " + std::to_string(index)); }
  void SetText(const std::u16string& text) override { calls.push_back("SetText " + text::to_utf8(text)); }
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
  MemoryFiles& files = memory;
  ScriptedMessageBox message_box;
  ScriptedSaveDialog save_dialog;
  CountingMessageLoop message_loop;
  FixedLocale locale;
  RecordingSpreadsheet spreadsheet;

  HostServices services() { return {files, message_box, save_dialog, message_loop, locale, spreadsheet}; }
};

}  // namespace trvtrout::fakes
