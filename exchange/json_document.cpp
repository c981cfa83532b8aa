#include "exchange/json_document.h"

#include "exchange/document_form.h"
#include "exchange/json_values.h"
#include "vtrfile/own_record.h"
#include "vtrfile/sections.h"

namespace trvtrout::exchange {
namespace {

std::string tag_bytes(std::string_view name) {
  const vtrfile::OwnText text(name);
  vtrfile::SECTION_TAG_STRUCT tag{};
  tag.Tag = text.text();
  tag.Count = 1;
  std::string bytes;
  vtrfile::RecordWriter(bytes).write(tag);
  return bytes;
}

// The header as it goes with the sections, which are those of the current format even when the file was of the old one.
vtrfile::Slot<vtrfile::HEADER_STRUCT> header_for(const vtrfile::DocumentSlots& document) {
  auto slot = document.Header;
  if (vtrfile::classify(slot->Version.bytes()) == vtrfile::FormatClass::kCurrent) return slot;
  const vtrfile::OwnText version(vtrfile::kCurrentFormatVersion.text());
  vtrfile::HEADER_STRUCT header = *document.Header;
  header.Version = version.text();
  put_own(slot, header);
  return slot;
}

}  // namespace

void write_document(JsonWriter& json, Texts& texts, const vtrfile::DocumentSlots& document) {
  json.begin_object();
  json.key(kDocumentMembers[kFormMember]);
  json.string(kDocumentForm);
  json.key(kDocumentMembers[kVersionMember]);
  json.number(std::int64_t{kDocumentFormVersion});
  json.key(kDocumentMembers[kCodePageMember]);
  json.number(std::int64_t{texts.code_page()});
  json.key(kDocumentMembers[kHeaderMember]);
  vtrfile::DocumentSlots with_header;
  with_header.Header = header_for(document);
  write_value(json, texts, header_of(with_header));
  json.key(kDocumentMembers[kSectionsMember]);
  json.begin_object();
  for (const vtrfile::SectionValue& section : sections_of(document)) {
    json.key(section.tag);
    write_value(json, texts, section.record);
  }
  json.end_object();
  json.end_object();
  json.end_line();
}

FilePieces read_document(JsonSource source, TextsOf texts_of) {
  TokenReader tokens(std::move(source));
  DocumentBuilder builder(std::move(texts_of));
  const std::function<std::uint64_t()> line = [&] { return tokens.line(); };
  try {
    tokens.read([&](const Token& token) { builder.take(token, line); });
  } catch (const Refusal& refusal) {
    throw ImportError(builder.place() + refusal.place(), refusal.line() != 0 ? refusal.line() : tokens.line(),
                      refusal.what());
  }
  FilePieces pieces{builder.take_header()};
  auto sections = builder.take_sections();
  auto section = sections.begin();
  vtrfile::for_each_section([&](const vtrfile::SectionName& name) {
    pieces.push_back(tag_bytes(name.tag));
    pieces.push_back(std::move(*section++));
  });
  pieces.push_back(tag_bytes(vtrfile::kEndTag));
  return pieces;
}

}  // namespace trvtrout::exchange
