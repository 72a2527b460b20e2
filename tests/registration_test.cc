// The schema as the runtime knows it: the embedded descriptor, registration,
// the message index table and the default instances.

#include <google/protobuf/compiler/importer.h>
#include <google/protobuf/descriptor.pb.h>
#include <gtest/gtest.h>

#include "Mav.pb.h"

namespace {

using namespace Tarnwick::MavProtobuf;
namespace pb = google::protobuf;

class Silent : public pb::compiler::MultiFileErrorCollector {
  void AddError(const std::string&, int, int, const std::string& message) override {
    ADD_FAILURE() << message;
  }
};

TEST(Registration, EmbeddedDescriptorIsTheSchemaExactly) {
  pb::compiler::DiskSourceTree tree;
  tree.MapPath("", MAV_PROTO_DIR);
  Silent errors;
  pb::compiler::Importer importer(&tree, &errors);
  const pb::FileDescriptor* file = importer.Import("Mav.proto");
  ASSERT_NE(file, nullptr);
  pb::FileDescriptorProto proto;
  file->CopyTo(&proto);
  std::string expected;
  ASSERT_TRUE(proto.SerializeToString(&expected));

  ASSERT_EQ(descriptor_table_Mav_2eproto.size, 3131);
  EXPECT_EQ(std::string(descriptor_table_Mav_2eproto.descriptor, 3131), expected);
}

TEST(Registration, LoadingRegistersTheFileOnceWithPoolAndFactory) {
  protobuf_Mav_2eproto::AddDescriptors();
  protobuf_Mav_2eproto::AddDescriptors();
  const pb::FileDescriptor* file =
      pb::DescriptorPool::generated_pool()->FindFileByName("Mav.proto");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->package(), "Tarnwick.MavProtobuf");
  EXPECT_EQ(file->syntax(), pb::FileDescriptor::SYNTAX_PROTO3);
  EXPECT_EQ(file->message_type_count(), 22);

  const pb::Descriptor* entry =
      pb::DescriptorPool::generated_pool()->FindMessageTypeByName(
          "Tarnwick.MavProtobuf.PropertyMap.MapDataEntry");
  ASSERT_NE(entry, nullptr);
  EXPECT_TRUE(entry->options().map_entry());
  EXPECT_EQ(pb::MessageFactory::generated_factory()->GetPrototype(entry),
            PropertyMap_MapDataEntry_DoNotUse::internal_default_instance());
}

// Each class's index, descriptor and factory prototype line up.
template <typename T>
void ExpectRegistered(const char* name, int index) {
  SCOPED_TRACE(name);
  EXPECT_EQ(T::kIndexInFileMessages, index);
  const pb::Descriptor* descriptor = T::descriptor();
  ASSERT_NE(descriptor, nullptr);
  EXPECT_EQ(descriptor->full_name(), std::string("Tarnwick.MavProtobuf.") + name);
  EXPECT_EQ(T::default_instance().GetDescriptor(), descriptor);
  EXPECT_EQ(&T::default_instance(), T::internal_default_instance());
  EXPECT_EQ(pb::MessageFactory::generated_factory()->GetPrototype(descriptor),
            &T::default_instance());
  EXPECT_EQ(T::default_instance().ByteSizeLong(), 0u);
}

TEST(Registration, EveryClassHasItsDescriptorAndPrototype) {
  ExpectRegistered<KVariant>("KVariant", 0);
  ExpectRegistered<PropertyMap>("PropertyMap", 2);
  ExpectRegistered<PropertyNode>("PropertyNode", 3);
  ExpectRegistered<PropertyList>("PropertyList", 4);
  ExpectRegistered<ComplexFloat>("ComplexFloat", 5);
  ExpectRegistered<ComplexDouble>("ComplexDouble", 6);
  ExpectRegistered<ChronoData>("ChronoData", 7);
  ExpectRegistered<ArrayChronoData>("ArrayChronoData", 8);
  ExpectRegistered<ArrayString>("ArrayString", 9);
  ExpectRegistered<ArrayFloat>("ArrayFloat", 10);
  ExpectRegistered<ArrayDouble>("ArrayDouble", 11);
  ExpectRegistered<ArrayInt8>("ArrayInt8", 12);
  ExpectRegistered<ArrayInt16>("ArrayInt16", 13);
  ExpectRegistered<ArrayInt32>("ArrayInt32", 14);
  ExpectRegistered<ArrayInt64>("ArrayInt64", 15);
  ExpectRegistered<ArrayUnsignedInt8>("ArrayUnsignedInt8", 16);
  ExpectRegistered<ArrayUnsignedInt16>("ArrayUnsignedInt16", 17);
  ExpectRegistered<ArrayUnsignedInt32>("ArrayUnsignedInt32", 18);
  ExpectRegistered<ArrayUnsignedInt64>("ArrayUnsignedInt64", 19);
  ExpectRegistered<ArrayBool>("ArrayBool", 20);
  ExpectRegistered<ArrayDataUnion>("ArrayDataUnion", 21);
  ExpectRegistered<ScalarDataUnion>("ScalarDataUnion", 22);
}

TEST(Registration, UnsetMembersReadAsTheirTypesDefaults) {
  const ScalarDataUnion& scalar = ScalarDataUnion::default_instance();
  EXPECT_EQ(scalar.content_case(), ScalarDataUnion::CONTENT_NOT_SET);
  EXPECT_EQ(&scalar.complexfloat_content(), &ComplexFloat::default_instance());
  EXPECT_EQ(&ArrayDataUnion::default_instance().timepoint_content(),
            &ArrayChronoData::default_instance());
  EXPECT_EQ(&PropertyNode::default_instance().map_type(), &PropertyMap::default_instance());
  EXPECT_EQ(&KVariant::default_instance().array_data(), &ArrayDataUnion::default_instance());
}

}  // namespace
