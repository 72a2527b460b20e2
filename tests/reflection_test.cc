// Reflection, text format, JSON and copies across types on the library's
// classes, with the runtime's DynamicMessage of the same type as reference.

#include <google/protobuf/dynamic_message.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/text_format.h>
#include <google/protobuf/util/json_util.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Mav.pb.h"
#include "random_messages.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
namespace pb = google::protobuf;
using namespace mav_test;

const pb::FieldDescriptor* Field(const pb::Message& message, const char* name) {
  const pb::FieldDescriptor* field = message.GetDescriptor()->FindFieldByName(name);
  EXPECT_NE(field, nullptr) << name;
  return field;
}

std::unique_ptr<pb::Message> Dynamic(pb::DynamicMessageFactory* factory, const pb::Message& from) {
  std::unique_ptr<pb::Message> message(factory->GetPrototype(from.GetDescriptor())->New());
  message->CopyFrom(from);
  return message;
}

// Eight random subtrees under one map, without the unknown fields that the
// text forms do not carry.
PropertyNode Tree(uint32_t seed) {
  Random random(seed);
  TreeMaker maker(&random);
  PropertyNode tree;
  for (char key = 'a'; key < 'i'; ++key) maker.Node(&(*tree.mutable_map_type()->mutable_map_data())[{key}], 3);
  tree.DiscardUnknownFields();
  return tree;
}

TEST(Reflection, UnsetMembersReadAsTheirDefaults) {
  ScalarDataUnion scalar;
  scalar.set_bool_content(true);
  const pb::Reflection* r = scalar.GetReflection();
  EXPECT_EQ(&r->GetMessage(scalar, Field(scalar, "complexFloat_content")), &ComplexFloat::default_instance());
  EXPECT_EQ(&r->GetMessage(scalar, Field(scalar, "timePoint_content")), &ChronoData::default_instance());
  EXPECT_EQ(r->GetFloat(scalar, Field(scalar, "float_content")), 0.0f);
  EXPECT_EQ(r->GetUInt64(scalar, Field(scalar, "unsignedInt64_content")), 0u);
  EXPECT_EQ(r->GetString(scalar, Field(scalar, "string_content")), "");
  ArrayDataUnion array;
  array.add_dimensions(3);
  for (const char* name : {"duration_content", "timePoint_content"}) {
    EXPECT_EQ(&array.GetReflection()->GetMessage(array, Field(array, name)), &ArrayChronoData::default_instance());
  }
  PropertyNode node;
  node.mutable_value_type();
  EXPECT_EQ(&node.GetReflection()->GetMessage(node, Field(node, "map_type")), &PropertyMap::default_instance());
}

TEST(Reflection, WritesThroughReflectionShowInTheAccessors) {
  ScalarDataUnion u;
  const pb::Reflection* r = u.GetReflection();
  r->SetString(&u, Field(u, "string_content"), "switched away from");
  r->SetInt32(&u, Field(u, "int8_content"), -1);
  EXPECT_EQ(u.content_case(), ScalarDataUnion::kInt8Content);
  EXPECT_EQ(Hex(WireOf(u)), Hex(Bytes({32, 255, 255, 255, 255, 255, 255, 255, 255, 255, 1})));
  const pb::FieldDescriptor* complex = Field(u, "complexFloat_content");
  EXPECT_EQ(r->MutableMessage(&u, complex), u.mutable_complexfloat_content());
  u.mutable_complexfloat_content()->set_im_content(2.5f);
  std::unique_ptr<pb::Message> released(r->ReleaseMessage(&u, complex));
  EXPECT_EQ(u.content_case(), ScalarDataUnion::CONTENT_NOT_SET);
  ASSERT_NE(dynamic_cast<ComplexFloat*>(released.get()), nullptr);
  EXPECT_EQ(static_cast<ComplexFloat&>(*released).im_content(), 2.5f);
  auto* duration = new ChronoData;
  r->SetAllocatedMessage(&u, duration, Field(u, "duration_content"));
  EXPECT_EQ(&u.duration_content(), duration);

  // Elements made and released through reflection are our class's own.
  ArrayChronoData chrono;
  const pb::FieldDescriptor* elements = Field(chrono, "chrono_content");
  for (int i = 0; i < 3; ++i) {
    auto* element = dynamic_cast<ChronoData*>(chrono.GetReflection()->AddMessage(&chrono, elements));
    ASSERT_NE(element, nullptr);
    element->set_seconds_content(i);
  }
  chrono.GetReflection()->SwapElements(&chrono, elements, 0, 2);
  std::unique_ptr<pb::Message> last(chrono.GetReflection()->ReleaseLast(&chrono, elements));
  ASSERT_EQ(chrono.chrono_content_size(), 2);
  EXPECT_EQ(chrono.chrono_content(0).seconds_content(), 2);
  EXPECT_EQ(static_cast<ChronoData&>(*last).seconds_content(), 0);
}

