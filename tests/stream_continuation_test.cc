// An unpacked element followed by the packed tag reads differently in this
// library than in the plain wire format. Through a stream cut into small
// blocks, the parse context decides at each block's end whether to pull the
// next block by reading the bytes it holds in the plain way. These tests hold
// such streams to the plain reading (what the generic runtime gives), and
// check that a successful parse has taken the whole stream, through each of
// the runtime's stream entry points.

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Mav.pb.h"
#include "fuzz_support.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
namespace pb = google::protobuf;
using namespace mav_test;

struct ArrayCase {
  const pb::Message* prototype;
  std::string element;  // one element under its unpacked tag
};

std::vector<ArrayCase> NineArrays() {
  const std::string varint = Bytes({0x08, 0x01});
  const std::string fixed32 = Bytes({0x0D, 0x00, 0x00, 0x80, 0x3F});
  const std::string fixed64 = Bytes({0x09, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F});
  return {{&ArrayBool::default_instance(), varint},
          {&ArrayInt16::default_instance(), varint},
          {&ArrayUnsignedInt16::default_instance(), varint},
          {&ArrayInt32::default_instance(), varint},
          {&ArrayUnsignedInt32::default_instance(), varint},
          {&ArrayInt64::default_instance(), varint},
          {&ArrayUnsignedInt64::default_instance(), varint},
          {&ArrayFloat::default_instance(), fixed32},
          {&ArrayDouble::default_instance(), fixed64}};
}

// Inputs where the plain reading and the continuation disagree on where a
// zero byte stands: after a packed tag the plain reading takes a length and
// skips that many bytes, the continuation takes one element.
std::vector<std::string> Inputs(const std::string& element) {
  std::string repeated;
  for (int count = 0; count < 20; ++count) repeated += element;
  return {
      element + Bytes({0x0A, 0x01, 0x10, 0x00}) + repeated,   // a zero the plain reading skips
      element + Bytes({0x0A, 0x0A, 0x00, 0x60, 0x18, 0xFF}),  // a zero it reads as a tag
      element + Bytes({0x0A, 0x02, 0x00, 0x00}) + repeated + Bytes({0x00}) + repeated,
      repeated + element + Bytes({0x0A, 0x03, 0x01, 0x02, 0x03}) + repeated + Bytes({0x00}),
      element + Bytes({0x0A, 0x05, 0x00}) + repeated,
  };
}

TEST(StreamContinuation, SmallBlocksReadTheUnpackedElementsPlainly) {
  mav_fuzz::Generic generic;
  pb::LogSilencer quiet;
  for (const ArrayCase& array : NineArrays()) {
    const pb::Descriptor* type = array.prototype->GetDescriptor();
    for (const std::string& input : Inputs(array.element)) {
      std::unique_ptr<pb::Message> plain(generic.New(type));
      pb::io::CodedInputStream plain_stream(reinterpret_cast<const uint8_t*>(input.data()),
                                            static_cast<int>(input.size()));
      const bool plain_ok = plain->ParseFromCodedStream(&plain_stream) &&
                            plain_stream.ConsumedEntireMessage();
      for (int block = 1; block <= 8; ++block) {
        for (mav_fuzz::StreamEntry entry : mav_fuzz::kStreamEntries) {
          SCOPED_TRACE(type->name() + ", block " + std::to_string(block) + ", entry " +
                       std::to_string(static_cast<int>(entry)) + ": " + Hex(input));
          std::unique_ptr<pb::Message> ours(array.prototype->New());
          const auto outcome = mav_fuzz::ParseInBlocks(ours.get(), input, block, entry);
          if (outcome.runtime_check_failed) {
            // The runtime's own stream bookkeeping fails on some zero tags;
            // the library must not add to those inputs.
            std::unique_ptr<pb::Message> theirs(generic.New(type));
            EXPECT_TRUE(mav_fuzz::ParseInBlocks(theirs.get(), input, block, entry)
                            .runtime_check_failed);
            continue;
          }
          EXPECT_EQ(outcome.ok, plain_ok);
          if (outcome.ok) {
            EXPECT_TRUE(outcome.took_all);
            EXPECT_EQ(Hex(Deterministic(*ours)), Hex(Deterministic(*plain)));
          }
        }
      }
    }
  }
}

// Blocks larger than the parse context's look-ahead are read in place, and
// the continuation may then take elements inside a block. Whatever it takes,
// a parse that succeeds has read every byte, or has stopped at a zero tag
// and left the stream just past it.
TEST(StreamContinuation, LargeBlocksLeaveTheStreamWhereTheParseEnded) {
  for (const ArrayCase& array : NineArrays()) {
    for (const std::string& input : Inputs(array.element)) {
      for (int block : {17, 23, 31, 64}) {
        SCOPED_TRACE(array.prototype->GetTypeName() + ", block " + std::to_string(block) +
                     ": " + Hex(input));
        std::unique_ptr<pb::Message> ours(array.prototype->New());
        pb::io::ArrayInputStream blocks(input.data(), static_cast<int>(input.size()), block);
        bool ok, whole;
        int position;
        {
          pb::io::CodedInputStream coded(&blocks);
          ok = ours->ParseFromCodedStream(&coded);
          whole = coded.ConsumedEntireMessage();
          position = coded.CurrentPosition();
        }
        if (!ok) continue;
        if (whole) {
          EXPECT_EQ(blocks.ByteCount(), static_cast<int64_t>(input.size()));
        } else {
          ASSERT_GT(position, 0);
          EXPECT_EQ(input[static_cast<size_t>(position) - 1], '\0');
          EXPECT_EQ(blocks.ByteCount(), position);
        }
      }
    }
  }
}

}  // namespace
