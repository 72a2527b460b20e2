// Writes the fuzzers' seed corpus into a directory: every message of random
// trees, each prefixed with its type byte, and hand-made malformed inputs.

#include <google/protobuf/message.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

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
    std::ofstream out(directory_ / ("seed-" + std::to_string(count_++)), std::ios::binary);
    out.put(static_cast<char>(mav_fuzz::TypeByte(type)));
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
  }
  for (const auto& input : Malformed()) ok &= seeds.Write(input.first, input.second);
  if (!ok) {
    std::fprintf(stderr, "%s: cannot write the seed corpus\n", argv[1]);
    return 1;
  }
  std::printf("%d seeds written to %s\n", seeds.count(), argv[1]);
  return 0;
}
