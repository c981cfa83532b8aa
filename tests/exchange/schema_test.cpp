#include <nlohmann/json.hpp>
#include <set>

#include "tests/command.h"
#include "tests/exchange/random_file.h"
#include "vtrfile/value_types.h"

// docs/vtr-document.schema.json is made here, from the types of all values, and held to what the command writes.
namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using Json = nlohmann::ordered_json;

Json reference_to(const std::string& definition) { return {{"$ref", "#/$defs/" + definition}}; }

Json array_of(const Json& items) { return {{"type", "array"}, {"items", items}}; }

Json array_of(const Json& items, std::size_t count) {
  return {{"type", "array"}, {"items", items}, {"minItems", count}, {"maxItems", count}};
}

Json object_with(const Json& properties) {
  Json required = Json::array();
  for (const auto& [name, property] : properties.items()) required.push_back(name);
  return {{"type", "object"}, {"properties", properties}, {"required", required}, {"additionalProperties", false}};
}

Json any_of(const Json& forms) { return {{"anyOf", forms}}; }

Json integer(std::int64_t least, std::int64_t most) {
  return {{"type", "integer"}, {"minimum", least}, {"maximum", most}};
}

Json hex_of(std::size_t bytes) {
  return {{"type", "string"}, {"pattern", "^[0-9a-f]{" + std::to_string(2 * bytes) + "}$"}};
}

const Json kNull = {{"type", "null"}};
const Json kHex = {{"type", "string"}, {"pattern", "^([0-9a-f]{2})*$"}};

class SchemaMaker {
 public:
  Json schema() {
    add_plain();
    add_variants();
    const DocumentSlots none;
    Json sections = Json::object();
    for (const SectionValue& section : sections_of(none)) {
      sections[std::string(section.tag)] = schema_of(section.record.type());
    }
    Json whole = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                  {"title", "A VTR document, as vtrout export --json writes it and vtrout import reads it"}};
    whole.update(object_with({{"form", {{"const", "vtr-document"}}},
                              {"version", {{"const", 1}}},
                              {"codePage", {{"type", "integer"}}},
                              {"header", schema_of(header_of(none).type())},
                              {"sections", object_with(sections)}}));
    whole["$defs"] = definitions_;
    return whole;
  }

 private:
  void add_plain() {
    definitions_["i16"] = integer(INT16_MIN, INT16_MAX);
    definitions_["i32"] = integer(INT32_MIN, INT32_MAX);
    for (const auto& [name, bytes] : {std::pair{"f32", std::size_t{4}}, {"f64", std::size_t{8}}}) {
      definitions_[name] = any_of({{{"type", "number"}}, object_with({{"hex", hex_of(bytes)}})});
    }
    definitions_["text"] = any_of({{{"type", "string"}}, object_with({{"hex", kHex}})});
  }

  void add_variants() {
    const std::pair<int, Json> kValues[] = {{kVariantInteger, reference_to("i16")},
                                            {kVariantLong, reference_to("i32")},
                                            {kVariantSingle, reference_to("f32")},
                                            {kVariantDouble, reference_to("f64")},
                                            {kVariantCurrency, {{"type", "string"}, {"pattern", "^-?[0-9]{1,19}$"}}},
                                            {kVariantDate, reference_to("f64")},
                                            {kVariantText, reference_to("text")},
                                            {kVariantFlag, {{"type", "boolean"}}},
                                            {kVariantByte, integer(0, 255)}};
    Json forms = {kNull, object_with({{"type", {{"const", kVariantNull}}}})};
    Json array_types = {kVariantArray + kVariantVariant};
    const auto add_array = [&](int tag, const Json& items) {
      forms.push_back(object_with(
          {{"type", {{"const", kVariantArray + tag}}}, {"lower", reference_to("i32")}, {"items", array_of(items)}}));
    };
    for (const auto& [tag, value] : kValues) {
      forms.push_back(object_with({{"type", {{"const", tag}}}, {"value", value}}));
      array_types.push_back(kVariantArray + tag);
      add_array(tag, value);
    }
    add_array(kVariantVariant, reference_to("variant"));
    forms.push_back(object_with({{"type", {{"enum", array_types}}}, {"items", kNull}}));
    definitions_["variant"] = any_of(forms);
  }

  Json schema_of(const ValueType& type) {
    switch (type.kind) {
      case Kind::kInt16:
        return reference_to("i16");
      case Kind::kInt32:
        return reference_to("i32");
      case Kind::kFloat:
        return reference_to("f32");
      case Kind::kFlag:
        return {{"type", "boolean"}};
      case Kind::kText:
        return reference_to("text");
      case Kind::kRaw:
        return hex_of(type.count);
      case Kind::kVariant:
        return reference_to("variant");
      case Kind::kVariantRun:
        return any_of({kNull, array_of(reference_to("variant"), type.count)});
      case Kind::kRun:
        return array_of(schema_of(*type.element), type.count);
      case Kind::kBytes:
        return any_of({kNull, kHex, object_with({{"lower", reference_to("i32")}, {"hex", kHex}})});
      case Kind::kArray: {
        const Json items = array_of(schema_of(*type.element));
        return any_of({kNull, items, object_with({{"lower", reference_to("i32")}, {"items", items}})});
      }
      case Kind::kRecord:
        break;
    }
    if (!definitions_.contains(type.name)) {
      Json members = Json::object();
      for (const MemberType& member : type.members) members[member.name] = schema_of(*member.type);
      definitions_[type.name] = object_with(members);
    }
    return reference_to(type.name);
  }

  Json definitions_ = Json::object();
};

using DocumentSchema = Command;

TEST_F(DocumentSchema, HoldsWhatIsWrittenAndRefusesWhatIsNot) {
  expect_approved(DOCS "/vtr-document.schema.json", SchemaMaker().schema().dump(1) + '\n');
  std::mt19937 random(11);
  put("plant.vtr", sample("plant.vtr"));
  put("dense.vtr", sample("dense.vtr"));
  put("random.vtr", random_file(random));
  put("check.py", R"(
import copy, json, jsonschema, subprocess, sys
with open(sys.argv[1]) as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for name in sys.argv[2:]:
    document = json.loads(subprocess.run(["vtrout", "export", name, "--json"], stdout=subprocess.PIPE, check=True).stdout)
    for error in validator.iter_errors(document):
        sys.exit(f"{name}: {error.json_path}: {error.message[:200]}")
wrong = [lambda d: d["header"].pop("Text1"), lambda d: d["header"].update(Colour=1),
         lambda d: d["sections"]["Module"].update(Count="1"), lambda d: d["sections"]["Module"].update(Raw1="00"),
         lambda d: d["sections"]["Module"].update(Var1={"type": 2, "value": 70000}),
         lambda d: d["sections"]["Hidden"].update(Spare=[None])]
for change in wrong:
    changed = copy.deepcopy(document)
    change(changed)
    if validator.is_valid(changed):
        sys.exit("a wrong document is held to be right")
)");
  const Outcome run = shell("python3 check.py '" DOCS "/vtr-document.schema.json' random.vtr plant.vtr dense.vtr");
  EXPECT_EQ(run.status, 0) << run.err;
}

}  // namespace
}  // namespace trvtrout::tests
