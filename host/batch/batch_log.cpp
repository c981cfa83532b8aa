#include "host/batch/batch_log.h"

#include <array>
#include <ctime>

#include "host/counted.h"
#include "platform/console/printable.h"
#include "text/utf8.h"

namespace trvtrout::host {
namespace {

constexpr const char* kVerb = "write the log into";
constexpr std::string_view kBegin = "# vtrout ";

std::string line_of(const std::string& text) { return platform::printable_line(text::from_utf8(text)); }

}  // namespace

BatchLog::BatchLog(const std::string& path, const std::string& subcommand, std::size_t files)
    : file_(path, kVerb, platform::Access::kUpdate, platform::Creation::kIfMissing) {
  std::array<unsigned char, kBegin.size()> begin{};
  const std::size_t size = file_.read(begin);
  if (size > 0 && std::string_view(reinterpret_cast<const char*>(begin.data()), size) != kBegin) {
    platform::refuse_file(ErrorNumber::kFileExists, kVerb, path,
                          "it's there already and is no such log; name another file");
  }
  file_.seek(file_.size());
  std::array<char, 32> moment{};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  std::strftime(moment.data(), moment.size(), "%Y-%m-%d %H:%M:%S", localtime_r(&now, &local));
  write(std::string(kBegin) + subcommand + ", " + moment.data() + ", " + counted(files, "file") +
        ": exit status, file, why");
}

void BatchLog::add(const std::string& file, const FileOutcome& outcome) {
  std::string why = outcome.complaint;
  if (why.starts_with(file + ": ")) why.erase(0, file.size() + 2);
  write(std::to_string(outcome.status) + '\t' + line_of(file) + (why.empty() ? "" : '\t' + line_of(why)));
}

void BatchLog::write(const std::string& line) {
  if (const int error = file_.write(line + '\n'); error != 0) file_.raise(error);
}

}  // namespace trvtrout::host
