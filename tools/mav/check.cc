#include "check.h"

#include <cstdio>
#include <map>

#include "MavValues.h"

namespace mav_tool {
namespace {

using namespace Tarnwick::MavProtobuf;

struct Tally {
  size_t maps = 0, lists = 0, values = 0, empty = 0, max_depth = 0;
  struct PerKind {
    size_t scalars = 0, arrays = 0;
    uint64_t bytes = 0;
  };
  std::map<std::string, PerKind> kinds;

  void Node(const PropertyNode& node, size_t depth) {
    max_depth = std::max(max_depth, depth);
    switch (node.type_case()) {
      case PropertyNode::kMapType:
        ++maps;
        for (const auto& [key, child] : node.map_type().map_data()) Node(child, depth + 1);
        break;
      case PropertyNode::kListType:
        ++lists;
        for (const PropertyNode& child : node.list_type().list_data()) Node(child, depth + 1);
        break;
      case PropertyNode::kValueType: Value(node.value_type()); break;
      case PropertyNode::TYPE_NOT_SET: ++empty; break;
    }
  }

  void Value(const KVariant& value) {
    ++values;
    const std::optional<Kind> kind = KindOf(value);
    PerKind& counts = kinds[kind ? std::string(KindName(*kind)) : "(none)"];
    (FormOf(value) == Form::kArray ? counts.arrays : counts.scalars) += 1;
    counts.bytes += value.ByteSizeLong();
  }
};

}  // namespace

std::string CheckReport(const PropertyNode& root) {
  Tally tally;
  tally.Node(root, 0);
  char line[160];
  std::string report;
  std::snprintf(line, sizeof(line), "nodes %zu: maps %zu, lists %zu, values %zu, empty %zu; maximum depth %zu\n",
                tally.maps + tally.lists + tally.values + tally.empty, tally.maps, tally.lists, tally.values,
                tally.empty, tally.max_depth);
  report += line;
  std::snprintf(line, sizeof(line), "%-12s %10s %10s %14s\n", "kind", "scalars", "arrays", "bytes");
  report += line;
  for (const auto& [name, counts] : tally.kinds) {
    std::snprintf(line, sizeof(line), "%-12s %10zu %10zu %14llu\n", name.c_str(), counts.scalars, counts.arrays,
                  static_cast<unsigned long long>(counts.bytes));
    report += line;
  }
  std::snprintf(line, sizeof(line), "total bytes %llu\n", static_cast<unsigned long long>(root.ByteSizeLong()));
  report += line;
  return report;
}

}  // namespace mav_tool
