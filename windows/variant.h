#pragma once

#include <string>
#include <utility>

#include "windows/system.h"

namespace trvtrout::windows {

// A new text of the platform, for whoever is to free it. Raises bad_alloc.
BSTR new_bstr(std::u16string_view text);
// The text of `bstr`; null stands for the empty one.
std::u16string text_of(BSTR bstr);

// A text of the platform that is freed with its holder.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::u16string_view text) : bstr_(new_bstr(text)) {}
  Bstr(Bstr&& other) noexcept : bstr_(std::exchange(other.bstr_, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(bstr_, other.bstr_);
    return *this;
  }
  ~Bstr() { SysFreeString(bstr_); }

  BSTR get() const { return bstr_; }
  // Where a function puts a text that is then this one's. Only while it holds none.
  BSTR* out() { return &bstr_; }
  BSTR release() { return std::exchange(bstr_, nullptr); }
  std::u16string text() const { return text_of(bstr_); }

 private:
  BSTR bstr_ = nullptr;
};

// A value of automation that is cleared with its holder.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  explicit Variant(const std::u16string& text) : Variant(VT_BSTR) { value_.bstrVal = new_bstr(text); }
  explicit Variant(bool flag) : Variant(VT_BOOL) { value_.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE; }
  explicit Variant(std::int16_t number) : Variant(VT_I2) { value_.iVal = number; }
  explicit Variant(std::int32_t number) : Variant(VT_I4) { value_.lVal = number; }
  explicit Variant(const void*) = delete;  // which would be a flag
  // An optional argument that isn't passed.
  static Variant missing();

  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  VARIANT& get() { return value_; }
  const VARIANT& get() const { return value_; }
  // Where a function puts a value. Only while it's empty.
  VARIANT* out() { return &value_; }

 private:
  explicit Variant(VARENUM type) : Variant() { value_.vt = static_cast<VARTYPE>(type); }

  VARIANT value_;
};

}  // namespace trvtrout::windows
