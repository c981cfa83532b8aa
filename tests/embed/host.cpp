#include "tests/embed/host.h"

#include "platform/files/path.h"
#include "text/utf8.h"

namespace trvtrout::tests {
namespace {

int32_t ask(void* context, const trvtrout_question* question) {
  auto& host = *static_cast<Host*>(context);
  host.prompts.emplace_back(question->prompt);
  return question->buttons == TRVTROUT_BUTTONS_OK ? int32_t{TRVTROUT_ANSWER_OK} : host.answer;
}

int32_t choose_path(void* context, const trvtrout_path_question*, char* path, size_t room) {
  const auto& host = *static_cast<const Host*>(context);
  path[host.path.copy(path, room - 1)] = '\0';
  return host.path.empty() ? 0 : 1;
}

int32_t progress(void* context, const trvtrout_progress* progress) {
  auto& host = *static_cast<Host*>(context);
  host.done = progress->done;
  host.total = progress->total;
  host.on_progress();
  return ++host.told == host.stop_at ? 1 : 0;
}

}  // namespace

trvtrout_host Host::callbacks() { return {sizeof(trvtrout_host), 0, this, ask, choose_path, progress, nullptr}; }

std::string EmbeddedDocument::text(int32_t which) const {
  char* text = nullptr;
  size_t length = 0;
  EXPECT_EQ(trvtrout_get_text(handle_, which, &text, &length), TRVTROUT_OK) << which;
  std::string found(text, length);
  trvtrout_free(text);
  return found;
}

void replace_all(std::string& text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
}

std::string taken(char* text) {
  std::string found = text ? text : "";
  trvtrout_free(text);
  return found;
}

int32_t append(void* context, const char* bytes, size_t count) {
  static_cast<std::string*>(context)->append(bytes, count);
  return 0;
}

std::string without_moments(const std::string& report) {
  static const std::regex kMoment("[0-9]+/[0-9]+/[0-9]{4}( [0-9]+:[0-9]+:[0-9]+ [AP]M)?|@DATE@");
  return std::regex_replace(report, kMoment, "MOMENT");
}

std::string expected_report(const std::string& files, const std::string& kind, int32_t part, const std::string& path,
                            const std::string& secondary) {
  std::string report = file_bytes(SAMPLES "/expected/" + files + '/' + kind + '-' + trvtrout_part_name(part) + ".csv");
  const auto as_class = [](const std::string& name) { return text::to_utf8(platform::class_path(name)); };
  for (const char* const mark : {"@FNAME@", "@PRIMFNAME@"}) replace_all(report, mark, as_class(path));
  replace_all(report, "@SECFNAME@", as_class(secondary));
  return without_moments(report);
}

}  // namespace trvtrout::tests
