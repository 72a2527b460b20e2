// Building trees by key and index, path lookups, the leaf visitor and
// equality of trees.
#include <gtest/gtest.h>

#include <algorithm>

#include <cmath>
#include <tuple>

#include "MavValues.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace std::chrono_literals;

// A tree with maps, lists, an empty node, a key that needs escaping and
// every kind.
PropertyNode SampleTree() {
  PropertyNode root;
  SetLeaf(root, "exposure", 0.25);
  SetLeaf(root, "a/b~c", "escaped");
  PropertyNode& calibration = Child(root, "calibration");
  SetLeaf(calibration, "gain", uint16_t{4});
  SetArray(Child(calibration, "matrix"), std::vector<double>(9, 1.0), {3, 3});
  PropertyNode& roi = Child(root, "roi");
  for (int32_t corner : {10, 20, 30, 40}) SetValue(Append(roi), corner);
  PropertyNode& mixed = Child(root, "mixed");
  SetValue(Append(mixed), std::complex<float>(1, 2));
  SetLeaf(Append(mixed), "nested", std::chrono::seconds(5));
  Append(mixed);
  PropertyNode& kinds = Child(root, "kinds");
  SetLeaf(kinds, "str", std::string("s"));
  SetLeaf(kinds, "float32", 1.5f);
  SetLeaf(kinds, "int8", int8_t{-8});
  SetLeaf(kinds, "int16", int16_t{-16});
  SetLeaf(kinds, "int64", int64_t{-64});
  SetLeaf(kinds, "uint8", uint8_t{8});
  SetLeaf(kinds, "uint32", uint32_t{32});
  SetLeaf(kinds, "uint64", uint64_t{64});
  SetLeaf(kinds, "bool", false);
  SetLeaf(kinds, "complex128", std::complex<double>(50, 3));
  SetLeaf(kinds, "datetime64", SystemTime(1s));
  return root;
}

TEST(ValuesTree, PathsReachMapKeysAndListIndices) {
  const PropertyNode root = SampleTree();
  EXPECT_EQ(GetValue<uint16_t>(root, "calibration/gain"), 4);
  EXPECT_EQ(GetValue<int32_t>(root, "roi/2"), 30);
  EXPECT_EQ(GetValue<std::chrono::seconds>(root, "mixed/1/nested"), 5s);
  EXPECT_EQ(GetValue<std::string>(root, "a~1b~0c"), "escaped");
  EXPECT_EQ(ViewArray<double>(root, "calibration/matrix").shape(), Shape({3, 3}));
  EXPECT_EQ(Find(root, ""), &root);

  for (const char* missing : {"calibration/gian", "roi/4", "roi/x", "roi/-1", "exposure/more",
                              "a/b~c", "mixed/2/x", "mixed/01/nested"}) {
    EXPECT_EQ(Find(root, missing), nullptr) << missing;
    EXPECT_THROW(At(root, missing), ValueError) << missing;
  }
  try {
    GetValue<double>(root, "calibration/gian");
    FAIL();
  } catch (const ValueError& error) {
    EXPECT_NE(std::string(error.what()).find("'calibration/gian'"), std::string::npos) << error.what();
    EXPECT_NE(std::string(error.what()).find("no key 'gian'"), std::string::npos) << error.what();
  }
  try {
    GetValue<double>(root, "calibration/gain");
    FAIL();
  } catch (const ValueError& error) {
    EXPECT_STREQ(error.what(),
                 "at 'calibration/gain': expected a float64 scalar, found a uint16 scalar");
  }
  try {
    ViewArray<double>(root, "calibration");
    FAIL();
  } catch (const ValueError& error) {
    EXPECT_STREQ(error.what(), "at 'calibration': expected a value, found a map");
  }
}

TEST(ValuesTree, ChildrenAreCreatedOnlyWhereTheNodeAllowsIt) {
  PropertyNode root;
  PropertyNode& list = Child(root, "list");
  PropertyNode& first = Child(list, size_t{0});
  PropertyNode& second = Append(list);
  EXPECT_EQ(list.list_type().list_data_size(), 2);
  EXPECT_EQ(&Child(list, size_t{0}), &first);
  EXPECT_EQ(&Child(list, size_t{1}), &second);
  EXPECT_THROW(Child(list, size_t{3}), ValueError);
  EXPECT_THROW(Child(list, "key"), ValueError);
  EXPECT_THROW(Child(root, size_t{0}), ValueError);
  PropertyNode& empty = Child(root, "empty");
  EXPECT_THROW(Child(empty, size_t{1}), ValueError);
  EXPECT_EQ(empty.type_case(), PropertyNode::TYPE_NOT_SET) << "a refused index changed the node";
  SetLeaf(Child(root, "empty"), "", 1.0);
  EXPECT_EQ(Find(root, "empty/"), &At(root, "empty").map_type().map_data().at(""));

  PropertyNode& leaf = SetLeaf(root, "leaf", 1.0);
  EXPECT_THROW(Child(leaf, "x"), ValueError);
  EXPECT_TRUE(leaf.has_value_type());

  EXPECT_THROW(Child(root, std::string("bad\xFF", 4)), ValueError);
  EXPECT_EQ(root.map_type().map_data_size(), 3) << "a refused key was inserted";
  EXPECT_NO_THROW(Child(root, "gr\xC3\xBC\xC3\x9F"));
}

