// The variant unions on the wire: which member is written and where, how
// repeated and conflicting occurrences are read, and that a member switched
// away from is freed.

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>

#include "test_support.h"

namespace {
std::atomic<long> g_live_blocks{0};  // heap blocks alive, to catch leaked members
void Release(void* block) {
  if (block != nullptr) --g_live_blocks;
  std::free(block);
}
}  // namespace

void* operator new(std::size_t size) {
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++g_live_blocks;
  return block;
}
void operator delete(void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }

namespace {

using namespace Tarnwick::MavProtobuf;
using mav_test::Bytes;
using mav_test::Hex;
using mav_test::ParseInto;
using mav_test::WireOf;
using U = ScalarDataUnion;

TEST(ScalarDataUnion, SetMemberIsWrittenWhateverItsValueAndReadsBack) {
  EXPECT_EQ(WireOf(U()), "");
  struct Case { void (*set)(U*); U::ContentCase kind; std::string wire; };
  const Case cases[] = {
      {[](U* u) { u->set_string_content(""); }, U::kStringContent, Bytes({10, 0})},
      {[](U* u) { u->set_float_content(0); }, U::kFloatContent, Bytes({21, 0, 0, 0, 0})},
      {[](U* u) { u->set_double_content(0); }, U::kDoubleContent, Bytes({25}) + std::string(8, '\0')},
      {[](U* u) { u->set_int8_content(-1); }, U::kInt8Content, Bytes({32}) + std::string(9, '\xFF') + Bytes({1})},
      {[](U* u) { u->set_int32_content(0); }, U::kInt32Content, Bytes({48, 0})},
      {[](U* u) { u->set_int64_content(-2); }, U::kInt64Content, Bytes({56, 0xFE}) + std::string(8, '\xFF') + Bytes({1})},
      {[](U* u) { u->set_unsignedint8_content(4000); }, U::kUnsignedInt8Content, Bytes({64, 0xA0, 0x1F})},
      {[](U* u) { u->set_unsignedint32_content(~0u); }, U::kUnsignedInt32Content, Bytes({80, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F})},
      {[](U* u) { u->set_unsignedint64_content(1ull << 63); }, U::kUnsignedInt64Content, Bytes({88}) + std::string(9, '\x80') + Bytes({1})},
      {[](U* u) { u->set_bool_content(false); }, U::kBoolContent, Bytes({96, 0})},
      {[](U* u) { u->mutable_complexfloat_content(); }, U::kComplexFloatContent, Bytes({106, 0})},
      {[](U* u) { u->mutable_complexdouble_content()->set_im_content(1); }, U::kComplexDoubleContent,
       Bytes({114, 9, 17, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F})},
      {[](U* u) { u->mutable_duration_content()->set_fractional_content(5); }, U::kDurationContent, Bytes({122, 2, 16, 5})},
      {[](U* u) { u->mutable_timepoint_content(); }, U::kTimePointContent, Bytes({0x82, 0x01, 0x00})},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.kind);
    U written, read;
    c.set(&written);
    EXPECT_EQ(Hex(WireOf(written)), Hex(c.wire));
    ASSERT_TRUE(ParseInto(&read, c.wire));
    EXPECT_EQ(read.content_case(), c.kind);
    EXPECT_EQ(Hex(WireOf(read)), Hex(c.wire));
  }
}

TEST(ScalarDataUnion, AccessorsSwitchMembersAndFreeTheOldOne) {
  U u;
  const long base = g_live_blocks;
  u.set_float_content(1);
  u.set_string_content("a");
  EXPECT_EQ(u.float_content(), 0);
  u.clear_float_content();  // another member is set: no effect
  EXPECT_EQ(u.string_content(), "a");
  u.mutable_complexfloat_content()->set_re_content(2);
  u.set_int32_content(7);
  EXPECT_EQ(g_live_blocks.load(), base) << "a string or message member leaked";
  u.set_string_content(std::string(40, 's'));
  u.set_allocated_duration_content(nullptr);
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);
  EXPECT_EQ(g_live_blocks.load(), base);

  // Adopting a string over a scalar, over nothing, over a message (which must
  // be freed, not leaked), then null.
  u.set_int64_content(5);
  u.set_allocated_string_content(new std::string("p"));
  EXPECT_EQ(u.string_content(), "p");
  u.clear_content();
  u.set_allocated_string_content(new std::string("q"));
  EXPECT_EQ(u.string_content(), "q");
  u.mutable_timepoint_content()->set_seconds_content(9);
  u.set_allocated_string_content(new std::string("r"));
  EXPECT_EQ(u.string_content(), "r");
  u.set_allocated_string_content(nullptr);
  EXPECT_EQ(u.content_case(), U::CONTENT_NOT_SET);
  EXPECT_EQ(g_live_blocks.load(), base);

  u.mutable_complexfloat_content()->set_im_content(3);
  std::unique_ptr<ComplexFloat> released(u.release_complexfloat_content());
  EXPECT_EQ(released ? released->im_content() : 0, 3);
  EXPECT_EQ(u.release_complexfloat_content(), nullptr);  // nothing is set any more
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

