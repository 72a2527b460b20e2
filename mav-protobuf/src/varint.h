// Whole-run codecs for packed varint fields: counting, sizing, encoding and
// decoding many varints at once, with no per-element bounds checks. Callers
// guarantee the room: encoders get the worst case plus kEncodeSlack bytes,
// decoders only input that is wholly in memory. The word-at-a-time forms are
// portable integer arithmetic; where the processor has 256-bit vectors and
// bit-field deposit and extract instructions, those take the place of the
// arithmetic, and short varints are decoded four at a time with a byte
// shuffle; the form is chosen once at run time. Internal to the library.
#ifndef MAV_PROTOBUF_SRC_VARINT_H_
#define MAV_PROTOBUF_SRC_VARINT_H_

#include <google/protobuf/parse_context.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define MAV_PROTOBUF_VARINT_SIMD 1
#endif

namespace Tarnwick {
namespace MavProtobuf {
namespace varint {

constexpr uint64_t kHighBits = 0x8080808080808080u;
constexpr uint64_t kLowBits = 0x7F7F7F7F7F7F7F7Fu;
constexpr int kMaxSize = 10;
// The encoder stores a whole word for a varint of fewer bytes.
constexpr int kEncodeSlack = 8;

inline uint64_t Load64(const char* p) {
  uint64_t word;
  std::memcpy(&word, p, sizeof(word));
  return word;
}

// Signed values travel sign-extended to 64 bits (plain int32, not zigzag).
template <typename T>
uint64_t ToWire(T value) {
  if constexpr (std::is_signed_v<T>) {
    return static_cast<uint64_t>(static_cast<int64_t>(value));
  } else {
    return static_cast<uint64_t>(value);
  }
}

// Bytes of one varint, by comparisons only, so that a loop over a run
// vectorizes.
template <typename T>
size_t Size(T value) {
  if constexpr (std::is_same_v<T, uint32_t>) {
    return 1 + (value > 0x7F) + (value > 0x3FFF) + (value > 0x1FFFFF) + (value > 0xFFFFFFF);
  } else if constexpr (std::is_same_v<T, int32_t>) {
    return value < 0 ? kMaxSize : Size(static_cast<uint32_t>(value));
  } else {
    const uint64_t v = ToWire(value);
    size_t size = 1;
    for (int bits = 7; bits < 64; bits += 7) size += (v >> bits) != 0;
    return size;
  }
}

// Summed in 32-bit lanes a block at a time, which vectorizes well.
template <typename T>
inline size_t RunSizeWith(const T* values, int count) {
  constexpr int kBlock = 1 << 16;
  size_t size = 0;
  for (int first = 0; first < count; first += kBlock) {
    const int last = count - first < kBlock ? count : first + kBlock;
    uint32_t block = 0;
    for (int i = first; i < last; ++i) block += static_cast<uint32_t>(Size(values[i]));
    size += block;
  }
  return size;
}

// The bytes 9 and 10 of a long varint; as on the runtime, bits past the 64th
// are dropped.
inline uint64_t AddHighBytes(uint64_t low, const char* p, ptrdiff_t size) {
  low |= uint64_t{static_cast<uint8_t>(p[8]) & 0x7Fu} << 56;
  if (size > 9) low |= uint64_t{static_cast<uint8_t>(p[9]) & 1u} << 63;
  return low;
}

// The word operations the run codecs are made of: the ends of the varints
// among 64 bytes (one bit a byte), the value of a varint of up to eight bytes
// (the low seven bits of each byte, gathered), a value below 2^56 spread
// seven bits a byte, and the continuation bits of a varint of `size` bytes.
struct PortableBits {
  static constexpr bool kGroups = false;
  // Number of varints that end in [p, end): the bytes without the
  // continuation bit, counted eight at a time in byte lanes.
  static int CountEnds(const char* p, const char* end) {
    int count = 0;
    while (end - p >= 8) {
      uint64_t lanes = 0;
      for (int word = 0; word < 255 && end - p >= 8; ++word, p += 8) {
        lanes += (~Load64(p) & kHighBits) >> 7;
      }
      lanes = (lanes & 0x00FF00FF00FF00FFu) + ((lanes >> 8) & 0x00FF00FF00FF00FFu);
      count += static_cast<int>((lanes * 0x0001000100010001u) >> 48);
    }
    for (; p < end; ++p) count += static_cast<uint8_t>(*p) < 0x80;
    return count;
  }
  static uint64_t Ends(const char* p) {
    uint64_t bits = 0;
    for (int word = 0; word < 8; ++word) {
      const uint64_t ends = ~Load64(p + 8 * word) & kHighBits;
      bits |= ((ends * 0x0002040810204081u) >> 56) << (8 * word);
    }
    return bits;
  }
  static uint64_t Gather(const char* p, ptrdiff_t size) {
    uint64_t x = Load64(p) & kLowBits;
    if (size < 8) x &= (uint64_t{1} << (8 * size)) - 1;
    x = (x & 0x007F007F007F007Fu) | ((x & 0x7F007F007F007F00u) >> 1);
    x = (x & 0x00003FFF00003FFFu) | ((x & 0x3FFF00003FFF0000u) >> 2);
    return (x & 0x000000000FFFFFFFu) | ((x & 0x0FFFFFFF00000000u) >> 4);
  }
  static uint64_t Spread(uint64_t v) {
    return (v & 0x7F) | ((v << 1) & 0x7F00) | ((v << 2) & 0x7F0000) | ((v << 3) & 0x7F000000) |
           ((v << 4) & 0x7F00000000) | ((v << 5) & 0x7F0000000000) |
           ((v << 6) & 0x7F000000000000) | ((v << 7) & 0x7F00000000000000);
  }
  static uint64_t Marks(int size) { return kHighBits & ((uint64_t{1} << (8 * size - 8)) - 1); }
};

// Four varints of one to three bytes each, the commonest case of counts and
// indices, are decoded and encoded at once. Their four lengths make a shape
// (in base 3). On reading, the ends among the next twelve bytes give the
// shape, and one byte shuffle per shape moves each varint into a 32-bit lane
// of its own; on writing, the values' sizes give it, and the reverse shuffle
// packs the four lanes' bytes together. The tables are built by the compiler.
namespace group {
constexpr int kReach = 12;            // bytes whose ends select the shape
constexpr uint64_t kReachMask = (uint64_t{1} << kReach) - 1;
constexpr int kShapes = 81;           // 3^4 length combinations
constexpr uint8_t kNone = kShapes;    // the next four varints are not all short
struct Tables {
  uint8_t shape[1 << kReach];      // by the ends among twelve bytes
  uint8_t shuffle[kShapes][16];    // wire bytes to lanes
  uint8_t shape_of_sizes[256];     // by lanes over 1 byte | lanes over 2 bytes << 4
  uint8_t pack[kShapes][16];       // lanes to wire bytes
  uint8_t bytes[kShapes];
};
constexpr Tables MakeTables() {
  Tables tables{};
  for (int shape = 0; shape < kShapes; ++shape) {
    int start = 0;
    for (int lane = 0, code = shape; lane < 4; ++lane, code /= 3) {
      const int length = code % 3 + 1;
      for (int byte = 0; byte < 4; ++byte) {
        tables.shuffle[shape][4 * lane + byte] =
            static_cast<uint8_t>(byte < length ? start + byte : 0x80);  // 0x80: zero
        if (byte < length) tables.pack[shape][start + byte] = static_cast<uint8_t>(4 * lane + byte);
      }
      start += length;
    }
    for (int byte = start; byte < 16; ++byte) tables.pack[shape][byte] = 0x80;
    tables.bytes[shape] = static_cast<uint8_t>(start);
  }
  for (int sizes = 0; sizes < 256; ++sizes) {
    int shape = 0;
    for (int lane = 0, scale = 1; lane < 4; ++lane, scale *= 3) {
      shape += ((sizes >> lane & 1) + (sizes >> (lane + 4) & 1)) * scale;
    }
    tables.shape_of_sizes[sizes] = static_cast<uint8_t>(shape);
  }
  for (int ends = 0; ends < (1 << kReach); ++ends) {
    int shape = 0, scale = 1, start = 0, found = 0;
    for (int byte = 0; byte < kReach && found < 4; ++byte) {
      if ((ends >> byte & 1) == 0) continue;
      const int length = byte + 1 - start;
      if (length > 3) break;
      shape += (length - 1) * scale;
      scale *= 3;
      start = byte + 1;
      ++found;
    }
    tables.shape[ends] = static_cast<uint8_t>(found == 4 ? shape : kNone);
  }
  return tables;
}
inline constexpr Tables kTables = MakeTables();
}  // namespace group

#ifdef MAV_PROTOBUF_VARINT_SIMD
#define MAV_PROTOBUF_SIMD __attribute__((target("avx2,bmi,bmi2,popcnt")))
struct SimdBits {
  static constexpr bool kGroups = true;
  MAV_PROTOBUF_SIMD static uint64_t Ends(const char* p) {
    const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32));
    const uint64_t marks = static_cast<uint32_t>(_mm256_movemask_epi8(low)) |
                           uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(high))} << 32;
    return ~marks;
  }
  MAV_PROTOBUF_SIMD static int CountEnds(const char* p, const char* end) {
    int count = 0;
    for (; end - p >= 64; p += 64) count += __builtin_popcountll(Ends(p));
    for (; p < end; ++p) count += static_cast<uint8_t>(*p) < 0x80;
    return count;
  }
  MAV_PROTOBUF_SIMD static uint64_t Gather(const char* p, ptrdiff_t size) {
    return _bzhi_u64(_pext_u64(Load64(p), kLowBits), static_cast<unsigned>(7 * size));
  }
  MAV_PROTOBUF_SIMD static uint64_t Spread(uint64_t v) { return _pdep_u64(v, kLowBits); }
  MAV_PROTOBUF_SIMD static uint64_t Marks(int size) {
    return _bzhi_u64(kHighBits, static_cast<unsigned>(8 * size - 8));
  }
  // The four varints of `shape` at `p` (16 bytes readable), one a lane.
  MAV_PROTOBUF_SIMD static __m128i Group(const char* p, int shape) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i order =
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(group::kTables.shuffle[shape]));
    const __m128i lanes = _mm_shuffle_epi8(bytes, order);
    const __m128i low = _mm_and_si128(lanes, _mm_set1_epi32(0x7F));
    const __m128i middle = _mm_and_si128(_mm_srli_epi32(lanes, 1), _mm_set1_epi32(0x3F80));
    const __m128i high = _mm_and_si128(_mm_srli_epi32(lanes, 2), _mm_set1_epi32(0x1FC000));
    return _mm_or_si128(_mm_or_si128(low, middle), high);
  }
  // Writes four 32-bit values below 2^21 at `out` (16 bytes writable) and
  // returns the end of their bytes; null, with nothing written, when one of
  // them is longer.
  template <typename T>
  MAV_PROTOBUF_SIMD static uint8_t* EncodeGroup(const T* values, uint8_t* out) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(values));
    if (!_mm_testz_si128(v, _mm_set1_epi32(~0x1FFFFF))) return nullptr;
    const __m128i over1 = _mm_cmpgt_epi32(v, _mm_set1_epi32(0x7F));
    const __m128i over2 = _mm_cmpgt_epi32(v, _mm_set1_epi32(0x3FFF));
    const __m128i spread = _mm_or_si128(
        _mm_or_si128(_mm_and_si128(v, _mm_set1_epi32(0x7F)),
                     _mm_and_si128(_mm_slli_epi32(v, 1), _mm_set1_epi32(0x7F00))),
        _mm_and_si128(_mm_slli_epi32(v, 2), _mm_set1_epi32(0x7F0000)));
    const __m128i marks = _mm_or_si128(_mm_and_si128(over1, _mm_set1_epi32(0x80)),
                                       _mm_and_si128(over2, _mm_set1_epi32(0x8000)));
    const int sizes = _mm_movemask_ps(_mm_castsi128_ps(over1)) |
                      _mm_movemask_ps(_mm_castsi128_ps(over2)) << 4;
    const int shape = group::kTables.shape_of_sizes[sizes];
    const __m128i order =
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(group::kTables.pack[shape]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_shuffle_epi8(_mm_or_si128(spread, marks), order));
    return out + group::kTables.bytes[shape];
  }
  // A value of up to 21 bits reads the same in either 32-bit type.
  template <typename T, typename FromWire>
  MAV_PROTOBUF_SIMD static void StoreGroup(__m128i values, T* out, FromWire from_wire) {
    if constexpr (std::is_same_v<T, uint32_t> || std::is_same_v<T, int32_t>) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out), values);
    } else {
      alignas(16) uint32_t lanes[4];
      _mm_store_si128(reinterpret_cast<__m128i*>(lanes), values);
      for (int lane = 0; lane < 4; ++lane) out[lane] = from_wire(lanes[lane]);
    }
  }
};

