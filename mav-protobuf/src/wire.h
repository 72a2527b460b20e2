// Wire algorithms shared by the message classes: one codec per scalar type,
// the one algorithm for packed numeric fields, and the length-delimited
// helpers. Internal to the library.
#ifndef MAV_PROTOBUF_SRC_WIRE_H_
#define MAV_PROTOBUF_SRC_WIRE_H_

#include "Mav.pb.h"
#include "varint.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/parse_context.h>
#include <google/protobuf/wire_format.h>
#include <google/protobuf/wire_format_lite.h>

#include <algorithm>
#include <climits>
#include <cstdint>
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
  static const char* Read(const char* ptr, T* value) {
    uint64_t raw;
    ptr = protobuf::internal::VarintParse(ptr, &raw);
    if (ptr != nullptr) *value = FromWire(raw);
    return ptr;
  }
  static size_t Size(T value) { return CodedOutputStream::VarintSize64(varint::ToWire(value)); }
  static uint8_t* Write(T value, uint8_t* target) {
    return CodedOutputStream::WriteVarint64ToArray(varint::ToWire(value), target);
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

// Whether all `size` bytes at `ptr` are in memory already: within the current
// message, and in the parse buffer or the 16 bytes it always holds past its
// end. Only then may a reader look at the whole run before storing anything;
// a length prefix alone proves nothing, it may promise bytes the input does
// not have. Short runs are not worth asking about and answer false.
inline bool IsBuffered(ParseContext* ctx, const char* ptr, int size) {
  constexpr int kSlop = ParseContext::kSlopBytes;
  return size > kSlop && size <= ctx->BytesUntilLimit(ptr) &&
         ctx->DataAvailable(ptr + (size - kSlop - 1));
}

// A parse context that reads a stream through a CodedInputStream decides at
// the end of each buffer whether to ask the stream for more, so that a
// message ending in a zero tag leaves the stream just past that tag: it reads
// the buffer's last bytes ahead of the parse, by the plain wire format. The
// unpacked readers' continuation reads a packed tag differently (as one
// element, not as a length and a payload), and on bytes that the look-ahead
// reads too the two disagree on where fields and zero tags stand: the context
// then stops short of the stream's end, or reads past a zero tag it can no
// longer return to. So the continuation runs freely only where no look-ahead
// happens: in a parse whose whole input is in memory from the start (one flat
// buffer, or a stream whose first block holds all of its known length). A
// stream read with its length in several blocks is looked ahead like any
// other. Elsewhere the continuation reads only elements that lie wholly in the
// stream's own memory before the buffer's end, which the look-ahead never
// reads.
//
// Whether the current parse has its whole input is known when the outermost
// message starts and is kept for its nested messages while it runs.
inline thread_local const ParseContext* bounded_parse = nullptr;

// Whether `ptr` lies in the context's own small buffer, where it copies the
// seams between a stream's blocks and the end of a flat input.
inline bool InPatchBuffer(const ParseContext* ctx, const char* ptr) {
  const auto address = reinterpret_cast<std::uintptr_t>(ptr);
  const auto context = reinterpret_cast<std::uintptr_t>(ctx);
  return address >= context && address < context + sizeof(ParseContext);
}

// Whether `ptr` is in a stream's own memory, short of the buffer's end.
inline bool IsOwnChunk(ParseContext* ctx, const char* ptr) {
  return ctx->DataAvailable(ptr) && !InPatchBuffer(ctx, ptr);
}

inline bool ReadsBoundedInput(const ParseContext* ctx) { return bounded_parse == ctx; }

// Whether the context, at the start of a parse, already holds every byte it
// will read. A context over a stream of unknown length counts its limit down
// from INT_MAX, less at most the few bytes of a first block it copied into its
// own buffer. Otherwise the limit is the input's length, and the input is all
// there when its last byte lies in the current buffer: short of its final
// slop bytes for a long input, which the context reads from the same block.
inline bool HoldsWholeInput(ParseContext* ctx, const char* ptr) {
  constexpr int kSlop = ParseContext::kSlopBytes;
  constexpr int kUnknownLength = INT_MAX - 2 * kSlop;
  const int size = ctx->BytesUntilLimit(ptr);
  if (size >= kUnknownLength) return false;
  if (size == 0) return true;
  return ctx->DataAvailable(ptr + (size > kSlop ? size - kSlop - 1 : size - 1));
}

// Marks the parse as bounded while the outermost message is read.
class OutermostParse {
 public:
  OutermostParse(ParseContext* ctx, const char* ptr) {
    if (ctx->depth() != protobuf::io::CodedInputStream::GetDefaultRecursionLimit()) return;
    saved_ = bounded_parse;
    restore_ = true;
    bounded_parse = HoldsWholeInput(ctx, ptr) ? ctx : nullptr;
  }
  ~OutermostParse() {
    if (restore_) bounded_parse = saved_;
  }
  OutermostParse(const OutermostParse&) = delete;
  OutermostParse& operator=(const OutermostParse&) = delete;

 private:
  const ParseContext* saved_ = nullptr;
  bool restore_ = false;
};

// Tags and lengths in a tree are nearly all below 128: one byte, written
// inline; the runtime's writer, out of line, takes the others.
inline uint8_t* WriteVarint32(uint32_t value, uint8_t* target) {
  if (value < 0x80) {
    *target = static_cast<uint8_t>(value);
    return target + 1;
  }
  return CodedOutputStream::WriteVarint32ToArray(value, target);
}
inline uint8_t* WriteLengthDelimitedTag(uint32_t number, uint8_t* target) {
  return WriteVarint32(LengthDelimitedTag(number), target);
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
  target = WriteVarint32(MakeTag(number, Codec<T>::kWireType), target);
  return Codec<T>::Write(value, target);
}

// Length-delimited fields.
inline size_t BytesFieldSize(uint32_t number, const std::string& bytes) {
  return TagSize(number) + WireFormatLite::BytesSize(bytes);
}
// A message field, `M` being the message's own class: its size, cached-size
// and serializer functions are final, so they are called directly, and inlined
// where this library defines them, rather than through the virtual table on
// every level of a tree.
template <typename M>
size_t MessageFieldSize(uint32_t number, const M& message) {
  return TagSize(number) + WireFormatLite::LengthDelimitedSize(message.ByteSizeLong());
}
// A message is written even when it is empty (tag and length 0).
template <typename M>
uint8_t* WriteMessageField(uint32_t number, const M& message, uint8_t* target,
                           EpsCopyOutputStream* stream) {
  target = stream->EnsureSpace(target);
  target = WriteLengthDelimitedTag(number, target);
  target = WriteVarint32(static_cast<uint32_t>(message.GetCachedSize()), target);
  return message._InternalSerialize(target, stream);
}
// Reads a nested message whose class is known here. The runtime's entry point
// for messages goes through an out-of-line function and a virtual call at
// every level of a tree; its entry point for other parsers keeps the length
// limit and depth bookkeeping inline and calls the class directly.
template <typename T>
const char* ParseNested(T* message, const char* ptr, ParseContext* ctx) {
  struct Direct {
    T* message;
    const char* _InternalParse(const char* at, ParseContext* context) {
      return message->_InternalParse(at, context);
    }
  } direct{message};
  return ctx->ParseMessage(&direct, ptr);
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
    } else {
      return varint::RunSize(values.data(), values.size());
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
    target = WriteLengthDelimitedTag(number, target);
    target = WriteVarint32(static_cast<uint32_t>(cached_payload), target);
    if constexpr (kBulk) {
      return stream->WriteRawMaybeAliased(
          values.data(), static_cast<int>(sizeof(T)) * values.size(), target);
    } else {
      // A block at a time through a buffer on the stack, so no element needs
      // a bounds check of its own.
      constexpr int kBlock = 128;
      uint8_t block[kBlock * varint::kMaxSize + varint::kEncodeSlack];
      for (int first = 0; first < values.size(); first += kBlock) {
        const int count = std::min(kBlock, values.size() - first);
        const uint8_t* end = varint::EncodeRun(values.data() + first, count, block);
        target = stream->WriteRaw(block, static_cast<int>(end - block), target);
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

  // One packed run (length and elements), appended to `values`. A run that
  // lies wholly in the buffer is sized once: fixed-width elements by its
  // length, varints by counting their last bytes first. Otherwise the field
  // grows as the stream delivers the run.
  static const char* ReadRun(Elements* values, const char* ptr, ParseContext* ctx) {
    const char* const run = ptr;
    const int size = protobuf::internal::ReadSize(&ptr);
    if (ptr == nullptr) return nullptr;
    if (size == 0) return ptr;
    const bool buffered = IsBuffered(ctx, ptr, size);
    if constexpr (Codec<T>::kFixedWidth) {
      internal::ReservePacked(values, buffered ? size / static_cast<int>(sizeof(T)) : 1);
      return ctx->ReadPackedFixed(ptr, size, values);
    } else {
      // A run whose last varint is cut takes the stream's path, which fails
      // it just as the runtime does.
      if (buffered && static_cast<uint8_t>(ptr[size - 1]) < 0x80) {
        return DecodeBufferedRun(values, ptr, ptr + size);
      }
      return ctx->ReadPackedVarint(
          run, [values](uint64_t raw) { internal::AddPacked(values, Codec<T>::FromWire(raw)); });
    }
  }

  static const char* DecodeBufferedRun(Elements* values, const char* ptr, const char* end) {
    const int count = varint::CountEnds(ptr, end);
    internal::ReservePacked(values, count);
    T* out = values->AddNAlreadyReserved(count);
    int decoded;
    ptr = varint::DecodeRun(ptr, end, count, out, &decoded,
                            [](uint64_t raw) { return Codec<T>::FromWire(raw); });
    values->Truncate(values->size() - (count - decoded));
    return ptr;
  }

  // One element in its own tag. While the field has spare capacity, elements
  // that follow under `kContinuationTag` (the packed tag, deliberately) are
  // read as further single elements of the same kind; so an unpacked element
  // directly followed by a packed run reads the run's length as an element.
  // Outside one bounded input the continuation stays on bytes no look-ahead
  // sees (see ReadsBoundedInput) and leaves the rest to the parse loop.
  template <uint32_t kContinuationTag>
  static const char* ReadUnpacked(Elements* values, const char* ptr, ParseContext* ctx) {
    constexpr int kContinuationSize = kContinuationTag < 128 ? 1 : 2;
    T value;
    ptr = ReadValue(ptr, ctx, &value);
    if (ptr == nullptr) return nullptr;
    internal::AddPacked(values, value);
    const bool bounded = ReadsBoundedInput(ctx);
    while (values->size() < values->Capacity()) {
      if (bounded) {
        if (ctx->Done(&ptr)) return ptr;
      } else if (!IsOwnChunk(ctx, ptr)) {
        break;
      }
      if (!protobuf::internal::ExpectTag<kContinuationTag>(ptr)) break;
      if (Codec<T>::kFixedWidth &&
          ctx->BytesUntilLimit(ptr) < kContinuationSize + static_cast<int>(sizeof(T))) {
        break;
      }
      if (bounded) {
        ptr = ReadValue(ptr + kContinuationSize, ctx, &value);
        if (ptr == nullptr) return nullptr;
      } else {
        const char* end = Codec<T>::Read(ptr + kContinuationSize, &value);
        if (end == nullptr || !ctx->DataAvailable(end - 1)) break;
        ptr = end;
      }
      values->AddAlreadyReserved(value);
    }
    return ptr;
  }
};

}  // namespace wire
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_WIRE_H_