TEST(Reflection, MapEntriesReportKeyAndValuePresence) {
  PropertyMap map;
  const pb::FieldDescriptor* field = Field(map, "map_data");
  ASSERT_TRUE(field->is_map());
  const pb::FieldDescriptor* key = field->message_type()->map_key();
  const pb::FieldDescriptor* value = field->message_type()->map_value();
  pb::Message* entry = map.GetReflection()->AddMessage(&map, field);
  const pb::Reflection* er = entry->GetReflection();
  EXPECT_FALSE(er->HasField(*entry, key));
  EXPECT_FALSE(er->HasField(*entry, value));
  er->SetString(entry, key, "b");
  EXPECT_TRUE(er->HasField(*entry, key));
  EXPECT_FALSE(er->HasField(*entry, value));
  er->MutableMessage(entry, value);
  EXPECT_TRUE(er->HasField(*entry, value));
  EXPECT_EQ(map.map_data().count("b"), 1u);

  // Entries made from a map filled through the accessors carry both.
  (*map.mutable_map_data())["x"].mutable_list_type()->add_list_data();
  ASSERT_EQ(map.GetReflection()->FieldSize(map, field), 2);
  for (int i = 0; i < 2; ++i) {
    const pb::Message& made = map.GetReflection()->GetRepeatedMessage(map, field, i);
    EXPECT_TRUE(er->HasField(made, key));
    EXPECT_TRUE(er->HasField(made, value));
    EXPECT_EQ(dynamic_cast<const PropertyNode&>(er->GetMessage(made, value)).has_list_type(),
              er->GetString(made, key) == "x");
  }
}

TEST(Reflection, SwapAndListFieldsFollowTheClassLayout) {
  ArrayDataUnion a, b;
  a.mutable_string_content()->add_string_content("x");
  a.set_dataorder("F");
  a.add_dimensions(1);
  b.mutable_timepoint_content()->add_chrono_content()->set_seconds_content(-9);
  b.add_dimensions(9);
  b.add_dimensions(8);
  const pb::Reflection* r = a.GetReflection();
  auto names = [&](const pb::Message& m) {
    std::vector<const pb::FieldDescriptor*> fields;
    r->ListFields(m, &fields);
    std::string joined;
    for (const pb::FieldDescriptor* f : fields) joined += f->name() + " ";
    return joined;
  };
  EXPECT_EQ(names(a), "string_content dataorder dimensions ");
  EXPECT_EQ(names(b), "dimensions timePoint_content ");

  r->Swap(&a, &b);
  EXPECT_EQ(a.timepoint_content().chrono_content(0).seconds_content(), -9);
  EXPECT_EQ(a.dataorder(), "");
  EXPECT_EQ(a.dimensions_size(), 2);
  EXPECT_EQ(b.string_content().string_content(0), "x");
  EXPECT_EQ(b.dataorder(), "F");
  r->SwapFields(&a, &b, {Field(a, "dataorder")});
  EXPECT_EQ(a.dataorder(), "F");
  EXPECT_EQ(a.content_case(), ArrayDataUnion::kTimePointContent);

  ScalarDataUnion text, number;
  text.set_string_content("abc");
  number.set_double_content(2.5);
  text.GetReflection()->Swap(&text, &number);
  EXPECT_EQ(text.double_content(), 2.5);
  EXPECT_EQ(number.string_content(), "abc");
}

TEST(Reflection, SpaceUsedLongCountsTheWholeTree) {
  PropertyNode tree = Tree(1);
  const size_t before = tree.SpaceUsedLong();
  EXPECT_GT(before, PropertyNode().SpaceUsedLong());
  (*tree.mutable_map_type()->mutable_map_data())["big"].mutable_value_type()->mutable_array_data()
      ->mutable_double_content()->mutable_double_content()->Resize(1000, 0.5);
  EXPECT_GE(tree.SpaceUsedLong(), before + 1000 * sizeof(double));
}

