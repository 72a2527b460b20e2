// The variant unions: a set member is written whatever its value, repeated
// and conflicting occurrences on the wire, and the member accessors (a member
// left behind by a switch shows up as a leak in the sanitized build).

#include <memory>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using mav_test::Bytes;
using mav_test::Hex;
using mav_test::ParseInto;
using mav_test::WireOf;
using U = ScalarDataUnion;

TEST(ScalarDataUnion, SetMemberIsWrittenWhateverItsValue) {
  U u;
  EXPECT_EQ(WireOf(u), "");
  u.set_float_content(0);
  EXPECT_EQ(Hex(WireOf(u)), "15 00 00 00 00");
  u.set_int8_content(-1);  // sign-extended: nothing narrows to eight bits
  EXPECT_EQ(Hex(WireOf(u)), "20 FF FF FF FF FF FF FF FF FF 01");
  u.mutable_timepoint_content();
  EXPECT_EQ(Hex(WireOf(u)), "82 01 00");
  U read;
  ASSERT_TRUE(ParseInto(&read, WireOf(u)));
  EXPECT_EQ(read.content_case(), U::kTimePointContent);
}

TEST(ScalarDataUnion, AccessorsSwitchMembers) {
  U u;
  u.set_float_content(1);
  u.set_string_content("a");
  EXPECT_EQ(u.float_content(), 0);
  u.clear_float_content();  // another member is set: no effect
  EXPECT_EQ(u.string_content(), "a");
  u.mutable_complexfloat_content()->set_re_content(2);
  u.set_int32_content(7);
  EXPECT_EQ(u.complexfloat_content().re_content(), 0);
  u.set_string_content(std::string(40, 's'));
  u.set_allocated_duration_content(nullptr);
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);

  // Adopting a string over a message, then null.
  u.mutable_timepoint_content()->set_seconds_content(9);
  u.set_allocated_string_content(new std::string("r"));
  EXPECT_EQ(u.string_content(), "r");
  u.set_allocated_string_content(nullptr);
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);

  // The union holds the adopted string itself and hands that one back.
  auto* adopted = new std::string(100, 'p');
  u.set_float_content(1);
  u.set_allocated_string_content(adopted);
  EXPECT_EQ(&u.string_content(), adopted);
  EXPECT_EQ(u.mutable_string_content(), adopted);
  std::unique_ptr<std::string> back(u.release_string_content());
  EXPECT_EQ(back.get(), adopted);
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);
  u.mutable_string_content();  // set, though still the shared empty string
  back.reset(u.release_string_content());
  EXPECT_TRUE(back != nullptr && back->empty());

  u.mutable_complexfloat_content()->set_im_content(3);
  std::unique_ptr<ComplexFloat> released(u.release_complexfloat_content());
  EXPECT_EQ(released ? released->im_content() : 0, 3);
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);
  EXPECT_EQ(u.release_complexfloat_content(), nullptr);
}

// Members made by every form of new are adopted and freed by the union and by
// the runtime's reflection alike; an arena's member stays the arena's.
TEST(ScalarDataUnion, MembersFromEveryFormOfNewAreFreedWhereTheyWereMade) {
  U u;
  u.set_allocated_duration_content(new (std::nothrow) ChronoData);
  u.set_int32_content(1);
  const auto* reflection = u.GetReflection();
  const auto* field = U::descriptor()->FindFieldByName("complexFloat_content");
  reflection->SetAllocatedMessage(&u, new ComplexFloat, field);
  reflection->ClearOneof(&u, field->containing_oneof());
  reflection->SetAllocatedMessage(&u, new (std::nothrow) ComplexFloat, field);
  std::unique_ptr<google::protobuf::Message> released(reflection->ReleaseMessage(&u, field));
  EXPECT_EQ(released->GetDescriptor(), ComplexFloat::descriptor());
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);

  google::protobuf::Arena arena;
  auto* in_arena = ChronoData::default_instance().New(&arena);
  in_arena->set_seconds_content(5);
  EXPECT_EQ(in_arena->seconds_content(), 5);
}

