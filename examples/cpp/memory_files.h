#pragma once

#include <map>
#include <memory>
#include <string>
#include <trvtrout/services/host_services.h>

// A file service of a host's own: files are texts in memory, and nothing touches a disk.
class MemoryFiles : public trvtrout::Files {
 public:
  std::map<std::u16string, std::string> files;

  std::unique_ptr<trvtrout::FileSystemObject> CreateFileSystemObject() override {
    return std::make_unique<FileSystem>(files);
  }
  std::unique_ptr<trvtrout::BinaryFile> OpenBinary(const std::u16string& path) override {
    const auto found = files.find(path);
    if (found != files.end()) return std::make_unique<Input>(found->second);
    throw trvtrout::ServiceError(trvtrout::ErrorNumber::kNoSuchFile, "there is no such file in memory");
  }
  std::unique_ptr<trvtrout::BinaryOutput> OpenBinaryOutput(const std::u16string& path) override {
    return std::make_unique<Output>(files[path]);
  }
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return path == other && files.count(path) > 0;
  }

 private:
  struct Input : trvtrout::BinaryFile {
    explicit Input(const std::string& content) : bytes(content) {}
    std::uint64_t Size() override { return bytes.size(); }
    std::size_t Read(std::span<unsigned char> into) override {
      const std::size_t count = bytes.copy(reinterpret_cast<char*>(into.data()), into.size(), at);
      return at += count, count;
    }
    void Close() override {}
    const std::string& bytes;
    std::size_t at = 0;
  };
  // Writes over what stands there, from its first byte on.
  struct Output : trvtrout::BinaryOutput {
    explicit Output(std::string& content) : bytes(content) {}
    void Write(std::string_view text) override {
      bytes.replace(at, std::min(text.size(), bytes.size() - at), text);
      at += text.size();
    }
    void Close() override {}
    std::string& bytes;
    std::size_t at = 0;
  };
  struct Report : trvtrout::TextStream {
    explicit Report(std::string& content) : bytes(content) { bytes.clear(); }
    void WriteLine(std::string_view text) override { (bytes += text) += "\r\n"; }
    void Write(std::string_view text) override { bytes += text; }
    void Close() override {}
    std::string& bytes;
  };
  struct FileSystem : trvtrout::FileSystemObject {
    explicit FileSystem(std::map<std::u16string, std::string>& all) : files(all) {}
    std::unique_ptr<trvtrout::TextStream> CreateTextFile(const std::u16string& path, bool, bool) override {
      return std::make_unique<Report>(files[path]);
    }
    bool FileExists(const std::u16string& path) override { return files.count(path) > 0; }
    void DeleteFile(const std::u16string& path) override { files.erase(path); }
    std::map<std::u16string, std::string>& files;
  };
};
