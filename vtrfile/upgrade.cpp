#include "vtrfile/upgrade.h"

#include <span>
#include <string>

#include "vtrfile/record_reader.h"
#include "vtrfile/record_writer.h"

namespace trvtrout::vtrfile {

void UpgradeSchema(std::string_view version, const Slot<SCHEMA_STRUCT_OLD1>& schema_old, Slot<SCHEMA_STRUCT>& target) {
  if (version != kOldFormatVersion) return;

  // What stays goes into an image of its own; otherwise each upgrade on one object would keep the file before it.
  SCHEMA_STRUCT staying = *target;
  staying.Tables = {};
  staying.Lookups = {};
  std::string bytes;
  RecordWriter(bytes).write(staying);
  const auto image = image_of({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});

  Slot<SCHEMA_STRUCT> upgraded;
  upgraded.renew({image, schema_old.keep()}, [&](SCHEMA_STRUCT& schema, std::pmr::memory_resource& memory) {
    RecordReader(*image).read(schema, memory);
    const PRODUCT_COMMON stays = schema.Product;
    static_cast<PRODUCT_COMMON&>(schema.Product) = schema_old->Product;
    schema.Product.Text4 = stays.Text4;
    schema.Product.Text10 = stays.Text10;
    schema.Product.Raw4 = stays.Raw4;
    schema.Tables = schema_old->Tables;
    schema.Lookups = schema_old->Lookups;
  });
  target = upgraded;
}

}  // namespace trvtrout::vtrfile
