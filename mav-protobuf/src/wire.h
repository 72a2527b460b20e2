// Wire algorithms shared by the message classes: one codec per scalar type,
// the one algorithm for packed numeric fields, and the length-delimited
// helpers. Internal to the library.
#ifndef MAV_PROTOBUF_SRC_WIRE_H_
#define MAV_PROTOBUF_SRC_WIRE_H_

#include "Mav.pb.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/parse_context.h>
#include <google/protobuf/wire_format.h>
#include <google/protobuf/wire_format_lite.h>

#include <cstring>
#include <type_traits>

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "fixed-width arrays are copied to and from the wire as they lie "
              "in memory, which needs a little-endian host");

namespace Tarnwick {
namespace MavProtobuf {
namespace wire {

using protobuf::internal::ParseContext;
using protobuf::internal::WireFormatLite;
using protobuf::io::CodedOutputStream;
using protobuf::io::EpsCopyOutputStream;

constexpr uint32_t MakeTag(uint32_t number, WireFormatLite::WireType type) {
  return (number << 3) | static_cast<uint32_t>(type);
}
constexpr uint32_t LengthDelimitedTag(uint32_t number) {
  return MakeTag(number, WireFormatLite::WIRETYPE_LENGTH_DELIMITED);
}
constexpr size_t TagSize(uint32_t number) { return number < 16 ? 1 : 2; }

// How one scalar type travels: wire type, reading, sizing, writing, and the
// proto3 zero test (a numeric comparison, so -0.0 counts as zero and NaN
// does not).
template <typename T>
struct Codec;

template <typename T>
struct FixedCodec {
  static constexpr WireFormatLite::WireType kWireType =
      sizeof(T) == 4 ? WireFormatLite::WIRETYPE_FIXED32
                     : WireFormatLite::WIRETYPE_FIXED64;
  static constexpr bool kFixedWidth = true;
  static const char* Read(const char* ptr, T* value) {
    std::memcpy(value, ptr, sizeof(T));
    return ptr + sizeof(T);
  }
  static size_t Size(T) { return sizeof(T); }
  static uint8_t* Write(T value, uint8_t* target) {
    std::memcpy(target, &value, sizeof(T));
    return target + sizeof(T);
  }
  static bool IsZero(T value) { return value == 0; }
};
template <>
struct Codec<float> : FixedCodec<float> {};
template <>
struct Codec<double> : FixedCodec<double> {};

// Varint types. Signed values are sign-extended to 64 bits (plain int32, not
// zigzag), so a negative value takes ten bytes.
template <typename T>
struct VarintCodec {
  static constexpr WireFormatLite::WireType kWireType = WireFormatLite::WIRETYPE_VARINT;
  static constexpr bool kFixedWidth = false;
  static T FromWire(uint64_t raw) {
    if constexpr (std::is_same_v<T, bool>) {
      return raw != 0;
    } else {
      return static_cast<T>(raw);
    }
  }
  static uint64_t ToWire(T value) {
    if constexpr (std::is_signed_v<T>) {
      return static_cast<uint64_t>(static_cast<int64_t>(value));
    } else {
      return static_cast<uint64_t>(value);
    }
  }
  static const char* Read(const char* ptr, T* value) {
    uint64_t raw;
    ptr = protobuf::internal::VarintParse(ptr, &raw);
    if (ptr != nullptr) *value = FromWire(raw);
    return ptr;
  }
  static size_t Size(T value) { return CodedOutputStream::VarintSize64(ToWire(value)); }
  static uint8_t* Write(T value, uint8_t* target) {
    return CodedOutputStream::WriteVarint64ToArray(ToWire(value), target);
  }
  static bool IsZero(T value) { return value == 0; }
};
template <>
struct Codec<int32_t> : VarintCodec<int32_t> {};
template <>
struct Codec<int64_t> : VarintCodec<int64_t> {};
template <>
struct Codec<uint32_t> : VarintCodec<uint32_t> {};
template <>
struct Codec<uint64_t> : VarintCodec<uint64_t> {};
template <>
struct Codec<bool> : VarintCodec<bool> {};

// Reads one value into `value`, but only when it lies wholly within the
// input: the parse buffer keeps spare bytes past the end of the input, and
// those must never become a value. Returns null when the input ends early.
template <typename T>
const char* ReadValue(const char* ptr, ParseContext* ctx, T* value) {
  T read;
  ptr = Codec<T>::Read(ptr, &read);
  if (ptr == nullptr || (ctx->Done(&ptr) && ptr == nullptr)) return nullptr;
  *value = read;
  return ptr;
}

// A singular scalar field: tag and value.
template <typename T>
size_t ScalarFieldSize(uint32_t number, T value) {
  return TagSize(number) + Codec<T>::Size(value);
}
template <typename T>
uint8_t* WriteScalarField(uint32_t number, T value, uint8_t* target,
                          EpsCopyOutputStream* stream) {
  target = stream->EnsureSpace(target);
  target = WireFormatLite::WriteTagToArray(number, Codec<T>::kWireType, target);
  return Codec<T>::Write(value, target);
}

// Length-delimited fields.
inline size_t BytesFieldSize(uint32_t number, const std::string& bytes) {
  return TagSize(number) + WireFormatLite::BytesSize(bytes);
}
inline size_t MessageFieldSize(uint32_t number, const protobuf::MessageLite& message) {
  return TagSize(number) + WireFormatLite::LengthDelimitedSize(message.ByteSizeLong());
}
inline uint8_t* WriteMessageField(uint32_t number, const protobuf::MessageLite& message,
                                  uint8_t* target, EpsCopyOutputStream* stream) {
  target = stream->EnsureSpace(target);
  return WireFormatLite::InternalWriteMessage(number, message, message.GetCachedSize(),
                                              target, stream);
}
// Replaces the whole content of `bytes` with the field's bytes.
inline const char* ReadBytes(std::string* bytes, const char* ptr, ParseContext* ctx) {
  return protobuf::internal::InlineGreedyStringParser(bytes, ptr, ctx);
}

// The packed numeric field algorithm, shared by the nine array messages and
// ArrayDataUnion.dimensions. Packed is the only form written; on reading, the
// one-element-per-tag form is accepted too.
template <typename T>
struct Packed {
  using Elements = protobuf::RepeatedField<T>;
  // Elements whose memory image is their wire image: copied in bulk.
  static constexpr bool kBulk = Codec<T>::kFixedWidth || std::is_same_v<T, bool>;

