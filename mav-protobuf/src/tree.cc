// The property tree: PropertyNode, PropertyList, and PropertyMap with its map
// entry.

#include "frames.h"
#include "oneof_members.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace Tarnwick {
namespace MavProtobuf {

using wire::WireFormatLite;

// PropertyNode --------------------------------------------------------------

template class internal::MessageFrame<PropertyNode>;

namespace {

// Applies `action` (wire::SizeMember, wire::WriteMember, wire::MergeMember)
// to the node's set member as its own class.
template <typename OneofT, typename Action>
auto ApplyToMember(const OneofT& type, Action action) {
  const uint32_t number = type.case_number;
  switch (number) {
    case PropertyNode::kMapType:
      return action(number, wire::MessageMember<PropertyMap>(type));
    case PropertyNode::kListType:
      return action(number, wire::MessageMember<PropertyList>(type));
    default:
      return action(number, wire::MessageMember<KVariant>(type));
  }
}

// Asks for a node's member: the first memory that sizing or writing the node
// reads after the node itself.
void PrefetchMember(const PropertyNode& node) {
  switch (node.type_case()) {
    case PropertyNode::kMapType:
      return __builtin_prefetch(&node.map_type());
    case PropertyNode::kListType:
      return __builtin_prefetch(&node.list_type());
    case PropertyNode::kValueType:
      return __builtin_prefetch(&node.value_type());
    case PropertyNode::TYPE_NOT_SET:
      return;
  }
}

// Asks for the scalar or array that a value node holds.
void PrefetchData(const PropertyNode& node) {
  if (!node.has_value_type()) return;
  const KVariant& value = node.value_type();
  switch (value.data_case()) {
    case KVariant::kScalarData:
      return __builtin_prefetch(&value.scalar_data());
    case KVariant::kArrayData:
      return __builtin_prefetch(&value.array_data());
    case KVariant::DATA_NOT_SET:
      return;
  }
}

}  // namespace

PropertyNode::PropertyNode(const PropertyNode& from) : MessageFrame(from) { MergeFields(from); }

PropertyNode::~PropertyNode() { FreeMember(); }

namespace {

// Freeing a tree by recursion takes stack in proportion to its depth, and a
// tree built in code can be deeper than any thread's stack. So a node frees
// its map or list in place only down to a modest depth below the outermost
// node being freed; deeper members are handed to that node, which frees them
// one after another, each again down to that depth. Only trees deeper than
// that allocate (one pointer per member handed over).
constexpr int kFreeInPlaceDepth = 256;
thread_local int free_depth = 0;
thread_local std::vector<protobuf::Message*>* handed_over = nullptr;

}  // namespace

void PropertyNode::FreeMember() {
  if (!type_.Holds(kMapType) && !type_.Holds(kListType)) return type_.Clear();
  if (free_depth >= kFreeInPlaceDepth) {
    handed_over->push_back(type_.slot.message);
    type_.case_number = 0;
    return;
  }
  const bool outermost = free_depth == 0;
  std::vector<protobuf::Message*> members;
  if (outermost) handed_over = &members;
  ++free_depth;
  type_.Clear();
  if (outermost) {
    while (!members.empty()) {
      protobuf::Message* member = members.back();
      members.pop_back();
      delete member;
    }
    handed_over = nullptr;
  }
  --free_depth;
}

internal::FieldRead PropertyNode::ReadField(uint32_t tag, const char* ptr,
                                            internal::ParseContext* ctx) {
  switch (tag) {
    case wire::LengthDelimitedTag(kMapType):
      return wire::ReadMessageMember<PropertyMap>(&type_, kMapType, ptr, ctx);
    case wire::LengthDelimitedTag(kListType):
      return wire::ReadMessageMember<PropertyList>(&type_, kListType, ptr, ctx);
    case wire::LengthDelimitedTag(kValueType):
      return wire::ReadMessageMember<KVariant>(&type_, kValueType, ptr, ctx);
  }
  return std::nullopt;
}

size_t PropertyNode::FieldsByteSize() const {
  return type_case() == TYPE_NOT_SET ? 0 : ApplyToMember(type_, wire::SizeMember{});
}

uint8_t* PropertyNode::WriteFields(uint8_t* target,
                                   internal::EpsCopyOutputStream* stream) const {
  if (type_case() == TYPE_NOT_SET) return target;
  return ApplyToMember(type_, wire::WriteMember{target, stream});
}

void PropertyNode::MergeFields(const PropertyNode& from) {
  if (from.type_case() == TYPE_NOT_SET) return;
  ApplyToMember(from.type_, wire::MergeInto(&type_));
}

void PropertyNode::ClearFields() { FreeMember(); }

void PropertyNode::SwapFields(PropertyNode* other) { type_.Swap(&other->type_); }

// PropertyList --------------------------------------------------------------

template class internal::MessageFrame<PropertyList>;
template class internal::RepeatedMessageFrame<PropertyList, PropertyNode>;

// PropertyMap ---------------------------------------------------------------

template class internal::MessageFrame<PropertyMap>;

namespace {

constexpr char kKeyFieldName[] = "Tarnwick.MavProtobuf.PropertyMap.MapDataEntry.key";

using NodeMap = protobuf::Map<std::string, PropertyNode>;

// Size of one entry's content: the key (field 1) and the node (field 2), both
// always present on the wire.
size_t EntrySize(const std::string& key, size_t node_size) {
  return 1 + WireFormatLite::LengthDelimitedSize(key.size()) + 1 +
         WireFormatLite::LengthDelimitedSize(node_size);
}

// A word at a time; the last word may overlap the one before it, so a key of
// eight bytes or more takes no byte loop.
bool IsAscii(const std::string& text) {
  constexpr uint64_t kHighBits = 0x8080808080808080u;
  const char* bytes = text.data();
  const size_t size = text.size();
  uint64_t seen = 0;
  if (size >= sizeof(uint64_t)) {
    for (size_t at = 0; at + sizeof(uint64_t) < size; at += sizeof(uint64_t)) {
      seen |= varint::Load64(bytes + at);
    }
    seen |= varint::Load64(bytes + size - sizeof(uint64_t));
  } else {
    for (size_t at = 0; at < size; ++at) seen |= static_cast<uint8_t>(bytes[at]);
  }
  return (seen & kHighBits) == 0;
}

// Keys are nearly always ASCII, which is UTF-8 as it stands; only the others
// need the runtime's full check, which also logs a failure.
bool IsValidKey(const std::string& key, WireFormatLite::Operation operation) {
  return IsAscii(key) || WireFormatLite::VerifyUtf8String(key.data(), static_cast<int>(key.size()),
                                                          operation, kKeyFieldName);
}

// Visits the entries that `next` hands out one by one (a pointer each, null
// after the last, and from then on). A tree's nodes lie scattered over the
// heap and each leaf is reached through three or four pointers in a row, so
// sizing and writing a map wait on memory far longer than they compute. The
// walk therefore takes the entries a batch at a time and asks for one level of
// a whole batch at once, a batch's worth of visits before that level is read:
// each step gathers a new batch (the map's own walk reads its entries), asks
// for the members of its nodes, asks for the content of the values in the
// batch before, and visits the batch before that. The requests of one level
// are independent, so their waits overlap instead of adding up.
template <typename Next, typename Visit>
void WalkAhead(Next next, Visit visit) {
  constexpr int kBatch = 16;
  constexpr int kStages = 3;
  const NodeMap::value_type* batches[kStages][kBatch];
  int counts[kStages] = {};
  for (int step = 0;; ++step) {
    const NodeMap::value_type** gathered = batches[step % kStages];
    int& count = counts[step % kStages];
    count = 0;
    while (count < kBatch && (gathered[count] = next()) != nullptr) ++count;
    for (int i = 0; i < count; ++i) PrefetchMember(gathered[i]->second);

    const NodeMap::value_type** members = batches[(step + kStages - 1) % kStages];
    const int member_count = counts[(step + kStages - 1) % kStages];
    for (int i = 0; i < member_count; ++i) PrefetchData(members[i]->second);

    const NodeMap::value_type** visited = batches[(step + kStages - 2) % kStages];
    int& visit_count = counts[(step + kStages - 2) % kStages];
    for (int i = 0; i < visit_count; ++i) visit(*visited[i]);
    visit_count = 0;
    if (count == 0 && member_count == 0) return;
  }
}

// The map's entries in its own order, for WalkAhead.
auto InMapOrder(const NodeMap& map) {
  return [it = map.begin(), end = map.end()]() mutable -> const NodeMap::value_type* {
    return it == end ? nullptr : &*it++;
  };
}

// The entries of a map in byte-wise key order. Most keys differ within their
// first eight bytes, so each entry carries those as a big-endian number (short
// keys padded with zeros, which orders a key before its extensions) and only
// a tie compares the strings.
class SortedEntries {
 public:
  struct Entry {
    uint64_t prefix;
    const NodeMap::value_type* pair;
  };

