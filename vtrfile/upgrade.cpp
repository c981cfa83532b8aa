#include "vtrfile/upgrade.h"

#include <new>
#include <span>
#include <string>

#include "vtrfile/record_reader.h"
#include "vtrfile/record_writer.h"

namespace trvtrout::vtrfile {

using ProductItems = Array<PRODUCT_LIST_ITEM_STRUCT>;

void UpgradeSchema(std::string_view version, const Slot<SCHEMA_STRUCT_OLD1>& schema_old, Slot<SCHEMA_STRUCT>& target) {
  if (version != kOldFormatVersion.text()) return;

  // What stays goes into an image of its own; otherwise each upgrade on one object would keep the file before it.
  SCHEMA_STRUCT staying = *target;
  staying.Tables = {};
  staying.Lookups = {};
  // Items that were announced behind the end of the file before take no room here either.
  auto& list = staying.Product.ProductList.Items;
  const ProductItems announced = list;
  ProductItems::Block stored{};
  if (announced.allocated()) {
    stored = announced.block();
    stored.count = stored.stored;
    list = ProductItems(&stored);
  }
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
    if (announced.allocated()) {
      auto& block = *new (memory.allocate(sizeof stored, alignof(ProductItems::Block)))
                        ProductItems::Block(schema.Product.ProductList.Items.block());
      block.count = announced.block().count;
      schema.Product.ProductList.Items = ProductItems(&block);
    }
    schema.Tables = schema_old->Tables;
    schema.Lookups = schema_old->Lookups;
  });
  target = upgraded;
}

bool UpgradeLeavesBehind(const SCHEMA_STRUCT_OLD1& schema_old) {
  SCHEMA_STRUCT_OLD1 behind{};
  behind.Product.Text4 = schema_old.Product.Text4;
  behind.Product.Text10 = schema_old.Product.Text10;
  behind.Product.Raw4 = schema_old.Product.Raw4;
  behind.Product.Spare = schema_old.Product.Spare;
  behind.Text1 = schema_old.Text1;
  behind.Text2 = schema_old.Text2;
  behind.Text3 = schema_old.Text3;
  behind.Raw1 = schema_old.Raw1;
  behind.Spare = schema_old.Spare;
  std::string held, nothing;
  RecordWriter(held).write(behind);
  RecordWriter(nothing).write(SCHEMA_STRUCT_OLD1{});
  return held != nothing;
}

}  // namespace trvtrout::vtrfile
