#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <span>
#include <string_view>

namespace trvtrout::exchange {

// Writes JSON as it comes, through a buffer of some 64 KiB.
class JsonWriter {
 public:
  using Sink = std::function<void(std::string_view)>;
  enum class Layout { kCompact, kPretty };

  // What `sink` raises comes out of the call that filled the buffer.
  explicit JsonWriter(Sink sink, Layout layout = Layout::kCompact);
  // `out` must outlive the writer. When it fails that shows in its state alone.
  explicit JsonWriter(std::ostream& out, Layout layout = Layout::kCompact);
  ~JsonWriter();
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  void begin_object();
  void end_object();
  void begin_array();
  void end_array();
  void key(std::string_view name);
  void null();
  void boolean(bool value);
  void number(std::int64_t value);
  // The shortest number that reads back as the same one, which must be finite.
  void number(float value);
  void number(double value);
  // `utf8` must be valid.
  void string(std::string_view utf8);
  // A string of lower-case digits, `zeros` zero bytes behind the others.
  void hex(std::span<const unsigned char> bytes, std::size_t zeros = 0);

  // Ends what was written with a line end. What comes next is a document of its own.
  void end_line();
  // Hands on what is still in the buffer; nothing comes out of the destructor.
  void flush();

 private:
  struct Buffered;
  template <class Call>
  void write(Call call);

  Sink sink_;
  Layout layout_;
  std::unique_ptr<Buffered> buffered_;
};

}  // namespace trvtrout::exchange
