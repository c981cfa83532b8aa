#include "bench/document_maker.h"
#include "vtrfile/variant.h"

namespace trvtrout::bench {

TREE_HIERARCHY_STRUCT DocumentMaker::tree() {
  constexpr unsigned kLevels = 6;
  TREE_HIERARCHY_STRUCT tree{};
  fill(tree, size_.tree_nodes, [&](int number) {
    TREE_HIERARCHY_ITEM_STRUCT node{};
    node.Description = description(name(4));
    node.Level = static_cast<std::int16_t>(1 + below(kLevels));
    // In turn the kinds of nodes that find their partners, and what leaves with these, by different rules.
    node.Control = static_cast<std::int16_t>(1 + number % 3);
    node.Tid = text(numbered("T", number));
    node.TableInternalCode = text(capitals(words(1)));
    if (one_in(4)) node.Filter = text("STATUS = 1, AREA = 2");
    node.ParentCodePath = text("1.2." + std::to_string(number / 10));
    node.CodePath = text("1.2." + std::to_string(number / 10) + "." + std::to_string(number % 10));
    return node;
  });
  return tree;
}

LANGUAGE_STRUCT DocumentMaker::language() {
  constexpr std::size_t kTranslated = 10;
  LANGUAGE_STRUCT language{};
  fill(language, size_.language_texts, [&](int number) {
    LANGUAGE_ITEM_STRUCT item{};
    item.Code = text(numbered("TXT", number));
    item.Category = static_cast<std::int16_t>(below(10));
    item.Texts[0] = description(name(5));
    for (std::size_t place = 1; place < kTranslated; ++place) item.Texts[place] = text(name(5));
    return item;
  });
  return language;
}

MODULE_STRUCT DocumentMaker::modules() {
  MODULE_STRUCT modules{};
  fill(modules, size_.modules, [&](int number) {
    MODULE_ITEM_STRUCT module{};
    module.Id = number;
    module.Description = description(name(4));
    module.ControlTag = text(capitals(name(2)));
    module.ProductIDScipt = text(kScript);
    module.Attributes = text(words(2));
    return module;
  });
  return modules;
}

namespace {

template <class Number>
void append(std::string& bytes, Number number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

}  // namespace

// An array of four texts, counted from 0.
Var DocumentMaker::scripts() {
  constexpr std::uint32_t kScripts = 4;
  std::string bytes;
  append(bytes, static_cast<std::uint16_t>(kVariantArray + kVariantText));
  append(bytes, std::uint16_t{1});
  append(bytes, kScripts);
  append(bytes, std::int32_t{0});
  for (std::uint32_t script = 0; script < kScripts; ++script) bytes += stored_text(kScript);
  return Var(keep(bytes));
}

DATASEND_NODE_STRUCT DocumentMaker::node(int number) {
  DATASEND_NODE_STRUCT node{};
  const std::string tag = name(2);
  node.Index = number;
  node.ParentIndex = number / 4;
  node.LanguageKey = text(numbered("TXT", 1 + below(20'000)));
  node.Description = description(name(4));
  node.Visible.value = -1;
  node.XMLTag = text(capitals(tag));
  if (one_in(4)) node.DefaultValue = text(tag);
  node.MaxOccur = 1;
  node.DataType = static_cast<std::int16_t>(below(5));
  node.MaxLength = static_cast<std::int16_t>(1 + below(255));
  node.VitrionCodePathLookup = text("1.2." + std::to_string(number));
  node.VitrionTableLookup = text(capitals(tag));
  return node;
}

DATASEND_ITEM_STRUCT DocumentMaker::definition(int number) {
  DATASEND_ITEM_STRUCT definition{};
  definition.Header.TypeCategory = static_cast<std::int16_t>(below(4));
  definition.Header.Version = 1.5F;
  definition.Header.StructureName = text(numbered("Definition ", number));
  if (one_in(2)) definition.Header.VBSInfo = scripts();
  definition.Nodes = array(size_.nodes_per_definition, [this](int place) { return node(place); });
  definition.Count = static_cast<std::int16_t>(size_.nodes_per_definition);
  return definition;
}

DATASEND_STRUCT DocumentMaker::data_send() {
  DATASEND_STRUCT data_send{};
  data_send.File.FileHeader = text("Definitions");
  data_send.File.Version = text("1.5");
  fill(data_send, size_.definitions, [this](int number) { return definition(number); });
  return data_send;
}

FIELD_MATCHES_STRUCT DocumentMaker::field_matches() {
  FIELD_MATCHES_STRUCT matches{};
  fill(matches, size_.others, [&](int number) {
    FIELD_MATCH_ITEM_STRUCT match{};
    match.Key = text(numbered("M", number));
    match.Text1 = text(name(3));
    return match;
  });
  return matches;
}

EXTENDED_STORAGE_STRUCT DocumentMaker::extended() {
  EXTENDED_STORAGE_STRUCT extended{};
  fill(extended, size_.others, [&](int number) {
    EXTENDED_STORAGE_ITEM_STRUCT item{};
    item.Key = text(numbered("X", number));
    item.Text1 = text(name(3));
    return item;
  });
  return extended;
}

INCLUDEFILE_STRUCT DocumentMaker::include_files() {
  INCLUDEFILE_STRUCT files{};
  fill(files, size_.others, [&](int number) {
    INCLUDEFILE_ITEM_STRUCT file{};
    file.FileName = text(numbered("C:\\Data\\Include", number) + ".TXT");
    return file;
  });
  return files;
}

CONTROLTAG_STRUCT DocumentMaker::control_tags() {
  CONTROLTAG_STRUCT tags{};
  fill(tags, size_.others, [&](int number) {
    CONTROLTAG_ITEM_STRUCT item{};
    item.ControlTag = text(numbered("TAG", number));
    item.Tagvalue = text(name(4));
    return item;
  });
  return tags;
}

DSNMAIN_STRUCT DocumentMaker::data_sources() {
  DSNMAIN_STRUCT sources{};
  fill(sources, size_.others, [&](int number) {
    DSN_ITEM_STRUCT source{};
    source.Key = text(numbered("SOURCE", number));
    source.Entries.Items = array(2, [&](int) {
      DSN_ENTRY_STRUCT entry{};
      entry.Text1 = text(name(2));
      return entry;
    });
    return source;
  });
  return sources;
}

IMPORT_FILES DocumentMaker::import_files() {
  constexpr int kBytes = 4096;
  IMPORT_FILES files{};
  fill(files, size_.others, [&](int number) {
    IMPORT_FILE_ITEM_STRUCT file{};
    file.Key = text(numbered("IMPORT", number));
    file.Data = array(kBytes, [&](int) { return static_cast<unsigned char>(below(256)); });
    return file;
  });
  return files;
}

RESIDUAL_TABLES_STRUCT DocumentMaker::residual_tables() {
  RESIDUAL_TABLES_STRUCT tables{};
  fill(tables, size_.others, [&](int number) {
    RESIDUAL_TABLE_ITEM_STRUCT table{};
    table.Key = text(numbered("T", number));
    table.Text1 = text(name(3));
    return table;
  });
  return tables;
}

}  // namespace trvtrout::bench
