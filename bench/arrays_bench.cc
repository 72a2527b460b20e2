// W1 (an 8 MiB image of doubles) and W2 (the same image as 16-bit counts),
// against memcpy and the runtime's DynamicMessage; and the heap a large
// packed varint array takes to parse.

#include "dynamic_reference.h"
#include "suite.h"
#include "workloads.h"

namespace mav_bench {
namespace {

template <typename Build>
void RegisterArrayWorkload(const std::string& name, Build build) {
  const Options options{int64_t{kGridSide} * kGridSide};
  auto wire = [build] { return build().SerializeAsString(); };
  auto ours = std::make_shared<Subject<KVariant>>([]() -> const KVariant& { return KVariant::default_instance(); }, wire);
  auto dynamic = std::make_shared<Subject<pb::Message>>(
      []() -> const pb::Message& { return DynamicReference::Get().Prototype("KVariant"); }, wire);
  RegisterMemcpy(name, options, ours);
  RegisterOperations(name, "ours", options, ours);
  RegisterOperations(name, "dynamic", options, dynamic);
}

// 10 Mi counts below 2^14, two bytes each on the wire: 20 MiB in, 40 MiB of
// elements out.
std::string LargeCountArray() {
  ArrayUnsignedInt16 array;
  auto* elements = array.mutable_unsignedint16_content();
  elements->Reserve(10 << 20);
  for (int i = 0; i < (10 << 20); ++i) elements->AddAlreadyReserved(static_cast<uint32_t>(i % 16384));
  return array.SerializeAsString();
}

const bool registered = [] {
  RegisterArrayWorkload("W1", DoubleGrid);
  RegisterArrayWorkload("W2", [] { return UInt16Grid(); });
  AddHeapProbe("U16x10Mi/ours/parse_fresh",
               std::make_shared<Subject<ArrayUnsignedInt16>>(
                   []() -> const ArrayUnsignedInt16& { return ArrayUnsignedInt16::default_instance(); },
                   LargeCountArray));
  return true;
}();

}  // namespace
}  // namespace mav_bench