inline bool HasSimd() {
  static const bool has = (__builtin_cpu_init(), __builtin_cpu_supports("avx2") &&
                                                     __builtin_cpu_supports("bmi2") &&
                                                     __builtin_cpu_supports("popcnt"));
  return has;
}
#endif

// Encodes one value at `out`, which has room for kMaxSize + kEncodeSlack
// bytes. A value below 2^56 is spread into one word and stored whole; a
// longer one takes the byte loop.
template <typename Bits>
inline uint8_t* EncodeOne(uint64_t v, uint8_t* out) {
  if (v < (uint64_t{1} << 56)) {
    uint64_t word = Bits::Spread(v);
    const int size = (71 - __builtin_clzll(word | 1)) / 8;  // up to the highest non-zero byte
    word |= Bits::Marks(size);
    std::memcpy(out, &word, sizeof(word));
    return out + size;
  }
  while (v >= 0x80) {
    *out++ = static_cast<uint8_t>(v | 0x80);
    v >>= 7;
  }
  *out++ = static_cast<uint8_t>(v);
  return out;
}

// Encodes `count` values at `out`, which has room for kMaxSize bytes a value
// plus kEncodeSlack; 32-bit values go four at a time where the vector form
// can.
template <typename Bits, typename T>
inline uint8_t* EncodeRunWith(const T* values, int count, uint8_t* out) {
  int i = 0;
  if constexpr (Bits::kGroups && (std::is_same_v<T, uint32_t> || std::is_same_v<T, int32_t>)) {
    // Four values have room for 40 bytes, more than a group stores.
    for (; count - i >= 4; i += 4) {
      if (uint8_t* after = Bits::EncodeGroup(values + i, out)) {
        out = after;
        continue;
      }
      for (int k = i; k < i + 4; ++k) out = EncodeOne<Bits>(ToWire(values[k]), out);
    }
  }
  for (; i < count; ++i) out = EncodeOne<Bits>(ToWire(values[i]), out);
  return out;
}