  static size_t PayloadSize(const Elements& values) {
    if constexpr (kBulk) {
      return sizeof(T) * static_cast<size_t>(values.size());
    } else if constexpr (std::is_same_v<T, int32_t>) {
      return WireFormatLite::Int32Size(values);
    } else if constexpr (std::is_same_v<T, int64_t>) {
      return WireFormatLite::Int64Size(values);
    } else if constexpr (std::is_same_v<T, uint32_t>) {
      return WireFormatLite::UInt32Size(values);
    } else {
      return WireFormatLite::UInt64Size(values);
    }
  }

  // Size of the whole field; remembers the payload length for the writer.
  static size_t FieldSize(uint32_t number, const Elements& values,
                          protobuf::internal::CachedSize* cached_payload) {
    const size_t payload = PayloadSize(values);
    cached_payload->Set(protobuf::internal::ToCachedSize(payload));
    if (payload == 0) return 0;
    return TagSize(number) +
           WireFormatLite::Int32Size(static_cast<int32_t>(payload)) + payload;
  }

  // Writes the length prefix remembered by FieldSize(), as the runtime's own
  // classes do: sizes are computed once per serialization.
  static uint8_t* Write(uint32_t number, const Elements& values, int cached_payload,
                        uint8_t* target, EpsCopyOutputStream* stream) {
    if (values.empty()) return target;
    target = stream->EnsureSpace(target);
    target = WireFormatLite::WriteTagToArray(
        number, WireFormatLite::WIRETYPE_LENGTH_DELIMITED, target);
    target = CodedOutputStream::WriteVarint32ToArray(
        static_cast<uint32_t>(cached_payload), target);
    if constexpr (kBulk) {
      return stream->WriteRaw(values.data(), static_cast<int>(sizeof(T)) * values.size(),
                              target);
    } else {
      for (T value : values) {
        target = stream->EnsureSpace(target);
        target = Codec<T>::Write(value, target);
      }
      return target;
    }
  }

  // Appends `from`, with the first allocation as every packed field has it.
  static void Append(Elements* values, const Elements& from) {
    if (from.empty()) return;
    internal::ReservePacked(values, from.size());
    values->MergeFrom(from);
  }

  // One packed run (length and elements), appended to `values`.
  static const char* ReadRun(Elements* values, const char* ptr, ParseContext* ctx) {
    if constexpr (Codec<T>::kFixedWidth) {
      const int size = static_cast<int>(protobuf::internal::ReadSize(&ptr));
      if (ptr == nullptr) return nullptr;
      if (size > 0) internal::ReservePacked(values, 1);
      return ctx->ReadPackedFixed(ptr, size, values);
    } else {
      return ctx->ReadPackedVarint(
          ptr, [values](uint64_t raw) { internal::AddPacked(values, Codec<T>::FromWire(raw)); });
    }
  }

  // One element in its own tag. While the field has spare capacity, elements
  // that follow under `kContinuationTag` (the packed tag, deliberately) are
  // read as further single elements of the same kind; so an unpacked element
  // directly followed by a packed run reads the run's length as an element.
  template <uint32_t kContinuationTag>
  static const char* ReadUnpacked(Elements* values, const char* ptr, ParseContext* ctx) {
    constexpr int kContinuationSize = kContinuationTag < 128 ? 1 : 2;
    T value;
    ptr = ReadValue(ptr, ctx, &value);
    if (ptr == nullptr) return nullptr;
    internal::AddPacked(values, value);
    while (values->size() < values->Capacity()) {
      if (ctx->Done(&ptr)) return ptr;
      if (!protobuf::internal::ExpectTag<kContinuationTag>(ptr)) break;
      if (Codec<T>::kFixedWidth &&
          ctx->BytesUntilLimit(ptr) < kContinuationSize + static_cast<int>(sizeof(T))) {
        break;
      }
      ptr = ReadValue(ptr + kContinuationSize, ctx, &value);
      if (ptr == nullptr) return nullptr;
      values->AddAlreadyReserved(value);
    }
    return ptr;
  }
};

}  // namespace wire
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_WIRE_H_
