// First use from many threads at once. Each test runs in a process of its own
// (the suite runs every test separately), so its threads are the first to
// reach the library's once-only steps: binding descriptors, the reflection
// tables, the factory's prototypes. The ThreadSanitizer build runs these too.

#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>
#include <google/protobuf/text_format.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Mav.pb.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
namespace pb = google::protobuf;
using mav_test::Bytes;

constexpr int kThreads = 12;

// Starts every thread, then lets them all go at once.
void RunTogether(const std::function<void(int)>& work) {
  std::atomic<int> waiting{kThreads};
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int index = 0; index < kThreads; ++index) {
    threads.emplace_back([&, index] {
      waiting.fetch_sub(1);
      while (!go.load()) std::this_thread::yield();
      work(index);
    });
  }
  while (waiting.load() > 0) std::this_thread::yield();
  go.store(true);
  for (std::thread& thread : threads) thread.join();
}

// One object of every message class of the schema.
std::vector<std::unique_ptr<pb::Message>> OneOfEach() {
  std::vector<std::unique_ptr<pb::Message>> all;
  all.emplace_back(new KVariant);
  all.emplace_back(new PropertyMap);
  all.emplace_back(new PropertyNode);
  all.emplace_back(new PropertyList);
  all.emplace_back(new ComplexFloat);
  all.emplace_back(new ComplexDouble);
  all.emplace_back(new ChronoData);
  all.emplace_back(new ArrayChronoData);
  all.emplace_back(new ArrayString);
  all.emplace_back(new ArrayFloat);
  all.emplace_back(new ArrayDouble);
  all.emplace_back(new ArrayInt8);
  all.emplace_back(new ArrayInt16);
  all.emplace_back(new ArrayInt32);
  all.emplace_back(new ArrayInt64);
  all.emplace_back(new ArrayUnsignedInt8);
  all.emplace_back(new ArrayUnsignedInt16);
  all.emplace_back(new ArrayUnsignedInt32);
  all.emplace_back(new ArrayUnsignedInt64);
  all.emplace_back(new ArrayBool);
  all.emplace_back(new ArrayDataUnion);
  all.emplace_back(new ScalarDataUnion);
  return all;
}

TEST(FirstUse, DescriptorsAndDefaultInstances) {
  const pb::Descriptor* seen[kThreads][3] = {};
  RunTogether([&](int index) {
    seen[index][0] = PropertyNode::descriptor();
    seen[index][1] = ArrayDataUnion::default_instance().GetDescriptor();
    seen[index][2] = ScalarDataUnion::default_instance().GetMetadata().descriptor;
  });
  const pb::DescriptorPool* pool = pb::DescriptorPool::generated_pool();
  for (const auto& one : seen) {
    EXPECT_EQ(one[0], pool->FindMessageTypeByName("Tarnwick.MavProtobuf.PropertyNode"));
    EXPECT_EQ(one[1], pool->FindMessageTypeByName("Tarnwick.MavProtobuf.ArrayDataUnion"));
    EXPECT_EQ(one[2], pool->FindMessageTypeByName("Tarnwick.MavProtobuf.ScalarDataUnion"));
  }
}

// Every thread walks every class through reflection and the factory, and
// writes a value into its own objects through reflection.
TEST(FirstUse, ReflectionAndTheFactory) {
  std::atomic<int> failures{0};
  RunTogether([&](int index) {
    for (const auto& message : OneOfEach()) {
      const pb::Descriptor* type = message->GetDescriptor();
      const pb::Message* prototype = pb::MessageFactory::generated_factory()->GetPrototype(type);
      if (prototype == nullptr || prototype->GetDescriptor() != type ||
          message->GetReflection() != prototype->GetReflection()) {
        failures.fetch_add(1);
      }
    }
    ChronoData chrono;
    const pb::FieldDescriptor* seconds = chrono.GetDescriptor()->FindFieldByNumber(1);
    chrono.GetReflection()->SetInt64(&chrono, seconds, index);
    if (chrono.seconds_content() != index) failures.fetch_add(1);
  });
  EXPECT_EQ(failures.load(), 0);
}

// Distinct objects parsed side by side, each read back and printed through
// reflection.
TEST(FirstUse, ParsingDistinctObjects) {
  // {"m": value array of doubles {1.5, 2.5}, dimensions {2}}
  const std::string wire = Bytes({10, 35, 10, 33, 10, 1, 'm', 18, 28, 26, 26, 18, 24, 26, 18, 10,
                                  16, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0, 0, 0, 0, 0, 0, 4, 0x40,
                                  0x82, 0x01, 1, 2});
  std::string text[kThreads];
  std::atomic<int> failures{0};
  RunTogether([&](int index) {
    PropertyNode node;
    if (!node.ParseFromString(wire) || node.SerializeAsString() != wire) failures.fetch_add(1);
    pb::TextFormat::PrintToString(node, &text[index]);
  });
  EXPECT_EQ(failures.load(), 0);
  EXPECT_NE(text[0].find("double_content: 2.5"), std::string::npos) << text[0];
  for (const std::string& one : text) EXPECT_EQ(one, text[0]);
}

}  // namespace
