#include "vtrfile/record_writer.h"

#include "vtrfile/variant.h"

namespace trvtrout::vtrfile {

void RecordWriter::variants(const unsigned char* at, std::size_t count) {
  if (!at) {
    out_.append(2 * count, '\0');
    return;
  }
  append_variants(out_, at, count);
}

}  // namespace trvtrout::vtrfile
