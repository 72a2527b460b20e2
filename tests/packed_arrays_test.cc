// The nine packed numeric arrays as one family: what every member must do
// alike, whatever its element width or the runtime's growth policy.

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;

pb::RepeatedField<float>* Elements(ArrayFloat* a) { return a->mutable_float_content(); }
pb::RepeatedField<double>* Elements(ArrayDouble* a) { return a->mutable_double_content(); }
pb::RepeatedField<int32_t>* Elements(ArrayInt16* a) { return a->mutable_int16_content(); }
pb::RepeatedField<int32_t>* Elements(ArrayInt32* a) { return a->mutable_int32_content(); }
pb::RepeatedField<int64_t>* Elements(ArrayInt64* a) { return a->mutable_int64_content(); }
pb::RepeatedField<uint32_t>* Elements(ArrayUnsignedInt16* a) { return a->mutable_unsignedint16_content(); }
pb::RepeatedField<uint32_t>* Elements(ArrayUnsignedInt32* a) { return a->mutable_unsignedint32_content(); }
pb::RepeatedField<uint64_t>* Elements(ArrayUnsignedInt64* a) { return a->mutable_unsignedint64_content(); }
pb::RepeatedField<bool>* Elements(ArrayBool* a) { return a->mutable_bool_content(); }
void Add(ArrayFloat* a, float v) { a->add_float_content(v); }
void Add(ArrayDouble* a, double v) { a->add_double_content(v); }
void Add(ArrayInt16* a, int32_t v) { a->add_int16_content(v); }
void Add(ArrayInt32* a, int32_t v) { a->add_int32_content(v); }
void Add(ArrayInt64* a, int64_t v) { a->add_int64_content(v); }
void Add(ArrayUnsignedInt16* a, uint32_t v) { a->add_unsignedint16_content(v); }
void Add(ArrayUnsignedInt32* a, uint32_t v) { a->add_unsignedint32_content(v); }
void Add(ArrayUnsignedInt64* a, uint64_t v) { a->add_unsignedint64_content(v); }
void Add(ArrayBool* a, bool v) { a->add_bool_content(v); }

template <typename Array>
using ElementOf = typename std::remove_pointer_t<decltype(Elements(std::declval<Array*>()))>::value_type;

// One element as it travels: its wire image, after the tag of the unpacked
// form for `unpacked`.
template <typename T>
std::string Element(T value, bool unpacked) {
  std::string bytes;
  if constexpr (std::is_floating_point_v<T>) {
    if (unpacked) bytes.push_back(sizeof(T) == 4 ? 0x0D : 0x09);
    bytes.append(reinterpret_cast<const char*>(&value), sizeof(T));
  } else {
    if (unpacked) bytes.push_back(0x08);
    bytes.push_back(static_cast<char>(value));  // small values only
  }
  return bytes;
}

template <typename Array>
class PackedArrayFamily : public testing::Test {};
using PackedArrays = testing::Types<ArrayFloat, ArrayDouble, ArrayInt16, ArrayInt32, ArrayInt64,
                                    ArrayUnsignedInt16, ArrayUnsignedInt32, ArrayUnsignedInt64,
                                    ArrayBool>;
TYPED_TEST_SUITE(PackedArrayFamily, PackedArrays);

// An unpacked 5 followed by a packed run of 1, 2 (0A 02 01 02 for the varint
// members): the reader continues under the packed tag, reads the run's length
// 2 as an element and then fails on the byte 01 (field number 0).
TYPED_TEST(PackedArrayFamily, UnpackedElementThenPackedRunReadsTheLengthAsAnElement) {
  using T = ElementOf<TypeParam>;
  std::string input = Element<T>(5, true) + "\x0A" + Element<T>(2, false) + Bytes({0x01, 0x02});
  if constexpr (std::is_floating_point_v<T>) input += std::string(sizeof(T), '\0');
  TypeParam array;
  EXPECT_FALSE(array.ParseFromString(input)) << Hex(input);
  ASSERT_EQ(Elements(&array)->size(), 2);
  EXPECT_EQ(Elements(&array)->Get(0), T(5));
  EXPECT_EQ(Elements(&array)->Get(1), T(2));
}

// The continuation depends on spare capacity, so every way a field first gets
// storage gives it room for four elements.
TYPED_TEST(PackedArrayFamily, FirstAllocationHoldsFourElements) {
  using T = ElementOf<TypeParam>;
  TypeParam added;
  Add(&added, T(1));
  EXPECT_GE(Elements(&added)->Capacity(), 4);
  TypeParam unpacked, packed, merged;
  ASSERT_TRUE(ParseInto(&unpacked, Element<T>(1, true)));
  EXPECT_GE(Elements(&unpacked)->Capacity(), 4);
  ASSERT_TRUE(ParseInto(&packed, "\x0A" + std::string(1, char(Element<T>(1, false).size())) + Element<T>(1, false)));
  EXPECT_GE(Elements(&packed)->Capacity(), 4);
  merged.MergeFrom(added);
  EXPECT_GE(Elements(&merged)->Capacity(), 4);
  TypeParam copied(added);
  EXPECT_GE(Elements(&copied)->Capacity(), 4);
}

TEST(ArrayDataUnion, FirstDimensionAllocationHoldsFourElements) {
  ArrayDataUnion added, parsed, copied;
  added.add_dimensions(3);
  ASSERT_TRUE(ParseInto(&parsed, Bytes({0x80, 0x01, 0x03})));
  copied.MergeFrom(added);
  for (ArrayDataUnion* u : {&added, &parsed, &copied}) EXPECT_GE(u->mutable_dimensions()->Capacity(), 4);
}

}  // namespace
