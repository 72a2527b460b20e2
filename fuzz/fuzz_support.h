// Shared by the fuzzers: the first input byte picks one of the schema's 23
// message types, the rest is the input. A check that fails aborts, which is
// how libFuzzer learns of a finding and how a replayed regression input fails.
#ifndef MAV_PROTOBUF_FUZZ_FUZZ_SUPPORT_H_
#define MAV_PROTOBUF_FUZZ_FUZZ_SUPPORT_H_

#include <google/protobuf/descriptor.h>
#include <google/protobuf/descriptor.pb.h>
#include <google/protobuf/dynamic_message.h>
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/message.h>
#include <google/protobuf/stubs/common.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/util/field_comparator.h>
#include <google/protobuf/util/message_differencer.h>
#include <google/protobuf/wire_format_lite.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "Mav.pb.h"

namespace mav_fuzz {

namespace pb = google::protobuf;

// The 22 classes of the file and the map entry, in a fixed order.
inline const std::vector<const pb::Descriptor*>& MessageTypes() {
  static const std::vector<const pb::Descriptor*> types = [] {
    const pb::FileDescriptor* file = Tarnwick::MavProtobuf::KVariant::descriptor()->file();
    std::vector<const pb::Descriptor*> all;
    for (int index = 0; index < file->message_type_count(); ++index) {
      all.push_back(file->message_type(index));
    }
    all.push_back(Tarnwick::MavProtobuf::PropertyMap::descriptor()->nested_type(0));
    return all;
  }();
  return types;
}

// One fuzzer input: the type its first byte picks, and the bytes after it.
struct Input {
  const pb::Descriptor* type;
  std::string bytes;
};
inline bool Split(const uint8_t* data, size_t size, Input* input) {
  if (size == 0) return false;
  const auto& types = MessageTypes();
  input->type = types[data[0] % types.size()];
  input->bytes.assign(reinterpret_cast<const char*>(data + 1), size - 1);
  return true;
}
inline uint8_t TypeByte(const pb::Descriptor* type) {
  const auto& types = MessageTypes();
  for (size_t index = 0; index < types.size(); ++index) {
    if (types[index] == type) return static_cast<uint8_t>(index);
  }
  return 0;
}

inline bool IsMapEntry(const pb::Descriptor* type) { return type == MessageTypes().back(); }

inline pb::Message* NewOurs(const pb::Descriptor* type) {
  return pb::MessageFactory::generated_factory()->GetPrototype(type)->New();
}

// The runtime's side: the schema copied into a pool the library never sees.
class Generic {
 public:
  Generic() {
    pb::FileDescriptorProto file;
    Tarnwick::MavProtobuf::KVariant::descriptor()->file()->CopyTo(&file);
    pool_.BuildFile(file);
  }
  pb::Message* New(const pb::Descriptor* ours) {
    return factory_.GetPrototype(pool_.FindMessageTypeByName(ours->full_name()))->New();
  }