  explicit SortedEntries(const NodeMap& map) {
    entries_.reserve(map.size());
    for (const auto& pair : map) entries_.push_back({KeyPrefix(pair.first), &pair});
    std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
      return a.prefix != b.prefix ? a.prefix < b.prefix : a.pair->first < b.pair->first;
    });
  }
  // The entries in order, for WalkAhead.
  auto InOrder() const {
    return [it = entries_.begin(), end = entries_.end()]() mutable -> const NodeMap::value_type* {
      return it == end ? nullptr : (it++)->pair;
    };
  }

 private:
  static uint64_t KeyPrefix(const std::string& key) {
    uint8_t bytes[sizeof(uint64_t)] = {};
    std::memcpy(bytes, key.data(), std::min(key.size(), sizeof(bytes)));
    uint64_t prefix = 0;
    for (uint8_t byte : bytes) prefix = (prefix << 8) | byte;
    return prefix;
  }

  std::vector<Entry> entries_;
};

// One entry as a map field element: tag, length, key, node.
uint8_t* WriteEntry(const NodeMap::value_type& entry, uint8_t* target,
                    internal::EpsCopyOutputStream* stream) {
  const std::string& key = entry.first;
  const PropertyNode& node = entry.second;
  target = stream->EnsureSpace(target);
  target = wire::WriteLengthDelimitedTag(PropertyMap::kMapDataFieldNumber, target);
  target = wire::WriteVarint32(static_cast<uint32_t>(EntrySize(key, node.GetCachedSize())), target);
  target = stream->WriteString(1, key, target);
  target = wire::WriteMessageField(2, node, target, stream);
  IsValidKey(key, WireFormatLite::SERIALIZE);
  return target;
}

}  // namespace

