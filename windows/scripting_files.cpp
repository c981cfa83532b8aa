#include "windows/scripting_files.h"

#include "windows/code_page.h"
#include "windows/dispatched.h"
#include "windows/system_files.h"

namespace trvtrout::windows {
namespace {

// Runs an action on a file. Not every such object has a number for a file that is held, so the system is asked.
auto numbering_held(const std::u16string& path, const auto& action) {
  try {
    return action();
  } catch (const ServiceError& error) {
    if (error.number() == ErrorNumber::kAutomation && is_held(path)) {
      throw ServiceError(ErrorNumber::kFileHeld, error.what());
    }
    throw;
  }
}

class ScriptingText : public TextStream {
 public:
  explicit ScriptingText(Dispatched stream)
      : stream_(std::move(stream)), write_line_(stream_.resolved(L"WriteLine")), write_(stream_.resolved(L"Write")) {}

  // The stream takes the text back into the bytes of the code page.
  void WriteLine(std::string_view text) override { stream_.call(write_line_, from_code_page(text)); }
  void Write(std::string_view text) override { stream_.call(write_, from_code_page(text)); }
  void Close() override { stream_.call(L"Close"); }

 private:
  Dispatched stream_;
  Member write_line_, write_;
};

class ScriptingFiles : public FileSystemObject {
 public:
  std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) override {
    return numbering_held(path, [&] {
      return std::make_unique<ScriptingText>(object_.object(L"CreateTextFile", path, overwrite, unicode));
    });
  }
  bool FileExists(const std::u16string& path) override {
    return object_.get(L"FileExists", path).get().boolVal != VARIANT_FALSE;
  }
  void DeleteFile(const std::u16string& path) override {
    numbering_held(path, [&] { return object_.call(L"DeleteFile", path); });
  }

 private:
  Dispatched object_ = Dispatched::create(u"Scripting.FileSystemObject");
};

}  // namespace

std::unique_ptr<FileSystemObject> create_scripting_files() { return std::make_unique<ScriptingFiles>(); }

}  // namespace trvtrout::windows
