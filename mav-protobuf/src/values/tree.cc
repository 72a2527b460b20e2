// Building and finding nodes by key, index and path.
#include <google/protobuf/stubs/common.h>

#include <algorithm>

#include "values_internal.h"

namespace Tarnwick {
namespace MavProtobuf {

using values_internal::Describe;
using values_internal::Fail;

namespace {

using values_internal::ParseIndex;
using values_internal::Unescape;

// The child named by `step`, or why there is none.
const PropertyNode* Step(const PropertyNode& node, const std::string& step, std::string* why) {
  if (node.has_map_type()) {
    const auto& entries = node.map_type().map_data();
    const auto found = entries.find(step);
    if (found != entries.end()) return &found->second;
    *why = "no key '" + step + "'";
    return nullptr;
  }
  if (node.has_list_type()) {
    const std::optional<size_t> index = ParseIndex(step);
    const int size = node.list_type().list_data_size();
    if (index && *index < static_cast<size_t>(size)) {
      return &node.list_type().list_data(static_cast<int>(*index));
    }
    *why = index ? "index " + step + " is past the end of a list of " + std::to_string(size)
                 : "'" + step + "' is not a list index";
    return nullptr;
  }
  *why = "'" + step + "' leads into " + Describe(node);
  return nullptr;
}

const PropertyNode* Walk(const PropertyNode& root, std::string_view path, std::string* why) {
  const PropertyNode* node = &root;
  if (path.empty()) return node;
  size_t start = 0;
  while (node != nullptr) {
    const size_t slash = path.find('/', start);
    node = Step(*node, Unescape(path.substr(start, slash - start)), why);
    if (slash == std::string_view::npos) break;
    start = slash + 1;
  }
  return node;
}

}  // namespace

PropertyNode& Child(PropertyNode& node, std::string_view key) {
  if (!node.has_map_type() && node.type_case() != PropertyNode::TYPE_NOT_SET) {
    Fail("cannot add key '" + std::string(key) + "' to " + Describe(node));
  }
  if (!protobuf::internal::IsStructurallyValidUTF8(key.data(), static_cast<int>(key.size()))) {
    Fail("key is not valid UTF-8 and could not be parsed back");
  }
  return (*node.mutable_map_type()->mutable_map_data())[std::string(key)];
}

PropertyNode& Child(PropertyNode& node, size_t index) {
  if (!node.has_list_type() && node.type_case() != PropertyNode::TYPE_NOT_SET) {
    Fail("cannot index " + Describe(node));
  }
  const size_t size = static_cast<size_t>(node.list_type().list_data_size());
  if (index > size) {
    Fail("index " + std::to_string(index) + " is past the end of a list of " + std::to_string(size));
  }
  PropertyList& list = *node.mutable_list_type();
  return index == size ? *list.add_list_data() : *list.mutable_list_data(static_cast<int>(index));
}

PropertyNode& Append(PropertyNode& node) {
  const size_t size = node.has_list_type() ? static_cast<size_t>(node.list_type().list_data_size()) : 0;
  return Child(node, size);
}

const PropertyNode* Find(const PropertyNode& root, std::string_view path) {
  std::string why;
  return Walk(root, path, &why);
}

PropertyNode* Find(PropertyNode& root, std::string_view path) {
  return const_cast<PropertyNode*>(Find(static_cast<const PropertyNode&>(root), path));
}

const PropertyNode& At(const PropertyNode& root, std::string_view path) {
  std::string why;
  const PropertyNode* node = Walk(root, path, &why);
  if (node == nullptr) Fail("no node at '" + std::string(path) + "': " + why);
  return *node;
}

PropertyNode& At(PropertyNode& root, std::string_view path) {
  return const_cast<PropertyNode&>(At(static_cast<const PropertyNode&>(root), path));
}

std::string PathSegment(std::string_view key) {
  std::string segment;
  segment.reserve(key.size());
  for (char c : key) {
    if (c == '~') {
      segment += "~0";
    } else if (c == '/') {
      segment += "~1";
    } else {
      segment += c;
    }
  }
  return segment;
}

std::vector<MapEntryRef> SortedEntries(const PropertyMap& map) {
  std::vector<MapEntryRef> entries;
  entries.reserve(static_cast<size_t>(map.map_data_size()));
  for (const auto& [key, node] : map.map_data()) entries.push_back({key, &node});
  std::sort(entries.begin(), entries.end(),
            [](const MapEntryRef& a, const MapEntryRef& b) { return a.key < b.key; });
  return entries;
}

std::vector<MapEntryRef> SortedEntries(const PropertyNode& node) {
  if (!node.has_map_type()) Fail("expected a map, found " + Describe(node));
  return SortedEntries(node.map_type());
}

const protobuf::RepeatedPtrField<PropertyNode>& ListItems(const PropertyNode& node) {
  if (!node.has_list_type()) Fail("expected a list, found " + Describe(node));
  return node.list_type().list_data();
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
