// The in-place views on their own boundaries: what lies in the bytes, what
// they hand to a parse, where they refuse. The view fuzzer's replay holds
// them against the parse on the seed corpus (random trees, hostile inputs).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>

#include "MavView.h"
#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using mav_test::Bytes;

std::atomic<long> allocations{0};

std::string Serialized(const PropertyNode& node) {
  std::string bytes;
  EXPECT_TRUE(node.SerializeToString(&bytes));
  return bytes;
}

// Length-delimited field `number` holding `payload`.
std::string Field(int number, const std::string& payload) {
  std::string out;
  uint32_t tag = static_cast<uint32_t>(number) << 3 | 2;
  while (tag >= 0x80) {
    out.push_back(static_cast<char>(tag | 0x80));
    tag >>= 7;
  }
  out.push_back(static_cast<char>(tag));
  size_t size = payload.size();
  while (size >= 0x80) {
    out.push_back(static_cast<char>(size | 0x80));
    size >>= 7;
  }
  out.push_back(static_cast<char>(size));
  return out + payload;
}
std::string Entry(const std::string& key, const std::string& node) {
  return Field(1, Field(1, key) + Field(2, node));
}
std::string Int64Node(int64_t value) {
  PropertyNode node;
  SetValue(node, value);
  return Serialized(node);
}

