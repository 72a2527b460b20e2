// Walking every leaf of a tree with its path.
#include "values_internal.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace {

class LeafWalk {
 public:
  explicit LeafWalk(const std::function<void(const Leaf&)>& visit) : visit_(visit) {}

  void Visit(const PropertyNode& node) {
    if (node.has_map_type()) {
      for (const MapEntryRef& entry : SortedEntries(node.map_type())) {
        Descend(*entry.node, PathSegment(entry.key));
      }
    } else if (node.has_list_type()) {
      const auto& items = node.list_type().list_data();
      for (int i = 0; i < items.size(); ++i) Descend(items.Get(i), std::to_string(i));
    } else {
      const KVariant& value = node.value_type();
      visit_(Leaf{path_, node, value, FormOf(value), KindOf(value), ShapeOf(value)});
    }
  }

 private:
  // One path buffer for the whole walk: a step is appended on the way down
  // and cut off on the way back.
  void Descend(const PropertyNode& child, const std::string& step) {
    const size_t length = path_.size();
    if (depth_ != 0) path_ += '/';
    path_ += step;
    ++depth_;
    Visit(child);
    --depth_;
    path_.resize(length);
  }

  const std::function<void(const Leaf&)>& visit_;
  std::string path_;
  int depth_ = 0;
};

}  // namespace

void VisitLeaves(const PropertyNode& root, const std::function<void(const Leaf&)>& visit) {
  LeafWalk(visit).Visit(root);
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
