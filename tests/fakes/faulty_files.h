#pragma once

#include <memory>
#include <string>
#include <utility>

#include "reports/host_services.h"

namespace trvtrout::fakes {

// Any files, of which one call fails. Calls on the files and on every object that comes from them are counted
// together, in order; destroying an object is no call.
class FaultyFiles : public Files {
 public:
  explicit FaultyFiles(Files& inner) : inner_(inner) {}

  // Counts anew from 1 and lets call `call` raise `number` in place of doing its work; 0: none fails.
  void fail_at(int call, int number = 57) {
    calls_ = 0;
    failing_call_ = call;
    number_ = number;
  }
  int calls() const { return calls_; }
  // Objects handed out and not yet destroyed.
  int open_objects() const { return live_; }

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override {
    count("CreateFileSystemObject");
    return std::make_unique<FileSystem>(*this, inner_.CreateFileSystemObject());
  }
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override {
    count("OpenBinary");
    return std::make_unique<Input>(*this, inner_.OpenBinary(path));
  }
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return inner_.SameFile(path, other);
  }

 private:
  void count(const char* name) {
    if (++calls_ == failing_call_) {
      throw ServiceError(number_, "injected fault in call " + std::to_string(calls_) + ", " + name);
    }
  }

  template <class Interface>
  class Wrapper : public Interface {
   public:
    Wrapper(FaultyFiles& owner, std::unique_ptr<Interface> inner) : owner_(owner), inner_(std::move(inner)) {
      ++owner_.live_;
    }
    ~Wrapper() override { --owner_.live_; }
    Wrapper(const Wrapper&) = delete;
    Wrapper& operator=(const Wrapper&) = delete;

   protected:
    Interface& counted(const char* name) {
      owner_.count(name);
      return *inner_;
    }
    FaultyFiles& owner() { return owner_; }

   private:
    FaultyFiles& owner_;
    std::unique_ptr<Interface> inner_;
  };

  class Output : public Wrapper<TextStream> {
   public:
    using Wrapper::Wrapper;
    void WriteLine(std::string_view text) override { counted("WriteLine").WriteLine(text); }
    void Write(std::string_view text) override { counted("Write").Write(text); }
    void Close() override { counted("TextStream.Close").Close(); }
  };

  class Input : public Wrapper<BinaryFile> {
   public:
    using Wrapper::Wrapper;
    std::uint64_t Size() override { return counted("Size").Size(); }
    std::size_t Read(std::span<unsigned char> into) override { return counted("Read").Read(into); }
    void Close() override { counted("BinaryFile.Close").Close(); }
  };

  class FileSystem : public Wrapper<FileSystemObject> {
   public:
    using Wrapper::Wrapper;
    std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) override {
      return std::make_unique<Output>(owner(), counted("CreateTextFile").CreateTextFile(path, overwrite, unicode));
    }
    bool FileExists(const std::u16string& path) override { return counted("FileExists").FileExists(path); }
    void DeleteFile(const std::u16string& path) override { counted("DeleteFile").DeleteFile(path); }
  };

  Files& inner_;
  int calls_ = 0;
  int failing_call_ = 0;
  int number_ = 0;
  int live_ = 0;
};

}  // namespace trvtrout::fakes