TEST(TextAndJson, RandomTreesRoundTripAndPrintAsTheGenericImplementation) {
  pb::DynamicMessageFactory factory;
  for (uint32_t seed = 101; seed <= 112; ++seed) {  // together: every scalar and array kind
    SCOPED_TRACE(seed);
    const PropertyNode tree = Tree(seed);
    std::string text, their_text;
    ASSERT_TRUE(pb::TextFormat::PrintToString(tree, &text));
    ASSERT_TRUE(pb::TextFormat::PrintToString(*Dynamic(&factory, tree), &their_text));
    EXPECT_EQ(text, their_text);
    PropertyNode from_text;
    ASSERT_TRUE(pb::TextFormat::ParseFromString(text, &from_text)) << text;
    EXPECT_TRUE(Same(from_text, tree));

    std::string json;
    ASSERT_TRUE(pb::util::MessageToJsonString(tree, &json).ok());
    PropertyNode from_json;
    ASSERT_TRUE(pb::util::JsonStringToMessage(json, &from_json).ok()) << json;
    EXPECT_TRUE(Same(from_json, tree)) << json;
    std::unique_ptr<pb::Message> their_from_json(factory.GetPrototype(PropertyNode::descriptor())->New());
    ASSERT_TRUE(pb::util::JsonStringToMessage(json, their_from_json.get()).ok());
    EXPECT_TRUE(Same(*their_from_json, tree));
  }
}

// Our merge, the runtime's reflective merge into our class and the
// DynamicMessage's merge of our class must all give `expected`, compared as
// bytes. A reflective merge appends a repeated key to the map's entry view: our
// class settles it when it writes, the DynamicMessage writes both entries (and
// logs that the keys are not unique), so its bytes are read back first.
template <typename T>
void ExpectMergesAgree(const char* base_text, const char* extra_text, const char* expected_text) {
  T base, extra, expected;
  ASSERT_TRUE(pb::TextFormat::ParseFromString(base_text, &base));
  ASSERT_TRUE(pb::TextFormat::ParseFromString(extra_text, &extra));
  ASSERT_TRUE(pb::TextFormat::ParseFromString(expected_text, &expected));
  const std::string want = Hex(Deterministic(expected));
  T native(base);
  native.MergeFrom(extra);
  EXPECT_EQ(Hex(Deterministic(native)), want);
  pb::DynamicMessageFactory factory;
  T reflective(base);
  reflective.MergeFrom(*Dynamic(&factory, extra));
  EXPECT_EQ(Hex(Deterministic(reflective)), want);
  std::unique_ptr<pb::Message> generic = Dynamic(&factory, base);
  generic->MergeFrom(extra);
  T generic_read;
  pb::LogSilencer quiet;
  ASSERT_TRUE(generic_read.ParseFromString(Deterministic(*generic)));
  EXPECT_EQ(Hex(Deterministic(generic_read)), want);
}

TEST(CrossType, CopyAndMergeWithADynamicMessageOfTheSameType) {
  pb::DynamicMessageFactory factory;
  for (uint32_t seed : {201, 202, 203}) {
    PropertyNode tree = Tree(seed);
    tree.GetReflection()->MutableUnknownFields(&tree)->AddVarint(1234, seed);
    std::unique_ptr<pb::Message> theirs = Dynamic(&factory, tree);
    EXPECT_TRUE(Same(*theirs, tree));
    ExpectSameBytes(Deterministic(tree), Deterministic(*theirs));
    PropertyNode back;
    back.mutable_list_type()->add_list_data();
    back.CopyFrom(*theirs);
    EXPECT_TRUE(Same(back, tree));
  }
  // Arrays and dimensions append; bytes fields take a non-empty source.
  ExpectMergesAgree<KVariant>(
      R"(array_data { double_content { double_content: 1 } dataorder: "C" })",
      R"(array_data { double_content { double_content: 3 } dimensions: 1 } wellknowntype: "w")",
      R"(array_data { double_content { double_content: [1, 3] } dataorder: "C" dimensions: 1 } wellknowntype: "w")");
  // A member set on both sides merges field by field; a zero leaves the target's value.
  ExpectMergesAgree<ScalarDataUnion>("complexFloat_content { re_content: 1 }", "complexFloat_content { im_content: 5 }",
                                     "complexFloat_content { re_content: 1 im_content: 5 }");
  // A key on both sides takes the source's node whole; other keys stay.
  ExpectMergesAgree<PropertyNode>(
      R"(map_type { map_data { key: "k" value { list_type { list_data {} } } } map_data { key: "x" value {} } })",
      R"(map_type { map_data { key: "k" value { value_type { scalar_data { bool_content: true } } } } })",
      R"(map_type { map_data { key: "k" value { value_type { scalar_data { bool_content: true } } } }
                    map_data { key: "x" value {} } })");
}

}  // namespace
