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

const protobuf::Message& NodePrototype(uint32_t number) {
  switch (number) {
    case PropertyNode::kMapType:
      return _PropertyMap_default_instance_.instance;
    case PropertyNode::kListType:
      return _PropertyList_default_instance_.instance;
    default:
      return _KVariant_default_instance_.instance;
  }
}

// Applies `action` (wire::SizeMember, wire::WriteMember) to the node's set
// member as its own class.
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

}  // namespace

PropertyNode::PropertyNode(const PropertyNode& from) : MessageFrame(from) { MergeFields(from); }

PropertyNode::~PropertyNode() { type_.Clear(); }

internal::FieldRead PropertyNode::ReadField(uint32_t tag, const char* ptr,
                                            internal::ParseContext* ctx) {
  switch (tag) {
    case wire::LengthDelimitedTag(kMapType):
    case wire::LengthDelimitedTag(kListType):
    case wire::LengthDelimitedTag(kValueType):
      return wire::ReadMessageMember(&type_, tag >> 3, NodePrototype(tag >> 3), ptr, ctx);
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
  wire::MergeMessageMember(&type_, from.type_, NodePrototype(from.type_.case_number));
}

void PropertyNode::ClearFields() { type_.Clear(); }

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

bool IsAscii(const std::string& text) {
  constexpr uint64_t kHighBits = 0x8080808080808080u;
  const char* bytes = text.data();
  size_t left = text.size();
  uint64_t seen = 0;
  for (; left >= sizeof(uint64_t); left -= sizeof(uint64_t), bytes += sizeof(uint64_t)) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    seen |= word;
  }
  for (; left > 0; --left) seen |= static_cast<uint8_t>(*bytes++);
  return (seen & kHighBits) == 0;
}

// Keys are nearly always ASCII, which is UTF-8 as it stands; only the others
// need the runtime's full check, which also logs a failure.
bool IsValidKey(const std::string& key, WireFormatLite::Operation operation) {
  return IsAscii(key) || WireFormatLite::VerifyUtf8String(key.data(), static_cast<int>(key.size()),
                                                          operation, kKeyFieldName);
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
  std::vector<Entry>::const_iterator begin() const { return entries_.begin(); }
  std::vector<Entry>::const_iterator end() const { return entries_.end(); }

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

}  // namespace

PropertyMap::PropertyMap(const PropertyMap& from) : MessageFrame(from) { MergeFields(from); }

PropertyMap::~PropertyMap() { map_data_.Destruct(); }

// The entry is stored first, then its key is checked: a key that is not UTF-8
// fails the parse with its entry kept. A key seen twice keeps the last value.
internal::FieldRead PropertyMap::ReadField(uint32_t tag, const char* ptr,
                                           internal::ParseContext* ctx) {
  if (tag != wire::LengthDelimitedTag(kMapDataFieldNumber)) return std::nullopt;
  PropertyMap_MapDataEntry_DoNotUse::Parser<MapDataField, protobuf::Map<std::string, PropertyNode>>
      parser(&map_data_);
  ptr = ctx->ParseMessage(&parser, ptr);
  if (ptr == nullptr) return nullptr;
  return IsValidKey(parser.key(), WireFormatLite::PARSE) ? ptr : nullptr;
}

size_t PropertyMap::FieldsByteSize() const {
  const auto& map = map_data_.GetMap();
  size_t size = map.size();  // one tag byte per entry
  for (const auto& entry : map) {
    size += WireFormatLite::LengthDelimitedSize(EntrySize(entry.first, entry.second.ByteSizeLong()));
  }
  return size;
}

// Deterministic output sorts the entries by key (byte-wise); otherwise they go
// in the map's own order. A key that is not UTF-8 is written unchanged and
// only logged.
uint8_t* PropertyMap::WriteFields(uint8_t* target,
                                  internal::EpsCopyOutputStream* stream) const {
  auto write_entry = [&](const std::string& key, const PropertyNode& node) {
    target = stream->EnsureSpace(target);
    target = wire::WriteLengthDelimitedTag(kMapDataFieldNumber, target);
    target = wire::WriteVarint32(static_cast<uint32_t>(EntrySize(key, node.GetCachedSize())),
                                 target);
    target = stream->WriteString(1, key, target);
    target = wire::WriteMessageField(2, node, target, stream);
    IsValidKey(key, WireFormatLite::SERIALIZE);
  };
  const auto& map = map_data_.GetMap();
  if (stream->IsSerializationDeterministic() && map.size() > 1) {
    for (const auto& entry : SortedEntries(map)) write_entry(entry.pair->first, entry.pair->second);
  } else {
    for (const auto& entry : map) write_entry(entry.first, entry.second);
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
