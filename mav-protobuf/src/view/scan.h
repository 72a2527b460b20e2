// The in-place reader's view of the wire: one field at a time, and only the
// plain forms. Whatever else the bytes hold (groups, tag 0, long tags,
// malformed or truncated fields) makes ReadField return null, and the caller
// hands the whole message to a parse, which gives the one true answer.
// Internal to the library.
#ifndef MAV_PROTOBUF_SRC_VIEW_SCAN_H_
#define MAV_PROTOBUF_SRC_VIEW_SCAN_H_

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "MavView.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace view_internal {

using view_detail::Span;

// The parse's recursion budget: a message nested deeper is refused.
constexpr int kMaxDepth = 100;

enum WireType : uint32_t { kVarint = 0, kFixed64 = 1, kLength = 2, kFixed32 = 5 };

constexpr uint32_t Tag(uint32_t number, WireType type) { return number << 3 | type; }

struct Field {
  uint32_t tag = 0;
  uint64_t value = 0;      // a varint, or the bits of a fixed-width field
  std::string_view bytes;  // a length-delimited field's payload

  uint32_t number() const { return tag >> 3; }
};

// A varint of at most ten bytes that ends before `end`, as the parse reads it
// (bits past the 64th dropped); null otherwise.
inline const char* ReadVarint(const char* p, const char* end, uint64_t* value) {
  uint64_t result = 0;
  for (int shift = 0; shift < 70 && p < end; shift += 7) {
    const uint8_t byte = static_cast<uint8_t>(*p++);
    result |= static_cast<uint64_t>(byte & 0x7F) << shift;
    if (byte < 0x80) {
      *value = result;
      return p;
    }
  }
  return nullptr;
}

// The field at `p`, which is before `end`. Null for anything but a one- or
// two-byte minimal tag with a field number and wire type 0, 1, 2 or 5 whose
// value lies wholly before `end`; lengths as the parse bounds them.
inline const char* ReadField(const char* p, const char* end, Field* field) {
  uint32_t tag = static_cast<uint8_t>(p[0]);
  if (tag < 0x80) {
    ++p;
  } else {
    if (end - p < 2) return nullptr;
    const uint32_t high = static_cast<uint8_t>(p[1]);
    if (high == 0 || high >= 0x80) return nullptr;
    tag = (tag & 0x7F) | high << 7;
    p += 2;
  }
  if ((tag >> 3) == 0) return nullptr;
  field->tag = tag;
  switch (tag & 7) {
    case kVarint:
      return ReadVarint(p, end, &field->value);
    case kFixed64:
      if (end - p < 8) return nullptr;
      std::memcpy(&field->value, p, 8);
      return p + 8;
    case kFixed32: {
      if (end - p < 4) return nullptr;
      uint32_t bits;
      std::memcpy(&bits, p, 4);
      field->value = bits;
      return p + 4;
    }
    case kLength: {
      uint64_t size;
      const char* start = p;
      p = ReadVarint(p, end, &size);
      if (p == nullptr || p - start > 5 || size > INT_MAX - 16 ||
          size > static_cast<uint64_t>(end - p)) {
        return nullptr;
      }
      field->bytes = std::string_view(p, static_cast<size_t>(size));
      return p + size;
    }
    default:
      return nullptr;
  }
}

// The usual short message: one length-delimited field with a one-byte tag and
// a one-byte length that ends exactly at `end`. Its tag and payload, or false
// for anything else (which the full field loop then reads).
inline bool ReadShortField(const char* p, const char* end, uint32_t* tag, std::string_view* payload) {
  if (end - p < 2) return false;
  const auto first = static_cast<uint8_t>(p[0]);
  const auto size = static_cast<uint8_t>(p[1]);
  if (first >= 0x80 || (first & 7) != kLength || first < 8 || size >= 0x80 || end - p - 2 != size) return false;
  *tag = first;
  *payload = std::string_view(p + 2, size);
  return true;
}

// A nested message's span, refused past the parse's depth.
Span Nested(const Span& parent, std::string_view bytes);

// The message of type `M` in `span` as a parse gives it, serialized again
// (deterministically, unknown fields dropped), in bytes the span owns. Throws
// DecodeError when the parse fails.
template <typename M>
Span Canonical(const Span& span);

// Parses `span` into `out` as a message nested at its depth.
template <typename M>
void ParseInto(const Span& span, M* out);

[[noreturn]] void ThrowMalformed(std::string_view what);

// Whether `text` is valid UTF-8, as map keys must be.
bool IsUtf8(std::string_view text);

// One entry of a map, read in place: false when it needs a parse (a value
// given twice, an unusual field); throws DecodeError for a key that is not
// UTF-8 and a depth past the limit.
bool ReadEntry(const Span& map, std::string_view entry, std::string_view* key,
               std::string_view* value, bool* has_value);

}  // namespace view_internal
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_VIEW_SCAN_H_
