// The property tree on the wire: one tree byte for byte, empty children, list
// element reuse, map entries (order, duplicates, missing parts, bad keys) and
// the parse depth bound.

#include <google/protobuf/dynamic_message.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/text_format.h>
#include <google/protobuf/util/json_util.h>
#include <google/protobuf/util/message_differencer.h>

#include <memory>
#include <set>
#include <vector>

#include "test_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using mav_test::Bytes;
using mav_test::Deterministic;
using mav_test::Hex;
using mav_test::ParseInto;
using mav_test::WireOf;
namespace pb = google::protobuf;

PropertyNode& At(PropertyMap* map, const std::string& key) { return (*map->mutable_map_data())[key]; }

// A little-endian double whose two high bytes are its only non-zero ones.
std::string Double(int byte6, int byte7) { return std::string(6, '\0') + Bytes({byte6, byte7}); }

TEST(PropertyTree, OneTreeByteForByte) {
  PropertyNode root;
  ArrayDataUnion* array = At(root.mutable_map_type(), "m").mutable_value_type()->mutable_array_data();
  for (double value : {0.0, 1.0, 2.0, -1.0, 0.5, 4.0}) array->mutable_double_content()->add_double_content(value);
  array->add_dimensions(2);
  array->add_dimensions(3);
  const std::string wire = Bytes({10, 68, 10, 66, 10, 1, 'm', 18, 61, 26, 59, 18, 57, 26, 50, 10, 48}) +
                           Double(0, 0) + Double(0xF0, 0x3F) + Double(0, 0x40) + Double(0xF0, 0xBF) +
                           Double(0xE0, 0x3F) + Double(0x10, 0x40) + Bytes({0x82, 0x01, 2, 2, 3});
  EXPECT_EQ(Hex(WireOf(root)), Hex(wire));
  PropertyNode read;
  ASSERT_TRUE(ParseInto(&read, wire));
  EXPECT_EQ(Hex(WireOf(read)), Hex(wire));

  // Map, entry, node, variant, union, array: six levels of the budget.
  for (int depth : {6, 5}) {
    pb::io::CodedInputStream in(reinterpret_cast<const uint8_t*>(wire.data()), static_cast<int>(wire.size()));
    in.SetRecursionLimit(depth);
    PropertyNode node;
    EXPECT_EQ(node.MergeFromCodedStream(&in), depth == 6) << depth;
  }
}

TEST(PropertyTree, EmptyChildrenAreWrittenAndListsAppendAndReuse) {
  PropertyNode node;
  ASSERT_TRUE(ParseInto(&node, Bytes({10, 0, 26, 0})));  // the map child is replaced
  EXPECT_EQ(&node.map_type(), &PropertyMap::default_instance());
  EXPECT_EQ(Hex(WireOf(node)), Hex(Bytes({26, 0})));

  // Parsing appends after the elements already there; field 1 as a varint is
  // an unknown field, not an element.
  PropertyList list;
  list.add_list_data()->mutable_list_type();
  ASSERT_TRUE(ParseInto(&list, Bytes({10, 0, 8, 1, 10, 2, 26, 0})));
  EXPECT_EQ(Hex(WireOf(list)), Hex(Bytes({10, 2, 18, 0, 10, 0, 10, 2, 26, 0, 8, 1})));

  std::set<const PropertyNode*> former;
  for (const PropertyNode& element : list.list_data()) former.insert(&element);
  list.Clear();
  PropertyNode* reused = list.add_list_data();
  EXPECT_EQ(former.count(reused), 1u);
  ASSERT_TRUE(ParseInto(&list, Bytes({10, 2, 18, 0})));
  EXPECT_EQ(former.count(&list.list_data(1)), 1u);
  EXPECT_EQ(Hex(WireOf(list)), Hex(Bytes({10, 0, 10, 2, 18, 0})));
}

TEST(PropertyMap, DeterministicOutputSortsTheKeys) {
  PropertyMap map;
  for (const char* key : {"b", "ab", "a"}) At(&map, key);
  const std::string sorted =
      Bytes({10, 5, 10, 1, 'a', 18, 0, 10, 6, 10, 2, 'a', 'b', 18, 0, 10, 5, 10, 1, 'b', 18, 0});
  EXPECT_EQ(Hex(WireOf(map, true)), Hex(sorted));
  PropertyMap read;  // the map's own order reads back to the same map
  ASSERT_TRUE(ParseInto(&read, WireOf(map)));
  EXPECT_EQ(Hex(WireOf(read, true)), Hex(sorted));
}

