#include "platform/files/held_files.h"

#include <utility>

namespace trvtrout::platform {
namespace {

using Texts = std::map<std::u16string, std::string>;

class HeldText : public TextStream {
 public:
  explicit HeldText(std::string& text) : text_(text) {}
  void WriteLine(std::string_view text) override { (text_ += text) += "\r\n"; }
  void Write(std::string_view text) override { text_ += text; }
  void Close() override {}

 private:
  std::string& text_;
};

class HeldBytes : public BinaryFile {
 public:
  explicit HeldBytes(std::string_view bytes) : bytes_(bytes), size_(bytes.size()) {}
  std::uint64_t Size() override { return size_; }
  std::size_t Read(std::span<unsigned char> into) override {
    const std::size_t length = bytes_.copy(reinterpret_cast<char*>(into.data()), into.size());
    bytes_.remove_prefix(length);
    return length;
  }
  void Close() override {}

 private:
  std::string_view bytes_;
  std::size_t size_;
};

class HeldFileSystem : public FileSystemObject {
 public:
  explicit HeldFileSystem(Texts& texts) : texts_(texts) {}
  std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool, bool) override {
    texts_[path].clear();
    return std::make_unique<HeldText>(texts_[path]);
  }
  bool FileExists(const std::u16string& path) override { return texts_.contains(path); }
  void DeleteFile(const std::u16string& path) override {
    if (texts_.erase(path) == 0) throw ServiceError(ErrorNumber::kNoSuchFile, "there is no such text");
  }

 private:
  Texts& texts_;
};

}  // namespace

std::unique_ptr<FileSystemObject> HeldFiles::CreateFileSystemObject() {
  return std::make_unique<HeldFileSystem>(texts_);
}

std::unique_ptr<BinaryFile> HeldFiles::OpenBinary(const std::u16string& path) {
  const auto text = texts_.find(path);
  if (text == texts_.end()) return files_.OpenBinary(path);
  return std::make_unique<HeldBytes>(text->second);
}

}  // namespace trvtrout::platform
