// The string serializers of the library's classes grow the string piece by
// piece; they must give exactly the runtime's bytes, appended after what the
// string held, at every size around the pieces' edges.

#include <gtest/gtest.h>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;

TEST(StringSerializers, MatchTheRuntimeAndAppend) {
  for (int count : {0, 1, 2040, 2046, 2048, 5000, 70000}) {
    SCOPED_TRACE(count);
    KVariant value;
    auto* elements = value.mutable_array_data()->mutable_double_content();
    for (int i = 0; i < count; ++i) elements->add_double_content(i * 0.5);
    value.mutable_array_data()->add_dimensions(static_cast<uint32_t>(count));
    const pb::MessageLite& base = value;
    const std::string expected = base.SerializeAsString();

    std::string out = "old";
    ASSERT_TRUE(value.SerializeToString(&out));
    EXPECT_EQ(out, expected);
    std::string appended = "prefix";
    ASSERT_TRUE(value.AppendToString(&appended));
    EXPECT_EQ(appended, "prefix" + expected);
    EXPECT_EQ(value.SerializeAsString(), expected);
  }
}

}  // namespace
