#include "vtrfile/layout.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace trvtrout::vtrfile {
namespace {

using Form = Layout::Form;
using Role = Layout::Role;

constexpr std::uint64_t kLeastOfArray = 2, kLeastOfVariant = 2, kLeastOfText = 2;

// The members that tell whether an item of a list is a used one, and those by which people know items without such a
// member.
constexpr std::array kKeys = {"Tid", "Fid", "Id", "Key", "ControlTag", "FileName"};
constexpr std::array kLabels = {"StructureName", "XMLTag", "Text1"};

Form form_of(Kind plain) {
  switch (plain) {
    case Kind::kFlag:
      return Form::kFlag;
    case Kind::kFloat:
      return Form::kFloat;
    case Kind::kRaw:
      return Form::kRaw;
    default:
      return Form::kInteger;
  }
}

class Layouts {
 public:
  explicit Layouts(std::string_view version) : version_(version) {}

  const Layout& of(const ValueType& type) {
    auto& made = made_[&type];
    if (!made) {
      made = std::make_unique<Layout>();
      enter(*made, type, "", {});
      finish(*made, type);
    }
    return *made;
  }

 private:
  void enter(Layout& into, const ValueType& type, std::string_view name, const std::string& path) {
    switch (type.kind) {
      case Kind::kRecord:
        return enter_members(into, type, path);
      case Kind::kRun:
        for (std::size_t place = 0; place < type.count; ++place) enter(into, *type.element, "", path);
        return;
      case Kind::kArray:
        into.steps.push_back({Form::kList, Role::kNone, 0, 0, &of(*type.element), path, kLeastOfArray});
        return;
      case Kind::kBytes:
        into.steps.push_back({Form::kBytes, Role::kNone, 0, 0, nullptr, path, kLeastOfArray});
        return;
      case Kind::kText:
        into.steps.push_back({Form::kText, Role::kNone, 0, 0, nullptr, std::string(name), kLeastOfText});
        return;
      case Kind::kVariant:
      case Kind::kVariantRun: {
        const auto slots = static_cast<std::uint32_t>(type.kind == Kind::kVariant ? 1 : type.count);
        into.steps.push_back({Form::kVariants, Role::kNone, slots, 0, nullptr, {}, slots * kLeastOfVariant});
        return;
      }
      default: {
        const auto bytes = static_cast<std::uint32_t>(type.kind == Kind::kRaw ? type.count : type.size);
        into.steps.push_back({form_of(type.kind), Role::kNone, bytes, 0, nullptr, {}, bytes});
      }
    }
  }

  void enter_members(Layout& into, const ValueType& record, const std::string& path) {
    std::vector<std::pair<std::uint32_t, Role>> numbers;
    std::uint32_t list = Layout::kNoStep;
    for (const MemberType& member : record.members) {
      if (!member.since.empty() && version_ < member.since) continue;
      const std::string_view name = member.name;
      const std::uint32_t step = into.size();
      if (member.type->kind == Kind::kArray && list == Layout::kNoStep) list = step;
      if (name == "Count") numbers.emplace_back(step, Role::kCount);
      if (name == "Max") numbers.emplace_back(step, Role::kMax);
      if (name == "Current") numbers.emplace_back(step, Role::kCurrent);
      enter(into, *member.type, name, path.empty() ? std::string(name) : path + '/' + std::string(name));
    }
    if (list == Layout::kNoStep) return;
    for (const auto& [step, role] : numbers) {
      into.steps[step].role = role;
      into.steps[step].list = list;
    }
  }

  static void finish(Layout& layout, const ValueType& type) {
    const auto named = [&](std::string_view name) {
      const auto found = std::ranges::find_if(
          layout.steps, [&](const Layout::Step& step) { return step.form == Form::kText && step.path == name; });
      return static_cast<std::uint32_t>(found - layout.steps.begin());
    };
    const auto key = [&](std::string_view name) {
      const std::uint32_t step = named(name);
      if (step == layout.size()) return;
      layout.steps[step].role = Role::kKey;
      layout.has_key = true;
      layout.behind_keys = std::max(layout.behind_keys, step + 1);
      if (layout.label == Layout::kNoStep) layout.label = step;
    };
    const std::string_view record = type.name;
    std::ranges::for_each(kKeys, key);
    if (record == "TREE_HIERARCHY_ITEM_STRUCT") key("Description");
    if (record == "LANGUAGE_ITEM_STRUCT") key("Code");
    for (const char* name : kLabels) {
      if (layout.label == Layout::kNoStep && named(name) < layout.size()) layout.label = named(name);
    }
    for (const Layout::Step& step : layout.steps) layout.least_bytes += step.least_bytes;
    layout.has_lists = layout.list_from(0) < layout.size();
  }

  std::string version_;
  std::map<const ValueType*, std::unique_ptr<Layout>> made_;
};

}  // namespace

const Layout& layout_of(const ValueType& type, std::string_view version) {
  static std::mutex mutex;
  static std::map<std::string, Layouts, std::less<>> versions;
  const std::scoped_lock lock(mutex);
  auto found = versions.find(version);
  if (found == versions.end()) found = versions.emplace(std::string(version), Layouts(version)).first;
  return found->second.of(type);
}

}  // namespace trvtrout::vtrfile
