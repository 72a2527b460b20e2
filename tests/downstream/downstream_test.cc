// An application schema that imports Mav.proto, compiled by the protocol
// compiler and linked against the library: its messages hold ours as a field,
// as repeated elements and as map values, on the heap and on an arena.

#include <google/protobuf/arena.h>
#include <google/protobuf/util/message_differencer.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "downstream.pb.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
namespace pb = google::protobuf;
using mav_downstream::Snapshot;
using mav_test::Deterministic;
using pb::util::MessageDifferencer;

void Fill(Snapshot* s) {
  s->set_name("probe");
  s->mutable_value()->mutable_array_data()->mutable_int16_content()->add_int16_content(-7);
  s->mutable_value()->mutable_array_data()->add_dimensions(1);
  s->mutable_value()->set_wellknowntype("int16");
  auto& map = *s->add_nodes()->mutable_map_type()->mutable_map_data();
  map["list"].mutable_list_type()->add_list_data()->mutable_value_type()->mutable_scalar_data()->set_string_content("x");
  map["time"].mutable_value_type()->mutable_scalar_data()->mutable_timepoint_content()->set_seconds_content(1700000000);
  s->add_nodes();
  (*s->mutable_named())["a"].mutable_scalar_data()->set_double_content(-0.5);
  (*s->mutable_named())["\xC3\xBC"].mutable_array_data()->mutable_duration_content()->add_chrono_content()->set_fractional_content(3);
}

const pb::FieldDescriptor* Field(const char* name) { return Snapshot::descriptor()->FindFieldByName(name); }

TEST(Downstream, FilledMessageRoundTripsThroughBytes) {
  Snapshot s;
  Fill(&s);
  const std::string bytes = Deterministic(s);
  Snapshot back;
  ASSERT_TRUE(back.ParseFromString(bytes));
  EXPECT_TRUE(MessageDifferencer::Equals(back, s));
  EXPECT_EQ(Deterministic(back), bytes);

  // The generated code writes our message exactly as our class writes itself.
  Snapshot only;
  *only.mutable_value() = s.value();
  ASSERT_LT(s.value().ByteSizeLong(), 128u);
  EXPECT_EQ(only.SerializeAsString(),
            "\x12" + std::string(1, static_cast<char>(s.value().ByteSizeLong())) + s.value().SerializeAsString());
}

TEST(Downstream, ArenaMessagesHoldOurs) {
  Snapshot heap;
  Fill(&heap);
  const std::string bytes = Deterministic(heap);
  pb::Arena arena;
  Snapshot* parsed = pb::Arena::CreateMessage<Snapshot>(&arena);
  ASSERT_TRUE(parsed->ParseFromString(bytes));
  EXPECT_TRUE(MessageDifferencer::Equals(*parsed, heap));
  Snapshot* copied = pb::Arena::CreateMessage<Snapshot>(&arena);
  copied->CopyFrom(heap);
  EXPECT_EQ(Deterministic(*copied), bytes);

  // Reflection hands out our classes for our types, as elements and as map values.
  const pb::Reflection* r = copied->GetReflection();
  dynamic_cast<PropertyNode&>(*r->AddMessage(copied, Field("nodes"))).mutable_list_type()->add_list_data();
  pb::Message* entry = r->AddMessage(copied, Field("named"));
  entry->GetReflection()->SetString(entry, entry->GetDescriptor()->map_key(), "z");
  dynamic_cast<KVariant&>(*entry->GetReflection()->MutableMessage(entry, entry->GetDescriptor()->map_value())) =
      heap.value();
  auto* adopted = new KVariant;
  adopted->mutable_scalar_data()->set_int64_content(-1);
  copied->set_allocated_value(adopted);
  EXPECT_EQ(copied->value().scalar_data().int64_content(), -1);
  std::unique_ptr<KVariant> released(copied->release_value());
  ASSERT_NE(released, nullptr);
  EXPECT_EQ(released->scalar_data().int64_content(), -1);
  EXPECT_FALSE(copied->has_value());
  copied->mutable_named()->erase("a");

  Snapshot back;
  ASSERT_TRUE(back.ParseFromString(Deterministic(*copied)));
  EXPECT_EQ(back.nodes_size(), 3);
  EXPECT_EQ(back.nodes(2).list_type().list_data_size(), 1);
  EXPECT_EQ(back.named().at("z").wellknowntype(), "int16");
  EXPECT_EQ(back.named().count("a"), 0u);

  heap.set_name("heap");
  const std::string heap_bytes = Deterministic(heap);
  parsed->Swap(&heap);  // across owners: the runtime swaps through copies
  EXPECT_EQ(Deterministic(*parsed), heap_bytes);
  EXPECT_EQ(Deterministic(heap), bytes);
}

}  // namespace