// Keys that tie on their first eight bytes, extend one another, hold a NUL
// or bytes above 0x7F sort as their byte strings do.
TEST(PropertyMap, DeterministicOrderIsByteWiseForAnyKey) {
  const std::vector<std::string> keys = {
      "param-10", "param-1", "param-100", "param-0", std::string("a\0", 2), "a", "",
      "parameters-b", "parameters-a", "\xC3\xA9t\xC3\xA9", "z", "\x7F", std::string("param-1\0x", 9)};
  PropertyMap map;
  for (const std::string& key : keys) At(&map, key).mutable_value_type()->set_wellknowntype(key);
  std::string expected;
  for (const std::string& key : std::set<std::string>(keys.begin(), keys.end())) {
    PropertyMap single;
    At(&single, key).mutable_value_type()->set_wellknowntype(key);
    expected += WireOf(single);
  }
  EXPECT_EQ(Hex(WireOf(map, true)), Hex(expected));
}

TEST(PropertyMap, ParseKeepsTheLastValueAndFillsMissingParts) {
  // "k" -> {wellknowntype "x"}, then "k" -> {empty scalar}: replaced, not merged.
  PropertyMap map;
  ASSERT_TRUE(ParseInto(&map, Bytes({10, 10, 10, 1, 'k', 18, 5, 26, 3, 26, 1, 'x',
                                     10, 9, 10, 1, 'k', 18, 4, 26, 2, 10, 0})));
  ASSERT_EQ(map.map_data_size(), 1);
  EXPECT_EQ(map.map_data().at("k").value_type().wellknowntype(), "");
  EXPECT_TRUE(map.map_data().at("k").value_type().has_scalar_data());

  // Only a value: key ""; only a key: empty node; value before key.
  map.Clear();
  ASSERT_TRUE(ParseInto(&map, Bytes({10, 2, 18, 0, 10, 3, 10, 1, 'v', 10, 7, 18, 2, 18, 0, 10, 1, 'z'})));
  ASSERT_EQ(map.map_data_size(), 3);
  EXPECT_EQ(map.map_data().count(""), 1u);
  EXPECT_EQ(map.map_data().at("v").type_case(), PropertyNode::TYPE_NOT_SET);
  EXPECT_EQ(map.map_data().at("z").type_case(), PropertyNode::kListType);
}

// An entry read on its own may hold no value at all; everything the runtime
// does with a message must still work on it, and treat it as "empty node".
TEST(PropertyMap, EntryWithoutAValueWorksEverywhere) {
  using Entry = PropertyMap_MapDataEntry_DoNotUse;
  for (const std::string& bytes : {std::string(), Bytes({10, 1, 'k'})}) {
    SCOPED_TRACE(Hex(bytes));
    Entry entry;
    ASSERT_TRUE(entry.ParseFromString(bytes));
    EXPECT_GE(entry.SpaceUsedLong(), sizeof(Entry));
    EXPECT_GE(entry.GetReflection()->SpaceUsedLong(entry), sizeof(Entry));

    Entry copy, merged, swapped, source;
    copy.CopyFrom(entry);
    merged.MergeFrom(entry);
    source.CopyFrom(entry);
    swapped.GetReflection()->Swap(&swapped, &source);
    for (const Entry* other : {&copy, &merged, &swapped}) {
      EXPECT_TRUE(pb::util::MessageDifferencer::Equivalent(*other, entry));
    }
    EXPECT_EQ(entry.key(), bytes.empty() ? "" : "k");
    EXPECT_EQ(entry.value().type_case(), PropertyNode::TYPE_NOT_SET);

    std::string text, json;
    ASSERT_TRUE(pb::TextFormat::PrintToString(entry, &text));
    Entry from_text, from_json;
    ASSERT_TRUE(pb::TextFormat::ParseFromString(text, &from_text));
    EXPECT_EQ(from_text.key(), entry.key());
    ASSERT_TRUE(pb::util::MessageToJsonString(entry, &json).ok());
    ASSERT_TRUE(pb::util::JsonStringToMessage(json, &from_json).ok()) << json;
    EXPECT_EQ(from_json.key(), entry.key());
    EXPECT_EQ(entry.DebugString(), text);
  }
}

