#include "reports/naming.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "services/guard.h"

namespace trvtrout {
namespace {

constexpr std::u16string_view kReportExtension = u".CSV";

struct SourcePath {
  std::u16string directory;  // with its last backslash
  std::u16string file_name;
  std::u16string base_name;
};

// Where the name behind the directories begins.
std::size_t name_begin(const std::u16string& fname) { return fname.rfind(u'\\') + 1; }  // npos + 1 is 0

SourcePath split(const std::u16string& fname) {
  const std::size_t name_at = name_begin(fname);
  SourcePath source{fname.substr(0, name_at), fname.substr(name_at), {}};
  const std::size_t stop = source.file_name.find(u'.');
  if (stop == std::u16string::npos) throw std::invalid_argument("the name of the file has no extension");
  source.base_name = source.file_name.substr(0, stop);
  return source;
}

std::u16string stamp(Locale& locale) {
  std::u16string text = locale.StampDate(locale.Now());
  std::ranges::replace(text, u':', u'-');
  return text;
}

// Puts the question about a file that exists under the name and goes by its answer.
OutputName settle(const HostServices& services, FileSystemObject& file_system, OutputName name,
                  const std::u16string& source_name, std::u16string_view extension) {
  if (!file_system.FileExists(name.path)) return name;
  const MessageAnswer answer =
      services.message_box.Show(u"File " + name.path + u" already exists. Do you want to overwite it?",
                                MessageButtons::kYesNoCancel, std::nullopt);
  name.asked = true;
  if (answer == MessageAnswer::kCancel) name.abandoned = true;
  if (answer == MessageAnswer::kNo) {
    const std::u16string pattern = u"*" + std::u16string(extension);
    services.save_dialog.SetFilter(u"All Files (*.*)|*.*|VTR Files (" + pattern + u")|" + pattern);
    services.save_dialog.SetFilterIndex(2);
    services.save_dialog.SetText(source_name);
    services.save_dialog.ShowSave();
    name.path = services.save_dialog.FileName();
    name.failure = "no path was given";
  }
  return name;
}

std::u16string_view extension_of(std::u16string_view desc_name) {
  if (desc_name == u"Statistics" || desc_name == u"Compared") return u".XLS";
  if (desc_name == u"Recovered") return u".VTR";
  if (desc_name == u"Log") return u".txt";
  return {};
}

}  // namespace

void ReportFile::create(const HostServices& services, const OutputName& name,
                        std::initializer_list<const std::u16string*> sources) {
  if (name.path.empty()) throw std::invalid_argument(name.failure);
  for (const std::u16string* source : sources) {
    if (name.path == *source || services.files.SameFile(name.path, *source)) {
      throw std::invalid_argument("that's the document itself, which is never overwritten");
    }
  }
  stream = services.files.CreateFileSystemObject()->CreateTextFile(name.path, true, false);
}

std::u16string report_path(Locale& locale, const std::u16string& fname, std::u16string_view desc_name, bool is_temp,
                           const std::u16string& folder) {
  const SourcePath source = split(fname);
  std::u16string path = folder.empty() ? source.directory : folder;
  if (!folder.empty() && !folder.ends_with(u'\\')) path += u'\\';
  if (is_temp) path += u"~tmp";
  ((path += source.base_name) += u'_') += desc_name;
  if (!is_temp) (path += u'_') += stamp(locale);
  return path += kReportExtension;
}

OutputName GetReportFileName(const HostServices& services, const std::u16string& fname, std::u16string_view desc_name,
                             bool is_temp, const std::u16string& folder) {
  return guarded(
      [&] {
        const std::u16string path = report_path(services.locale, fname, desc_name, is_temp, folder);
        const auto file_system = services.files.CreateFileSystemObject();
        const SourcePath source = split(fname);
        return settle(services, *file_system, {path, source.base_name}, source.file_name, kReportExtension);
      },
      [](const Failure& failure) {
        return OutputName{{}, {}, false, failure.what};
      });
}

OutputName GetOutputFileName(const HostServices& services, const std::u16string& fname,
                             const std::u16string& desc_name) {
  std::optional<std::u16string> base_name;
  return guarded(
      [&] {
        const std::u16string moment = stamp(services.locale);
        const auto file_system = services.files.CreateFileSystemObject();
        const SourcePath source = split(fname);
        base_name = source.base_name;
        const std::u16string_view extension = extension_of(desc_name);
        if (extension.empty()) return OutputName{{}, base_name, false, {}};
        const std::u16string path =
            source.directory + source.base_name + u"_" + desc_name + u"_" + moment + std::u16string(extension);
        return settle(services, *file_system, {path, base_name}, source.file_name, extension);
      },
      [&](const Failure&) {
        return OutputName{{}, base_name};
      });
}

OutputName ConfirmOutputFileName(const HostServices& services, const std::u16string& fname,
                                 const std::u16string& desc_name, const std::u16string& path) {
  return guarded(
      [&] {
        const auto file_system = services.files.CreateFileSystemObject();
        return settle(services, *file_system, {path, {}}, fname.substr(name_begin(fname)), extension_of(desc_name));
      },
      [](const Failure& failure) {
        return OutputName{{}, {}, false, failure.what};
      });
}

}  // namespace trvtrout
