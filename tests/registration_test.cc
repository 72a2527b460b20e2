// The schema as the runtime knows it: the embedded descriptor, registration
// and the factory's prototypes.

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

TEST(Registration, LoadingRegistersEveryTypeOnceWithPoolAndFactory) {
  protobuf_Mav_2eproto::AddDescriptors();  // again: no second registration
  const pb::FileDescriptor* file = pb::DescriptorPool::generated_pool()->FindFileByName("Mav.proto");
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(file->message_type_count(), 22);
  // Each type's prototype is our class and reports that type, so its index
  // into the file's tables is right.
  for (int i = 0; i < file->message_type_count(); ++i) {
    const pb::Descriptor* type = file->message_type(i);
    const pb::Message* prototype = pb::MessageFactory::generated_factory()->GetPrototype(type);
    ASSERT_NE(prototype, nullptr) << type->full_name();
    EXPECT_EQ(prototype->GetDescriptor(), type);
    EXPECT_EQ(prototype->ByteSizeLong(), 0u);
  }
  EXPECT_EQ(pb::MessageFactory::generated_factory()->GetPrototype(ScalarDataUnion::descriptor()),
            &ScalarDataUnion::default_instance());
  const pb::Descriptor* entry = PropertyMap::descriptor()->nested_type(0);
  EXPECT_TRUE(entry->options().map_entry());
  EXPECT_EQ(pb::MessageFactory::generated_factory()->GetPrototype(entry),
            PropertyMap_MapDataEntry_DoNotUse::internal_default_instance());
}

}  // namespace
