// The natural JSON form: lossless round trips of random trees, the values
// the mapping must take care over, and refusals that leave the target alone.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "MavJson.h"
#include "MavValues.h"
#include "random_messages.h"

namespace mav_test {
namespace {

// Binary to JSON to binary, byte for byte; returns the JSON.
std::string ExpectLossless(const PropertyNode& tree, const JsonOptions& options = {}) {
  const std::string json = ToJson(tree, options);
  PropertyNode back;
  JsonError error;
  EXPECT_TRUE(FromJson(json, &back, &error)) << error.ToString() << "\n" << json;
  EXPECT_EQ(Hex(Deterministic(back)), Hex(Deterministic(tree))) << json;
  return json;
}

PropertyNode FromText(std::string_view json) {
  PropertyNode node;
  JsonError error;
  EXPECT_TRUE(FromJson(json, &node, &error)) << error.ToString();
  return node;
}

TEST(JsonTest, RandomTreesRoundTripByteForByte) {
  Random random(20240501);
  TreeMaker maker(&random);
  for (int i = 0; i < 400; ++i) {
    PropertyNode tree;
    maker.Node(&tree, 4);
    // What a reader of the bytes holds: the form the JSON must keep.
    PropertyNode parsed;
    ASSERT_TRUE(parsed.ParseFromString(Deterministic(tree)));
    ExpectLossless(parsed, JsonOptions{i % 2 == 0});
  }
  EXPECT_EQ(maker.scalar_kinds.size(), 16u);
  EXPECT_EQ(maker.array_kinds.size(), 16u);
}

TEST(JsonTest, PlainValuesAndTagsReadNaturally) {
  PropertyNode tree;
  SetLeaf(tree, "exposure", 0.25);
  SetLeaf(tree, "gain", uint16_t{4});
  SetLeaf(tree, "name", "det1");
  SetLeaf(tree, "on", true);
  SetLeaf(tree, "$ref", int64_t{-1});
  SetArray(Child(tree, "roi"), std::vector<int32_t>{1, 2, 3, 4}, Shape{2, 2}, Order::kF);
  EXPECT_EQ(ExpectLossless(tree),
            R"({"$$ref":{"$int64":-1},"exposure":0.25,"gain":{"$uint16":4},"name":"det1","on":true,)"
            R"("roi":{"$array":"int32","shape":[2,2],"order":"F","data":[1,2,3,4]}})");
  EXPECT_EQ(ToJson(FromText("[null, [], {}, 3]")), "[null,[],{},3.0]");
  // The empty tree, as written (with a newline) and padded with whitespace.
  for (const char* empty : {"null", "null\n", " null ", "\tnull\r\n"}) {
    PropertyNode node;
    SetLeaf(node, "old", 1.0);
    EXPECT_TRUE(FromJson(empty, &node)) << empty;
    EXPECT_EQ(node.type_case(), PropertyNode::TYPE_NOT_SET) << empty;
  }
}

TEST(JsonTest, TrickyValuesSurvive) {
  const double inf = std::numeric_limits<double>::infinity();
  PropertyNode tree;
  SetLeaf(tree, "minus zero", -0.0);
  SetArray(Child(tree, "infinities"), std::vector<double>{inf, -inf, std::nan("")});
  SetArray(Child(tree, "float32"), std::vector<float>{0.1f, -0.0f, 3.4028235e38f, 1e-45f});
  SetLeaf(tree, "int64", std::numeric_limits<int64_t>::min());
  SetLeaf(tree, "big", std::numeric_limits<uint64_t>::max());
  SetLeaf(tree, "beyond 2^53", int64_t{9007199254740993});
  SetLeaf(tree, "before epoch", std::chrono::system_clock::time_point(std::chrono::milliseconds(-1500)));
  SetLeaf(tree, "negative", std::chrono::milliseconds(-250));
  SetLeaf(tree, "complex", std::complex<double>(50, -3));
  KVariant& bytes = *Child(tree, "bytes").mutable_value_type();
  bytes.mutable_scalar_data()->set_string_content(std::string("\xff\x00\x01", 3));
  bytes.set_wellknowntype("\xfe");
  ArrayDataUnion& empty = *Child(tree, "empty array").mutable_value_type()->mutable_array_data();
  empty.mutable_double_content();
  empty.add_dimensions(0);
  empty.add_dimensions(3);
  empty.set_dataorder("C");
  ArrayDataUnion& odd = *Child(tree, "odd shape").mutable_value_type()->mutable_array_data();
  odd.mutable_unsignedint16_content()->add_unsignedint16_content(70000);
  odd.add_dimensions(5);
  Child(tree, "wide").mutable_value_type()->mutable_scalar_data()->set_int8_content(300);
  ChronoData& late = *Child(tree, "late").mutable_value_type()->mutable_scalar_data()->mutable_timepoint_content();
  late.set_seconds_content(std::numeric_limits<int64_t>::max());
  late.set_fractional_content(2000000000);
  Child(tree, "empty node");
  Child(Child(tree, "empty map"), "x").mutable_map_type();
  Child(tree, "empty list").mutable_list_type();
  Child(tree, "empty value").mutable_value_type();
  Child(tree, "empty scalar").mutable_value_type()->mutable_scalar_data();
  Child(tree, "no member").mutable_value_type()->mutable_array_data()->add_dimensions(2);

  const std::string json = ExpectLossless(tree);
  for (const char* part : {R"("minus zero":-0.0)", R"(["Infinity","-Infinity","NaN"])", R"("int64":{"$int64":-9223372036854775808})",
                           R"({"$uint64":18446744073709551615})", R"("1969-12-31T23:59:58.5Z")", R"("-0.25s")",
                           R"({"$complex128":[50.0,-3.0]})", R"({"$str":{"$base64":"/wAB"},"wellknowntype":{"$base64":"/g=="}})",
                           R"("shape":[0,3],"order":"C","data":[])", R"("dimensions":[5],"widened":true,"data":[70000])",
                           R"({"$int8":300,"widened":true})", R"([9223372036854775807,2000000000])", R"("empty node":null)",
                           R"("empty value":{"$empty":null})", R"("empty scalar":{"$scalar":null})",
                           R"("no member":{"$array":null,"dimensions":[2]})"})
    EXPECT_NE(json.find(part), std::string::npos) << part << "\n" << json;
}

// Time text is integer arithmetic over the calendar: its edges are where it
// breaks.
TEST(JsonTest, TimeTextAtTheEdgesOfTheCalendar) {
  struct Case {
    int64_t seconds;
    uint64_t nanos;
    const char* time_point;
    const char* duration;
  };
  const Case cases[] = {
      {-62135596800, 0, "\"0001-01-01T00:00:00Z\"", "\"-62135596800s\""},
      {253402300799, 999999999, "\"9999-12-31T23:59:59.999999999Z\"", "\"253402300799.999999999s\""},
      {951782400, 1000, "\"2000-02-29T00:00:00.000001Z\"", "\"951782400.000001s\""},
      {-1, 1, "\"1969-12-31T23:59:59.000000001Z\"", "\"-0.999999999s\""},
      {std::numeric_limits<int64_t>::min(), 0, "[-9223372036854775808,0]", "\"-9223372036854775808s\""},
      {-62135596801, 0, "[-62135596801,0]", "\"-62135596801s\""},
  };
  for (const Case& c : cases) {
    PropertyNode tree;
    for (const char* key : {"t", "d"}) {
      ScalarDataUnion& scalar = *Child(tree, key).mutable_value_type()->mutable_scalar_data();
      ChronoData& chrono = *(key[0] == 't' ? scalar.mutable_timepoint_content() : scalar.mutable_duration_content());
      chrono.set_seconds_content(c.seconds);
      chrono.set_fractional_content(c.nanos);
    }
    const std::string json = ExpectLossless(tree);
    EXPECT_NE(json.find(std::string("{\"$datetime64\":") + c.time_point + "}"), std::string::npos) << json;
    EXPECT_NE(json.find(std::string("{\"$timedelta64\":") + c.duration + "}"), std::string::npos) << json;
  }
  for (const char* text : {"\"1900-02-29T00:00:00Z\"", "\"2024-01-01T24:00:00Z\"", "\"2024-01-01T00:00:00\"",
                           "\"2024-01-01T00:00:00.1234567891Z\"", "\"0000-01-01T00:00:00Z\""}) {
    PropertyNode node;
    EXPECT_FALSE(FromJson(std::string("{\"$datetime64\": ") + text + "}", &node)) << text;
  }
  for (const char* text : {"\"1.5\"", "\"--1s\"", "\"9223372036854775808s\"", "\"-9223372036854775808.5s\""}) {
    PropertyNode node;
    EXPECT_FALSE(FromJson(std::string("{\"$timedelta64\": ") + text + "}", &node)) << text;
  }
}

TEST(JsonTest, UnknownFieldsAtEveryLevelSurvive) {
  Random random(7);
  PropertyNode tree;
  PropertyNode& map_node = Child(tree, "m");
  Child(map_node, "k");
  random.Unknowns(map_node.mutable_map_type());
  random.Unknowns(&map_node);
  PropertyNode& list = Append(Child(tree, "l"));
  random.Unknowns(Child(tree, "l").mutable_list_type());
  KVariant& value = *list.mutable_value_type();
  ChronoData* element = value.mutable_array_data()->mutable_duration_content()->add_chrono_content();
  random.Unknowns(element);
  random.Unknowns(value.mutable_array_data()->mutable_duration_content());
  random.Unknowns(value.mutable_array_data());
  random.Unknowns(&value);
  random.Unknowns(Child(tree, "c").mutable_value_type()->mutable_scalar_data()->mutable_complexfloat_content());
  ExpectLossless(tree);
}

TEST(JsonTest, KVariantOnItsOwn) {
  KVariant value;
  SetArray(value, std::vector<uint8_t>{0, 255});
  KVariant back;
  ASSERT_TRUE(FromJson(ToJson(value), &back));
  EXPECT_EQ(Deterministic(back), Deterministic(value));
  JsonError error;
  EXPECT_FALSE(FromJson("{\"a\": 1}", &back, &error));
  EXPECT_EQ(Deterministic(back), Deterministic(value));
}

TEST(JsonTest, BadInputIsRefusedWithItsPlaceAndNothingIsImported) {
  struct Case {
    const char* json;
    size_t line, column;
    const char* reason;
  };
  const Case cases[] = {
      {"{\"a\": 1,\n \"b\": [1, 2}", 2, 0, ""},
      {"{\"a\": {\"$float128\": 1}}", 1, 7, "unknown tag \"$float128\""},
      {"{\"$array\": \"quaternion\", \"data\": []}", 1, 12, "unknown kind"},
      {"{\"$array\": \"int32\",\n \"shape\": [2, 2], \"data\": [1, 2, 3]}", 2, 11, "the shape holds 4 elements, the data 3"},
      {"{\"$uint8\": 256}", 1, 12, "256 is out of range for uint8"},
      {"{\"$array\": \"int16\", \"data\": [1, -40000]}", 1, 33, "-40000 is out of range for int16"},
      {"{\"$uint64\": 18446744073709551616}", 1, 13, "out of range for uint64"},
      {"{\"$int32\": 1.5}", 1, 12, "expected an integer, found 1.5"},
      {"{\"$uint32\": -1}", 1, 13, "-1 is out of range for uint32"},
      {"{\"a\": 1, \"a\": 2}", 1, 10, "duplicate key \"a\""},
      {"{\"$float64\": 1, \"wellknowntype\": \"x\", \"wellknowntype\": \"y\"}", 1, 39, "duplicate field"},
      {"{\"a\": 1, \"$b\": 2}", 1, 10, "written with \"$$\""},
      {"{\"$datetime64\": \"2024-02-30T00:00:00Z\"}", 1, 17, "is not a UTC time"},
      {"[1] [2]", 1, 5, "after the JSON value"},
      {"null x", 1, 6, "after the JSON value"},
      {"{\"$float64\": 1.0, \"unknown\": {\"variant\": \"GgF4\"}}", 1, 48, "field 3, which KVariant knows"},
      {"{\"$node\": {\"a\": 1.0}, \"unknown\": \"EgA=\"}", 1, 34, "field 2, which PropertyNode knows"},
      {"{\"a\": 1.0", 1, 10, "ends before a closing } or ]"},
      {"{\"a\": {\"$float64\": 1e400}}", 1, 20, "1e400 is out of range for float64"},
      {"{\"$uint16\": -1}", 1, 13, "-1 is out of range for uint16"},
      {"{\"$int32\": 2147483648}", 1, 12, "2147483648 is out of range for int32"},
      {"{\"$int32\": 01}", 1, 12, "expected an integer, found 01"},
      {"\xEF\xBB\xBF{\"$int8\": 300}", 1, 14, "300 is out of range for int8"},
      {" nul", 1, 2, ""},
      {"{\"$float32\": 1e39}", 1, 14, "out of range for float32"},
  };
  for (const Case& c : cases) {
    PropertyNode target;
    SetLeaf(target, "kept", 1.0);
    const std::string before = Deterministic(target);
    JsonError error;
    EXPECT_FALSE(FromJson(c.json, &target, &error)) << c.json;
    EXPECT_EQ(error.line, c.line) << c.json << ": " << error.ToString();
    if (c.column != 0) {
      EXPECT_EQ(error.column, c.column) << c.json << ": " << error.ToString();
    }
    EXPECT_NE(error.reason.find(c.reason), std::string::npos) << c.json << ": " << error.ToString();
    EXPECT_EQ(Deterministic(target), before) << c.json;
  }
}

// JSON is accepted exactly as deep as the runtime parses the bytes it gives,
// and deeper JSON is refused, not a crash.
TEST(JsonTest, NestingStopsWhereTheBytesWouldNoLongerParse) {
  for (int lists = 47; lists <= 51; ++lists) {
    for (const char* leaf : {"1.0", "{\"$array\": \"datetime64\", \"data\": [[0, 0]]}", "{}"}) {
      const std::string json = std::string(lists, '[') + leaf + std::string(lists, ']');
      PropertyNode tree;
      const bool read = FromJson(json, &tree);
      PropertyNode built;
      PropertyNode* node = &built;
      for (int i = 0; i < lists; ++i) node = node->mutable_list_type()->add_list_data();
      ASSERT_TRUE(FromJson(leaf, node));
      PropertyNode parsed;
      EXPECT_EQ(read, parsed.ParseFromString(built.SerializeAsString())) << json;
    }
  }
  PropertyNode tree;
  JsonError error;
  EXPECT_FALSE(FromJson(std::string(100000, '[') + std::string(100000, ']'), &tree, &error));
  EXPECT_NE(error.reason.find("nested deeper"), std::string::npos) << error.ToString();
}

TEST(JsonTest, KeysThatAreNotUtf8AreRefusedOnWriting) {
  PropertyNode tree;
  (*tree.mutable_map_type()->mutable_map_data())["\xff"];
  EXPECT_THROW(ToJson(tree), ValueError);
}

}  // namespace
}  // namespace mav_test
