// The two-field value messages on the wire, and the copy, move, merge,
// unknown-field and failure rules that every message class shares.

#include <google/protobuf/arena.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;

// Zero is decided numerically: -0.0 vanishes on the wire and in merges, NaN
// travels.
TEST(ValueMessages, FloatPairsOnTheWire) {
  ComplexFloat f;
  f.set_re_content(-0.0f);
  EXPECT_EQ(f.ByteSizeLong(), 0u);
  EXPECT_EQ(WireOf(f), "");
  f.set_im_content(std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(Hex(WireOf(f)), "15 00 00 C0 7F");
  ComplexFloat target;
  target.set_re_content(3.0f);
  target.MergeFrom(f);
  EXPECT_EQ(target.re_content(), 3.0f);
  EXPECT_TRUE(std::isnan(target.im_content()));
}

// Copy construction copies bits; copy assignment is Clear + MergeFrom, which
// loses a -0.0. Moves carry the unknown fields along.
TEST(MessageContract, CopyAndMove) {
  ComplexDouble source;
  source.set_re_content(-0.0);
  source.set_im_content(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::signbit(ComplexDouble(source).re_content()));
  ComplexDouble assigned;
  assigned.set_re_content(7.0);
  assigned = source;
  EXPECT_FALSE(std::signbit(assigned.re_content()));
  EXPECT_TRUE(std::isnan(assigned.im_content()));

  ComplexFloat moved_from;
  ASSERT_TRUE(ParseInto(&moved_from, Bytes({0x0D, 0, 0, 0x80, 0x3F, 0x18, 0x01})));
  ComplexFloat moved(std::move(moved_from));
  EXPECT_EQ(Hex(WireOf(moved)), "0D 00 00 80 3F 18 01");
  EXPECT_EQ(WireOf(moved_from), "");

  ComplexFloat other;
  other.set_im_content(4.0f);
  other = std::move(moved);
  EXPECT_EQ(Hex(WireOf(other)), "0D 00 00 80 3F 18 01");
  EXPECT_EQ(Hex(WireOf(moved)), "15 00 00 80 40");  // a move assignment swaps
}

// Unknown fields are copied, appended by a merge and dropped by Clear.
TEST(MessageContract, UnknownFieldsFollowTheMessage) {
  const std::string unknown = Bytes({0x08, 0x05, 0x80, 0x01, 0x02});  // field 1 as a varint, field 16
  ComplexFloat f;
  ASSERT_TRUE(ParseInto(&f, unknown + Bytes({0x15, 0x00, 0x00, 0x80, 0x3F})));
  ComplexFloat merged(f);
  merged.MergeFrom(f);
  EXPECT_EQ(Hex(WireOf(merged)), "15 00 00 80 3F " + Hex(unknown) + " " + Hex(unknown));
  f.Clear();
  EXPECT_EQ(f.ByteSizeLong(), 0u);
}

TEST(MessageContract, MalformedInputFailsAndKeepsWhatWasRead) {
  // End group, wire types 6 and 7, field number 0, truncated values, an
  // unclosed group.
  for (const std::string& bad : {Bytes({0x0C}), Bytes({0x1C}), Bytes({0x0E, 0x00}),
                                 Bytes({0x0F, 0x00}), Bytes({0x02, 0x00}), Bytes({0x0D, 0x00, 0x00}),
                                 Bytes({0x08, 0xFF}), Bytes({0x1B, 0x08, 0x01})}) {
    ComplexFloat f;
    EXPECT_FALSE(ParseInto(&f, bad)) << Hex(bad);
  }
  ComplexFloat kept;
  EXPECT_FALSE(ParseInto(&kept, Bytes({0x0D, 0x00, 0x00, 0x80, 0x3F, 0x0C})));
  EXPECT_EQ(kept.re_content(), 1.0f);

  // Tag 0 ends the message; what follows it is not read.
  const uint8_t input[] = {0x0D, 0x00, 0x00, 0x80, 0x3F, 0x00, 0x15, 0x00, 0x00, 0x80, 0x3F};
  pb::io::CodedInputStream stream(input, sizeof input);
  ComplexFloat ended;
  EXPECT_TRUE(ended.MergeFromCodedStream(&stream));
  EXPECT_EQ(ended.re_content(), 1.0f);
  EXPECT_EQ(ended.im_content(), 0.0f);
}

// The arena provides memory and destruction; the object keeps its own heap.
TEST(MessageContract, ArenaObjectsReportNoArena) {
  pb::Arena arena;
  ComplexFloat* created = ComplexFloat::default_instance().New(&arena);
  ArrayString* strings = ArrayString::default_instance().New(&arena);
  EXPECT_GE(arena.SpaceUsed(), sizeof(ComplexFloat) + sizeof(ArrayString));
  EXPECT_EQ(created->GetArena(), nullptr);
  EXPECT_EQ(strings->GetArena(), nullptr);
  strings->add_string_content(std::string(100, 'x'));
  ASSERT_TRUE(created->ParseFromString(Bytes({0x08, 0x05, 0x0D, 0x00, 0x00, 0x80, 0x3F})));
  EXPECT_EQ(Hex(WireOf(*created)), "0D 00 00 80 3F 08 05");
}

}  // namespace
