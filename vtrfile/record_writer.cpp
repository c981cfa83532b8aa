#include "vtrfile/record_writer.h"

#include <vector>

#include "vtrfile/variant.h"

namespace trvtrout::vtrfile {

void RecordWriter::variants(const unsigned char* at, std::size_t count) {
  if (!at) {
    out_.append(2 * count, '\0');
    return;
  }
  std::vector<const unsigned char*> odd_flags;
  VariantWalk walk(&odd_flags);
  const unsigned char* behind = at;
  for (std::size_t slot = 0; slot < count; ++slot) behind = walk.skip(behind);

  const std::size_t start = out_.size();
  out_.append(reinterpret_cast<const char*>(at), static_cast<std::size_t>(behind - at));
  // A flag is written as 0 or -1, whatever value stood for True.
  for (const unsigned char* flag : odd_flags) out_.replace(start + static_cast<std::size_t>(flag - at), 2, "\xFF\xFF");
}

}  // namespace trvtrout::vtrfile
