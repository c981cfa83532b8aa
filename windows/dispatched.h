#pragma once

#include <array>
#include <span>
#include <string>
#include <utility>

#include "windows/variant.h"

namespace trvtrout::windows {

// A member of an automation object, by the id that its maker has published or by its name.
class Member {
 public:
  Member(DISPID id) : id_(id) {}  // NOLINT: a member is its id or its name
  Member(const wchar_t* name) : name_(name) {}

  const wchar_t* name() const { return name_; }  // null: by id
  DISPID id() const { return id_; }

 private:
  const wchar_t* name_ = nullptr;
  DISPID id_ = DISPID_UNKNOWN;
};

// An automation object that is called late. Its members raise ServiceError when a call fails, with the object's own
// error number where it gives one. The locale of all calls is that of the United States, 1033.
class Dispatched {
 public:
  // A new object by its program id. Raises ServiceError when the program isn't registered or can't be started.
  static Dispatched create(const std::u16string& program_id);
  // The object that `value` holds, told as `name` in messages.
  Dispatched(const Variant& value, std::string name);

  // Whether a program of this name is registered.
  static bool is_registered(const std::u16string& program_id);

  // The member by its id, which spares looking it up in each call.
  Member resolved(const wchar_t* name) const { return id_of(name); }

  template <class... Arguments>
  Variant get(Member member, Arguments&&... arguments) const {
    return invoke(DISPATCH_PROPERTYGET | DISPATCH_METHOD, member, std::forward<Arguments>(arguments)...);
  }
  template <class... Arguments>
  Dispatched object(Member member, Arguments&&... arguments) const {
    return {get(member, std::forward<Arguments>(arguments)...), told(member)};
  }
  template <class... Arguments>
  Variant call(Member member, Arguments&&... arguments) const {
    return invoke(DISPATCH_METHOD, member, std::forward<Arguments>(arguments)...);
  }
  template <class Value>
  void put(Member member, Value&& value) const {
    invoke(DISPATCH_PROPERTYPUT, member, std::forward<Value>(value));
  }

 private:
  Dispatched(ComPtr<IDispatch> object, std::string name) : object_(std::move(object)), name_(std::move(name)) {}

  template <class... Arguments>
  Variant invoke(WORD kind, Member member, Arguments&&... arguments) const {
    // The last argument comes first.
    std::array<Variant, sizeof...(Arguments)> variants{Variant(std::forward<Arguments>(arguments))...};
    return invoke_all(kind, member, variants);
  }
  Variant invoke_all(WORD kind, Member member, std::span<Variant> arguments) const;
  DISPID id_of(const wchar_t* name) const;
  std::string told(Member member) const;

  ComPtr<IDispatch> object_;
  std::string name_;
};

}  // namespace trvtrout::windows
