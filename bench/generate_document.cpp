#include "bench/generate_document.h"

#include "bench/document_maker.h"
#include "vtrfile/record_writer.h"

namespace trvtrout::bench {

DocumentSize fifty_megabytes() {
  return {.tables = 500,
          .fields_per_table = 550,
          .lookups = 2'000,
          .tree_nodes = 5'000,
          .language_texts = 20'000,
          .modules = 200,
          .definitions = 200,
          .nodes_per_definition = 60,
          .others = 100};
}

std::string generate_document(const DocumentSize& size) {
  DocumentMaker maker(size);
  std::string bytes;
  RecordWriter writer(bytes);
  const auto section = [&](std::string_view tag, const auto& record) {
    writer.write(maker.tag(tag));
    writer.write(record);
  };
  writer.write(maker.header());
  section("Schema", maker.schema());
  section("Relation", maker.relation());
  section("Hidden", maker.hidden());
  section("TreeHierarchy", maker.tree());
  section("Language", maker.language());
  section("Module", maker.modules());
  section("TarvelDefinitionHeader", maker.data_send());
  section("TarvelFieldMatchHeader", maker.field_matches());
  section("Extended", maker.extended());
  section("IncludeFile", maker.include_files());
  section("ControlTag", maker.control_tags());
  section("DSNList", maker.data_sources());
  section("IncludeFileNew", maker.import_files());
  section("ResidualTable", maker.residual_tables());
  writer.write(maker.tag("EOF"));
  return bytes;
}

}  // namespace trvtrout::bench