// Decodes the `count` varints that start at `p` into `out`, returning the
// position after the last, or null at a varint longer than ten bytes (the
// values before it are stored; `*decoded` says how many). The caller has
// counted the varints, so all of them end before `end`; nothing at or past
// `end` is read. The ends within 64 bytes are found at once, so the loop
// walks a bit mask rather than waiting on each varint's length.
template <typename Bits, typename T, typename FromWire>
inline const char* DecodeRunWith(const char* p, const char* end, int count, T* out,
                                 int* decoded, FromWire from_wire) {
  T* const first = out;
  // Every end within a whole window before `end` is one of those counted, and
  // a word (or a group's 16 bytes) loaded at a varint in the window still
  // ends before `end`.
  while (end - p >= 64 + 8) {
    uint64_t ends = Bits::Ends(p);
    ptrdiff_t start = 0;  // of the next varint, from p
    while (ends != 0) {
      if constexpr (Bits::kGroups) {
        const int shape = start <= 64 - group::kReach
                              ? group::kTables.shape[(ends >> start) & group::kReachMask]
                              : group::kNone;
        if (shape != group::kNone) {
          Bits::StoreGroup(Bits::Group(p + start, shape), out, from_wire);
          out += 4;
          // Past the group's four ends: the next varint follows the fourth.
          for (int end_bit = 0; end_bit < 3; ++end_bit) ends &= ends - 1;
          start = __builtin_ctzll(ends) + 1;
          ends &= ends - 1;
          continue;
        }
      }
      const ptrdiff_t next = __builtin_ctzll(ends) + 1;
      const ptrdiff_t size = next - start;
      if (size <= 8) {
        *out++ = from_wire(Bits::Gather(p + start, size));
      } else if (size <= kMaxSize) {
        *out++ = from_wire(AddHighBytes(Bits::Gather(p + start, 8), p + start, size));
      } else {
        break;
      }
      ends &= ends - 1;
      start = next;
    }
    if (ends != 0 || start == 0) {  // an overlong varint
      p = nullptr;
      break;
    }
    p += start;
  }
  while (p != nullptr && out - first < count) {
    uint64_t raw;
    p = ::google::protobuf::internal::VarintParse(p, &raw);
    if (p != nullptr) *out++ = from_wire(raw);
  }
  *decoded = static_cast<int>(out - first);
  return p;
}

