#pragma once

#include <atomic>
#include <zip.h>

// libzip's functions under their own names, for the namespace that includes this. The library brings a dozen megabytes
// of others along, which every start of a program that is linked with it pays for; so it's loaded when the first of
// them is called. Raises WorkbookError when it isn't installed.
namespace trvtrout::spreadsheet::ooxml {

void* zip_function(const char* name);

template <class Function>
class LoadedFunction;

template <class Result, class... Arguments>
class LoadedFunction<Result(Arguments...)> {
 public:
  explicit constexpr LoadedFunction(const char* name) : name_(name) {}

  Result operator()(Arguments... arguments) const {
    // Threads that come at once all find the same address.
    auto function = function_.load(std::memory_order_relaxed);
    if (function == nullptr) {
      function = reinterpret_cast<Result (*)(Arguments...)>(zip_function(name_));
      function_.store(function, std::memory_order_relaxed);
    }
    return function(arguments...);
  }

 private:
  const char* name_;
  mutable std::atomic<Result (*)(Arguments...)> function_{nullptr};
};

// NOLINTNEXTLINE(bugprone-macro-parentheses): it's a declaration's name
#define TRVTROUT_ZIP_FUNCTION(name) inline const LoadedFunction<decltype(::name)> name(#name)

TRVTROUT_ZIP_FUNCTION(zip_close);
TRVTROUT_ZIP_FUNCTION(zip_discard);
TRVTROUT_ZIP_FUNCTION(zip_error_fini);
TRVTROUT_ZIP_FUNCTION(zip_error_init);
TRVTROUT_ZIP_FUNCTION(zip_error_strerror);
TRVTROUT_ZIP_FUNCTION(zip_fclose);
TRVTROUT_ZIP_FUNCTION(zip_file_add);
TRVTROUT_ZIP_FUNCTION(zip_file_get_comment);
TRVTROUT_ZIP_FUNCTION(zip_file_get_external_attributes);
TRVTROUT_ZIP_FUNCTION(zip_file_set_comment);
TRVTROUT_ZIP_FUNCTION(zip_file_set_dostime);
TRVTROUT_ZIP_FUNCTION(zip_file_set_external_attributes);
TRVTROUT_ZIP_FUNCTION(zip_file_strerror);
TRVTROUT_ZIP_FUNCTION(zip_fopen_index);
TRVTROUT_ZIP_FUNCTION(zip_fread);
TRVTROUT_ZIP_FUNCTION(zip_get_error);
TRVTROUT_ZIP_FUNCTION(zip_get_name);
TRVTROUT_ZIP_FUNCTION(zip_get_num_entries);
TRVTROUT_ZIP_FUNCTION(zip_open_from_source);
TRVTROUT_ZIP_FUNCTION(zip_set_file_compression);
TRVTROUT_ZIP_FUNCTION(zip_source_buffer_create);
TRVTROUT_ZIP_FUNCTION(zip_source_close);
TRVTROUT_ZIP_FUNCTION(zip_source_error);
TRVTROUT_ZIP_FUNCTION(zip_source_free);
TRVTROUT_ZIP_FUNCTION(zip_source_function);
TRVTROUT_ZIP_FUNCTION(zip_source_keep);
TRVTROUT_ZIP_FUNCTION(zip_source_open);
TRVTROUT_ZIP_FUNCTION(zip_source_read);
TRVTROUT_ZIP_FUNCTION(zip_source_stat);
TRVTROUT_ZIP_FUNCTION(zip_stat_index);
TRVTROUT_ZIP_FUNCTION(zip_stat_init);

#undef TRVTROUT_ZIP_FUNCTION

}  // namespace trvtrout::spreadsheet::ooxml
