// Packed varint runs, which are counted, sized, encoded and decoded a whole
// run at a time: every varint length, runs long enough for the word-at-a-time
// paths, runs split across stream chunks at every position, and malformed
// runs. The runtime's generic implementation is the oracle for the bytes.

#include <google/protobuf/dynamic_message.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "random_messages.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;

// The runtime's reading of `bytes`, written back.
std::string RuntimeRoundTrip(const pb::Descriptor* type, const std::string& bytes) {
  static pb::DynamicMessageFactory factory;
  std::unique_ptr<pb::Message> message(factory.GetPrototype(type)->New());
  EXPECT_TRUE(message->ParseFromString(bytes));
  return message->SerializeAsString();
}

// Values whose varints take `size` bytes (1 to 10), in a few patterns.
uint64_t OfSize(int size, std::mt19937_64& random) {
  if (size == 10) return (uint64_t{1} << 63) | random();
  const uint64_t low = size == 1 ? 0 : uint64_t{1} << (7 * (size - 1));
  return low + random() % ((uint64_t{1} << (7 * size)) - low);
}

template <typename Array>
void ExpectRoundTrip(const Array& array) {
  const std::string bytes = WireOf(array);
  EXPECT_EQ(Hex(bytes), Hex(RuntimeRoundTrip(Array::descriptor(), bytes)));
  Array back;
  ASSERT_TRUE(ParseInto(&back, bytes));
  EXPECT_EQ(back.DebugString(), array.DebugString());
}

TEST(VarintRuns, EveryLengthRoundTripsAndMatchesTheRuntime) {
  std::mt19937_64 random(7);
  for (int size = 1; size <= 10; ++size) {
    for (int count : {1, 7, 64, 300}) {
      SCOPED_TRACE("size " + std::to_string(size) + ", count " + std::to_string(count));
      ArrayUnsignedInt64 u64;
      ArrayInt64 i64;
      ArrayUnsignedInt32 u32;
      ArrayInt32 i32;
      for (int i = 0; i < count; ++i) {
        // Mixed lengths in every other run, so ends fall anywhere in a word.
        const uint64_t v = OfSize(i % 2 == 0 || count == 64 ? size : 1 + i % 10, random);
        u64.add_unsignedint64_content(v);
        i64.add_int64_content(static_cast<int64_t>(v));
        u32.add_unsignedint32_content(static_cast<uint32_t>(v));
        i32.add_int32_content(static_cast<int32_t>(v));
      }
      ExpectRoundTrip(u64);
      ExpectRoundTrip(i64);
      ExpectRoundTrip(u32);
      ExpectRoundTrip(i32);
    }
  }
}

// Packed runs of several lengths, one after another, read through streams of
// every chunk size from 1 to 80 bytes and of larger ones: so the runs and
// their varints end at every position relative to a chunk's end, and with the
// larger chunks some runs lie wholly in the buffer and are decoded at once.
TEST(VarintRuns, ChunkedStreamsReadWhatTheFlatBufferReads) {
  std::string bytes;
  int value = 0;
  for (int length : {200, 5, 37, 64, 150, 1}) {
    ArrayUnsignedInt16 run;
    for (int i = 0; i < length; ++i, ++value) run.add_unsignedint16_content(static_cast<uint32_t>(value * 977 % 70000));
    bytes += run.SerializeAsString();
  }
  ArrayUnsignedInt16 flat;
  ASSERT_TRUE(flat.ParseFromString(bytes));
  ASSERT_EQ(flat.unsignedint16_content_size(), value);
  for (int chunk = 1; chunk <= 1200; chunk += chunk < 80 ? 1 : 13) {
    pb::io::ArrayInputStream in(bytes.data(), static_cast<int>(bytes.size()), chunk);
    ArrayUnsignedInt16 back;
    ASSERT_TRUE(back.ParseFromZeroCopyStream(&in)) << chunk;
    EXPECT_EQ(back.DebugString(), flat.DebugString()) << chunk;
  }
}

TEST(VarintRuns, MalformedRunsFailAndKeepTheElementsBefore) {
  ArrayInt64 array;
  for (int i = 0; i < 100; ++i) array.add_int64_content(i % 3 == 0 ? -i : i * 1000);
  const std::string bytes = array.SerializeAsString();
  // Cut anywhere: the run promises bytes that are not there.
  for (size_t cut = 1; cut < bytes.size(); ++cut) {
    ArrayInt64 back;
    EXPECT_FALSE(ParseInto(&back, bytes.substr(0, cut))) << cut;
  }
  // The last varint of a run ends past the run's length.
  const std::string cut_last = Bytes({0x0A, 0x03, 0x01, 0x02, 0x83, 0x01});
  ArrayInt64 short_run;
  EXPECT_FALSE(ParseInto(&short_run, cut_last));
  // An eleven-byte varint early or deep in a long run, read flat and chunked
  // alike.
  for (int before : {20, 60}) {
    std::string overlong = std::string(before, '\x01') + std::string(10, '\xFF') + '\x01' + std::string(80, '\x02');
    const int size = static_cast<int>(overlong.size());
    overlong = Bytes({0x0A, (size & 0x7F) | 0x80, size >> 7}) + overlong;
    ArrayUnsignedInt32 flat, chunked;
    EXPECT_FALSE(flat.ParseFromString(overlong));
    pb::io::ArrayInputStream in(overlong.data(), static_cast<int>(overlong.size()), 3);
    EXPECT_FALSE(chunked.ParseFromZeroCopyStream(&in));
    EXPECT_EQ(flat.unsignedint32_content_size(), before);
    EXPECT_EQ(chunked.DebugString(), flat.DebugString());
  }
  // Ten bytes are the most a varint may take; bits past the 64th are dropped.
  ArrayUnsignedInt64 longest;
  std::string ten = std::string(9, '\xFF') + '\x7F';
  ASSERT_TRUE(ParseInto(&longest, Bytes({0x0A, 10}) + ten));
  EXPECT_EQ(longest.unsignedint64_content(0), ~uint64_t{0});
}

// A run is sized from its bytes only once they are all at hand: the field ends
// with exactly the room its elements need, and a length that promises more
// than the input holds allocates nothing for it.
TEST(VarintRuns, RunsAreSizedFromTheirBytesNotTheirLength) {
  ArrayUnsignedInt16 array;
  for (int i = 0; i < 5000; ++i) array.add_unsignedint16_content(static_cast<uint32_t>(i));
  ArrayUnsignedInt16 back;
  ASSERT_TRUE(back.ParseFromString(array.SerializeAsString()));
  EXPECT_EQ(back.unsignedint16_content().Capacity(), 5000);

  ArrayUnsignedInt16 hostile;
  EXPECT_FALSE(hostile.ParseFromString(Bytes({0x0A, 0xF0, 0xFF, 0xFF, 0xFF, 0x07, 0x01, 0x02})));
  EXPECT_LE(hostile.unsignedint16_content().Capacity(), 4);
}

}  // namespace
