// Nodes, maps and lists read in place.
#include <algorithm>
#include <array>
#include <cstring>
#include <functional>

#include "../values/values_internal.h"
#include "scan.h"

namespace Tarnwick {
namespace MavProtobuf {

using view_internal::Canonical;
using view_internal::Field;
using view_internal::kLength;
using view_internal::Nested;
using view_internal::ReadField;
using view_internal::ReadShortField;
using view_internal::Span;
using view_internal::Tag;

namespace {

constexpr uint32_t kItemTag = Tag(1, kLength);  // a list's item, a map's entry

// The next field tagged `tag` at or after `at`, skipping others: its start in
// `*field_start` and its end as the result; `end` when there is none; null
// when a field needs a parse.
const char* NextTagged(const Span& span, const char* at, uint32_t tag, Field* field,
                       const char** field_start) {
  *field_start = span.end;
  while (at < span.end) {
    const char* start = at;
    at = ReadField(at, span.end, field);
    if (at == nullptr) return nullptr;
    if (field->tag == tag) {
      *field_start = start;
      return at;
    }
  }
  return span.end;
}

}  // namespace

namespace view_internal {

bool ReadEntry(const Span& map, std::string_view entry, std::string_view* key,
               std::string_view* value, bool* has_value) {
  if (map.depth + 1 > kMaxDepth) ThrowMalformed("messages nested deeper than " + std::to_string(kMaxDepth));
  *key = {};
  *has_value = false;
  const char* const end = entry.data() + entry.size();
  // The usual entry: a short key, then the value to the end.
  const char* at = entry.data();
  if (end - at >= 2 && at[0] == Tag(1, kLength) && static_cast<uint8_t>(at[1]) < 0x80 &&
      end - at - 2 >= at[1]) {
    const std::string_view short_key(at + 2, static_cast<size_t>(at[1]));
    uint32_t tag;
    std::string_view short_value;
    const char* rest = short_key.data() + short_key.size();
    if (rest == end || (ReadShortField(rest, end, &tag, &short_value) && tag == Tag(2, kLength))) {
      *key = short_key;
      *value = short_value;
      *has_value = rest != end;
      if (!IsUtf8(*key)) ThrowMalformed("a map key is not valid UTF-8");
      return true;
    }
  }
  for (; at < end;) {
    Field field;
    at = ReadField(at, end, &field);
    if (at == nullptr) return false;
    if (field.tag == Tag(1, kLength)) {
      *key = field.bytes;
    } else if (field.tag == Tag(2, kLength)) {
      if (*has_value) return false;  // the parse merges the two
      *value = field.bytes;
      *has_value = true;
    }
  }
  if (!IsUtf8(*key)) ThrowMalformed("a map key is not valid UTF-8");
  return true;
}

}  // namespace view_internal

// ---------------------------------------------------------------------------
// NodeView

NodeView::NodeView(std::string_view bytes) : NodeView(bytes, 0, nullptr) {}

NodeView::NodeView(std::string_view bytes, int depth, std::shared_ptr<const std::string> owner) {
  Load(Span{bytes.data(), bytes.data() + bytes.size(), depth, std::move(owner)});
}

// A node holds at most one member field; anything else is the parse's to
// resolve (a later member replaces an earlier one, a repeated one merges).
void NodeView::Load(Span node) {
  if (node.depth > view_internal::kMaxDepth) {
    view_internal::ThrowMalformed("messages nested deeper than " + std::to_string(view_internal::kMaxDepth));
  }
  uint32_t short_tag;
  std::string_view short_member;
  if (ReadShortField(node.begin, node.end, &short_tag, &short_member) && short_tag <= Tag(3, kLength)) {
    type_ = static_cast<NodeType>(short_tag >> 3);
    member_ = Nested(node, short_member);
    return;
  }
  for (int attempt = 0; attempt < 2; ++attempt) {
    std::string_view member;
    uint32_t member_tag = 0;
    bool plain = true;
    for (const char* at = node.begin; at < node.end && plain;) {
      Field field;
      at = ReadField(at, node.end, &field);
      if (at == nullptr) {
        plain = false;
      } else if (field.tag == Tag(1, kLength) || field.tag == Tag(2, kLength) ||
                 field.tag == Tag(3, kLength)) {
        plain = member_tag == 0;
        member_tag = field.tag;
        member = field.bytes;
      }
    }
    if (plain) {
      type_ = static_cast<NodeType>(member_tag >> 3);
      member_ = member_tag == 0 ? Span{} : Nested(node, member);
      return;
    }
    node = Canonical<PropertyNode>(node);
  }
  view_internal::ThrowMalformed("a node that does not read back");
}

MapView NodeView::map() const {
  if (!is_map()) values_internal::Fail("expected a map, found " + values_internal::DescribeNode(static_cast<int>(type_)));
  return MapView(member_);
}

ListView NodeView::list() const {
  if (!is_list()) values_internal::Fail("expected a list, found " + values_internal::DescribeNode(static_cast<int>(type_)));
  return ListView(member_);
}

ValueView NodeView::value() const {
  if (is_empty()) return ValueView();
  if (!is_value()) values_internal::Fail("expected a value, found " + values_internal::DescribeNode(static_cast<int>(type_)));
  return ValueView(member_);
}

namespace {

// The child named by `step`, or why there is none.
std::optional<NodeView> Step(const NodeView& node, std::string_view step, std::string* why) {
  if (node.is_map()) {
    // Only a step with an escape needs a copy to compare.
    std::optional<NodeView> found;
    if (step.find('~') == std::string_view::npos) {
      found = node.map().Find(step);
    } else {
      found = node.map().Find(values_internal::Unescape(step));
    }
    if (!found && why) *why = "no key '" + values_internal::Unescape(step) + "'";
    return found;
  }
  if (node.is_list()) {
    const std::optional<size_t> index = values_internal::ParseIndex(step);
    std::optional<NodeView> found;
    if (index) found = node.list().Find(*index);
    if (!found && why) {
      *why = index ? "index " + std::string(step) + " is past the end of a list of " +
                         std::to_string(node.list().size())
                   : "'" + std::string(step) + "' is not a list index";
    }
    return found;
  }
  if (why) {
    *why = "'" + std::string(step) + "' leads into " + values_internal::DescribeNode(static_cast<int>(node.type()));
  }
  return std::nullopt;
}

std::optional<NodeView> Walk(const NodeView& root, std::string_view path, std::string* why) {
  std::optional<NodeView> node = root;
  if (path.empty()) return node;
  size_t start = 0;
  while (node) {
    const size_t slash = path.find('/', start);
    node = Step(*node, path.substr(start, slash - start), why);
    if (slash == std::string_view::npos) break;
    start = slash + 1;
  }
  return node;
}

}  // namespace

std::optional<NodeView> NodeView::Find(std::string_view path) const {
  return Walk(*this, path, nullptr);
}

NodeView NodeView::At(std::string_view path) const {
  std::string why;
  std::optional<NodeView> node = Walk(*this, path, &why);
  if (!node) values_internal::Fail("no node at '" + std::string(path) + "': " + why);
  return *node;
}

ValueView NodeView::ValueAt(std::string_view path) const {
  const NodeView node = At(path);
  if (!node.is_value()) {
    values_internal::Fail(values_internal::Where(path) + "expected a value, found " +
                          values_internal::DescribeNode(static_cast<int>(node.type())));
  }
  return node.value();
}

void NodeView::Validate() const {
  switch (type_) {
    case NodeType::kMap:
      for (const EntryView& entry : map()) entry.node.Validate();
      return;
    case NodeType::kList:
      for (const NodeView& item : list()) item.Validate();
      return;
    case NodeType::kValue:
      value().Validate();
      return;
    case NodeType::kEmpty:
      return;
  }
}

void NodeView::CopyTo(PropertyNode* out) const {
  out->Clear();
  switch (type_) {
    case NodeType::kMap: view_internal::ParseInto(member_, out->mutable_map_type()); return;
    case NodeType::kList: view_internal::ParseInto(member_, out->mutable_list_type()); return;
    case NodeType::kValue: view_internal::ParseInto(member_, out->mutable_value_type()); return;
    case NodeType::kEmpty: return;
  }
}

// ---------------------------------------------------------------------------
// MapView

namespace {

// Finds repeated keys without allocating for the usual map: a filter of the
// keys' hashes, and an exact search for the few keys it may have seen before;
// a large map whose filter fills up sorts a list of its keys instead.
class RepeatedKeys {
 public:
  // False when an entry needs a parse.
  bool Add(std::string_view key, const Span& map, const char* entry_start) {
    if (sorted_) {
      keys_.push_back(key);
      return true;
    }
    const uint64_t hash = Hash(key);
    const uint32_t a = static_cast<uint32_t>(hash) % kBits;
    const uint32_t b = static_cast<uint32_t>(hash >> 32) % kBits;
    const bool maybe_seen = Test(a) && Test(b);
    Set(a);
    Set(b);
    ++count_;
    if (!maybe_seen) return true;
    if (++searches_ > kMaxSearches) return SwitchToSorting(map, entry_start, key);
    return SearchBefore(map, entry_start, key);
  }

