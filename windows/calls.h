#pragma once

#include <string>
#include <tuple>
#include <utility>

#include "component/TarvelVtrOut_InOut.h"
#include "windows/variant.h"

// What the component runtime passes, as the class takes it. An argument that goes both ways is read into a value of
// ours, which the operation works on; prepare() makes what goes back, and may raise; give() puts it in its place, and
// can't fail. So a caller's variables change together or not at all.
namespace trvtrout::windows {

// Only a reference has to be there: an empty text may be null.
inline bool is_there(BSTR) { return true; }
template <class Value>
bool is_there(Value* reference) {
  return reference != nullptr;
}

// Whether a text can be put into a variant, or into what it refers to; and the putting.
bool can_hold_text(const VARIANT& target);
void put_text(VARIANT& target, Bstr text);

template <class Parameter, class Given>
class Passed;

template <>
class Passed<const std::u16string&, BSTR> {
 public:
  explicit Passed(BSTR given) : value_(text_of(given)) {}
  const std::u16string& value() const { return value_; }
  void prepare() {}
  void give() {}

 private:
  std::u16string value_;
};

template <>
class Passed<std::u16string&, BSTR*> {
 public:
  explicit Passed(BSTR* given) : given_(given), value_(text_of(*given)) {}
  std::u16string& value() { return value_; }
  // A text that stayed as it was isn't replaced: the same variable may have been passed for another one too.
  void prepare() {
    changed_ = value_ != text_of(*given_);
    if (changed_) made_ = Bstr(value_);
  }
  void give() {
    if (changed_) SysFreeString(std::exchange(*given_, made_.release()));
  }

 private:
  BSTR* given_;
  std::u16string value_;
  bool changed_ = false;
  Bstr made_;
};

// The name without directories that GetOutputFileName finds.
template <>
class Passed<std::u16string&, VARIANT*> {
 public:
  explicit Passed(VARIANT* given) : given_(given) {}
  std::u16string& value() { return value_; }
  void prepare() {
    if (value_ != kNone) made_ = Bstr(value_);
  }
  void give() {
    if (value_ != kNone) put_text(*given_, std::move(made_));
  }

 private:
  // No such name holds a backslash.
  static constexpr std::u16string_view kNone = u"\\";

  VARIANT* given_;
  std::u16string value_{kNone};
  Bstr made_;
};

template <>
class Passed<Boolean&, VARIANT_BOOL*> {
 public:
  explicit Passed(VARIANT_BOOL* given) : given_(given), value_{*given} {}
  Boolean& value() { return value_; }
  void prepare() {}
  void give() { *given_ = value_.value; }

 private:
  VARIANT_BOOL* given_;
  Boolean value_;
};

// Numbers and dates.
template <class Value, class Given>
class Passed<Value&, Given*> {
 public:
  explicit Passed(Given* given) : given_(given), value_(*given) {}
  Value& value() { return value_; }
  void prepare() {}
  void give() { *given_ = value_; }

 private:
  Given* given_;
  Value value_;
};

// What an operation answers, as the runtime takes it.
class Answer {
 public:
  static VARIANT_BOOL made(Boolean result) { return result.value; }
  static Bstr made(const std::u16string& result) { return Bstr(result); }
  static void give(VARIANT_BOOL made, VARIANT_BOOL* result) { *result = made; }
  static void give(Bstr made, BSTR* result) { *result = made.release(); }
};

// Runs the operation. E_POINTER, and nothing done, when a reference is null; raises bad_alloc.
template <class Result, class... Parameters, class Returned, class... Given>
HRESULT call(TarvelVtrOut_InOut& object, Result (TarvelVtrOut_InOut::*operation)(Parameters...), Returned* result,
             Given... given) {
  if (!is_there(result) || !(is_there(given) && ...)) return E_POINTER;
  std::tuple<Passed<Parameters, Given>...> passed(given...);
  return std::apply(
      [&](auto&... arguments) {
        auto answer = Answer::made((object.*operation)(arguments.value()...));
        (arguments.prepare(), ...);
        (arguments.give(), ...);
        Answer::give(std::move(answer), result);
        return S_OK;
      },
      passed);
}

}  // namespace trvtrout::windows
