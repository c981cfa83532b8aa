#include "spreadsheet/opc/package.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <optional>
#include <utility>

#include "spreadsheet/opc/xml_part.h"
#include "spreadsheet/opc/zip_library.h"
#include "spreadsheet/opc/zip_splice.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::uint64_t kLargestStream = std::uint64_t{2} << 30;
constexpr std::size_t kPieceSize = 65536;
constexpr zip_uint16_t kFirstDay1980 = 0x21;
// Of cells, level 6 takes two and a half times as long for a tenth less.
constexpr zip_uint32_t kCompressionLevel = 4;

struct Release {
  void operator()(zip_t* zip) const { zip_discard(zip); }
  void operator()(zip_source_t* source) const { zip_source_free(source); }
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using Zip = std::unique_ptr<zip_t, Release>;
using Source = std::unique_ptr<zip_source_t, Release>;
using ZipFile = std::unique_ptr<zip_file_t, Release>;

[[noreturn]] void raise_damaged(const std::string& what, const std::string& reason) {
  throw WorkbookError(what + " is damaged (" + reason +
                      "); try to repair it in a spreadsheet program, or use another copy");
}

[[noreturn]] void raise_part(const std::string& name, const std::string& reason) {
  raise_damaged("its part '" + name + "'", reason);
}

class ErrorText {
 public:
  ErrorText() { zip_error_init(&error_); }
  ~ErrorText() { zip_error_fini(&error_); }
  ErrorText(const ErrorText&) = delete;
  ErrorText& operator=(const ErrorText&) = delete;
  zip_error_t* get() { return &error_; }
  std::string text() { return zip_error_strerror(&error_); }

 private:
  zip_error_t error_{};
};

// `source` is the archive's if it can be opened.
Zip open_zip(Source source, int flags) {
  ErrorText error;
  Zip zip(source ? zip_open_from_source(source.get(), flags, error.get()) : nullptr);
  if (!zip) raise_damaged("its zip file", error.text());
  static_cast<void>(source.release());
  return zip;
}

class TextStream : public PartStream {
 public:
  explicit TextStream(std::string text) : text_(std::move(text)) {}
  std::uint64_t size() const override { return text_.size(); }
  std::string_view next() override { return std::exchange(rest_, {}); }

 private:
  std::string text_;
  std::string_view rest_ = text_;
};

class EntryStream : public PartStream {
 public:
  EntryStream(zip_t* zip, zip_uint64_t index, std::string name) : name_(std::move(name)), piece_(kPieceSize, '\0') {
    zip_stat_t stat;
    if (zip_stat_index(zip, index, 0, &stat) != 0 || (stat.valid & ZIP_STAT_SIZE) == 0)
      raise_part(name_, zip_error_strerror(zip_get_error(zip)));
    size_ = left_ = stat.size;
    if (size_ > kLargestStream)
      throw WorkbookError("its part '" + name_ + "' is larger than 2 GB; no sheet can be added to such a workbook");
    file_.reset(zip_fopen_index(zip, index, 0));
    if (!file_) raise_part(name_, zip_error_strerror(zip_get_error(zip)));
  }
  std::uint64_t size() const override { return size_; }
  std::string_view next() override {
    const zip_int64_t count = zip_fread(file_.get(), piece_.data(), piece_.size());
    if (count < 0) raise_part(name_, zip_file_strerror(file_.get()));
    const auto length = static_cast<std::size_t>(count);
    if (length > left_ || (length == 0 && left_ != 0)) raise_part(name_, "it isn't as large as it's said to be");
    left_ -= length;
    return std::string_view(piece_).substr(0, length);
  }

