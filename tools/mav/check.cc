#include "check.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <vector>

#include "MavValues.h"

namespace mav_tool {
namespace {

using namespace Tarnwick::MavProtobuf;

constexpr uint64_t kNanosPerSecond = 1000000000;

bool FractionsBelowOneSecond(const ArrayChronoData& times) {
  for (const ChronoData& time : times.chrono_content()) {
    if (time.fractional_content() >= kNanosPerSecond) return false;
  }
  return true;
}

using Tarnwick::MavProtobuf::detail::InRange;

template <typename Narrow, typename Stored>
bool AllFit(const google::protobuf::RepeatedField<Stored>& values) {
  return std::all_of(values.begin(), values.end(), [](Stored value) { return InRange<Narrow>(value); });
}

// Why a well-formed value cannot be read as the model says, or nothing.
std::optional<std::string> Unreadable(const KVariant& value) {
  const std::optional<Kind> kind = KindOf(value);
  if (!kind) return std::string("a value with no member");
  if (FormOf(value) == Form::kScalar) {
    const ScalarDataUnion& scalar = value.scalar_data();
    const bool fits = *kind == Kind::kInt8    ? InRange<int8_t>(scalar.int8_content())
                      : *kind == Kind::kInt16 ? InRange<int16_t>(scalar.int16_content())
                      : *kind == Kind::kUInt8 ? InRange<uint8_t>(scalar.unsignedint8_content())
                      : *kind == Kind::kUInt16 ? InRange<uint16_t>(scalar.unsignedint16_content())
                                               : true;
    if (!fits) return std::string(KindName(*kind)) + " value outside its range";
    const bool late = (*kind == Kind::kDuration && scalar.duration_content().fractional_content() >= kNanosPerSecond) ||
                      (*kind == Kind::kTimePoint && scalar.timepoint_content().fractional_content() >= kNanosPerSecond);
    if (late) return std::string("a time fraction of one second or more");
    return std::nullopt;
  }
  const ArrayDataUnion& array = value.array_data();
  if (!ShapeMatches(value)) return std::string("a shape that does not match the elements stored");
  if (!ParseOrder(array.dataorder()) && !array.dataorder().empty()) return std::string("an unknown data order");
  const bool fits = *kind == Kind::kInt16    ? AllFit<int16_t>(array.int16_content().int16_content())
                    : *kind == Kind::kUInt16 ? AllFit<uint16_t>(array.unsignedint16_content().unsignedint16_content())
                                             : true;
  if (!fits) return std::string(KindName(*kind)) + " element outside its range";
  const bool times_fit = *kind == Kind::kDuration    ? FractionsBelowOneSecond(array.duration_content())
                         : *kind == Kind::kTimePoint ? FractionsBelowOneSecond(array.timepoint_content())
                                                     : true;
  if (!times_fit) return std::string("a time fraction of one second or more");
  return std::nullopt;
}

struct Tally {
  size_t maps = 0, lists = 0, values = 0, empty = 0, max_depth = 0;
  struct PerKind {
    size_t scalars = 0, arrays = 0;
    uint64_t bytes = 0;
  };
  std::map<std::string, PerKind> kinds;
  std::vector<std::string> warnings;
  std::string path;

  void Node(const PropertyNode& node, size_t depth) {
    max_depth = std::max(max_depth, depth);
    const size_t length = path.size();
    const auto descend = [&](const std::string& step, const PropertyNode& child) {
      path += (length == 0 ? "" : "/") + step;
      Node(child, depth + 1);
      path.resize(length);
    };
    switch (node.type_case()) {
      case PropertyNode::kMapType:
        ++maps;
        for (const auto& [key, child] : node.map_type().map_data()) descend(PathSegment(key), child);
        break;
      case PropertyNode::kListType: {
        ++lists;
        size_t index = 0;
        for (const PropertyNode& child : node.list_type().list_data()) descend(std::to_string(index++), child);
        break;
      }
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
    if (const auto problem = Unreadable(value)) {
      warnings.push_back((path.empty() ? std::string("(root)") : path) + ": " + *problem);
    }
  }
};

}  // namespace

std::string CheckReport(const PropertyNode& root, std::vector<std::string>* warnings) {
  Tally tally;
  tally.Node(root, 0);
  *warnings = std::move(tally.warnings);
  std::sort(warnings->begin(), warnings->end());  // not in the maps' hash order
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