TEST(ScalarDataUnion, ParseReplacesScalarsMergesMessagesAndKeepsStrangers) {
  U u;  // float 1, then int8 5; then "ab" replaced by "c"
  ASSERT_TRUE(ParseInto(&u, Bytes({21, 0, 0, 0x80, 0x3F, 32, 5})));
  EXPECT_EQ(Hex(WireOf(u)), Hex(Bytes({32, 5})));
  ASSERT_TRUE(ParseInto(&u, Bytes({10, 2, 'a', 'b', 10, 1, 'c'})));
  EXPECT_EQ(u.string_content(), "c");

  // re 1, then im 2 in a second occurrence: one pair. A scalar in between
  // drops it, so im 3 starts a fresh pair.
  ASSERT_TRUE(ParseInto(&u, Bytes({106, 5, 13, 0, 0, 0x80, 0x3F, 106, 5, 21, 0, 0, 0, 0x40})));
  EXPECT_EQ(Hex(WireOf(u)), Hex(Bytes({106, 10, 13, 0, 0, 0x80, 0x3F, 21, 0, 0, 0, 0x40})));
  ASSERT_TRUE(ParseInto(&u, Bytes({48, 1, 106, 5, 21, 0, 0, 0x40, 0x40})));
  EXPECT_EQ(Hex(WireOf(u)), Hex(Bytes({106, 5, 21, 0, 0, 0x40, 0x40})));

  // Field 2 and field 16 as varints are unknown fields, written last.
  u.set_int32_content(3);
  ASSERT_TRUE(ParseInto(&u, Bytes({16, 7, 0x80, 0x01, 5})));
  EXPECT_EQ(Hex(WireOf(u)), Hex(Bytes({48, 3, 16, 7, 0x80, 0x01, 5})));

  U failed;  // an over-long varint cannot be read: the oneof is left empty
  failed.set_string_content("x");
  EXPECT_FALSE(ParseInto(&failed, Bytes({32}) + std::string(10, '\xFF')));
  EXPECT_EQ(failed.content_case(), U::CONTENT_NOT_SET);
}

TEST(ArrayDataUnion, ChronoMembersAreWrittenAfterTheShape) {
  ArrayDataUnion u;
  u.mutable_double_content();
  u.set_dataorder("F");
  u.add_dimensions(300);
  EXPECT_EQ(Hex(WireOf(u)), "1A 00 7A 01 46 82 01 02 AC 02");
  u.mutable_timepoint_content();
  EXPECT_EQ(Hex(WireOf(u)), "7A 01 46 82 01 02 AC 02 92 01 00");
}

// Short shapes and long ones are written apart; both must give the one
// packed form, with one- and five-byte extents.
TEST(ArrayDataUnion, ShapesOfAnyLengthWriteThePackedForm) {
  for (uint32_t extent : {3u, 0xFFFFFFFFu}) {
    for (int axes = 0; axes <= 7; ++axes) {
      SCOPED_TRACE(axes);
      ArrayDataUnion u;
      std::string payload;
      for (int axis = 0; axis < axes; ++axis) {
        u.add_dimensions(extent + axis);
        google::protobuf::io::StringOutputStream out(&payload);
        google::protobuf::io::CodedOutputStream(&out).WriteVarint32(extent + axis);
      }
      const std::string expected =
          axes == 0 ? "" : Bytes({0x82, 0x01, static_cast<int>(payload.size())}) + payload;
      EXPECT_EQ(Hex(WireOf(u)), Hex(expected));
      EXPECT_EQ(u.ByteSizeLong(), expected.size());
    }
  }
}

TEST(ArrayDataUnion, DimensionFormsAndMergeFrom) {
  ArrayDataUnion dims;  // packed, unpacked, unpacked: all appended
  ASSERT_TRUE(ParseInto(&dims, Bytes({0x82, 0x01, 1, 9, 0x80, 0x01, 5, 0x80, 0x01, 7})));
  EXPECT_EQ(Hex(WireOf(dims)), Hex(Bytes({0x82, 0x01, 3, 9, 5, 7})));
  // The unpacked reader goes on under the packed tag while capacity is
  // spare: a packed run right after an unpacked 5 has its length (2) read as
  // a value, and its first value then reads as field 0.
  dims.Clear();
  EXPECT_FALSE(dims.ParseFromString(Bytes({0x80, 0x01, 5, 0x82, 0x01, 2, 2, 3})));
  EXPECT_EQ(Hex(WireOf(dims)), Hex(Bytes({0x82, 0x01, 2, 5, 2})));

  ArrayDataUnion target, source;
  target.add_dimensions(4);
  target.set_dataorder("R");
  target.mutable_float_content()->add_float_content(1);
  source.add_dimensions(1);
  source.mutable_float_content()->add_float_content(2);
  target.MergeFrom(source);
  EXPECT_EQ(Hex(WireOf(target)), Hex(Bytes({18, 10, 10, 8, 0, 0, 0x80, 0x3F, 0, 0, 0, 0x40,
                                            122, 1, 'R', 0x82, 0x01, 2, 4, 1})));
  source.mutable_timepoint_content()->add_chrono_content()->set_seconds_content(1);
  target.MergeFrom(source);  // another member replaces the float array with a copy
  target.MergeFrom(ArrayDataUnion());
  EXPECT_NE(&target.timepoint_content(), &source.timepoint_content());
  EXPECT_EQ(Hex(WireOf(target)), Hex(Bytes({122, 1, 'R', 0x82, 0x01, 3, 4, 1, 1, 0x92, 0x01, 4, 10, 2, 8, 1})));
}

}  // namespace
