// Property trees: W3 (100 groups of 100 scalar leaves), W4 (a list of 10,000
// small float matrices) and a detector-frame record, against memcpy, the
// runtime's DynamicMessage and, for W3, the runtime's Struct.

#include "dynamic_reference.h"
#include "suite.h"
#include "workloads.h"

namespace mav_bench {
namespace {

void RegisterTreeWorkload(const std::string& name, const Options& options, PropertyNode (*build)()) {
  auto wire = [build] { return build().SerializeAsString(); };
  auto ours = std::make_shared<Subject<PropertyNode>>(
      []() -> const PropertyNode& { return PropertyNode::default_instance(); }, wire);
  auto dynamic = std::make_shared<Subject<pb::Message>>(
      []() -> const pb::Message& { return DynamicReference::Get().Prototype("PropertyNode"); }, wire);
  RegisterMemcpy(name, options, ours);
  RegisterOperations(name, "ours", options, ours);
  RegisterOperations(name, "dynamic", options, dynamic);
}

const bool registered = [] {
  const Options leaves{int64_t{kGroups} * kLeavesPerGroup, /*deterministic=*/true};
  RegisterTreeWorkload("W3", leaves, GroupedParameters);
  RegisterOperations("W3", "struct", leaves,
                     std::make_shared<Subject<pb::Struct>>(
                         []() -> const pb::Struct& { return pb::Struct::default_instance(); },
                         [] { return GroupedParametersStruct().SerializeAsString(); }));
  RegisterTreeWorkload("W4", Options{kListLength}, FloatMatrixList);
  RegisterTreeWorkload("Detector", Options{int64_t{kFrameSide} * kFrameSide, true}, DetectorFrame);
  return true;
}();

}  // namespace
}  // namespace mav_bench