 private:
  pb::DescriptorPool pool_;
  pb::DynamicMessageFactory factory_{&pool_};
};

// The runtime's ways of parsing from a stream: through a CodedInputStream,
// a zero-copy stream, and a zero-copy stream with its length.
enum class StreamEntry { kCoded, kZeroCopy, kBounded };
constexpr StreamEntry kStreamEntries[] = {StreamEntry::kCoded, StreamEntry::kZeroCopy,
                                          StreamEntry::kBounded};

// The outcome of one stream parse: whether it succeeded, whether the runtime
// stopped it by a failed check of its own stream bookkeeping, and whether the
// stream was left at its end.
struct StreamOutcome {
  bool ok = false;
  bool runtime_check_failed = false;
  bool took_all = false;
};

// Parses `bytes` into `message` from a stream that hands them over `block`
// bytes at a time.
inline StreamOutcome ParseInBlocks(pb::Message* message, const std::string& bytes, int block,
                                   StreamEntry entry) {
  const int size = static_cast<int>(bytes.size());
  pb::io::ArrayInputStream blocks(bytes.data(), size, block);
  StreamOutcome outcome;
  try {
    switch (entry) {
      case StreamEntry::kCoded: {
        pb::io::CodedInputStream coded(&blocks);
        outcome.ok = message->ParseFromCodedStream(&coded) && coded.ConsumedEntireMessage();
        break;
      }
      case StreamEntry::kZeroCopy:
        outcome.ok = message->ParseFromZeroCopyStream(&blocks);
        break;
      case StreamEntry::kBounded:
        outcome.ok = message->ParseFromBoundedZeroCopyStream(&blocks, size);
        break;
    }
  } catch (const pb::FatalException&) {
    outcome.runtime_check_failed = true;
  }
  outcome.took_all = blocks.ByteCount() == size;
  return outcome;
}

[[noreturn]] inline void Finding(const char* what, const pb::Descriptor* type,
                                 const std::string& bytes) {
  std::fprintf(stderr, "FINDING: %s (%s, %zu bytes)\n", what, type->full_name().c_str(),
               bytes.size());
  std::abort();
}
#define MAV_FUZZ_CHECK(condition, input) \
  do {                                   \
    if (!(condition)) ::mav_fuzz::Finding(#condition, (input).type, (input).bytes); \
  } while (false)

// Deterministic bytes (map entries sorted by key) of any message.
inline std::string Deterministic(const pb::Message& message) {
  std::string bytes;
  {
    pb::io::StringOutputStream out(&bytes);
    pb::io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(true);
    message.SerializeToCodedStream(&coded);
  }
  return bytes;
}

// Field by field, a NaN equal to a NaN (text and JSON do not keep NaN bits).
inline bool Same(const pb::Message& a, const pb::Message& b) {
  pb::util::DefaultFieldComparator comparator;
  comparator.set_treat_nan_as_equal(true);
  pb::util::MessageDifferencer differencer;
  differencer.set_field_comparator(&comparator);
  return differencer.Compare(a, b);
}

// Walks the wire bytes of `type` the way the schema reads them and says which
// of the library's deliberate departures from the generic runtime they touch:
// an unpacked element of a packed field directly followed by that field's
// packed tag (which the library may read as one more element), a map key that
// is not UTF-8 (whose entry the library keeps), or a field other than key and
// value inside a map entry (which the library, like the runtime's compiled
// classes, drops, and a DynamicMessage keeps).
struct Deliberate {
  using WireFormatLite = pb::internal::WireFormatLite;

  bool continuation = false;
  bool non_utf8_key = false;
  bool entry_unknown = false;

  void Scan(const pb::Descriptor* type, const std::string& bytes, bool map_entry = false,
            int depth = 0) {
    if (depth > 110) return;  // past any parser's recursion budget
    pb::io::CodedInputStream in(reinterpret_cast<const uint8_t*>(bytes.data()),
                                static_cast<int>(bytes.size()));
    uint32_t previous_packable_unpacked = 0;  // number of the last field, if unpacked
    while (uint32_t tag = in.ReadTag()) {
      const int number = WireFormatLite::GetTagFieldNumber(tag);
      const auto wire_type = WireFormatLite::GetTagWireType(tag);
      const pb::FieldDescriptor* field = type->FindFieldByNumber(number);
      if (map_entry && tag != WireFormatLite::MakeTag(1, WireFormatLite::WIRETYPE_LENGTH_DELIMITED) &&
          tag != WireFormatLite::MakeTag(2, WireFormatLite::WIRETYPE_LENGTH_DELIMITED)) {
        entry_unknown = true;
      }
      if (previous_packable_unpacked == static_cast<uint32_t>(number) &&
          wire_type == WireFormatLite::WIRETYPE_LENGTH_DELIMITED) {
        continuation = true;
      }
      previous_packable_unpacked = 0;
      if (field != nullptr && field->is_packable() &&
          wire_type != WireFormatLite::WIRETYPE_LENGTH_DELIMITED) {
        previous_packable_unpacked = static_cast<uint32_t>(number);
      }
      if (wire_type != WireFormatLite::WIRETYPE_LENGTH_DELIMITED) {
        if (!WireFormatLite::SkipField(&in, tag)) return;
        continue;
      }
      std::string payload;
      if (!WireFormatLite::ReadBytes(&in, &payload)) return;
      if (field == nullptr) continue;
      if (field->type() == pb::FieldDescriptor::TYPE_MESSAGE) {
        Scan(field->message_type(), payload, field->is_map(), depth + 1);
      } else if (field->type() == pb::FieldDescriptor::TYPE_STRING &&
                 !pb::internal::IsStructurallyValidUTF8(payload.data(),
                                                        static_cast<int>(payload.size()))) {
        non_utf8_key = true;
      }
    }
  }
};

}  // namespace mav_fuzz

#endif  // MAV_PROTOBUF_FUZZ_FUZZ_SUPPORT_H_