 private:
  std::string name_;
  std::string piece_;
  std::uint64_t size_ = 0, left_ = 0;
  ZipFile file_;
};

// What the zip library draws a part's content from.
struct Feed {
  std::unique_ptr<PartStream> content;
  std::string_view pending;
  std::exception_ptr failure;
};

zip_int64_t read_feed(Feed& feed, char* data, zip_uint64_t length) {
  try {
    if (feed.pending.empty()) feed.pending = feed.content->next();
  } catch (...) {
    feed.failure = std::current_exception();
    return -1;
  }
  const std::size_t count = feed.pending.copy(data, length);
  feed.pending.remove_prefix(count);
  return static_cast<zip_int64_t>(count);
}

zip_int64_t tell_size(void* data, std::uint64_t size) {
  auto& stat = *static_cast<zip_stat_t*>(data);
  zip_stat_init(&stat);
  stat.size = size;
  stat.valid = ZIP_STAT_SIZE;
  return sizeof stat;
}

zip_int64_t tell_failure(void* data) {
  const int codes[] = {ZIP_ER_READ, EIO};
  std::ranges::copy(codes, static_cast<int*>(data));
  return sizeof codes;
}

zip_int64_t serve_feed(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command) {
  Feed& feed = *static_cast<Feed*>(state);
  switch (command) {
    case ZIP_SOURCE_OPEN:
    case ZIP_SOURCE_CLOSE:
    case ZIP_SOURCE_FREE:
      return 0;
    case ZIP_SOURCE_READ:
      return read_feed(feed, static_cast<char*>(data), length);
    case ZIP_SOURCE_STAT:
      return tell_size(data, feed.content->size());
    case ZIP_SOURCE_ERROR:
      return tell_failure(data);
    case ZIP_SOURCE_SUPPORTS:
      return ZIP_SOURCE_SUPPORTS_READABLE;
    default:
      return -1;
  }
}

// Adds an entry. `feed` must outlive the closing of `zip`.
bool put(zip_t* zip, const char* name, Feed& feed) {
  Source source(zip_source_function(zip, serve_feed, &feed));
  if (!source) return false;
  const zip_int64_t index = zip_file_add(zip, name, source.get(), ZIP_FL_ENC_GUESS);
  if (index < 0) return false;
  static_cast<void>(source.release());  // the archive's now
  const auto entry = static_cast<zip_uint64_t>(index);
  return zip_set_file_compression(zip, entry, ZIP_CM_DEFLATE, kCompressionLevel) == 0 &&
         zip_file_set_dostime(zip, entry, 0, kFirstDay1980, 0) == 0;
}

// The attributes and the comment of an entry that another one takes the place of.
bool take_over(zip_t* old, zip_uint64_t old_entry, zip_t* zip, zip_uint64_t entry) {
  zip_uint8_t system = 0;
  zip_uint32_t attributes = 0, length = 0;
  const char* comment = zip_file_get_comment(old, old_entry, &length, ZIP_FL_ENC_RAW);
  return zip_file_get_external_attributes(old, old_entry, 0, &system, &attributes) == 0 &&
         zip_file_set_external_attributes(zip, entry, 0, system, attributes) == 0 &&
         (length == 0 ||
          zip_file_set_comment(zip, entry, comment, static_cast<zip_uint16_t>(length), ZIP_FL_ENC_GUESS) == 0);
}

std::string content_of(zip_source_t* source) {
  zip_stat_t stat;
  if (zip_source_stat(source, &stat) != 0 || zip_source_open(source) != 0)
    raise_damaged("its zip file", zip_error_strerror(zip_source_error(source)));
  std::string content(stat.size, '\0');
  const zip_int64_t count = zip_source_read(source, content.data(), content.size());
  zip_source_close(source);
  if (!std::cmp_equal(count, content.size())) raise_damaged("its zip file", "its changes can't be read back");
  return content;
}

}  // namespace

std::string lower(std::string_view name) {
  std::string out(name);
  for (char& letter : out) letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
  return out;
}

std::unique_ptr<PartStream> text_stream(std::string text) { return std::make_unique<TextStream>(std::move(text)); }

