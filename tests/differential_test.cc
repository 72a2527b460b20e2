// Random trees held against the runtime's generic DynamicMessage built from
// the same descriptor: both must write the same bytes, read each other's bytes
// and agree field by field. A mismatch names its seed and tree for replay.

#include <google/protobuf/dynamic_message.h>
#include <gtest/gtest.h>

#include <cstdio>
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

constexpr uint32_t kSeeds[] = {1, 2, 3, 5, 8, 13, 21, 34};
constexpr int kTreesPerSeed = 100;
constexpr int kReflectedTreesPerSeed = 50;

class Differential : public testing::Test {
 protected:
  pb::DynamicMessageFactory factory_;
  const pb::Message* prototype_ = factory_.GetPrototype(PropertyNode::descriptor());
};

TEST_F(Differential, LibraryTreesMatchTheGenericImplementation) {
  ASSERT_NE(prototype_, &PropertyNode::default_instance()) << "the factory must not hand back our class";
  int trees = 0;
  std::set<int> scalar_kinds, array_kinds;
  for (uint32_t seed : kSeeds) {
    Random random(seed);
    TreeMaker maker(&random);
    for (int index = 0; index < kTreesPerSeed; ++index, ++trees) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", tree " + std::to_string(index));
      PropertyNode tree;
      maker.Node(&tree, 2 + random.Below(4));

      const std::string ours = WireOf(tree, /*deterministic=*/true);
      std::unique_ptr<pb::Message> dynamic(prototype_->New());
      ASSERT_TRUE(dynamic->ParseFromString(ours)) << Hex(ours);
      const std::string theirs = Deterministic(*dynamic);
      ExpectSameBytes(ours, theirs);
      EXPECT_TRUE(Same(tree, *dynamic));

      PropertyNode back;
      ASSERT_TRUE(ParseInto(&back, theirs));
      EXPECT_TRUE(Same(back, tree));

      // In hash order the map entries may come in any order, but read back alike.
      std::unique_ptr<pb::Message> unordered(prototype_->New());
      ASSERT_TRUE(unordered->ParseFromString(tree.SerializeAsString()));
      EXPECT_TRUE(Same(tree, *unordered));
    }
    scalar_kinds.insert(maker.scalar_kinds.begin(), maker.scalar_kinds.end());
    array_kinds.insert(maker.array_kinds.begin(), maker.array_kinds.end());
  }
  EXPECT_EQ(scalar_kinds.size(), 16u);
  EXPECT_EQ(array_kinds.size(), 16u);
  RecordProperty("seeds", "1 2 3 5 8 13 21 34");
  RecordProperty("library_trees", trees);
  std::printf("differential: %d library-built trees, seeds 1 2 3 5 8 13 21 34\n", trees);
}

// The same random reflection calls on our class and on the DynamicMessage:
// each writer's bytes must match the other's, and each must read them.
TEST_F(Differential, ReflectionBuiltTreesMatchTheGenericImplementation) {
  int trees = 0;
  for (uint32_t seed : kSeeds) {
    Random for_ours(seed * 7919), for_theirs(seed * 7919);
    for (int index = 0; index < kReflectedTreesPerSeed; ++index, ++trees) {
      SCOPED_TRACE("seed " + std::to_string(seed * 7919) + ", reflected tree " + std::to_string(index));
      PropertyNode ours;
      std::unique_ptr<pb::Message> theirs(prototype_->New());
      ReflectionFiller(&for_ours).Fill(&ours, 1 + index % 5);
      ReflectionFiller(&for_theirs).Fill(theirs.get(), 1 + index % 5);

      const std::string their_bytes = Deterministic(*theirs);
      const std::string our_bytes = WireOf(ours, /*deterministic=*/true);
      ExpectSameBytes(our_bytes, their_bytes);
      EXPECT_TRUE(Same(ours, *theirs));

      PropertyNode back;
      ASSERT_TRUE(ParseInto(&back, their_bytes)) << Hex(their_bytes);
      EXPECT_TRUE(Same(back, *theirs));
      std::unique_ptr<pb::Message> their_back(prototype_->New());
      ASSERT_TRUE(their_back->ParseFromString(our_bytes));
      EXPECT_TRUE(Same(*their_back, ours));
    }
  }
  RecordProperty("reflected_trees", trees);
  std::printf("differential: %d reflection-built trees, seeds 7919 times 1 2 3 5 8 13 21 34\n", trees);
}

}  // namespace