PropertyMap::PropertyMap(const PropertyMap& from) : MessageFrame(from) { MergeFields(from); }

PropertyMap::~PropertyMap() { map_data_.Destruct(); }

namespace {
thread_local bool reading_map_entries = false;
}  // namespace

bool PropertyMap_MapDataEntry_DoNotUse::ValidateKey(std::string* key) {
  return reading_map_entries || IsValidKey(*key, WireFormatLite::PARSE);
}

// The entry is stored first, then its key is checked: a key that is not UTF-8
// fails the parse with its entry kept. A key seen twice keeps the last value.
internal::FieldRead PropertyMap::ReadField(uint32_t tag, const char* ptr,
                                           internal::ParseContext* ctx) {
  if (tag != wire::LengthDelimitedTag(kMapDataFieldNumber)) return std::nullopt;
  PropertyMap_MapDataEntry_DoNotUse::Parser<MapDataField, protobuf::Map<std::string, PropertyNode>>
      parser(&map_data_);
  const bool outer_reading_map_entries = reading_map_entries;
  reading_map_entries = true;
  ptr = ctx->ParseMessage(&parser, ptr);
  reading_map_entries = outer_reading_map_entries;
  if (ptr == nullptr) return nullptr;
  return IsValidKey(parser.key(), WireFormatLite::PARSE) ? ptr : nullptr;
}

size_t PropertyMap::FieldsByteSize() const {
  const auto& map = map_data_.GetMap();
  size_t size = map.size();  // one tag byte per entry
  WalkAhead(InMapOrder(map), [&size](const NodeMap::value_type& entry) {
    size += WireFormatLite::LengthDelimitedSize(EntrySize(entry.first, entry.second.ByteSizeLong()));
  });
  return size;
}

// Deterministic output sorts the entries by key (byte-wise); otherwise they go
// in the map's own order. A key that is not UTF-8 is written unchanged and
// only logged.
uint8_t* PropertyMap::WriteFields(uint8_t* target,
                                  internal::EpsCopyOutputStream* stream) const {
  auto write_entry = [&target, stream](const NodeMap::value_type& entry) {
    target = WriteEntry(entry, target, stream);
  };
  const auto& map = map_data_.GetMap();
  if (stream->IsSerializationDeterministic() && map.size() > 1) {
    const SortedEntries sorted(map);
    WalkAhead(sorted.InOrder(), write_entry);
  } else {
    WalkAhead(InMapOrder(map), write_entry);
  }
  return target;
}

// Keys present in both end with a copy of the source's node.
void PropertyMap::MergeFields(const PropertyMap& from) {
  if (from.map_data_size() == 0) return;
  auto* map = map_data_.MutableMap();
  for (const auto& entry : from.map_data()) (*map)[entry.first] = entry.second;
}

void PropertyMap::ClearFields() { map_data_.Clear(); }

void PropertyMap::SwapFields(PropertyMap* other) { map_data_.InternalSwap(&other->map_data_); }

}  // namespace MavProtobuf
}  // namespace Tarnwick
