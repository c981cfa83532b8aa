#pragma once

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "vtrfile/element_traits.h"
#include "vtrfile/record_reader.h"
#include "vtrfile/record_writer.h"

// The two walks over a record's field list that turn bytes into records and back. Only the .cpp of a record family
// includes this, so that a change elsewhere compiles none of it.
namespace trvtrout::vtrfile {

template <class Record>
void RecordReader::read(Record& into, std::pmr::memory_resource& memory) {
  memory_ = &memory;
  at_ = record(at_, into);
}

template <class Record>
RecordReader::Place RecordReader::record(Place at, Record& into) {
  static_assert(least_bytes<Record>() > 0);
  for_each_field(into, [&](const char* name, auto& member) {
    if constexpr (kCanFail<std::remove_cvref_t<decltype(member)>>) {
      try {
        at = value(at, member);
      } catch (ReadError& error) {
        error.enter(name);
        throw;
      }
    } else {
      at = value(at, member);
    }
  });
  return at;
}

template <class Value>
RecordReader::Place RecordReader::value(Place at, Value& into) {
  if constexpr (kIsPlain<Value>) {
    static_assert(sizeof(Value) <= Image::kSlack);
    if (sizeof(Value) > left(at)) [[unlikely]] {
      into = Value{};
      return cut_end();
    }
    into = load<Value>(at);
    return at + sizeof(Value);
  } else if constexpr (kIsSince<Value>) {
    return version_ < Value::kVersion ? at : value(at, into.value);
  } else if constexpr (std::is_same_v<Value, Text>) {
    return text(at, into);
  } else if constexpr (std::is_same_v<Value, Var>) {
    return variant(at, into);
  } else if constexpr (kIsVarRun<Value>) {
    return var_run(at, into);
  } else if constexpr (kIsArray<Value>) {
    return array(at, into);
  } else if constexpr (kIsFixedArray<Value>) {
    for (std::size_t place = 0; place < into.size(); ++place) {
      try {
        at = value(at, into[place]);
      } catch (ReadError& error) {
        error.enter(place + 1);
        throw;
      }
    }
    return at;
  } else {
    return record(at, into);
  }
}

inline RecordReader::Place RecordReader::text(Place at, Text& into) {
  const std::size_t whole = 2 + std::size_t{load<std::uint16_t>(at)};
  if (whole > left(at)) [[unlikely]]
    return cut_text(at, into);
  into = whole > 2 ? Text(at) : Text();
  return at + whole;
}

inline RecordReader::Place RecordReader::variant(Place at, Var& into) {
  if (load<std::uint16_t>(at) == kVariantEmpty && left(at) >= 2) {
    into = Var();
    return at + 2;
  }
  return filled_variant(at, into);
}

template <std::size_t Slots>
RecordReader::Place RecordReader::var_run(Place at, VarRun<Slots>& into) {
  static constexpr unsigned char kUnused[2 * Slots] = {};
  if (left(at) >= sizeof kUnused && std::memcmp(at, kUnused, sizeof kUnused) == 0) {
    into = VarRun<Slots>();
    return at + sizeof kUnused;
  }
  Place run = nullptr;
  try {
    at = filled_var_run(at, Slots, run);
  } catch (ReadError&) {
    into = VarRun<Slots>(run);
    throw;
  }
  into = VarRun<Slots>(run);
  return at;
}

template <class Element>
RecordReader::Place RecordReader::array(Place at, Array<Element>& into) {
  constexpr std::size_t kDescriptorBytes = 10;
  into = Array<Element>();
  const Place descriptor = at;
  const auto dimensions = load<std::uint16_t>(at);
  if (left(at) < 2) return cut_end();
  if (dimensions == 0) return at + 2;
  if (dimensions != 1) throw ReadError(offset_of(at), "an array of " + std::to_string(dimensions) + " dimensions");
  if (left(at) < kDescriptorBytes) return cut_end();
  const auto count = load<std::uint32_t>(at + 2);
  const auto lower = load<std::int32_t>(at + 6);
  at += kDescriptorBytes;

  auto* const block =
      new (memory_->allocate(sizeof(ArrayBlock), alignof(ArrayBlock))) ArrayBlock{count, lower, 0, nullptr};
  into = Array<Element>(block);
  // No more elements than that can begin in what is left of the file, so no count makes us reserve more.
  const std::size_t room = std::min<std::size_t>(count, left(at) / least_bytes<Element>() + 1);
  try {
    at = elements<Element>(at, *block, static_cast<std::uint32_t>(room));
    if (block->stored < block->count) cut_end();
  } catch (ReadError&) {
    if (!allow(block->count - block->stored, least_bytes<Element>())) block->count = block->stored;
    throw;
  }
  if (!allow(block->count - block->stored, least_bytes<Element>())) {
    block->count = block->stored;
    throw ReadError(
        offset_of(descriptor),
        "a list of " + std::to_string(count) + " items, of which the file holds " + std::to_string(block->stored),
        ReadError::Cause::kOutOfStep);
  }
  return at;
}

template <class Element>
RecordReader::Place RecordReader::elements(Place at, ArrayBlock& block, std::uint32_t room) {
  if constexpr (std::is_same_v<Element, unsigned char>) {
    block.elements = at;
    block.stored = static_cast<std::uint32_t>(std::min<std::size_t>(room, left(at)));
    return at + block.stored;
  } else {
    auto* const items = static_cast<Element*>(memory_->allocate(room * sizeof(Element), alignof(Element)));
    block.elements = items;
    Place* places = nullptr;
    if constexpr (RecordType<Element>) {
      places = static_cast<Place*>(memory_->allocate((room + std::size_t{1}) * sizeof(Place), alignof(Place)));
      places[0] = at;
      block.places = places;
    }
    while (block.stored < room && at != end_) {
      Element& item = *new (items + block.stored) Element{};
      ++block.stored;
      if constexpr (RecordType<Element>) places[block.stored] = nullptr;
      try {
        at = value(at, item);
      } catch (ReadError& error) {
        error.enter(block.stored);
        throw;
      }
      if constexpr (RecordType<Element>) places[block.stored] = at;
    }
    return at;
  }
}

template <class Record>
void RecordWriter::write(const Record& record) {
  for_each_field(record, [this](const char*, const auto& member) { this->value(member); });
}

template <class Value>
void RecordWriter::value(const Value& from) {
  if constexpr (std::is_same_v<Value, Flag>) {
    plain(static_cast<std::int16_t>(from ? -1 : 0));
  } else if constexpr (kIsPlain<Value> || std::is_same_v<Value, unsigned char>) {
    plain(from);
  } else if constexpr (kIsSince<Value>) {
    if (version_ >= Value::kVersion) value(from.value);
  } else if constexpr (std::is_same_v<Value, Text>) {
    plain(static_cast<std::uint16_t>(from.bytes().size()));
    out_.append(from.bytes());
  } else if constexpr (std::is_same_v<Value, Var>) {
    variants(from.at(), 1);
  } else if constexpr (kIsVarRun<Value>) {
    variants(from.at(), Value::kSlots);
  } else if constexpr (kIsArray<Value>) {
    array(from);
  } else if constexpr (kIsFixedArray<Value>) {
    for (const auto& element : from) value(element);
  } else {
    write(from);
  }
}

template <class Element>
void RecordWriter::array(const Array<Element>& from) {
  if (!from.allocated()) return plain(std::uint16_t{0});
  plain(std::uint16_t{1});
  plain(static_cast<std::uint32_t>(from.size()));
  plain(static_cast<std::int32_t>(from.lower()));
  for (std::uint32_t place = 0; place < from.size(); ++place) {
    value(from.position(place));
    if (drain_ && out_.size() >= kDrainedAt) drain_(out_);
  }
}

}  // namespace trvtrout::vtrfile

// The reader and the writer of one record that stands in a file by itself.
#define VTR_INSTANTIATE(Record)                                                                                \
  template void trvtrout::vtrfile::RecordReader::read(trvtrout::vtrfile::Record&, std::pmr::memory_resource&); \
  template void trvtrout::vtrfile::RecordWriter::write(const trvtrout::vtrfile::Record&)
