#include "show.h"

#include "value_text.h"

namespace mav_tool {
namespace {

// Arrays show this many elements before the summary.
constexpr size_t kShownElements = 8;

std::string Count(size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string Summary(const PropertyNode& node) {
  switch (node.type_case()) {
    case PropertyNode::kMapType: return "map, " + Count(node.map_type().map_data_size(), "entry", "entries");
    case PropertyNode::kListType: return "list, " + Count(node.list_type().list_data_size(), "item", "items");
    case PropertyNode::kValueType: return DescribeValue(node.value_type());
    case PropertyNode::TYPE_NOT_SET: break;
  }
  return "empty";
}

void ShowChildren(const PropertyNode& node, int depth, size_t indent, std::string* out);

void ShowLine(const std::string& label, const PropertyNode& node, int depth, size_t indent, std::string* out) {
  out->append(indent, ' ');
  *out += label + ": " + Summary(node) + "\n";
  if (depth != 0) ShowChildren(node, depth - 1, indent + 2, out);
}

void ShowChildren(const PropertyNode& node, int depth, size_t indent, std::string* out) {
  if (node.has_map_type()) {
    for (const MapEntryRef& entry : SortedEntries(node))
      ShowLine(EscapedText(std::string(entry.key)), *entry.node, depth, indent, out);
  } else if (node.has_list_type()) {
    for (int i = 0; i < node.list_type().list_data_size(); ++i)
      ShowLine("[" + std::to_string(i) + "]", node.list_type().list_data(i), depth, indent, out);
  }
}

std::string ShapeText(const ArrayDataUnion& array) {
  std::string text;
  for (uint32_t extent : array.dimensions()) text += (text.empty() ? "" : "x") + std::to_string(extent);
  return text;
}

}  // namespace

std::string DescribeValue(const KVariant& value) {
  std::string text;
  switch (FormOf(value)) {
    case Form::kEmpty: text = "empty value"; break;
    case Form::kScalar: {
      const std::optional<Kind> kind = KindOf(value);
      if (!kind) {
        text = "scalar with no value";
      } else if (*kind == Kind::kString) {
        text = "str \"" + EscapedText(value.scalar_data().string_content()) + "\"";
      } else {
        text = std::string(KindName(*kind)) + " " + ScalarText(value.scalar_data());
      }
      break;
    }
    case Form::kArray: {
      const ArrayDataUnion& array = value.array_data();
      const std::optional<Kind> kind = KindOf(value);
      text = kind ? std::string(KindName(*kind)) + " array" : "array with no kind";
      const std::string shape = ShapeText(array);
      text += " " + (shape.empty() ? std::to_string(kind ? StoredElementCount(array) : 0) : shape);
      if (!array.dataorder().empty()) text += " order " + EscapedText(array.dataorder());
      if (kind && !ShapeMatches(value))
        text += " (shape does not fit its " + std::to_string(StoredElementCount(array)) + " elements)";
      if (kind) text += " " + ArraySummary(array, kShownElements);
      break;
    }
  }
  if (!value.wellknowntype().empty()) text += " (wellknowntype " + EscapedText(value.wellknowntype()) + ")";
  return text;
}

std::string ShowTree(const PropertyNode& root, int depth) {
  std::string out;
  if (root.has_map_type() || root.has_list_type()) {
    out = "(" + Summary(root) + ")\n";
    ShowChildren(root, depth < 0 ? -1 : depth - 1, 0, &out);
  } else {
    out = (root.has_value_type() ? Summary(root) : "(empty tree)") + "\n";
  }
  return out;
}

}  // namespace mav_tool
