// Every kind, scalar and array, written through the value layer, sent over
// the wire and read back; and the wire bytes that pin the mapping.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "MavValues.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace std::chrono_literals;
using mav_test::Bytes;
using mav_test::Hex;

template <typename T>
std::vector<T> Samples() {
  if constexpr (std::is_same_v<T, std::string>) {
    return {"", "det1", "\xC3\xBC", std::string("a\0b", 3), "x", std::string(300, 'y')};
  } else if constexpr (std::is_same_v<T, bool>) {
    return {true, false, false, true, true, false};
  } else if constexpr (std::is_floating_point_v<T>) {
    using L = std::numeric_limits<T>;
    return {0, T(-1.5), L::infinity(), L::max(), L::denorm_min(), -L::infinity()};
  } else if constexpr (std::is_integral_v<T>) {
    using L = std::numeric_limits<T>;
    return {0, L::min(), L::max(), T(1), T(L::max() / 3), T(L::min() / 2 + 1)};
  } else if constexpr (std::is_same_v<T, std::chrono::nanoseconds>) {
    return {0ns, -1ns, 1500ms, -2500ms, 365 * 24h, 999999999ns};
  } else if constexpr (std::is_same_v<T, SystemTime>) {
    return {SystemTime(0s), SystemTime(-1ns), SystemTime(1'798'761'600'250'000'000ns),
            SystemTime(-86400s - 1ms), SystemTime(1ns), SystemTime(4'000'000'000s)};
  } else {
    using Part = typename T::value_type;
    using L = std::numeric_limits<Part>;
    return {T(0, 0), T(50, 3), T(-0.5, L::infinity()), T(L::max(), L::lowest()), T(1, -1), T(0, 1)};
  }
}

template <typename Message>
Message Reparse(const Message& message) {
  Message parsed;
  EXPECT_TRUE(parsed.ParseFromString(message.SerializeAsString()));
  return parsed;
}

template <typename T>
class EveryKind : public testing::Test {};
using AllKindTypes =
    testing::Types<std::string, float, double, int8_t, int16_t, int32_t, int64_t, uint8_t, uint16_t,
                   uint32_t, uint64_t, bool, std::complex<float>, std::complex<double>,
                   std::chrono::nanoseconds, SystemTime>;
TYPED_TEST_SUITE(EveryKind, AllKindTypes);

TYPED_TEST(EveryKind, ScalarsAndArraysComeBackEqual) {
  using T = TypeParam;
  const std::vector<T> values = Samples<T>();
  for (const T& value : values) {
    KVariant variant;
    SetValue(variant, value);
    const KVariant back = Reparse(variant);
    EXPECT_EQ(FormOf(back), Form::kScalar);
    EXPECT_EQ(KindOf(back), KindFor<T>);
    EXPECT_EQ(GetValue<T>(back), value);
    EXPECT_TRUE(Equal(variant, back));
  }

  for (Order order : {Order::kC, Order::kF}) {
    KVariant variant;
    SetArray(variant, values, {2, 3}, order);
    const KVariant back = Reparse(variant);
    EXPECT_EQ(KindOf(back), KindFor<T>);
    const Array<T> read = ReadArray<T>(back);
    EXPECT_EQ(read.values, values);
    EXPECT_EQ(read.shape, Shape({2, 3}));
    EXPECT_EQ(read.order, order);
    EXPECT_EQ(back.array_data().dataorder(), std::string(1, OrderLetter(order)));
    EXPECT_TRUE(Equal(variant, back));
  }
}

TYPED_TEST(EveryKind, AnotherKindIsRefusedNamingBoth) {
  using T = TypeParam;
  KVariant variant;
  SetValue(variant, T(Samples<T>()[1]));
  const bool is_float64 = std::is_same_v<T, double>;
  try {
    if (is_float64) {
      GetValue<float>(variant);
    } else {
      GetValue<double>(variant);
    }
    FAIL() << "read as another kind";
  } catch (const ValueError& error) {
    EXPECT_NE(std::string(error.what()).find(KindName(KindFor<T>)), std::string::npos) << error.what();
  }
  EXPECT_THROW(ReadArray<T>(variant), ValueError);
}

TEST(ValuesWire, Uint16ArrayIsPackedVarintsInItsOwnMember) {
  KVariant variant;
  SetArray(variant, std::vector<uint16_t>{1, 300}, {2});
  EXPECT_EQ(Hex(variant.array_data().SerializeAsString()),
            Hex(Bytes({0x4A, 5, 0x0A, 3, 0x01, 0xAC, 0x02,  // unsignedInt16_content, packed
                       0x7A, 1, 'C',                        // dataorder
                       0x82, 0x01, 1, 2})));                // dimensions
}

TEST(ValuesWire, ComplexArrayIsInterleavedAndInt8ScalarIsWidened) {
  KVariant variant;
  SetArray(variant, std::vector<std::complex<float>>{{1, 2}}, {1});
  const ArrayFloat& parts = variant.array_data().complexfloat_content();
  ASSERT_EQ(parts.float_content_size(), 2);
  EXPECT_EQ(parts.float_content(0), 1.0f);
  EXPECT_EQ(parts.float_content(1), 2.0f);

  SetValue(variant, int8_t{-1});
  EXPECT_EQ(Hex(variant.scalar_data().SerializeAsString()),
            Hex(Bytes({0x20, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01})));
}

}  // namespace
