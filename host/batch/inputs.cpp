#include "host/batch/inputs.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <unistd.h>

#include "component/document_kind.h"
#include "host/machine.h"
#include "platform/files/path.h"
#include "services/guard.h"

namespace trvtrout::host {
namespace {

namespace fs = std::filesystem;

bool is_named_as_document(const std::string& name) {
  constexpr std::string_view kExtension = ".vtr";
  return name.size() >= kExtension.size() &&
         std::equal(kExtension.rbegin(), kExtension.rend(), name.rbegin(),
                    [](char wanted, unsigned char given) { return wanted == std::tolower(given); });
}

// One that can't be read and isn't named as one is taken for something else.
bool has_document(const std::string& path) {
  platform::LocalFiles files(platform::MissingFile::kRefuse);
  return platform::has_class_path(path) &&
         guarded([&] { return begins_as_document(files, platform::class_path(path)); },
                 [](const Failure&) { return false; });
}

// Goes through a folder, and where that's wanted through those in it.
class Walk {
 public:
  Walk(std::string folder, bool recursive) : folder_(std::move(folder)), recursive_(recursive) {}

  FolderList take() {
    enter({});
    return std::move(list_);
  }

 private:
  void enter(const std::string& below) {
    for (const fs::directory_entry& entry : entries(below)) {
      const std::string name = entry.path().filename().string();
      std::error_code none;
      if (entry.is_directory(none)) {
        if (recursive_ && !entry.is_symlink(none)) enter(below + name + '/');
      } else if (entry.is_regular_file(none) && !platform::is_temporary_name(name)) {
        if (is_named_as_document(name) || has_document(entry.path())) list_.paths.push_back(below + name);
      } else if (is_named_as_document(name) && !entry.exists(none)) {
        list_.paths.push_back(below + name);  // a link that leads nowhere: whoever opens it will tell
      }
    }
  }

  // All at once, so that no more folders are open than one.
  std::vector<fs::directory_entry> entries(const std::string& below) {
    std::vector<fs::directory_entry> all;
    std::error_code error;
    for (fs::directory_iterator at(in_folder(folder_, below), error), end; !error && at != end; at.increment(error)) {
      all.push_back(*at);
    }
    if (error) {
      complain(in_folder(folder_, below) + ": the folder can't be read: " + error.message());
      list_.is_whole = false;
    }
    std::ranges::sort(all, {}, [](const fs::directory_entry& entry) { return entry.path().native(); });
    return all;
  }

  std::string folder_;
  bool recursive_;
  FolderList list_;
};

// Lines, or what stands between zero bytes if there is one: a name can have line ends in it, too.
std::vector<std::string> names_in(const std::string& text) {
  const char separator = text.find('\0') == std::string::npos ? '\n' : '\0';
  std::vector<std::string> names;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(separator, at), text.size());
    std::string name = text.substr(at, end - at);
    if (separator == '\n' && name.ends_with('\r')) name.pop_back();
    if (!name.empty()) names.push_back(std::move(name));
    at = end + 1;
  }
  return names;
}

// Nothing when the list can't be read, of which the user has been told. It need be no regular file, and stdin keeps its
// state: questions may be asked on the terminal on which the list was typed.
std::optional<std::vector<std::string>> read_names(const std::string& list) {
  const int descriptor = list == "-" ? STDIN_FILENO : open(list.c_str(), O_RDONLY | O_CLOEXEC);
  std::string text;
  std::vector<char> block(65536);
  ssize_t count = -1;
  do {
    count = descriptor < 0 ? -1 : ::read(descriptor, block.data(), block.size());
    if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
  } while (count > 0 || (descriptor >= 0 && count < 0 && errno == EINTR));
  if (count < 0) complain(list + ": the list of files can't be read: " + std::generic_category().message(errno));
  if (descriptor > STDIN_FILENO) close(descriptor);
  return count < 0 ? std::nullopt : std::optional(names_in(text));
}

}  // namespace

bool is_folder(const std::string& path) {
  std::error_code none;
  return fs::is_directory(path, none);
}

std::string in_folder(const std::string& folder, const std::string& name) {
  return folder.empty() || folder.ends_with('/') ? folder + name : folder + '/' + name;
}

bool is_one_file(const InputOptions& options) {
  return options.operands.size() == 1 && options.files_from.empty() && !is_folder(options.operands.front());
}

Input found_in(const std::string& folder, const std::string& path) {
  return {in_folder(folder, path), path.substr(0, path.rfind('/') + 1)};
}

FolderList list_folder(const std::string& folder, bool recursive) { return Walk(folder, recursive).take(); }

InputList list_inputs(const InputOptions& options) {
  InputList list;
  std::vector<std::string> operands = options.operands;
  if (!options.files_from.empty()) {
    const auto names = read_names(options.files_from);
    list.is_whole = names.has_value();
    if (names) operands.insert(operands.end(), names->begin(), names->end());
  }
  const auto normal = [](const std::string& path) { return fs::path(path).lexically_normal().string(); };
  std::set<std::string> listed;
  for (const std::string& operand : operands) {
    if (!is_folder(operand)) {
      listed.insert(normal(operand));
      list.files.push_back({operand});
      continue;
    }
    const FolderList folder = list_folder(operand, options.recursive);
    list.is_whole = list.is_whole && folder.is_whole;
    if (folder.is_whole && folder.paths.empty()) {
      complain(operand + ": no VTR file is in this folder" +
               (options.recursive ? "" : "; --recursive looks into the folders in it, too"));
      list.is_whole = false;
    }
    for (const std::string& path : folder.paths) {
      Input file = found_in(operand, path);
      if (listed.insert(normal(file.path)).second) list.files.push_back(std::move(file));
    }
  }
  return list;
}

std::vector<std::size_t> owners_of_names(const std::vector<Input>& files, const std::string& output_dir) {
  std::map<std::string, std::string> real_folders;
  std::map<std::string, std::size_t> owner_of;
  std::vector<std::size_t> owners;
  for (std::size_t number = 0; number < files.size(); ++number) {
    const std::string& path = files[number].path;
    const std::size_t name_at = path.rfind('/') + 1;  // npos + 1 is 0
    std::string folder = output_dir.empty() ? path.substr(0, name_at) : in_folder(output_dir, files[number].below);
    if (folder.empty()) folder = ".";
    auto [real, is_new] = real_folders.try_emplace(folder);
    std::error_code none;
    if (is_new) real->second = fs::weakly_canonical(fs::absolute(folder, none) / "", none);
    const std::string name = path.substr(name_at, path.find('.', name_at) - name_at);
    owners.push_back(owner_of.try_emplace(real->second + '/' + name, number).first->second);
  }
  return owners;
}

}  // namespace trvtrout::host