Package::Package(std::string_view bytes) : bytes_(bytes) {
  Zip zip = open_zip(Source(zip_source_buffer_create(bytes_.data(), bytes_.size(), 0, nullptr)), ZIP_RDONLY);
  const zip_int64_t count = zip_get_num_entries(zip.get(), 0);
  for (zip_uint64_t index = 0; std::cmp_less(index, count); ++index) {
    zip_stat_t stat;
    if (zip_stat_index(zip.get(), index, ZIP_FL_ENC_RAW, &stat) != 0 || (stat.valid & ZIP_STAT_NAME) == 0)
      raise_damaged("its zip file", zip_error_strerror(zip_get_error(zip.get())));
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE)
      throw WorkbookError("it's encrypted; save it without a password first");
    if (!indices_.emplace(lower(stat.name), index).second)
      raise_damaged("its zip file", "it has two parts '" + std::string(stat.name) + "'");
  }
  zip_ = zip.release();
}

Package::~Package() { zip_discard(zip_); }

bool Package::has(std::string_view name) const { return indices_.contains(lower(name)); }

bool Package::has_folder(std::string_view folder) const {
  return std::ranges::any_of(indices_, [&](const auto& entry) { return entry.first.starts_with(folder); });
}

bool Package::has_backslashes() const {
  return std::ranges::any_of(indices_, [](const auto& entry) { return entry.first.find('\\') != std::string::npos; });
}

std::unique_ptr<PartStream> Package::stream(const std::string& name) const {
  const auto found = indices_.find(lower(name));
  if (found == indices_.end()) raise_part(name, "it's missing");
  return std::make_unique<EntryStream>(zip_, found->second, name);
}

std::string Package::read(const std::string& name) const {
  const auto content = stream(name);
  std::string text;
  for (std::string_view piece; !(piece = content->next()).empty();) {
    if (text.size() + piece.size() > kLargestXml)
      throw WorkbookError("its part '" + name + "' is larger than 32 MB; no sheet can be added to such a workbook");
    text += piece;
  }
  return text;
}

// The changed parts make a zip file of their own, whose entries then go between the others.
std::string Package::with(std::vector<PartChange> changes) const {
  std::vector<Feed> feeds(changes.size());
  const Source target(zip_source_buffer_create(nullptr, 0, 0, nullptr));
  if (target) zip_source_keep(target.get());
  Zip zip = open_zip(Source(target.get()), ZIP_CREATE | ZIP_TRUNCATE);
  const auto raise_failure = [&feeds](zip_t* failed) {
    for (const Feed& feed : feeds) {
      if (feed.failure) std::rethrow_exception(feed.failure);
    }
    raise_damaged("its zip file", zip_error_strerror(zip_get_error(failed)));
  };
  std::vector<std::optional<std::size_t>> replaced(changes.size());
  std::size_t count = indices_.size();
  for (std::size_t number = 0; number < changes.size(); ++number) {
    const auto found = indices_.find(lower(changes[number].name));
    const bool is_new = found == indices_.end();
    feeds[number].content = std::move(changes[number].content);
    const char* name = is_new ? changes[number].name.c_str() : zip_get_name(zip_, found->second, ZIP_FL_ENC_RAW);
    if (name == nullptr || !put(zip.get(), name, feeds[number])) raise_failure(zip.get());
    if (!is_new && !take_over(zip_, found->second, zip.get(), number)) raise_failure(zip.get());
    if (!is_new) replaced[number] = found->second;
    count += is_new;
  }
  if (zip_close(zip.get()) != 0) raise_failure(zip.get());
  static_cast<void>(zip.release());
  std::string bytes = spliced(bytes_, content_of(target.get()), replaced);
  // A file with two directories may have been read by one of them and changed by the other.
  const Package after(bytes);
  const auto is_there = [&after](const auto& entry) {
    const auto found = after.indices_.find(entry.first);
    return found != after.indices_.end() && found->second == entry.second;
  };
  if (after.indices_.size() != count || !std::ranges::all_of(indices_, is_there))
    raise_damaged("its zip file", "it lists its parts in two ways");
  return bytes;
}

}  // namespace trvtrout::spreadsheet::ooxml
