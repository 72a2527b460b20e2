// The array messages: what the readers accept beyond the packed form the
// writers produce, the cached run length, replacement of byte arrays, element
// reuse, merges and the chrono array's nesting.

#include <gtest/gtest.h>

#include <memory>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;

TEST(PackedArrays, BothFormsAreReadAndAppend) {
  ArrayInt16 i16;
  ASSERT_TRUE(ParseInto(&i16, Bytes({0x08, 0x01, 0x08, 0x02})));
  ASSERT_TRUE(ParseInto(&i16, Bytes({0x0A, 0x02, 0x05, 0x06, 0x0A, 0x03, 0xF0, 0xA2, 0x04})));
  i16.MergeFrom(ArrayInt16(i16));
  EXPECT_EQ(Hex(WireOf(i16)), "0A 0E 01 02 05 06 F0 A2 04 01 02 05 06 F0 A2 04");
  // A run longer than the input fails; elements read before stay.
  EXPECT_FALSE(ParseInto(&i16, Bytes({0x0A, 0x05, 0x01})));
  EXPECT_EQ(i16.int16_content(9), 70000);

  // Any non-zero varint is true, and is written back as 1.
  ArrayBool b;
  ASSERT_TRUE(ParseInto(&b, Bytes({0x0A, 0x02, 0x05, 0x00, 0x08, 0x02})));
  EXPECT_EQ(Hex(WireOf(b)), "0A 03 01 00 01");
  ArrayFloat f;
  ASSERT_TRUE(ParseInto(&f, Bytes({0x0D, 0x00, 0x00, 0x80, 0x3F, 0x0D, 0x00, 0x00, 0x00, 0x40})));
  EXPECT_EQ(Hex(WireOf(f)), "0A 08 00 00 80 3F 00 00 00 40");
  EXPECT_FALSE(ParseInto(&f, Bytes({0x0A, 0x03, 0x00, 0x00, 0x80})));
}

// After an unpacked element the reader goes on with the packed tag while the
// field has spare capacity, so a packed run that follows has its length taken
// as an element.
TEST(PackedArrays, UnpackedElementContinuesWithThePackedTag) {
  const std::string input = Bytes({0x08, 0x05, 0x0A, 0x02, 0x01, 0x02});
  ArrayInt16 i16;
  EXPECT_FALSE(i16.ParseFromString(input));
  ASSERT_EQ(i16.int16_content_size(), 2);
  EXPECT_EQ(i16.int16_content(1), 2);

  // Fixed-width elements continue only while a whole element follows.
  ArrayFloat f;
  ASSERT_TRUE(f.ParseFromString(Bytes({0x0D, 0x00, 0x00, 0x80, 0x3F, 0x0A, 0x00, 0x00, 0x00, 0x40})));
  EXPECT_EQ(Hex(WireOf(f)), "0A 08 00 00 80 3F 00 00 00 40");
  ArrayFloat short_tail;
  EXPECT_TRUE(short_tail.ParseFromString(Bytes({0x0D, 0x00, 0x00, 0x80, 0x3F, 0x0A, 0x00})));
  EXPECT_EQ(short_tail.float_content_size(), 1);
  // A continuation tag at the very end has no element behind it.
  ArrayInt16 cut;
  EXPECT_FALSE(cut.ParseFromString(Bytes({0x08, 0x05, 0x0A})));
  EXPECT_EQ(cut.int16_content_size(), 1);
}

// The writers take the length prefix from the last ByteSizeLong().
TEST(PackedArrays, ElementsChangedAfterSizingKeepTheOldLength) {
  ArrayInt16 i16;
  i16.add_int16_content(1);
  i16.add_int16_content(2);
  EXPECT_EQ(i16.ByteSizeLong(), 4u);
  i16.add_int16_content(3);
  std::string bytes;
  {
    pb::io::StringOutputStream out(&bytes);
    pb::io::CodedOutputStream coded(&out);
    i16.SerializeWithCachedSizes(&coded);
  }
  EXPECT_EQ(Hex(bytes), "0A 02 01 02 03");
}

