// Holds the library against the runtime's generic DynamicMessage, built in a
// pool of its own from the same schema: both parse the input, and must agree
// on success and, when both succeed, on the bytes they write back. The
// library's deliberate differences (a singular -0.0 outside a oneof, which its
// zero test drops; the continuation of unpacked elements under the packed
// tag; a map key that is not UTF-8; fields other than key and value inside a
// map entry) are recognised by name and counted apart; a key read twice is
// kept once on both sides before the bytes are compared, since the generic
// message holds its map as the entries it read. Any other disagreement is a
// finding.

#include <google/protobuf/stubs/logging.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

#include "fuzz_support.h"

namespace {

using namespace mav_fuzz;

struct Tally {
  std::atomic<long> inputs{0}, agreed{0}, negative_zero{0}, continuation{0}, non_utf8_key{0},
      entry_unknown{0};
  ~Tally() {
    std::fprintf(stderr,
                 "differential: %ld inputs, %ld agreed; deliberate: negative-zero %ld, "
                 "continuation %ld, non-utf8-key %ld, entry-unknown %ld\n",
                 inputs.load(), agreed.load(), negative_zero.load(), continuation.load(),
                 non_utf8_key.load(), entry_unknown.load());
  }
};
Tally tally;

bool IsNegativeZero(const pb::Message& message, const pb::FieldDescriptor* field) {
  const pb::Reflection* reflection = message.GetReflection();
  const double value = field->type() == pb::FieldDescriptor::TYPE_FLOAT
                           ? reflection->GetFloat(message, field)
                           : reflection->GetDouble(message, field);
  return value == 0 && std::signbit(value);
}

// Keeps only the last entry of each key, as a map does; a DynamicMessage
// holds its map as the list of entries it read until something asks for the
// map.
void KeepLastEntryPerKey(pb::Message* message, const pb::FieldDescriptor* map) {
  const pb::Reflection* reflection = message->GetReflection();
  const pb::FieldDescriptor* key = map->message_type()->field(0);
  std::map<std::string, int> last;
  const int size = reflection->FieldSize(*message, map);
  for (int index = 0; index < size; ++index) {
    const pb::Message& entry = reflection->GetRepeatedMessage(*message, map, index);
    last[entry.GetReflection()->GetString(entry, key)] = index;
  }
  int kept = 0;
  for (int index = 0; index < size; ++index) {
    const pb::Message& entry = reflection->GetRepeatedMessage(*message, map, index);
    if (last[entry.GetReflection()->GetString(entry, key)] != index) continue;
    reflection->SwapElements(message, map, kept++, index);
  }
  while (reflection->FieldSize(*message, map) > kept) reflection->RemoveLast(message, map);
}

// Brings the generic runtime's message to what the library makes of the same
// input where the two differ on purpose: duplicate map keys collapsed, every
// -0.0 the library's zero test drops cleared. Says whether a -0.0 was.
bool Normalize(pb::Message* message) {
  bool negative_zero = false;
  const pb::Reflection* reflection = message->GetReflection();
  std::vector<const pb::FieldDescriptor*> fields;
  reflection->ListFields(*message, &fields);
  for (const pb::FieldDescriptor* field : fields) {
    if (field->is_map()) KeepLastEntryPerKey(message, field);
    if (field->cpp_type() == pb::FieldDescriptor::CPPTYPE_MESSAGE) {
      if (field->is_repeated()) {
        for (int index = 0; index < reflection->FieldSize(*message, field); ++index) {
          negative_zero |= Normalize(reflection->MutableRepeatedMessage(message, field, index));
        }
      } else {
        negative_zero |= Normalize(reflection->MutableMessage(message, field));
      }
    } else if (!field->is_repeated() && field->containing_oneof() == nullptr &&
               (field->type() == pb::FieldDescriptor::TYPE_FLOAT ||
                field->type() == pb::FieldDescriptor::TYPE_DOUBLE) &&
               IsNegativeZero(*message, field)) {
      reflection->ClearField(message, field);
      negative_zero = true;
    }
  }
  return negative_zero;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  pb::SetLogHandler(nullptr);  // the UTF-8 check logs every bad key
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Generic generic;
  Input input;
  if (!Split(data, size, &input)) return 0;
  ++tally.inputs;
  Deliberate deliberate;
  deliberate.Scan(input.type, input.bytes, IsMapEntry(input.type));
  if (deliberate.continuation) {
    ++tally.continuation;
    return 0;
  }

  std::unique_ptr<pb::Message> ours(NewOurs(input.type));
  std::unique_ptr<pb::Message> theirs(generic.New(input.type));
  const bool ours_ok = ours->ParseFromString(input.bytes);
  const bool theirs_ok = theirs->ParseFromString(input.bytes);
  if (deliberate.non_utf8_key) {
    ++tally.non_utf8_key;
    return 0;
  }
  MAV_FUZZ_CHECK(ours_ok == theirs_ok, input);
  if (!ours_ok) {
    ++tally.agreed;
    return 0;
  }
  if (deliberate.entry_unknown) {
    ++tally.entry_unknown;
    return 0;
  }
  if (Normalize(theirs.get())) ++tally.negative_zero;
  MAV_FUZZ_CHECK(Deterministic(*ours) == Deterministic(*theirs), input);
  ++tally.agreed;
  return 0;
}