#ifdef MAV_PROTOBUF_VARINT_SIMD
template <typename T>
MAV_PROTOBUF_SIMD __attribute__((flatten)) uint8_t* EncodeRunSimd(const T* values, int count,
                                                                  uint8_t* out) {
  return EncodeRunWith<SimdBits>(values, count, out);
}
template <typename T, typename FromWire>
MAV_PROTOBUF_SIMD __attribute__((flatten)) const char* DecodeRunSimd(
    const char* p, const char* end, int count, T* out, int* decoded, FromWire from_wire) {
  return DecodeRunWith<SimdBits>(p, end, count, out, decoded, from_wire);
}
// The same loop, compiled for vectors twice as wide.
template <typename T>
MAV_PROTOBUF_SIMD __attribute__((flatten)) size_t RunSizeSimd(const T* values, int count) {
  return RunSizeWith(values, count);
}
#endif

template <typename T>
size_t RunSize(const T* values, int count) {
#ifdef MAV_PROTOBUF_VARINT_SIMD
  if (HasSimd()) return RunSizeSimd(values, count);
#endif
  return RunSizeWith(values, count);
}

inline int CountEnds(const char* p, const char* end) {
#ifdef MAV_PROTOBUF_VARINT_SIMD
  if (HasSimd()) return SimdBits::CountEnds(p, end);
#endif
  return PortableBits::CountEnds(p, end);
}

template <typename T>
uint8_t* EncodeRun(const T* values, int count, uint8_t* out) {
#ifdef MAV_PROTOBUF_VARINT_SIMD
  if (HasSimd()) return EncodeRunSimd(values, count, out);
#endif
  return EncodeRunWith<PortableBits>(values, count, out);
}

template <typename T, typename FromWire>
const char* DecodeRun(const char* p, const char* end, int count, T* out, int* decoded,
                      FromWire from_wire) {
#ifdef MAV_PROTOBUF_VARINT_SIMD
  if (HasSimd()) return DecodeRunSimd(p, end, count, out, decoded, from_wire);
#endif
  return DecodeRunWith<PortableBits>(p, end, count, out, decoded, from_wire);
}

}  // namespace varint
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_VARINT_H_