// The array serializer writes every byte into the caller's memory, even when
// a change after sizing made the output longer than the cached size, and
// returns the end of what it wrote there. Bulk, varint and nested runs alike.
TEST(PackedArrays, ArraySerializerWithAStaleSizeStaysInTheCallersMemory) {
  auto write = [](const auto& message) {
    std::string memory(600, '\xEE');
    uint8_t* begin = reinterpret_cast<uint8_t*>(memory.data());
    uint8_t* end = message.InternalSerializeWithCachedSizesToArray(false, begin);
    EXPECT_TRUE(end >= begin && end <= begin + memory.size());
    memory.resize(end >= begin && end <= begin + memory.size() ? size_t(end - begin) : 0);
    return memory;
  };
  ArrayInt16 i16;
  for (int value : {1, 2, 3}) i16.add_int16_content(value);
  EXPECT_EQ(i16.ByteSizeLong(), 5u);
  i16.add_int16_content(4);
  EXPECT_EQ(Hex(write(i16)), "0A 03 01 02 03 04");

  ArrayDouble doubles;  // grows past the stream's slop region
  doubles.add_double_content(1);
  doubles.ByteSizeLong();
  for (int n = 0; n < 40; ++n) doubles.add_double_content(2);
  const std::string wide = write(doubles);
  ASSERT_EQ(wide.size(), 2u + 41 * 8);
  EXPECT_EQ(Hex(wide.substr(0, 2)), "0A 08");
  EXPECT_EQ(wide.substr(wide.size() - 8), std::string("\0\0\0\0\0\0\0\x40", 8));

  ArrayDataUnion nested;
  nested.mutable_int32_content()->add_int32_content(7);
  nested.add_dimensions(1);
  nested.ByteSizeLong();
  nested.mutable_int32_content()->add_int32_content(8);
  nested.add_dimensions(2);
  EXPECT_EQ(Hex(write(nested)), "32 03 0A 01 07 08 82 01 01 01 02");
}

TEST(ByteArrays, OneByteStringThatIsReplacedNotAppended) {
  ArrayInt8 a;
  EXPECT_EQ(a.release_int8_content(), nullptr);
  a.set_int8_content(std::string());
  EXPECT_NE(std::unique_ptr<std::string>(a.release_int8_content()), nullptr);

  ArrayUnsignedInt8 u;
  ASSERT_TRUE(ParseInto(&u, Bytes({0x0A, 0x01, 0x01, 0x0A, 0x01, 0x02})));
  EXPECT_EQ(u.unsignedint8_content(), Bytes({0x02}));
  ArrayUnsignedInt8 source;
  u.MergeFrom(source);
  EXPECT_EQ(u.unsignedint8_content(), Bytes({0x02}));
  source.set_unsignedint8_content(Bytes({0x05}));
  u.set_unsignedint8_content(Bytes({0x01, 0x02}));
  u.MergeFrom(source);
  EXPECT_EQ(u.unsignedint8_content(), Bytes({0x05}));
  EXPECT_FALSE(ParseInto(&u, Bytes({0x0A, 0x05, 0x01})));
}

TEST(StringArray, ClearedElementsAreReusedAndMergesAppend) {
  ArrayString s;  // elements are bytes: no UTF-8 check
  ASSERT_TRUE(ParseInto(&s, Bytes({0x0A, 0x02, 0xFF, 0xC0, 0x0A, 0x00})));
  const std::string* kept = &s.string_content(0);
  s.clear_string_content();
  std::string* reused = s.add_string_content();
  EXPECT_EQ(reused, kept);
  EXPECT_TRUE(reused->empty());
  ArrayString more;
  more.add_string_content(std::string(200, 'x'));
  s.MergeFrom(more);
  ASSERT_EQ(s.string_content_size(), 2);
  EXPECT_EQ(Hex(WireOf(s).substr(0, 6)), "0A 00 0A C8 01 78");
  EXPECT_FALSE(ParseInto(&s, Bytes({0x0A, 0x05, 0x61, 0x62})));
  EXPECT_EQ(s.string_content_size(), 3);
}

TEST(ChronoArray, ElementsAreNestedMessages) {
  // Within an element the last value wins and unknown fields stay with it.
  ArrayChronoData parsed;
  ASSERT_TRUE(ParseInto(&parsed, Bytes({0x0A, 0x06, 0x08, 0x01, 0x08, 0x02, 0x18, 0x07})));
  EXPECT_EQ(Hex(WireOf(parsed)), "0A 04 08 02 18 07");
  // An element's field may not run past the element's length, and the bytes
  // beyond it never become a value.
  ArrayChronoData overrun;
  EXPECT_FALSE(ParseInto(&overrun, Bytes({0x0A, 0x01, 0x08, 0x01})));
  ASSERT_EQ(overrun.chrono_content_size(), 1);
  EXPECT_EQ(overrun.chrono_content(0).seconds_content(), 0);

  ArrayChronoData a;  // a merge appends copies
  a.add_chrono_content()->set_seconds_content(4);
  a.MergeFrom(parsed);
  EXPECT_EQ(Hex(WireOf(a)), "0A 02 08 04 0A 04 08 02 18 07");

  // Each element takes one level of the input's recursion budget.
  for (int limit : {0, 1}) {
    pb::io::CodedInputStream stream(reinterpret_cast<const uint8_t*>("\x0A\x02\x08\x01"), 4);
    stream.SetRecursionLimit(limit);
    ArrayChronoData budget;
    EXPECT_EQ(budget.MergeFromCodedStream(&stream), limit == 1) << limit;
  }
}

}  // namespace
