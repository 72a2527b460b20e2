// Writes the fuzzers' seed corpus into a directory: every message of random
// trees, each prefixed with its type byte, hand-made malformed inputs, and the
// JSON import fuzzer's texts (first byte 0 for a node, 1 for a value).

#include <google/protobuf/message.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "MavJson.h"
#include "fuzz_support.h"
#include "random_messages.h"

namespace {

using namespace mav_test;

class SeedDirectory {
 public:
  explicit SeedDirectory(std::filesystem::path directory) : directory_(std::move(directory)) {
    std::filesystem::create_directories(directory_);
  }
  bool Write(const pb::Descriptor* type, const std::string& bytes) {
    return Write(mav_fuzz::TypeByte(type), bytes);
  }
  bool Write(uint8_t first, const std::string& bytes) {
    std::ofstream out(directory_ / ("seed-" + std::to_string(count_++)), std::ios::binary);
    out.put(static_cast<char>(first));
    out << bytes;
    return static_cast<bool>(out);
  }
  // The message and, through reflection, every message inside it.
  bool WriteAll(const pb::Message& message) {
    bool ok = Write(message.GetDescriptor(), message.SerializeAsString());
    const pb::Reflection* reflection = message.GetReflection();
    std::vector<const pb::FieldDescriptor*> fields;
    reflection->ListFields(message, &fields);
    for (const pb::FieldDescriptor* field : fields) {
      if (field->cpp_type() != pb::FieldDescriptor::CPPTYPE_MESSAGE) continue;
      if (!field->is_repeated()) {
        ok &= WriteAll(reflection->GetMessage(message, field));
        continue;
      }
      for (int index = 0; index < reflection->FieldSize(message, field); ++index) {
        ok &= WriteAll(reflection->GetRepeatedMessage(message, field, index));
      }
    }
    return ok;
  }
  int count() const { return count_; }

 private:
  std::filesystem::path directory_;
  int count_ = 0;
};

// Inputs that each break one rule of the wire format.
std::vector<std::pair<const pb::Descriptor*, std::string>> Malformed() {
  const std::string ff10(10, '\xFF');
  return {
      {ChronoData::descriptor(), "\x08" + ff10 + "\x01"},                    // 11-byte varint
      {ArrayInt8::descriptor(), std::string("\x0A\xFF\xFF\xFF\xFF\x07\x00", 7)},  // 2^31 - 1 long
      {PropertyList::descriptor(), "\x0A\x05\x0A\x01"},                       // past the end
      {ArrayInt16::descriptor(), "\x08\x05\x0A\x02\x01\x02"},                 // continuation
      {ArrayInt64::descriptor(), "\x08\x05\x0A\x02\x01\x02"},
      {ArrayDataUnion::descriptor(), "\x80\x01\x05\x82\x01\x02\x02\x03"},
      {ArrayDouble::descriptor(), std::string("\x0A\x07\0\0\0\0\0\0\0", 9)},  // not 8-byte whole
      {ComplexFloat::descriptor(), "\x0C"},                                   // end group
      {ComplexFloat::descriptor(), "\x0B\x08\x01\x0C"},                       // group
      {ComplexDouble::descriptor(), std::string("\x00\x01", 2)},              // field number 0
      {ScalarDataUnion::descriptor(), "\x0F\x01"},                            // wire type 7
      {PropertyMap::descriptor(), "\x0A\x03\x0A\x01\xFF"},                    // key not UTF-8
      {PropertyMap::descriptor()->nested_type(0), "\x12\x02\x1A\x00\x0A\x01k"},  // value first
  };
}

constexpr uint8_t kJsonNode = 0;
constexpr uint8_t kJsonValue = 1;

// Texts that each break one rule of the natural JSON form.
std::vector<std::pair<uint8_t, std::string>> MalformedJson() {
  return {
      {kJsonNode, R"({"a": [1.0, {"$int32": 3}, "x")"},                    // truncated
      {kJsonNode, R"({"a": 1.0, "a": 2.0})"},                              // duplicate key
      {kJsonNode, R"({"$int128": 5})"},                                    // unknown kind tag
      {kJsonNode, R"({"$int32": 1, "extra": 2})"},                         // tag with a sibling
      {kJsonValue, R"({"$complex64": [1.0]})"},                            // wrong shape
      {kJsonValue, R"({"$array": "int8", "shape": [2, 2], "data": [1, 2, 3]})"},
      {kJsonValue, R"({"$uint8": 256})"},                                  // out of range
      {kJsonValue, R"({"$int64": 9223372036854775808})"},
      {kJsonValue, R"({"$int32": 1.5})"},                                  // fraction for an integer
      {kJsonValue, R"({"$float32": 1e39})"},
      {kJsonValue, R"({"$datetime64": "2024-13-01T00:00:00Z"})"},
      {kJsonNode, std::string(200, '[') + std::string(200, ']')},          // deep nesting
      {kJsonNode, "{\"k\xFF\": null}"},                                 // key not UTF-8
      {kJsonNode, "null garbage"},                                         // text after the value
  };
}

// The JSON of a random tree and of a value found in it, as the fuzzer reads
// them: unknown fields have no JSON form, so they are dropped first.
bool WriteJson(SeedDirectory* seeds, PropertyNode tree) {
  tree.DiscardUnknownFields();
  const std::string compact = ToJson(tree);
  bool ok = seeds->Write(kJsonNode, compact) && seeds->Write(kJsonNode, ToJson(tree, {true}));
  if (tree.has_value_type()) ok &= seeds->Write(kJsonValue, ToJson(tree.value_type()));
  for (const PropertyNode& item : tree.list_type().list_data()) ok &= WriteJson(seeds, item);
  for (const auto& entry : tree.map_type().map_data()) ok &= WriteJson(seeds, entry.second);
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
    return 2;
  }
  SeedDirectory seeds(argv[1]);
  bool ok = true;
  for (uint64_t seed = 1; seed <= 24; ++seed) {
    Random random(seed);
    TreeMaker maker(&random);
    PropertyNode tree;
    maker.Node(&tree, 2 + random.Below(3));
    ok &= seeds.WriteAll(tree);
    if (seed <= 8) ok &= WriteJson(&seeds, tree);
  }
  for (const auto& input : Malformed()) ok &= seeds.Write(input.first, input.second);
  for (const auto& input : MalformedJson()) ok &= seeds.Write(input.first, input.second);
  if (!ok) {
    std::fprintf(stderr, "%s: cannot write the seed corpus\n", argv[1]);
    return 1;
  }
  std::printf("%d seeds written to %s\n", seeds.count(), argv[1]);
  return 0;
}
