// The string serializers of the library's classes grow the string piece by
// piece, and append long raw runs (fixed-width elements, byte arrays, text)
// straight from their source; they must give exactly the runtime's bytes,
// appended after what the string held, at every size around the pieces'
// edges.

#include <gtest/gtest.h>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace mav_test;
namespace pb = google::protobuf;

TEST(StringSerializers, MatchTheRuntimeAndAppend) {
  for (int count : {0, 1, 2040, 2046, 2048, 5000, 70000}) {
    SCOPED_TRACE(count);
    PropertyNode value;
    PropertyList* list = value.mutable_list_type();
    ArrayDataUnion* doubles = list->add_list_data()->mutable_value_type()->mutable_array_data();
    for (int i = 0; i < count; ++i) doubles->mutable_double_content()->add_double_content(i * 0.5);
    doubles->add_dimensions(static_cast<uint32_t>(count));
    list->add_list_data()->mutable_value_type()->mutable_array_data()->mutable_int8_content()->set_int8_content(
        std::string(static_cast<size_t>(count), 'b'));
    list->add_list_data()->mutable_value_type()->mutable_scalar_data()->set_string_content(
        std::string(static_cast<size_t>(count) * 3, 't'));
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