TEST(ArrayDataUnion, MembersAreWrittenAroundTheShape) {
  // Members 1 to 14 come before the shape, 17 and 18 after it.
  const auto* content = ArrayDataUnion::descriptor()->FindOneofByName("content");
  ASSERT_EQ(content->field_count(), 16);
  for (int i = 0; i < content->field_count(); ++i) {
    const google::protobuf::FieldDescriptor* field = content->field(i);
    SCOPED_TRACE(field->name());
    ArrayDataUnion written, read;
    written.GetReflection()->MutableMessage(&written, field);
    written.add_dimensions(1);
    const int tag = field->number() << 3 | 2;
    const std::string member = (tag < 128 ? Bytes({tag}) : Bytes({(tag & 0x7F) | 0x80, tag >> 7})) + Bytes({0});
    const std::string shape = Bytes({0x82, 0x01, 1, 1});
    const std::string wire = field->number() < 15 ? member + shape : shape + member;
    EXPECT_EQ(Hex(WireOf(written)), Hex(wire));
    ASSERT_TRUE(ParseInto(&read, wire));
    EXPECT_EQ(read.content_case(), field->number());
    EXPECT_EQ(Hex(WireOf(read)), Hex(wire));
  }

  // Member, dataorder, shape. A zero extent is still a value, the packed
  // length counts bytes, and one element under a 0x300 shape is carried as is.
  const std::string odd =
      Bytes({26, 10, 10, 8, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 122, 1, 'F', 0x82, 0x01, 3, 0, 0xAC, 2});
  ArrayDataUnion u, read;
  u.mutable_double_content()->add_double_content(1);
  u.set_dataorder("F");
  u.add_dimensions(0);
  u.add_dimensions(300);
  EXPECT_EQ(Hex(WireOf(u)), Hex(odd));
  ASSERT_TRUE(ParseInto(&read, odd));
  EXPECT_EQ(Hex(WireOf(read)), Hex(odd));
}

TEST(ArrayDataUnion, RepeatedOccurrencesDimensionFormsAndMergeFrom) {
  ArrayDataUnion u;  // float {1}, dataorder R, float {2}, dataorder C, int8 "a" then "b"
  ASSERT_TRUE(ParseInto(&u, Bytes({18, 6, 10, 4, 0, 0, 0x80, 0x3F, 122, 1, 'R',
                                   18, 6, 10, 4, 0, 0, 0, 0x40, 122, 1, 'C'})));
  EXPECT_EQ(Hex(WireOf(u)), Hex(Bytes({18, 10, 10, 8, 0, 0, 0x80, 0x3F, 0, 0, 0, 0x40, 122, 1, 'C'})));
  ASSERT_TRUE(ParseInto(&u, Bytes({34, 3, 10, 1, 'a', 34, 3, 10, 1, 'b'})));
  EXPECT_EQ(u.int8_content().int8_content(), "b");

  ArrayDataUnion dims;  // unpacked, unpacked, packed: all appended
  ASSERT_TRUE(ParseInto(&dims, Bytes({0x80, 0x01, 5, 0x80, 0x01, 7, 0x82, 0x01, 1, 9})));
  EXPECT_EQ(Hex(WireOf(dims)), Hex(Bytes({0x82, 0x01, 3, 5, 7, 9})));
  // The unpacked reader goes on under the packed tag while capacity is
  // spare: a packed run right after an unpacked 5 has its length (2) read as
  // a value, and its first value then reads as field 0.
  dims.Clear();
  EXPECT_FALSE(ParseInto(&dims, Bytes({0x80, 0x01, 5, 0x82, 0x01, 2, 2, 3})));
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

TEST(KVariant, LaterMemberWinsSameMemberMergesStrangersGoLast) {
  KVariant v;  // scalar, then array: the scalar is dropped
  ASSERT_TRUE(ParseInto(&v, Bytes({10, 2, 48, 1, 18, 0})));
  EXPECT_EQ(Hex(WireOf(v)), Hex(Bytes({18, 0})));
  v.clear_data();
  const long base = g_live_blocks;
  v.mutable_array_data()->mutable_double_content()->add_double_content(1);
  v.mutable_scalar_data()->set_string_content(std::string(40, 'v'));
  v.set_allocated_array_data(nullptr);
  EXPECT_EQ(v.data_case(), KVariant::DATA_NOT_SET);
  EXPECT_EQ(g_live_blocks.load(), base) << "the array or the scalar leaked";

  // Field 1 twice: re 1 and im 2 land in one pair.
  ASSERT_TRUE(ParseInto(&v, Bytes({10, 7, 106, 5, 13, 0, 0, 0x80, 0x3F, 10, 7, 106, 5, 21, 0, 0, 0, 0x40})));
  EXPECT_EQ(Hex(WireOf(v)), Hex(Bytes({10, 12, 106, 10, 13, 0, 0, 0x80, 0x3F, 21, 0, 0, 0, 0x40})));

  KVariant stranger;  // field 1 as varint is unknown; an empty field 3 is not written
  ASSERT_TRUE(ParseInto(&stranger, Bytes({8, 1, 26, 0, 18, 0})));
  EXPECT_EQ(Hex(WireOf(stranger)), Hex(Bytes({18, 0, 8, 1})));
  stranger.set_wellknowntype("w");
  EXPECT_EQ(Hex(WireOf(stranger)), Hex(Bytes({18, 0, 26, 1, 'w', 8, 1})));
}

}  // namespace
