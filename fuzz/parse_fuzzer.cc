// Parses any input as one of the 23 types. When the parse succeeds, the
// message must hold its contract: its size is its output's length, writing
// and reading again reaches a fixed point at once, copies, merges and swaps
// keep it equal, it can measure itself, and text and JSON bring it back.

#include <google/protobuf/text_format.h>
#include <google/protobuf/util/json_util.h>

#include <memory>

#include "fuzz_support.h"

namespace {

using namespace mav_fuzz;

void CheckSerializers(const pb::Message& message, const Input& input) {
  const size_t size = message.ByteSizeLong();
  const std::string plain = message.SerializeAsString();
  MAV_FUZZ_CHECK(plain.size() == size, input);
  std::string array(size, '\0');
  uint8_t* begin = reinterpret_cast<uint8_t*>(array.data());
  MAV_FUZZ_CHECK(message.SerializeWithCachedSizesToArray(begin) == begin + size, input);
  MAV_FUZZ_CHECK(array == plain, input);
}

void CheckFixedPoint(const pb::Message& message, const Input& input) {
  const std::string once = Deterministic(message);
  std::unique_ptr<pb::Message> again(message.New());
  MAV_FUZZ_CHECK(again->ParseFromString(once), input);
  MAV_FUZZ_CHECK(Deterministic(*again) == once, input);
  MAV_FUZZ_CHECK(Deterministic(message) == once, input);
}

void CheckCopyMergeSwap(const pb::Message& message, const Input& input) {
  const std::string bytes = Deterministic(message);
  std::unique_ptr<pb::Message> copy(message.New());
  copy->CopyFrom(message);
  MAV_FUZZ_CHECK(Deterministic(*copy) == bytes, input);
  MAV_FUZZ_CHECK(Same(*copy, message), input);
  MAV_FUZZ_CHECK(message.SpaceUsedLong() >= sizeof(pb::Message), input);
  MAV_FUZZ_CHECK(message.GetReflection()->SpaceUsedLong(message) >= sizeof(pb::Message), input);
  std::unique_ptr<pb::Message> merged(message.New());
  merged->MergeFrom(message);
  MAV_FUZZ_CHECK(Deterministic(*merged) == bytes, input);
  std::unique_ptr<pb::Message> swapped(message.New());
  swapped->GetReflection()->Swap(swapped.get(), copy.get());
  MAV_FUZZ_CHECK(Deterministic(*swapped) == bytes, input);
}

// Neither view carries unknown fields, so they are compared without them.
void CheckTextAndJson(const pb::Message& message, const Input& input) {
  std::unique_ptr<pb::Message> known(message.New());
  known->CopyFrom(message);
  known->DiscardUnknownFields();

  std::string text;
  MAV_FUZZ_CHECK(pb::TextFormat::PrintToString(*known, &text), input);
  std::unique_ptr<pb::Message> from_text(message.New());
  MAV_FUZZ_CHECK(pb::TextFormat::ParseFromString(text, from_text.get()), input);
  MAV_FUZZ_CHECK(Same(*from_text, *known), input);

  std::string json;
  MAV_FUZZ_CHECK(pb::util::MessageToJsonString(*known, &json).ok(), input);
  std::unique_ptr<pb::Message> from_json(message.New());
  MAV_FUZZ_CHECK(pb::util::JsonStringToMessage(json, from_json.get()).ok(), input);
  MAV_FUZZ_CHECK(Same(*from_json, *known), input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input;
  if (!Split(data, size, &input)) return 0;
  std::unique_ptr<pb::Message> message(NewOurs(input.type));
  if (!message->ParseFromString(input.bytes)) return 0;
  CheckSerializers(*message, input);
  CheckFixedPoint(*message, input);
  CheckCopyMergeSwap(*message, input);
  CheckTextAndJson(*message, input);
  return 0;
}
