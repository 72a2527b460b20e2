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

TEST(Differential, LibraryTreesMatchTheGenericImplementation) {
  pb::DynamicMessageFactory factory;
  const pb::Message* prototype = factory.GetPrototype(PropertyNode::descriptor());
  ASSERT_NE(prototype, &PropertyNode::default_instance()) << "the factory must not hand back our class";
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
      std::unique_ptr<pb::Message> dynamic(prototype->New());
      ASSERT_TRUE(dynamic->ParseFromString(ours)) << Hex(ours);
      const std::string theirs = Deterministic(*dynamic);
      ExpectSameBytes(ours, theirs);
      EXPECT_TRUE(Same(tree, *dynamic));

      PropertyNode back;
      ASSERT_TRUE(ParseInto(&back, theirs));
      EXPECT_TRUE(Same(back, tree));

      // In hash order the map entries may come in any order, but read back alike.
      std::unique_ptr<pb::Message> unordered(prototype->New());
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

}  // namespace
