#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "vtrfile/document.h"
#include "vtrfile/record_reader.h"
#include "vtrfile/record_writer.h"

namespace trvtrout::vtrfile {

// A text that no file holds, for as long as the object lives.
class OwnText {
 public:
  // Raises std::length_error for more than a text can have.
  explicit OwnText(std::string_view bytes) {
    if (bytes.size() > 0xFFFF) throw std::length_error("a text of more than 65,535 bytes");
    const auto length = static_cast<std::uint16_t>(bytes.size());
    bytes_.append(reinterpret_cast<const char*>(&length), sizeof length).append(bytes);
  }
  Text text() const noexcept {
    return bytes_.size() > Text::kLeastBytes ? Text(reinterpret_cast<const unsigned char*>(bytes_.data())) : Text();
  }

 private:
  std::string bytes_;
};

// Puts `record` into the slot, with a copy of all that it points to in an image of its own. For the small records of
// which the reader and the writer have an instance.
template <class Record>
void put_own(Slot<Record>& slot, const Record& record) {
  std::string bytes;
  RecordWriter(bytes).write(record);
  const auto image = image_of({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  slot.renew({image}, [&](Record& own, std::pmr::memory_resource& memory) { RecordReader(*image).read(own, memory); });
}

}  // namespace trvtrout::vtrfile