PropertyNode RichTree() {
  PropertyNode root;
  SetLeaf(root, "name", "detector A");
  SetLeaf(root, "gain", 1.5f);
  SetLeaf(root, "exposure", std::chrono::microseconds(2500));
  SetLeaf(root, "start", SystemTime(std::chrono::nanoseconds(-1'500'000'001)));
  SetLeaf(root, "offset", int8_t{-3});
  SetLeaf(root, "z", std::complex<double>(1, -2));
  SetArray(Child(root, "frame"), std::vector<uint16_t>{1, 2, 300, 65535, 0, 7}, Shape{2, 3}, Order::kF);
  SetArray(Child(root, "trace"), std::vector<double>{0.5, -0.0, 1e300});
  SetArray(Child(root, "labels"), std::vector<std::string>{"x", "", "y~/z"});
  SetArray(Child(root, "mask"), std::vector<bool>{true, false, true});
  SetArray(Child(root, "bytes"), std::vector<int8_t>{-128, 0, 127});
  PropertyNode& rois = Child(root, "rois");
  SetLeaf(Append(rois), "x", int64_t{-5});
  Append(rois);
  Child(Child(root, "a/b"), "~");
  return root;
}

TEST(NodeView, ReadsEveryKindAsTheMessagesDo) {
  const std::string bytes = Serialized(RichTree());
  const NodeView root(bytes);
  ASSERT_TRUE(root.is_map());
  EXPECT_EQ(root.map().size(), 13u);
  EXPECT_EQ(root.ValueAt("name").Get<std::string_view>(), "detector A");
  EXPECT_EQ(root.ValueAt("gain").Get<float>(), 1.5f);
  EXPECT_EQ(root.ValueAt("exposure").Get<std::chrono::microseconds>().count(), 2500);
  EXPECT_EQ(root.ValueAt("start").Get<SystemTime>().time_since_epoch().count(), -1'500'000'001);
  EXPECT_EQ(root.ValueAt("offset").Get<int8_t>(), -3);
  EXPECT_EQ(root.ValueAt("z").Get<std::complex<double>>(), std::complex<double>(1, -2));
  EXPECT_EQ(root.ValueAt("rois/0/x").Get<int64_t>(), -5);
  EXPECT_TRUE(root.At("rois/1").is_empty());
  EXPECT_TRUE(root.At("a~1b/~0").is_empty());

  const ValueView frame = root.ValueAt("frame");
  EXPECT_EQ(frame.shape(), (Shape{2, 3}));
  EXPECT_EQ(frame.order(), Order::kF);
  uint16_t pixels[6];
  const ArrayView<uint16_t> copied = frame.CopyArray(pixels, 6);
  EXPECT_EQ(std::vector<uint16_t>(copied.begin(), copied.end()),
            (std::vector<uint16_t>{1, 2, 300, 65535, 0, 7}));
  EXPECT_EQ(root.ValueAt("labels").ReadArray<std::string_view>().values,
            (std::vector<std::string_view>{"x", "", "y~/z"}));
  EXPECT_EQ(root.ValueAt("mask").ReadArray<bool>().values, (std::vector<bool>{true, false, true}));

  // Fixed-width elements are the input's own bytes.
  const std::string_view trace = root.ValueAt("trace").ArrayBytes(Kind::kFloat64);
  EXPECT_GE(trace.data(), bytes.data());
  EXPECT_LE(trace.data() + trace.size(), bytes.data() + bytes.size());
  const auto int8s = root.ValueAt("bytes").ViewArray<int8_t>();
  ASSERT_TRUE(int8s);
  EXPECT_EQ(int8s->data()[0], -128);
  EXPECT_GE(reinterpret_cast<const char*>(int8s->data()), bytes.data());

  // Refusals name what they found, as MavValues.h words them.
  EXPECT_THROW(root.ValueAt("gain").Get<double>(), ValueError);
  EXPECT_THROW(root.ValueAt("frame").Get<uint16_t>(), ValueError);
  EXPECT_THROW(root.At("rois").map(), ValueError);
  EXPECT_THROW(frame.CopyArray(pixels, 5), ValueError);
  try {
    root.At("rois/7");
    FAIL();
  } catch (const ValueError& error) {
    EXPECT_STREQ(error.what(), "no node at 'rois/7': index 7 is past the end of a list of 2");
  }
  EXPECT_FALSE(root.Find("nothing/here"));
  EXPECT_FALSE(root.Find("rois/01"));
}

TEST(NodeView, FixedWidthArraysInPlaceOnlyWhereAligned) {
  PropertyNode node;
  SetArray(node, std::vector<double>{1, 2, 3});
  const std::string bytes = Serialized(node);
  // The same bytes at every offset of an aligned buffer.
  alignas(16) char buffer[64];
  for (size_t offset = 0; offset < 8; ++offset) {
    std::memcpy(buffer + offset, bytes.data(), bytes.size());
    const ValueView value = NodeView(buffer + offset, bytes.size()).value();
    const std::optional<ArrayView<double>> view = value.ViewArray<double>();
    const bool aligned = reinterpret_cast<uintptr_t>(value.ArrayBytes(Kind::kFloat64).data()) % 8 == 0;
    EXPECT_EQ(view.has_value(), aligned) << offset;
    if (view) {
      EXPECT_EQ((*view)[2], 3.0);
    }
    EXPECT_EQ(value.ReadArray<double>().values, (std::vector<double>{1, 2, 3})) << offset;
  }
}

// Encodings a writer may produce that cannot be read in place; the answers
// must be the parse's.
TEST(NodeView, NonCanonicalEncodingsReadAsTheParseReadsThem) {
  const std::string packed_two_runs = Field(3, Field(2, Field(7, Field(1, Bytes({1, 2})) +
                                                                    Field(1, Bytes({3})))));
  struct Case {
    const char* name;
    std::string bytes;
  } cases[] = {
      {"key twice, last wins", Field(1, Entry("k", Int64Node(1)) + Entry("k", Int64Node(2)))},
      {"map given twice merges", Field(1, Entry("a", Int64Node(1))) + Field(1, Entry("b", Int64Node(2)))},
      {"later member replaces", Field(2, Field(1, "")) + Field(1, Entry("a", Int64Node(3)))},
      {"array in two packed runs", packed_two_runs},
      {"unknown fields and a value before its key",
       Bytes({0x28, 0x07}) + Field(1, Field(1, Field(2, Int64Node(4)) + Field(1, "k")) + Bytes({0x45, 1, 2, 3, 4}))},
      {"unpacked element then a packed run",
       Field(3, Field(2, Field(7, Bytes({0x08, 0x05}) + Field(1, Bytes({1, 2})))))},
      {"entry value given twice merges", Field(1, Field(1, Field(1, "k") + Field(2, Field(1, Entry("x", Int64Node(5)))) +
                                                            Field(2, Field(1, Entry("y", Int64Node(6))))))},
  };
  for (const Case& c : cases) {
    PropertyNode parsed;
    const bool parses = parsed.ParseFromString(c.bytes);
    const NodeView root(c.bytes);
    bool validates = true;
    try {
      root.Validate();
    } catch (const DecodeError&) {
      validates = false;
    }
    EXPECT_EQ(validates, parses) << c.name;
    if (!parses) continue;
    PropertyNode copied;
    root.CopyTo(&copied);
    EXPECT_TRUE(Equal(copied, parsed)) << c.name;
    size_t leaves = 0;
    VisitLeaves(root, [&](std::string_view path, const NodeView&, const ValueView& value) {
      ++leaves;
      const PropertyNode* expected = Find(parsed, path);
      ASSERT_NE(expected, nullptr) << c.name << " " << path;
      KVariant copy;
      value.CopyTo(&copy);
      EXPECT_TRUE(Equal(copy, expected->value_type())) << c.name << " " << path;
      if (value.kind() == Kind::kInt64 && value.form() == Form::kScalar) {
        EXPECT_EQ(value.Get<int64_t>(), GetValue<int64_t>(*expected)) << c.name;
      }
    });
    EXPECT_GT(leaves, 0u) << c.name;
  }
  EXPECT_EQ(NodeView(cases[0].bytes).map().size(), 1u);
  EXPECT_EQ(NodeView(cases[0].bytes).ValueAt("k").Get<int64_t>(), 2);
  EXPECT_EQ(NodeView(cases[3].bytes).value().ReadArray<int64_t>().values, (std::vector<int64_t>{1, 2, 3}));
}

TEST(NodeView, RefusesExactlyWhereTheParseRefuses) {
  const std::string bytes = Serialized(RichTree());
  for (size_t size = 0; size <= bytes.size(); ++size) {
    const std::string prefix = bytes.substr(0, size);
    PropertyNode parsed;
    const bool parses = parsed.ParseFromString(prefix);
    bool validates = true;
    try {
      NodeView(prefix).Validate();
    } catch (const DecodeError&) {
      validates = false;
    }
    ASSERT_EQ(validates, parses) << "prefix of " << size << " bytes";
  }
  // Nesting: the parse's limit of 100 messages, counted the same way.
  for (int levels : {32, 33, 34, 49, 50}) {
    for (bool maps : {true, false}) {
      PropertyNode root;
      PropertyNode* node = &root;
      for (int level = 0; level < levels; ++level) node = maps ? &Child(*node, "k") : &Append(*node);
      SetValue(*node, 1.0);
      const std::string deep = Serialized(root);
      PropertyNode parsed;
      bool validates = true;
      try {
        NodeView(deep).Validate();
      } catch (const DecodeError&) {
        validates = false;
      }
      EXPECT_EQ(validates, parsed.ParseFromString(deep)) << levels << (maps ? " maps" : " lists");
    }
  }
  EXPECT_THROW(NodeView(Field(1, Entry("\xff", ""))).map().begin(), DecodeError);
}

}  // namespace

// Counts the test program's allocations, for the walk below. The compiler
// sees malloc's memory freed by free, as it is, once it inlines these.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace {

TEST(NodeView, WalkingAPlainTreeAllocatesNothing) {
  PropertyNode root;
  for (int group = 0; group < 20; ++group) {
    PropertyNode& map = Child(root, "group" + std::to_string(group));
    for (int leaf = 0; leaf < 50; ++leaf) SetLeaf(map, "leaf" + std::to_string(leaf), leaf * 0.5);
  }
  const std::string bytes = Serialized(root);
  const long before = allocations.load();
  double sum = 0;
  const NodeView view(bytes);
  for (const EntryView& group : view.map()) {
    for (const EntryView& leaf : group.node.map()) sum += leaf.node.value().Get<double>();
  }
  sum += view.ValueAt("group7/leaf9").Get<double>();
  EXPECT_EQ(allocations.load() - before, 0);
  EXPECT_EQ(sum, 20 * (49 * 50 / 2) * 0.5 + 4.5);
}

}  // namespace
