// Reflection, text format, JSON and copies across types on the library's
// classes, with the runtime's DynamicMessage of the same type as reference.

#include <google/protobuf/dynamic_message.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/text_format.h>
#include <google/protobuf/util/json_util.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

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
// text forms do not carry; `kinds` collects the scalar kinds and (negated)
// the array kinds made.
PropertyNode Tree(uint32_t seed, std::set<int>* kinds = nullptr) {
  Random random(seed);
  TreeMaker maker(&random);
  PropertyNode tree;
  for (char key = 'a'; key < 'i'; ++key) maker.Node(&(*tree.mutable_map_type()->mutable_map_data())[{key}], 3);
  tree.DiscardUnknownFields();
  if (kinds != nullptr) {
    kinds->insert(maker.scalar_kinds.begin(), maker.scalar_kinds.end());
    for (int kind : maker.array_kinds) kinds->insert(-kind);
  }
  return tree;
}

// Through reflection and through the accessors alike.
TEST(Reflection, UnsetMembersReadAsTheirDefaults) {
  ScalarDataUnion scalar;
  scalar.set_bool_content(true);
  EXPECT_EQ(&scalar.GetReflection()->GetMessage(scalar, Field(scalar, "timePoint_content")),
            &ChronoData::default_instance());
  EXPECT_EQ(&scalar.complexfloat_content(), &ComplexFloat::default_instance());
  ArrayDataUnion array;
  array.add_dimensions(3);
  EXPECT_EQ(&array.GetReflection()->GetMessage(array, Field(array, "duration_content")),
            &ArrayChronoData::default_instance());
  PropertyNode node;
  node.mutable_value_type();
  EXPECT_EQ(&node.GetReflection()->GetMessage(node, Field(node, "map_type")), &PropertyMap::default_instance());
  EXPECT_EQ(&node.map_type(), &PropertyMap::default_instance());
}

TEST(Reflection, WritesThroughReflectionShowInTheAccessors) {
  ScalarDataUnion u;
  const pb::Reflection* r = u.GetReflection();
  r->SetString(&u, Field(u, "string_content"), "switched away from");
  r->SetInt32(&u, Field(u, "int8_content"), -1);
  EXPECT_EQ(u.int8_content(), -1);
  EXPECT_EQ(u.string_content(), "");
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
  // The entry's own parser sets the bits that reflection reads.
  ASSERT_TRUE(entry->ParseFromString(std::string("\x0A\x01k", 3)));
  EXPECT_TRUE(er->HasField(*entry, key));
  EXPECT_FALSE(er->HasField(*entry, value));

}

TEST(TextAndJson, RandomTreesRoundTripAndPrintAsTheGenericImplementation) {
  pb::DynamicMessageFactory factory;
  std::set<int> kinds;
  for (uint32_t seed = 101; seed <= 113; ++seed) {
    SCOPED_TRACE(seed);
    const PropertyNode tree = Tree(seed, &kinds);
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
  EXPECT_EQ(kinds.size(), 32u) << "every scalar and array kind";
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
  // Arrays and dimensions append; bytes fields take only a non-empty source.
  ExpectMergesAgree<KVariant>(
      R"(array_data { double_content { double_content: 1 } dataorder: "C" } wellknowntype: "w")",
      R"(array_data { double_content { double_content: 3 } dimensions: 1 })",
      R"(array_data { double_content { double_content: [1, 3] } dataorder: "C" dimensions: 1 } wellknowntype: "w")");
  // A member set on both sides merges field by field; a zero leaves the target's value.
  ExpectMergesAgree<ScalarDataUnion>("complexFloat_content { re_content: 1 }", "complexFloat_content { im_content: 5 }",
                                     "complexFloat_content { re_content: 1 im_content: 5 }");
  // A key on both sides takes the source's node whole, not merged; other keys stay.
  ExpectMergesAgree<PropertyNode>(
      R"(map_type { map_data { key: "k" value { value_type { wellknowntype: "old" } } } map_data { key: "x" value {} } })",
      R"(map_type { map_data { key: "k" value { value_type { scalar_data { bool_content: true } } } } })",
      R"(map_type { map_data { key: "k" value { value_type { scalar_data { bool_content: true } } } }
                    map_data { key: "x" value {} } })");
}

}  // namespace
