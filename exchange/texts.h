#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace trvtrout::exchange {

// The texts of files in UTF-8 and back, by a code page that holds ASCII. Nothing is ever replaced: what doesn't come
// back as the same bytes, or the same text, has no form.
class Texts {
 public:
  using Decode = std::function<std::u16string(std::string_view bytes)>;
  using Encode = std::function<std::string(const std::u16string& text)>;

  Texts(int code_page, Decode decode, Encode encode)
      : code_page_(code_page), decode_(std::move(decode)), encode_(std::move(encode)) {}
  // By an object with the members decode and encode.
  template <class CodePage>
  Texts(int code_page, std::shared_ptr<const CodePage> page)
      : Texts(
            code_page, [page](std::string_view bytes) { return page->decode(bytes); },
            [page](const std::u16string& text) { return page->encode(text); }) {}

  int code_page() const noexcept { return code_page_; }
  // What the bytes of a file say; nothing when encoding that wouldn't give the same bytes. The view holds until the
  // next call, and as long as `bytes` does.
  std::optional<std::string_view> to_utf8(std::string_view bytes);
  // The bytes in the code page of `text`; nothing when they wouldn't say the same. The view holds as above.
  std::optional<std::string_view> to_bytes(std::string_view text);

 private:
  int code_page_;
  Decode decode_;
  Encode encode_;
  std::string made_;
};

}  // namespace trvtrout::exchange
