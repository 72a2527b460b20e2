// Inputs written to hurt: truncations, over-long varints, lengths past the end
// or near 2^31, wrong wire types, groups, field number 0, deep nesting, bad
// UTF-8. Each has its expected outcome, and none may crash. This program
// replaces the global allocator to count what a parse allocates: an input of n
// bytes may cost no more than a small multiple of n plus a constant, so no
// length read from the input can make the parse reserve memory by itself.

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/wire_format.h>
#include <google/protobuf/wire_format_lite.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "Mav.pb.h"
#include "random_messages.h"
#include "test_support.h"

namespace {

size_t g_allocated = 0;  // bytes requested since the last reset

void* Allocate(size_t size) {
  g_allocated += size;
  return std::malloc(size == 0 ? 1 : size);
}

// Message objects must come from the counted allocator too. The library picks
// its allocator when it makes its first message, which is after this runs.
[[maybe_unused]] const bool kMessagesOnGlobalAllocator =
    setenv("MAV_PROTOBUF_MESSAGE_ALLOCATOR", "system", 1) == 0;

// Out of line, so the compiler does not pair the replaced operator new with a
// bare free() and warn about the mismatch.
[[gnu::noinline]] void Free(void* memory) { std::free(memory); }

}  // namespace

void* operator new(size_t size) {
  if (void* memory = Allocate(size)) return memory;
  throw std::bad_alloc();
}
void* operator new[](size_t size) { return operator new(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete(void* memory, size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory, size_t) noexcept { operator delete(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { operator delete(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { operator delete(memory); }

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;
using pb::internal::WireFormatLite;

// What a parse of n bytes may allocate: a tree of empty nodes costs a few
// dozen bytes of objects per two input bytes.
constexpr size_t kBytesPerInputByte = 64;
constexpr size_t kConstantBytes = 4096;
// Inputs long enough for the ratio to say something about the per-byte cost.
constexpr size_t kLongInput = 256;

// Parses `input` into a fresh object of `prototype`'s class, checks the
// allocation bound, and checks that whatever was kept serializes to exactly
// its size. Returns the parse result; the parsed object goes to `kept`.
class HostileParse {
 public:
  bool Run(const pb::Message& prototype, const std::string& input,
           std::unique_ptr<pb::Message>* kept = nullptr) {
    std::unique_ptr<pb::Message> message(prototype.New());
    g_allocated = 0;
    const bool ok = message->ParseFromString(input);
    const size_t allocated = g_allocated;
    EXPECT_LE(allocated, kBytesPerInputByte * input.size() + kConstantBytes)
        << prototype.GetTypeName() << " from " << input.size() << " bytes";
    if (input.size() >= kLongInput) {
      peak_ratio_ = std::max(peak_ratio_, double(allocated) / double(input.size()));
    }
    const std::string again = message->SerializeAsString();
    EXPECT_EQ(again.size(), message->ByteSizeLong());
    if (kept != nullptr) *kept = std::move(message);
    return ok;
  }
  ~HostileParse() {
    if (peak_ratio_ == 0) return;  // no input was long enough to tell
    std::printf("peak allocation of inputs of %zu bytes or more: %.1f bytes per input byte\n",
                kLongInput, peak_ratio_);
    testing::Test::RecordProperty("peak_bytes_per_input_byte", std::to_string(peak_ratio_));
  }

 private:
  double peak_ratio_ = 0;
};

TEST(HostileInput, MessageObjectsAreCounted) {
  g_allocated = 0;
  const std::unique_ptr<PropertyNode> node(new PropertyNode);
  EXPECT_GE(g_allocated, sizeof(PropertyNode));
}

// A varint of exactly `length` bytes (padded with continuation bytes).
std::string Varint(uint64_t value, int length) {
  std::string bytes;
  for (int index = 0; index < length; ++index, value >>= 7) {
    bytes.push_back(static_cast<char>((value & 0x7F) | (index + 1 < length ? 0x80 : 0)));
  }
  return bytes;
}
std::string Varint(uint64_t value) {
  std::string bytes;
  do {
    bytes.push_back(static_cast<char>((value & 0x7F) | (value >= 0x80 ? 0x80 : 0)));
    value >>= 7;
  } while (value != 0);
  return bytes;
}
std::string Field(uint32_t number, WireFormatLite::WireType type) {
  return Varint(WireFormatLite::MakeTag(static_cast<int>(number), type));
}
std::string Delimited(uint32_t number, const std::string& payload) {
  return Field(number, WireFormatLite::WIRETYPE_LENGTH_DELIMITED) + Varint(payload.size()) +
         payload;
}

// `levels` nodes, each holding the next through a map entry or a list.
std::string Nested(int levels, bool through_maps) {
  std::string node;
  for (int level = 0; level < levels; ++level) {
    node = through_maps ? Delimited(1, Delimited(1, Delimited(1, "k") + Delimited(2, node)))
                        : Delimited(2, Delimited(1, node));
  }
  return node;
}

struct Case {
  std::string name;
  const pb::Message& prototype;
  std::string input;
  bool parses;
};

std::vector<Case> HandMadeCases() {
  const std::string ten_byte_max = Varint(~uint64_t{0}, 10);
  const std::string eleven_bytes = std::string(10, '\xFF') + '\x01';
  std::vector<Case> cases = {
      {"10-byte varint", ChronoData::default_instance(), "\x08" + ten_byte_max, true},
      {"11-byte varint", ChronoData::default_instance(), "\x08" + eleven_bytes, false},
      {"11-byte varint in a packed run", ArrayInt64::default_instance(),
       Delimited(1, eleven_bytes), false},
      {"11-byte varint as a length", ArrayInt8::default_instance(), "\x0A" + eleven_bytes, false},
      {"6-byte tag", ComplexFloat::default_instance(), Varint(13, 6) + std::string(4, '\0'), false},
      {"varint cut short", ChronoData::default_instance(), "\x08\xFF\xFF", false},
      {"group closed", ComplexFloat::default_instance(), "\x0B\x08\x01\x0C", true},
      {"group of an unknown number closed", ComplexFloat::default_instance(),
       "\x1B\x08\x01\x1C\x0D" + std::string(4, '\0'), true},
      {"group never closed", ComplexFloat::default_instance(), "\x1B\x08\x01", false},
      {"group closed by another number", ComplexFloat::default_instance(), "\x1B\x24", false},
      {"end group alone", ComplexFloat::default_instance(), "\x0C", false},
      {"end group in a nested message", PropertyNode::default_instance(), "\x1A\x01\x0C", false},
      {"field number 0, varint", ComplexFloat::default_instance(), std::string("\x00\x01", 2),
       false},
      {"field number 0, length-delimited", PropertyList::default_instance(),
       std::string("\x02\x00", 2), false},
      {"field number 0 in a nested message", KVariant::default_instance(),
       std::string("\x0A\x02\x05\x00", 4), false},
      {"wire type 6", ArrayBool::default_instance(), "\x0E\x01", false},
      {"wire type 7", ScalarDataUnion::default_instance(), "\x0F\x01", false},
      {"packed double run of 7 bytes", ArrayDouble::default_instance(),
       Delimited(1, std::string(7, '\0')), false},
      {"packed double run of 12 bytes", ArrayDouble::default_instance(),
       Delimited(1, std::string(12, '\0')), false},
      {"packed float run of 6 bytes", ArrayFloat::default_instance(),
       Delimited(1, std::string(6, '\0')), false},
      {"dimensions run cut inside a value", ArrayDataUnion::default_instance(),
       "\x82\x01\x02\x05\x80", false},
      {"1,000 maps deep", PropertyNode::default_instance(), Nested(1000, true), false},
      {"1,000 lists deep", PropertyNode::default_instance(), Nested(1000, false), false},
      {"49 lists deep: 98 nested messages", PropertyNode::default_instance(), Nested(49, false), true},
      {"key not UTF-8", PropertyMap::default_instance(), Delimited(1, Delimited(1, "\xFF")), false},
      {"key an overlong encoding", PropertyMap::default_instance(),
       Delimited(1, Delimited(1, "\xC0\x80")), false},
      {"key a surrogate", PropertyMap::default_instance(),
       Delimited(1, Delimited(1, "\xED\xA0\x80")), false},
      {"key cut inside a character", PropertyMap::default_instance(),
       Delimited(1, Delimited(1, "\xE2\x82")), false},
      {"key valid UTF-8", PropertyMap::default_instance(),
       Delimited(1, Delimited(1, "\xE2\x82\xAC")), true},
  };
  // Many small pieces: the most objects per input byte.
  std::string empty_nodes, entries, unknowns, switches;
  for (int index = 0; index < 2000; ++index) {
    empty_nodes += Delimited(1, "");
    entries += Delimited(1, Delimited(1, std::string(1, char(32 + index % 95)) + char(32 + index / 95)));
    unknowns += Field(3 + index % 100, WireFormatLite::WIRETYPE_VARINT) + '\x01';
    switches += Delimited(2 + index % 12, "");
  }
  cases.push_back({"2,000 empty list elements", PropertyList::default_instance(), empty_nodes, true});
  cases.push_back({"2,000 map entries", PropertyMap::default_instance(), entries, true});
  cases.push_back({"2,000 unknown fields", ComplexFloat::default_instance(), unknowns, true});
  cases.push_back({"2,000 member switches", ArrayDataUnion::default_instance(), switches, true});
  // A length one past the end and lengths near 2^31, on a bytes field, a
  // packed field and a nested message.
  const std::pair<const char*, const pb::Message*> length_holders[] = {
      {"bytes", &ArrayInt8::default_instance()},
      {"packed", &ArrayInt32::default_instance()},
      {"message", &PropertyList::default_instance()}};
  const std::pair<const char*, uint64_t> lengths[] = {
      {"one past the end", 4}, {"2^31 - 1", 0x7FFFFFFF}, {"2^31", 0x80000000},
      {"2^32 - 1", 0xFFFFFFFF}, {"2^31 + 4", 0x80000004}};
  for (const auto& holder : length_holders) {
    for (const auto& length : lengths) {
      cases.push_back({std::string(holder.first) + " length " + length.first, *holder.second,
                       "\x0A" + Varint(length.second) + std::string(3, '\0'), false});
    }
  }
  return cases;
}

TEST(HostileInput, HandMadeCasesFailOrPassAsExpected) {
  pb::LogHandler* previous = pb::SetLogHandler(nullptr);  // the UTF-8 check logs
  HostileParse parse;
  for (const Case& one : HandMadeCases()) {
    EXPECT_EQ(parse.Run(one.prototype, one.input), one.parses)
        << one.name << ": " << Hex(one.input);
  }
  pb::SetLogHandler(previous);
}

// The offset after each top-level field: cut there, the input is a shorter
// valid message; cut anywhere else, it is not.
std::set<size_t> FieldEnds(const std::string& bytes) {
  pb::io::CodedInputStream input(reinterpret_cast<const uint8_t*>(bytes.data()),
                                 static_cast<int>(bytes.size()));
  std::set<size_t> ends = {0};
  while (uint32_t tag = input.ReadTag()) {
    if (!WireFormatLite::SkipField(&input, tag)) break;
    ends.insert(static_cast<size_t>(input.CurrentPosition()));
  }
  return ends;
}

TEST(HostileInput, TruncationAtEveryByteOfARichTree) {
  Random random(7);
  TreeMaker maker(&random);
  PropertyNode tree;
  for (int index = 0; index < 20; ++index) {
    maker.Node(&(*tree.mutable_map_type()->mutable_map_data())["k" + std::to_string(index)], 4);
  }
  random.Unknowns(&tree);  // top-level fields after the map: valid cut points
  const std::string wire = tree.SerializeAsString();
  ASSERT_GT(wire.size(), 300u);
  const std::set<size_t> ends = FieldEnds(wire);
  ASSERT_GE(ends.size(), 3u);
  HostileParse parse;
  for (size_t length = 0; length <= wire.size(); ++length) {
    EXPECT_EQ(parse.Run(tree, wire.substr(0, length)), ends.count(length) == 1)
        << "cut after " << length << " of " << wire.size() << " bytes";
  }
}

// A payload for each wire type; groups are closed at once.
std::string Payload(uint32_t number, WireFormatLite::WireType type) {
  switch (type) {
    case WireFormatLite::WIRETYPE_VARINT: return Varint(300);
    case WireFormatLite::WIRETYPE_FIXED64: return std::string(8, '\x11');
    case WireFormatLite::WIRETYPE_LENGTH_DELIMITED: return Varint(2) + "\x08\x01";
    case WireFormatLite::WIRETYPE_START_GROUP:
      return Field(number, WireFormatLite::WIRETYPE_END_GROUP);
    case WireFormatLite::WIRETYPE_FIXED32: return std::string(4, '\x22');
    default: return "";
  }
}

// Every field of every class, under every wire type it does not take: a
// valid payload of another type is kept as an unknown field and sets nothing;
// an end group or the wire types 6 and 7 fail.
TEST(HostileInput, WrongWireTypeForEveryFieldIsKeptAsUnknown) {
  std::unique_ptr<pb::Message> kept;
  HostileParse parse;
  int tried = 0;
  const pb::FileDescriptor* file = KVariant::descriptor()->file();
  for (int index = 0; index < file->message_type_count(); ++index) {
    const pb::Descriptor* type = file->message_type(index);
    const pb::Message& prototype = *pb::MessageFactory::generated_factory()->GetPrototype(type);
    for (int f = 0; f < type->field_count(); ++f) {
      const pb::FieldDescriptor* field = type->field(f);
      const auto own = pb::internal::WireFormat::WireTypeForFieldType(field->type());
      for (int wire_type = 0; wire_type < 8; ++wire_type) {
        const auto type_tried = static_cast<WireFormatLite::WireType>(wire_type);
        if (type_tried == own || (field->is_packable() &&
                                  type_tried == WireFormatLite::WIRETYPE_LENGTH_DELIMITED)) {
          continue;
        }
        const bool valid = wire_type <= WireFormatLite::WIRETYPE_START_GROUP ||
                           wire_type == WireFormatLite::WIRETYPE_FIXED32;
        const std::string input =
            Field(field->number(), type_tried) + Payload(field->number(), type_tried);
        SCOPED_TRACE(field->full_name() + " as wire type " + std::to_string(wire_type));
        ++tried;
        ASSERT_EQ(parse.Run(prototype, input, &kept), valid) << Hex(input);
        if (!valid) continue;
        std::vector<const pb::FieldDescriptor*> set;
        kept->GetReflection()->ListFields(*kept, &set);
        EXPECT_TRUE(set.empty());
        EXPECT_EQ(Hex(kept->SerializeAsString()), Hex(input));
      }
    }
  }
  EXPECT_GT(tried, 200);
}

}  // namespace