TEST(ValuesTree, TheVisitorSeesEveryLeafWithPathKindAndShape) {
  const PropertyNode root = SampleTree();
  std::vector<std::tuple<std::string, std::string, std::string>> seen;
  VisitLeaves(root, [&](const Leaf& leaf) {
    seen.emplace_back(std::string(leaf.path), leaf.kind ? std::string(KindName(*leaf.kind)) : "-",
                      leaf.shape.ToString());
    EXPECT_EQ(Find(root, leaf.path), &leaf.node) << leaf.path;
  });
  const std::vector<std::tuple<std::string, std::string, std::string>> expected = {
      {"a~1b~0c", "str", "()"},
      {"calibration/gain", "uint16", "()"},
      {"calibration/matrix", "float64", "3x3"},
      {"exposure", "float64", "()"},
      {"kinds/bool", "bool", "()"},
      {"kinds/complex128", "complex128", "()"},
      {"kinds/datetime64", "datetime64", "()"},
      {"kinds/float32", "float32", "()"},
      {"kinds/int16", "int16", "()"},
      {"kinds/int64", "int64", "()"},
      {"kinds/int8", "int8", "()"},
      {"kinds/str", "str", "()"},
      {"kinds/uint32", "uint32", "()"},
      {"kinds/uint64", "uint64", "()"},
      {"kinds/uint8", "uint8", "()"},
      {"mixed/0", "complex64", "()"},
      {"mixed/1/nested", "timedelta64", "()"},
      {"mixed/2", "-", "()"},
      {"roi/0", "int32", "()"},
      {"roi/1", "int32", "()"},
      {"roi/2", "int32", "()"},
      {"roi/3", "int32", "()"},
  };
  EXPECT_EQ(seen, expected);

  // Any rank the wire holds has a shape, beyond the inline extents too.
  PropertyNode deep;
  const std::vector<uint32_t> extents(40, 1);
  SetArray(Child(deep, "a"), std::vector<double>{2.5}, Shape(extents));
  std::string shape;
  VisitLeaves(deep, [&](const Leaf& leaf) { shape = leaf.shape.ToString(); });
  EXPECT_EQ(std::count(shape.begin(), shape.end(), 'x'), 39) << shape;
  const Array<double> read = ReadArray<double>(deep, "a");
  EXPECT_EQ(read.shape.rank(), 40u);
  EXPECT_EQ(read.values, std::vector<double>{2.5});
  Shape copy = read.shape;
  EXPECT_EQ(copy, Shape(extents));
}

TEST(ValuesTree, SortedEntriesAndListItems) {
  const PropertyNode root = SampleTree();
  std::vector<std::string_view> keys;
  for (const MapEntryRef& entry : SortedEntries(root)) keys.push_back(entry.key);
  EXPECT_EQ(keys, (std::vector<std::string_view>{"a/b~c", "calibration", "exposure", "kinds", "mixed", "roi"}));
  EXPECT_EQ(ListItems(At(root, "roi")).size(), 4);
  EXPECT_THROW(ListItems(root), ValueError);
  EXPECT_THROW(SortedEntries(At(root, "roi")), ValueError);
}

TEST(ValuesEquality, ComparesKindsShapesValuesAndKeysNotHashOrder) {
  const PropertyNode tree = SampleTree();
  PropertyNode parsed;
  ASSERT_TRUE(parsed.ParseFromString(tree.SerializeAsString()));
  EXPECT_TRUE(Equal(tree, parsed));

  PropertyNode other = tree;
  SetLeaf(other, "exposure", 0.5);
  EXPECT_FALSE(Equal(tree, other));
  other = tree;
  SetLeaf(other, "extra", 0.5);
  EXPECT_FALSE(Equal(tree, other));
  other = tree;
  SetArray(At(other, "calibration/matrix"), std::vector<double>(9, 1.0), {9});
  EXPECT_FALSE(Equal(tree, other)) << "shape ignored";
  other = tree;
  SetArray(At(other, "calibration/matrix"), std::vector<double>(9, 1.0), {3, 3}, Order::kF);
  EXPECT_FALSE(Equal(tree, other)) << "order ignored";
  other = tree;
  At(other, "exposure").mutable_value_type()->set_wellknowntype("seconds");
  EXPECT_FALSE(Equal(tree, other)) << "wellknowntype ignored";

  KVariant a;
  KVariant b;
  SetValue(a, int32_t{7});
  SetValue(b, uint32_t{7});
  EXPECT_FALSE(Equal(a, b)) << "kinds ignored";
  SetArray(a, std::vector<float>{NAN, 1}, {2});
  SetArray(b, std::vector<float>{NAN, 1}, {2});
  EXPECT_TRUE(Equal(a, b)) << "NaN is equal to NaN";
  b.mutable_array_data()->clear_dataorder();
  EXPECT_TRUE(Equal(a, b)) << "no order means C";
  SetValue(a, std::complex<double>(NAN, 0.0));
  SetValue(b, std::complex<double>(NAN, -0.0));
  EXPECT_TRUE(Equal(a, b));
}

}  // namespace
