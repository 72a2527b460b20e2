// Reads any input as the natural JSON of a PropertyNode (first byte even) or
// of a KVariant (odd). A refused text must leave the target as it was and say
// where it went wrong; an accepted one must come back unchanged through its
// own JSON, and its binary form through JSON to the same bytes.

#include <memory>

#include "MavJson.h"
#include "fuzz_support.h"

namespace {

using namespace mav_fuzz;
using Tarnwick::MavProtobuf::FromJson;
using Tarnwick::MavProtobuf::JsonError;
using Tarnwick::MavProtobuf::KVariant;
using Tarnwick::MavProtobuf::PropertyNode;
using Tarnwick::MavProtobuf::ToJson;

// A target that already holds something, so that a failed import which
// clears or half-fills it is seen.
void Prefill(PropertyNode* node) {
  (*node->mutable_map_type()->mutable_map_data())["before"]
      .mutable_value_type()
      ->mutable_scalar_data()
      ->set_int32_content(7);
}
void Prefill(KVariant* value) { value->mutable_array_data()->mutable_int16_content()->add_int16_content(-3); }

template <typename Message>
void CheckRoundTrips(const Message& imported, const Input& input) {
  const std::string bytes = Deterministic(imported);

  Message again;
  JsonError error;
  MAV_FUZZ_CHECK(FromJson(ToJson(imported), &again, &error), input);
  MAV_FUZZ_CHECK(Deterministic(again) == bytes, input);

  Message from_binary;
  MAV_FUZZ_CHECK(from_binary.ParseFromString(imported.SerializeAsString()), input);
  Message through_json;
  MAV_FUZZ_CHECK(FromJson(ToJson(from_binary), &through_json, &error), input);
  MAV_FUZZ_CHECK(Deterministic(through_json) == bytes, input);
}

template <typename Message>
void Import(const Input& input) {
  Message target;
  Prefill(&target);
  const std::string before = Deterministic(target);
  JsonError error;
  if (!FromJson(input.bytes, &target, &error)) {
    MAV_FUZZ_CHECK(Deterministic(target) == before, input);
    MAV_FUZZ_CHECK(error.line >= 1 && error.column >= 1 && !error.reason.empty(), input);
    return;
  }
  CheckRoundTrips(target, input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const bool as_value = data[0] % 2 == 1;
  const Input input{as_value ? KVariant::descriptor() : PropertyNode::descriptor(),
                    std::string(reinterpret_cast<const char*>(data + 1), size - 1)};
  if (as_value) {
    Import<KVariant>(input);
  } else {
    Import<PropertyNode>(input);
  }
  return 0;
}
