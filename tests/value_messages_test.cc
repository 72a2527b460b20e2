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

  ComplexDouble d;
  d.set_re_content(-0.0);
  EXPECT_EQ(WireOf(d), "");
  d.set_re_content(1.0);
  d.set_im_content(-2.5);
  EXPECT_EQ(Hex(WireOf(d)), "09 00 00 00 00 00 00 F0 3F 11 00 00 00 00 00 00 04 C0");

  // The last occurrence of a field wins.
  ASSERT_TRUE(ParseInto(&f, Bytes({0x0D, 0x00, 0x00, 0x80, 0x3F, 0x15, 0x00, 0x00, 0x80, 0xBF,
                                   0x0D, 0x00, 0x00, 0x00, 0x40})));
  EXPECT_EQ(f.re_content(), 2.0f);
  EXPECT_EQ(f.im_content(), -1.0f);
  ASSERT_TRUE(ParseInto(&d, Bytes({0x11, 0, 0, 0, 0, 0, 0, 0x08, 0x40})));
  EXPECT_EQ(d.im_content(), 3.0);
}

// Seconds are a plain varint, so a negative count takes ten bytes.
TEST(ValueMessages, ChronoDataVarints) {
  ChronoData c;
  c.set_seconds_content(-1);
  EXPECT_EQ(Hex(WireOf(c)), "08 FF FF FF FF FF FF FF FF FF 01");
  c.set_seconds_content(0);
  c.set_fractional_content(std::numeric_limits<uint64_t>::max());
  EXPECT_EQ(Hex(WireOf(c)), "10 FF FF FF FF FF FF FF FF FF 01");
  ASSERT_TRUE(ParseInto(&c, Bytes({0x08, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                   0x01, 0x10, 0x05})));
  EXPECT_EQ(c.seconds_content(), -2);
  EXPECT_EQ(c.fractional_content(), 5u);

  ChronoData target;
  target.set_seconds_content(7);
  target.set_fractional_content(9);
  c.clear_seconds_content();
  target.MergeFrom(c);
  EXPECT_EQ(target.seconds_content(), 7);
  EXPECT_EQ(target.fractional_content(), 5u);
}

// Copy construction copies bits; copy assignment is Clear + MergeFrom, which
// loses a -0.0. Moves and swaps carry the unknown fields along.
TEST(MessageContract, CopyMoveAndSwap) {
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
  EXPECT_EQ(Hex(WireOf(moved)), "15 00 00 80 40");
  other.Swap(&moved);
  EXPECT_EQ(Hex(WireOf(other)), "15 00 00 80 40");
  EXPECT_EQ(Hex(WireOf(moved)), "0D 00 00 80 3F 18 01");
}

TEST(MessageContract, UnknownFieldsAreKeptAndWrittenAfterKnownFields) {
  // Field 1 as a varint, a two-byte tag (field 16) and a group (field 3).
  const std::string unknown = Bytes({0x08, 0x05, 0x80, 0x01, 0x02, 0x1B, 0x08, 0x01, 0x1C});
  ComplexFloat f;
  ASSERT_TRUE(ParseInto(&f, unknown + Bytes({0x15, 0x00, 0x00, 0x80, 0x3F})));
  EXPECT_EQ(f.re_content(), 0.0f);
  EXPECT_EQ(Hex(WireOf(f)), "15 00 00 80 3F " + Hex(unknown));
  EXPECT_EQ(f.ByteSizeLong(), 14u);

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
