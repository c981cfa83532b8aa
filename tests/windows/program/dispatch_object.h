#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

namespace trvtrout::tests {

// What keeps the program running, and how its calls come out.
class ProgramLife {
 public:
  // Call `failing_call` on any object of the program, counted from 1, fails; 0: none does.
  explicit ProgramLife(long failing_call) : failing_call_(failing_call) {}
  bool next_call_fails() { return ++calls_ == failing_call_; }
  void add_object() { ++objects_; }
  // The program ends with its last object when it was told to quit.
  void remove_object();
  void quit() { quits_ = true; }

 private:
  long failing_call_, calls_ = 0, objects_ = 0;
  bool quits_ = false;
};

// The arguments of one call, in the order of the parameters, and the place for its result.
class Call {
 public:
  Call(ProgramLife& program, std::vector<const VARIANT*> arguments, VARIANT* result)
      : life(program), arguments_(std::move(arguments)), result_(result) {}
  // Raise E_INVALIDARG as a long for a missing argument, DISP_E_TYPEMISMATCH for one that can't be converted.
  std::u16string text(std::size_t at) const;
  long number(std::size_t at) const;
  bool flag(std::size_t at) const;
  // Raises E_INVALIDARG unless all arguments from `begin` to in front of `end` (0: all that follow) are missing.
  void require_missing(std::size_t begin, std::size_t end = 0) const;
  void give(IDispatch* object) const;
  void give(const std::optional<std::u16string>& text) const;

  ProgramLife& life;

 private:
  VARIANT as(std::size_t at, VARTYPE type) const;

  std::vector<const VARIANT*> arguments_;  // null: missing
  VARIANT* result_;
};

// What an object can do: its name and dispatch id, how it's reached (DISPATCH_METHOD ...), the names of its parameters.
struct Member {
  const wchar_t* name;
  DISPID id;
  WORD kind;
  std::vector<const wchar_t*> parameters;
  std::function<void(const Call&)> run;
};

// An object without references, whose members can be called by dispatch alone. As the real program is strict, so is it:
// what isn't told in its members, and another locale than the program's own, is an error.
IDispatch* make_object(ProgramLife& life, std::vector<Member> members);

}  // namespace trvtrout::tests