  bool Found() {
    if (found_) return true;
    if (!sorted_) return false;
    std::sort(keys_.begin(), keys_.end());
    return std::adjacent_find(keys_.begin(), keys_.end()) != keys_.end();
  }

 private:
  static constexpr uint32_t kBits = 8192;

  // Keys are short: their first and last eight bytes and their length.
  static uint64_t Hash(std::string_view key) {
    uint64_t head = 0, tail = 0;
    if (!key.empty()) std::memcpy(&head, key.data(), std::min<size_t>(key.size(), 8));
    if (key.size() > 8) std::memcpy(&tail, key.data() + key.size() - 8, 8);
    // Mixed so that every input bit reaches the low bits the filter uses.
    uint64_t hash = head ^ (tail * 0x9E3779B97F4A7C15u) ^ key.size();
    hash = (hash ^ (hash >> 30)) * 0xBF58476D1CE4E5B9u;
    hash = (hash ^ (hash >> 27)) * 0x94D049BB133111EBu;
    return hash ^ (hash >> 31);
  }
  static constexpr int kMaxSearches = 8;

  bool Test(uint32_t bit) const { return (bits_[bit / 64] >> (bit % 64)) & 1; }
  void Set(uint32_t bit) { bits_[bit / 64] |= uint64_t{1} << (bit % 64); }