// Maps are sized and written a batch of entries at a time: every entry must
// be written once whatever the count, in either order, and entries whose
// length prefix takes one byte or two must agree with the generic
// implementation.
TEST(PropertyMap, EveryEntryIsWrittenOnceAtAnyCount) {
  pb::DynamicMessageFactory factory;
  const pb::Message* generic = factory.GetPrototype(PropertyMap::descriptor());
  for (int count : {1, 2, 15, 16, 17, 31, 32, 33, 47, 48, 49, 50, 64, 65, 300}) {
    SCOPED_TRACE(count);
    PropertyMap map;
    for (int n = 0; n < count; ++n) {
      PropertyNode& node = At(&map, "key-" + std::to_string(n));
      switch (n % 5) {
        case 0: node.mutable_value_type()->mutable_scalar_data()->set_string_content(std::string(n % 140, 's')); break;
        case 1: At(node.mutable_map_type(), "inner").mutable_value_type()->mutable_scalar_data()->set_int32_content(n); break;
        case 2: node.mutable_list_type()->add_list_data()->mutable_value_type()->mutable_array_data()->add_dimensions(n); break;
        case 3: node.mutable_value_type()->mutable_scalar_data()->mutable_duration_content()->set_seconds_content(n); break;
        default: break;  // an empty node
      }
    }
    const std::string sorted = WireOf(map, true);
    std::unique_ptr<pb::Message> read(generic->New());
    ASSERT_TRUE(read->ParseFromString(sorted));
    EXPECT_EQ(Hex(Deterministic(*read)), Hex(sorted));

    PropertyMap back;
    ASSERT_TRUE(ParseInto(&back, WireOf(map)));
    EXPECT_EQ(back.map_data_size(), count);
    EXPECT_EQ(Hex(WireOf(back, true)), Hex(sorted));
  }
}

std::string g_log;
void CaptureLog(pb::LogLevel, const char*, int, const std::string& message) { g_log += message; }

TEST(PropertyMap, NonUtf8KeyFailsTheParseKeepsTheEntryAndOnlyLogsOnWrite) {
  pb::LogHandler* previous = pb::SetLogHandler(&CaptureLog);
  const std::string entry = Bytes({10, 5, 10, 1, 0xFF, 18, 0});
  const char kKeyName[] = "Tarnwick.MavProtobuf.PropertyMap.MapDataEntry.key";
  g_log.clear();
  PropertyMap read;
  EXPECT_FALSE(ParseInto(&read, entry));
  EXPECT_EQ(read.map_data().count("\xFF"), 1u);
  EXPECT_NE(g_log.find(kKeyName), std::string::npos) << g_log;

  g_log.clear();
  EXPECT_EQ(Hex(WireOf(read)), Hex(entry));
  EXPECT_NE(g_log.find(kKeyName), std::string::npos) << g_log;

  // A bad byte is found wherever it lies in a longer key; UTF-8 beyond ASCII
  // passes without a word.
  for (const std::string key : {"\xFF" "abcdefghij", "abcdefgh\xFF" "ij", "abcdefghij\xFF"}) {
    PropertyMap one;
    EXPECT_FALSE(ParseInto(&one, Bytes({10, 15, 10, 11}) + key + Bytes({18, 0}))) << Hex(key);
    EXPECT_EQ(one.map_data().count(key), 1u);
  }
  g_log.clear();
  PropertyMap good;
  ASSERT_TRUE(ParseInto(&good, Bytes({10, 15, 10, 11}) + "gr\xC3\xBC\xC3\x9F" "e-123" + Bytes({18, 0})));
  EXPECT_EQ(good.map_data().count("gr\xC3\xBC\xC3\x9F" "e-123"), 1u);
  EXPECT_EQ(Hex(WireOf(good)), Hex(WireOf(good, true)));
  EXPECT_EQ(g_log, "");
  pb::SetLogHandler(previous);
}

// A tree built in code may be far deeper than the stack allows recursion.
TEST(PropertyTree, DeepTreesAreFreedAndClearedWithoutDeepRecursion) {
  constexpr int kLevels = 300000;
  for (bool clear : {false, true}) {
    auto root = std::make_unique<PropertyNode>();
    PropertyNode* node = root.get();
    for (int level = 0; level < kLevels; ++level) {
      node = level % 2 == 0 ? node->mutable_list_type()->add_list_data()
                            : &(*node->mutable_map_type()->mutable_map_data())["k"];
    }
    node->mutable_value_type()->set_wellknowntype("leaf");
    if (clear) {
      root->Clear();
      EXPECT_EQ(root->type_case(), PropertyNode::TYPE_NOT_SET);
    }
    root.reset();
  }
}

TEST(PropertyTree, NestingBeyondTheRecursionLimitFailsToParseButSerializes) {
  for (int levels : {100, 101}) {  // node, list, node, ...: `levels` messages below the root
    SCOPED_TRACE(levels);
    PropertyNode built, read;
    PropertyNode* node = &built;
    for (int level = 1; level <= levels; level += 2) {
      PropertyList* list = node->mutable_list_type();
      if (level < levels) node = list->add_list_data();
    }
    const std::string wire = WireOf(built);
    EXPECT_EQ(ParseInto(&read, wire), levels <= 100);
    EXPECT_EQ(read.type_case(), PropertyNode::kListType);  // kept, even on failure
  }
}

}  // namespace
