// Built as C++20: spans go in as data and shapes and come out of views.
#include <gtest/gtest.h>

#include "MavValues.h"

#ifndef MAV_PROTOBUF_HAS_SPAN
#error "this test is built as C++20 and needs std::span"
#endif

namespace {

using namespace Tarnwick::MavProtobuf;

TEST(ValuesSpan, SpansInAndOut) {
  const std::vector<float> values = {1, 2, 3, 4, 5, 6};
  const std::array<uint32_t, 2> extents = {3, 2};
  KVariant variant;
  SetArray(variant, std::span<const float>(values), Shape(std::span<const uint32_t>(extents)));
  const std::span<const float> view = ViewArray<float>(variant).span();
  EXPECT_TRUE(std::equal(view.begin(), view.end(), values.begin(), values.end()));
  EXPECT_EQ(view.data(), variant.array_data().float_content().float_content().data());
  EXPECT_EQ(ShapeOf(variant), Shape({3, 2}));
}

}  // namespace