  // Compares `key` with every key before `entry_start`.
  bool SearchBefore(const Span& map, const char* entry_start, std::string_view key) {
    Field field;
    const char* start;
    for (const char* at = NextTagged(map, map.begin, kItemTag, &field, &start); at != nullptr && start < entry_start;
         at = NextTagged(map, at, kItemTag, &field, &start)) {
      std::string_view other, value;
      bool has_value;
      if (!view_internal::ReadEntry(map, field.bytes, &other, &value, &has_value)) return false;
      if (other == key) found_ = true;
    }
    return true;
  }

  bool SwitchToSorting(const Span& map, const char* entry_start, std::string_view key) {
    sorted_ = true;
    keys_.reserve(count_ * 2);
    Field field;
    const char* start;
    for (const char* at = NextTagged(map, map.begin, kItemTag, &field, &start); at != nullptr && start < entry_start;
         at = NextTagged(map, at, kItemTag, &field, &start)) {
      std::string_view other, value;
      bool has_value;
      if (!view_internal::ReadEntry(map, field.bytes, &other, &value, &has_value)) return false;
      keys_.push_back(other);
    }
    keys_.push_back(key);
    return true;
  }

  std::array<uint64_t, kBits / 64> bits_{};
  size_t count_ = 0;
  int searches_ = 0;
  bool found_ = false;
  bool sorted_ = false;
  std::vector<std::string_view> keys_;
};

// Whether the map's entries can be read in place: every entry plain and no
// key given twice.
bool HasPlainEntries(const Span& map) {
  RepeatedKeys keys;
  Field field;
  const char* start;
  const char* at = map.begin;
  while (at < map.end) {
    at = NextTagged(map, at, kItemTag, &field, &start);
    if (at == nullptr) return false;
    if (start == map.end) break;
    std::string_view key, value;
    bool has_value;
    if (!view_internal::ReadEntry(map, field.bytes, &key, &value, &has_value)) return false;
    if (!keys.Add(key, map, start)) return false;
  }
  return !keys.Found();
}

}  // namespace

MapView::Iterator::Iterator(Span map, const char* at) : map_(std::move(map)), at_(at) { Settle(); }

// Reads the entry at `at_`, or marks the end; begin() has checked every entry.
void MapView::Iterator::Settle() {
  Field field;
  const char* start;
  next_ = NextTagged(map_, at_, kItemTag, &field, &start);
  if (start == map_.end) {
    at_ = nullptr;
    return;
  }
  at_ = start;
  view_internal::ReadEntry(map_, field.bytes, &key_, &value_, &has_value_);
}

// The value node lies two levels below the map, under its entry.
EntryView MapView::Iterator::operator*() const {
  if (!has_value_) return EntryView{key_, NodeView()};
  return EntryView{key_, NodeView(value_, map_.depth + 2, map_.owner)};
}

MapView::Iterator& MapView::Iterator::operator++() {
  at_ = next_;
  Settle();
  return *this;
}

MapView::Iterator MapView::begin() const {
  if (HasPlainEntries(span_)) return Iterator(span_, span_.begin);
  const Span map = Canonical<PropertyMap>(span_);
  return Iterator(map, map.begin);
}

size_t MapView::size() const { return static_cast<size_t>(std::distance(begin(), end())); }

std::optional<NodeView> MapView::Find(std::string_view key) const {
  Span map = span_;
  for (int attempt = 0; attempt < 2; ++attempt) {
    std::optional<NodeView> found;
    Field field;
    const char* start;
    const char* at = map.begin;
    while ((at = NextTagged(map, at, kItemTag, &field, &start)) != nullptr && start != map.end) {
      std::string_view entry_key, value;
      bool has_value;
      if (!view_internal::ReadEntry(map, field.bytes, &entry_key, &value, &has_value)) {
        at = nullptr;
        break;
      }
      if (entry_key == key) found = has_value ? NodeView(value, map.depth + 2, map.owner) : NodeView();
    }
    if (at != nullptr) return found;
    map = Canonical<PropertyMap>(span_);
  }
  view_internal::ThrowMalformed("a map that does not read back");
}

// ---------------------------------------------------------------------------
// ListView

ListView::Iterator::Iterator(Span list, const char* at) : list_(std::move(list)), at_(at) { Settle(); }

// Reads the item at `at_`, or marks the end; begin() has checked every field.
void ListView::Iterator::Settle() {
  Field field;
  const char* start;
  next_ = NextTagged(list_, at_, kItemTag, &field, &start);
  at_ = start == list_.end ? nullptr : start;
  item_ = field.bytes;
}

NodeView ListView::Iterator::operator*() const { return NodeView(item_, list_.depth + 1, list_.owner); }

ListView::Iterator& ListView::Iterator::operator++() {
  at_ = next_;
  Settle();
  return *this;
}

namespace {

// Whether every field of the list reads in place.
bool HasPlainItems(const Span& list) {
  Field field;
  for (const char* at = list.begin; at < list.end;) {
    at = ReadField(at, list.end, &field);
    if (at == nullptr) return false;
  }
  return true;
}

}  // namespace

ListView::Iterator ListView::begin() const {
  if (HasPlainItems(span_)) return Iterator(span_, span_.begin);
  const Span list = Canonical<PropertyList>(span_);
  return Iterator(list, list.begin);
}

size_t ListView::size() const { return static_cast<size_t>(std::distance(begin(), end())); }

std::optional<NodeView> ListView::Find(size_t index) const {
  Field field;
  const char* start;
  const char* at = span_.begin;
  for (size_t seen = 0;; ++seen) {
    at = NextTagged(span_, at, kItemTag, &field, &start);
    if (at == nullptr) break;  // a field before the item needs a parse
    if (start == span_.end) return std::nullopt;
    if (seen == index) return NodeView(field.bytes, span_.depth + 1, span_.owner);
  }
  const Span list = Canonical<PropertyList>(span_);
  return ListView(list).Find(index);
}

// ---------------------------------------------------------------------------
// Leaves

namespace {

// Steps are joined by '/' below the root, so that a child of an empty key
// directly under the root ("/x") keeps its path.
void VisitUnder(const NodeView& node, bool is_root, std::string& path,
                const std::function<void(std::string_view, const NodeView&, const ValueView&)>& visit) {
  const size_t length = path.size();
  auto descend = [&](std::string_view step, const NodeView& child) {
    if (!is_root) path += '/';
    path += step;
    VisitUnder(child, false, path, visit);
    path.resize(length);
  };
  switch (node.type()) {
    case NodeType::kMap:
      for (const EntryView& entry : node.map()) descend(PathSegment(entry.key), entry.node);
      return;
    case NodeType::kList: {
      size_t index = 0;
      for (const NodeView& item : node.list()) descend(std::to_string(index++), item);
      return;
    }
    case NodeType::kValue:
    case NodeType::kEmpty:
      visit(path, node, node.value());
      return;
  }
}

}  // namespace

void VisitLeaves(const NodeView& root,
                 const std::function<void(std::string_view, const NodeView&, const ValueView&)>& visit) {
  std::string path;
  VisitUnder(root, true, path, visit);
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
