// MavValues: typed values and property trees in plain C++, on the message
// classes of Mav.pb.h. Nothing here owns a tree: every function reads or
// writes the messages you pass in.
//
// Kinds. Every value has one of sixteen element kinds, named as NumPy names
// its dtypes (KindName / ParseKind):
//   str float32 float64 int8 int16 int32 int64 uint8 uint16 uint32 uint64
//   bool complex64 complex128 timedelta64 datetime64
// Each C++ type stands for exactly one kind: std::string, std::string_view
// and string literals are str; float, double, the <cstdint> integers and bool
// their own kinds; std::complex<float>/<double> complex64/complex128; any
// std::chrono::duration timedelta64 and any std::chrono::time_point
// datetime64. A bool never becomes an integer, a char never becomes an int8,
// and a type that stands for no kind (char, long long where int64_t is long,
// long double) does not compile.
//
// Time. A time point is the seconds since its clock's epoch (the Unix epoch
// for system_clock) plus a fraction of a second; a duration is seconds plus a
// fraction. The fraction counts nanoseconds unless the caller names another
// std::ratio (SetValue<std::micro>(v, t), GetValue<T, std::micro>(v)). The
// seconds are floored, so values before the epoch and negative durations
// still carry a fraction in [0, one second): -0.25 s is -1 s + 750000000 ns.
// A stored fraction of one second or more is refused on reading, and so is a
// value that the asked duration type cannot hold. Reading into a duration
// coarser than the fraction rounds down.
//
// Arrays. An array holds its elements flat, a shape (one extent per axis,
// at least one axis, any rank) and an order: 'C'
// (row-major, the default) or 'F' (column-major), NumPy's letters, written
// into dataorder. An array stored without dimensions reads as
// one-dimensional, one without dataorder as 'C'. Complex elements are stored
// interleaved (re, im, re, im, ...).
//
// Narrow integers. 8- and 16-bit scalars, and 16-bit arrays, travel as
// 32-bit values; a stored value outside the asked type's range is refused,
// never truncated. 8-bit arrays are byte strings.
//
// Errors. Every refusal throws ValueError, whose message names the path
// (where the call has one), the expected and the found kind, or the counts
// that disagree. A refused call has written nothing. Lookups that merely miss
// (Find) return nullptr; their throwing counterparts (At, and the path
// overloads of GetValue/ViewArray/ReadArray) throw ValueError.
//
// Equality. Equal() compares kinds, shapes, orders, values, wellknowntype and
// map keys (whatever the map's hash order); NaN equals NaN, and -0.0 equals
// 0.0. Unknown fields are not compared.
#ifndef MAV_PROTOBUF_MAV_VALUES_H_
#define MAV_PROTOBUF_MAV_VALUES_H_

#include <algorithm>
#include <array>
#include <chrono>
#include <complex>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <ratio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#if __cplusplus >= 202002L && __has_include(<span>)
#include <span>
#define MAV_PROTOBUF_HAS_SPAN 1
#endif

#include "Mav.pb.h"

namespace Tarnwick {
namespace MavProtobuf {

// ---------------------------------------------------------------------------
// Kinds

// The numbering follows ScalarDataUnion's members.
enum class Kind : uint8_t {
  kString = 1,
  kFloat32,
  kFloat64,
  kInt8,
  kInt16,
  kInt32,
  kInt64,
  kUInt8,
  kUInt16,
  kUInt32,
  kUInt64,
  kBool,
  kComplex64,
  kComplex128,
  kDuration,
  kTimePoint,
};

inline constexpr Kind kAllKinds[] = {
    Kind::kString,    Kind::kFloat32,    Kind::kFloat64,  Kind::kInt8,
    Kind::kInt16,     Kind::kInt32,      Kind::kInt64,    Kind::kUInt8,
    Kind::kUInt16,    Kind::kUInt32,     Kind::kUInt64,   Kind::kBool,
    Kind::kComplex64, Kind::kComplex128, Kind::kDuration, Kind::kTimePoint};

// "float64", "uint16", ... as listed at the top of this header.
MAV_PROTOBUF_EXPORT std::string_view KindName(Kind kind);
// The kind whose KindName is `name`; nothing for any other text.
MAV_PROTOBUF_EXPORT std::optional<Kind> ParseKind(std::string_view name);

// What a KVariant holds.
enum class Form : uint8_t { kEmpty, kScalar, kArray };

MAV_PROTOBUF_EXPORT Form FormOf(const KVariant& value);
// The element kind, or nothing when no member is set.
MAV_PROTOBUF_EXPORT std::optional<Kind> KindOf(const KVariant& value);
MAV_PROTOBUF_EXPORT std::optional<Kind> KindOf(const ScalarDataUnion& scalar);
MAV_PROTOBUF_EXPORT std::optional<Kind> KindOf(const ArrayDataUnion& array);

// ---------------------------------------------------------------------------
// Errors

class MAV_PROTOBUF_EXPORT ValueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~ValueError() override;
};

// ---------------------------------------------------------------------------
// Shapes and orders

enum class Order : char { kC = 'C', kF = 'F' };

// The extents of an array: up to kInlineRank held inline (no allocation),
// more on the heap, so that any array the wire holds has its shape.
class MAV_PROTOBUF_EXPORT Shape {
 public:
  static constexpr size_t kInlineRank = 32;

  Shape() = default;
  Shape(std::initializer_list<uint32_t> extents) { Assign(extents.begin(), extents.size()); }
  Shape(const uint32_t* extents, size_t rank) { Assign(extents, rank); }
  explicit Shape(const std::vector<uint32_t>& extents) { Assign(extents.data(), extents.size()); }
  explicit Shape(const protobuf::RepeatedField<uint32_t>& extents) {
    Assign(extents.data(), static_cast<size_t>(extents.size()));
  }
#ifdef MAV_PROTOBUF_HAS_SPAN
  explicit Shape(std::span<const uint32_t> extents) { Assign(extents.data(), extents.size()); }
#endif

  size_t rank() const { return rank_; }
  size_t size() const { return rank_; }
  bool empty() const { return rank_ == 0; }
  uint32_t operator[](size_t axis) const { return data()[axis]; }
  const uint32_t* data() const { return rank_ <= kInlineRank ? extents_.data() : spilled_.data(); }
  const uint32_t* begin() const { return data(); }
  const uint32_t* end() const { return data() + rank_; }
  std::vector<uint32_t> ToVector() const { return {begin(), end()}; }

  // The product of the extents (1 for rank 0); throws when it exceeds 64 bits.
  uint64_t ElementCount() const;
  // "512x512"; "()" for rank 0.
  std::string ToString() const;

  friend bool operator==(const Shape& a, const Shape& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }
  friend bool operator!=(const Shape& a, const Shape& b) { return !(a == b); }

 private:
  void Assign(const uint32_t* extents, size_t rank);

  std::array<uint32_t, kInlineRank> extents_{};
  std::vector<uint32_t> spilled_;  // the extents when there are more than kInlineRank
  size_t rank_ = 0;
};

// The letter stored in dataorder.
constexpr char OrderLetter(Order order) { return static_cast<char>(order); }
// "C" or "F" as an order; nothing for any other text.
MAV_PROTOBUF_EXPORT std::optional<Order> ParseOrder(std::string_view letter);

// The shape of a value: its dimensions for an array (its element count when
// it has none), rank 0 for a scalar or nothing. Does not check the count.
MAV_PROTOBUF_EXPORT Shape ShapeOf(const KVariant& value);
// The number of elements an array's storage holds (complex: pairs).
MAV_PROTOBUF_EXPORT size_t StoredElementCount(const ArrayDataUnion& array);
// Whether an array's shape accounts for exactly its stored elements
// (true for scalars and empty values).
MAV_PROTOBUF_EXPORT bool ShapeMatches(const KVariant& value);

// ---------------------------------------------------------------------------
// Read-only results

// Elements, shape and order of an array. The data either points into the
// message (ViewArray), which must outlive the view and stay unchanged, or
// into the caller's buffer (CopyArray).
template <typename T>
class ArrayView {
 public:
  ArrayView() = default;
  ArrayView(const T* data, size_t size, const Shape& shape, Order order)
      : data_(data), size_(size), shape_(shape), order_(order) {}

  const T* data() const { return data_; }
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + size_; }
  const T& operator[](size_t index) const { return data_[index]; }
  const Shape& shape() const { return shape_; }
  Order order() const { return order_; }
#ifdef MAV_PROTOBUF_HAS_SPAN
  std::span<const T> span() const { return {data_, size_}; }
#endif

 private:
  const T* data_ = nullptr;
  size_t size_ = 0;
  Shape shape_;
  Order order_ = Order::kC;
};

// An array copied out of a message.
template <typename T>
struct Array {
  std::vector<T> values;
  Shape shape;
  Order order = Order::kC;
};

// ---------------------------------------------------------------------------
// Internals the templates below need

namespace detail {

// Every refusal is raised by one of these, so the wording is written once.
// An empty `path` names no path.
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowKindMismatch(std::string_view path, Kind expected,
                                                        Form expected_form, const KVariant& found);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowKindMismatch(std::string_view path, Kind expected,
                                                        Form expected_form, std::optional<Kind> found,
                                                        Form found_form);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowShapeMismatch(std::string_view path, const Shape& dimensions,
                                                         size_t stored, Kind kind);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowUnknownOrder(std::string_view path, std::string_view letter);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowOutOfRange(std::string_view path, Kind kind,
                                                      long double value, std::optional<size_t> index);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowBadFraction(std::string_view path, uint64_t fraction,
                                                       uint64_t per_second);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowTimeOutOfRange(std::string_view path, int64_t seconds);
[[noreturn]] MAV_PROTOBUF_EXPORT void ThrowBufferTooSmall(std::string_view path, size_t needed,
                                                          size_t capacity);

// The checked ways in: each throws ValueError with `path` in its message.
MAV_PROTOBUF_EXPORT const KVariant& RequireValue(const PropertyNode& node, std::string_view path);
MAV_PROTOBUF_EXPORT const ScalarDataUnion& RequireScalar(const KVariant& value, Kind kind,
                                                         std::string_view path);
// The array, after checking its kind, order and that its shape matches its
// stored element count; `shape` and `order` receive both.
MAV_PROTOBUF_EXPORT const ArrayDataUnion& RequireArray(const KVariant& value, Kind kind,
                                                       std::string_view path, Shape* shape,
                                                       Order* order);
// Refuses a shape of rank 0 or one whose element count is not `count`; also
// a count the message's storage cannot index.
MAV_PROTOBUF_EXPORT void CheckArrayCount(const Shape& shape, size_t count, size_t stored_per_element);
// Writes dimensions and dataorder.
MAV_PROTOBUF_EXPORT void WriteShape(ArrayDataUnion& array, const Shape& shape, Order order);

template <typename T>
using Plain = std::remove_cv_t<std::remove_reference_t<T>>;

// How an array of a kind is stored.
enum class Storage { kPacked, kWidened, kBytes, kComplex, kText, kChrono };

template <typename T, typename = void>
struct Traits;  // no kind for T: the call does not compile

// Numbers: scalars kept as they are or widened to 32 bits; arrays in a
// packed field of the same type (kPacked) or a wider one (kWidened), or in a
// byte string (kBytes).
#define MAV_VALUES_NUMBER_KIND(Type, StoredType, kind_, storage_, stem)                       \
  template <>                                                                                 \
  struct Traits<Type> {                                                                       \
    static constexpr Kind kind = Kind::kind_;                                                 \
    static constexpr Storage storage = Storage::storage_;                                     \
    using Stored = StoredType;                                                                \
    static Stored Scalar(const ScalarDataUnion& s) { return s.stem##_content(); }             \
    static void SetScalar(ScalarDataUnion& s, Type v) { s.set_##stem##_content(v); }          \
    static const auto& Values(const ArrayDataUnion& a) { return a.stem##_content().stem##_content(); } \
    static auto* MutableValues(ArrayDataUnion& a) {                                           \
      return a.mutable_##stem##_content()->mutable_##stem##_content();                        \
    }                                                                                         \
  };
MAV_VALUES_NUMBER_KIND(float, float, kFloat32, kPacked, float)
MAV_VALUES_NUMBER_KIND(double, double, kFloat64, kPacked, double)
MAV_VALUES_NUMBER_KIND(int8_t, int32_t, kInt8, kBytes, int8)
MAV_VALUES_NUMBER_KIND(int16_t, int32_t, kInt16, kWidened, int16)
MAV_VALUES_NUMBER_KIND(int32_t, int32_t, kInt32, kPacked, int32)
MAV_VALUES_NUMBER_KIND(int64_t, int64_t, kInt64, kPacked, int64)
MAV_VALUES_NUMBER_KIND(uint8_t, uint32_t, kUInt8, kBytes, unsignedint8)
MAV_VALUES_NUMBER_KIND(uint16_t, uint32_t, kUInt16, kWidened, unsignedint16)
MAV_VALUES_NUMBER_KIND(uint32_t, uint32_t, kUInt32, kPacked, unsignedint32)
MAV_VALUES_NUMBER_KIND(uint64_t, uint64_t, kUInt64, kPacked, unsignedint64)
MAV_VALUES_NUMBER_KIND(bool, bool, kBool, kPacked, bool)
#undef MAV_VALUES_NUMBER_KIND

// Complex numbers: a two-field message as a scalar, interleaved parts in an
// array of the part type.
#define MAV_VALUES_COMPLEX_KIND(Part, kind_, stem, part_stem)                                \
  template <>                                                                                \
  struct Traits<std::complex<Part>> {                                                        \
    static constexpr Kind kind = Kind::kind_;                                                \
    static constexpr Storage storage = Storage::kComplex;                                    \
    static_assert(sizeof(std::complex<Part>) == 2 * sizeof(Part) &&                          \
                      alignof(std::complex<Part>) == alignof(Part),                          \
                  "std::complex must be laid out as two parts");                             \
    static std::complex<Part> Scalar(const ScalarDataUnion& s) {                             \
      return {s.stem##_content().re_content(), s.stem##_content().im_content()};             \
    }                                                                                        \
    static void SetScalar(ScalarDataUnion& s, std::complex<Part> v) {                        \
      s.mutable_##stem##_content()->set_re_content(v.real());                                \
      s.mutable_##stem##_content()->set_im_content(v.imag());                                \
    }                                                                                        \
    static const protobuf::RepeatedField<Part>& Values(const ArrayDataUnion& a) {            \
      return a.stem##_content().part_stem##_content();                                       \
    }                                                                                        \
    static protobuf::RepeatedField<Part>* MutableValues(ArrayDataUnion& a) {                 \
      return a.mutable_##stem##_content()->mutable_##part_stem##_content();                  \
    }                                                                                        \
  };
MAV_VALUES_COMPLEX_KIND(float, kComplex64, complexfloat, float)
MAV_VALUES_COMPLEX_KIND(double, kComplex128, complexdouble, double)
#undef MAV_VALUES_COMPLEX_KIND

// Text: std::string and std::string_view both ways, C strings for setting.
struct TextTraits {
  static constexpr Kind kind = Kind::kString;
  static constexpr Storage storage = Storage::kText;
  static std::string_view Scalar(const ScalarDataUnion& s) { return s.string_content(); }
  static void SetScalar(ScalarDataUnion& s, std::string_view v) {
    s.set_string_content(v.data(), v.size());
  }
  static const protobuf::RepeatedPtrField<std::string>& Values(const ArrayDataUnion& a) {
    return a.string_content().string_content();
  }
  static protobuf::RepeatedPtrField<std::string>* MutableValues(ArrayDataUnion& a) {
    return a.mutable_string_content()->mutable_string_content();
  }
};
template <>
struct Traits<std::string> : TextTraits {};
template <>
struct Traits<std::string_view> : TextTraits {};
template <>
struct Traits<const char*> : TextTraits {};
template <>
struct Traits<char*> : TextTraits {};

// Durations and time points: ChronoData, alone or in an ArrayChronoData.
template <Kind kind_, const ChronoData& (ScalarDataUnion::*scalar)() const,
          ChronoData* (ScalarDataUnion::*mutable_scalar)(),
          const ArrayChronoData& (ArrayDataUnion::*array)() const,
          ArrayChronoData* (ArrayDataUnion::*mutable_array)()>
struct ChronoTraits {
  static constexpr Kind kind = kind_;
  static constexpr Storage storage = Storage::kChrono;
  static const ChronoData& Scalar(const ScalarDataUnion& s) { return (s.*scalar)(); }
  static ChronoData* MutableScalar(ScalarDataUnion& s) { return (s.*mutable_scalar)(); }
  static const protobuf::RepeatedPtrField<ChronoData>& Values(const ArrayDataUnion& a) {
    return (a.*array)().chrono_content();
  }
  static protobuf::RepeatedPtrField<ChronoData>* MutableValues(ArrayDataUnion& a) {
    return (a.*mutable_array)()->mutable_chrono_content();
  }
};
template <typename Rep, typename Period>
struct Traits<std::chrono::duration<Rep, Period>>
    : ChronoTraits<Kind::kDuration, &ScalarDataUnion::duration_content,
                   &ScalarDataUnion::mutable_duration_content, &ArrayDataUnion::duration_content,
                   &ArrayDataUnion::mutable_duration_content> {};
template <typename Clock, typename Duration>
struct Traits<std::chrono::time_point<Clock, Duration>>
    : ChronoTraits<Kind::kTimePoint, &ScalarDataUnion::timepoint_content,
                   &ScalarDataUnion::mutable_timepoint_content, &ArrayDataUnion::timepoint_content,
                   &ArrayDataUnion::mutable_timepoint_content> {};

// String literals and char arrays decay to const char*, never to int8.
template <typename T>
using ValueType = std::decay_t<Plain<T>>;

template <typename T, typename = void>
struct IsValue : std::false_type {};
template <typename T>
struct IsValue<T, std::void_t<decltype(Traits<ValueType<T>>::kind)>> : std::true_type {};

template <typename T>
struct IsChrono : std::false_type {};
template <typename Rep, typename Period>
struct IsChrono<std::chrono::duration<Rep, Period>> : std::true_type {};
template <typename Clock, typename Duration>
struct IsChrono<std::chrono::time_point<Clock, Duration>> : std::true_type {};

template <typename T>
struct IsTimePoint : std::false_type {};
template <typename Clock, typename Duration>
struct IsTimePoint<std::chrono::time_point<Clock, Duration>> : std::true_type {};

template <typename Fraction>
constexpr uint64_t FractionsPerSecond() {
  static_assert(Fraction::num == 1 && Fraction::den >= 1,
                "a fraction unit is 1/N of a second, such as std::nano");
  return static_cast<uint64_t>(Fraction::den);
}

template <typename Fraction, typename Rep, typename Period>
void WriteChrono(std::chrono::duration<Rep, Period> value, ChronoData& out) {
  using std::chrono::seconds;
  constexpr uint64_t kPerSecond = FractionsPerSecond<Fraction>();
  if constexpr (std::is_integral_v<Rep> && Period::num == 1 && Period::den > 1) {
    // Seconds and the ticks past them straight from the count: a step
    // through the whole seconds in the finer type overflows at its lowest
    // values.
    constexpr int64_t kTicksPerSecond = Period::den;
    int64_t whole = static_cast<int64_t>(value.count()) / kTicksPerSecond;
    int64_t rest = static_cast<int64_t>(value.count()) % kTicksPerSecond;
    if (rest < 0) {
      rest += kTicksPerSecond;
      whole -= 1;
    }
    out.set_seconds_content(whole);
    out.set_fractional_content(static_cast<uint64_t>(
        static_cast<unsigned __int128>(rest) * kPerSecond / kTicksPerSecond));
    return;
  }
  seconds whole = std::chrono::floor<seconds>(value);
  uint64_t fraction = static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::duration<int64_t, Fraction>>(value - whole).count());
  // A floating-point remainder can round up to a whole second.
  if (fraction >= kPerSecond) {
    whole += seconds(1);
    fraction -= kPerSecond;
  }
  out.set_seconds_content(whole.count());
  out.set_fractional_content(fraction);
}

template <typename Duration, typename Fraction>
Duration ReadDuration(const ChronoData& in, std::string_view path) {
  using std::chrono::seconds;
  constexpr uint64_t kPerSecond = FractionsPerSecond<Fraction>();
  const int64_t whole = in.seconds_content();
  const uint64_t fraction = in.fractional_content();
  if (fraction >= kPerSecond) ThrowBadFraction(path, fraction, kPerSecond);
  if constexpr (std::is_integral_v<typename Duration::rep>) {
    // The seconds and the fraction together, exactly, in the target's ticks
    // (floored); then the range check, which the ends of the type pass.
    using Period = typename Duration::period;
    constexpr int64_t kLowest = std::chrono::floor<seconds>(Duration::min()).count();
    constexpr int64_t kHighest = std::chrono::floor<seconds>(Duration::max()).count();
    if (whole < kLowest || whole > kHighest) ThrowTimeOutOfRange(path, whole);
    const __int128 scaled =
        (static_cast<__int128>(whole) * kPerSecond + static_cast<__int128>(fraction)) * Period::den;
    const __int128 unit = static_cast<__int128>(kPerSecond) * Period::num;
    __int128 ticks = scaled / unit;
    if (scaled % unit < 0) ticks -= 1;
    if (ticks < static_cast<__int128>(Duration::min().count()) ||
        ticks > static_cast<__int128>(Duration::max().count())) {
      ThrowTimeOutOfRange(path, whole);
    }
    return Duration(static_cast<typename Duration::rep>(ticks));
  }
  return std::chrono::duration_cast<Duration>(seconds(whole)) +
         std::chrono::floor<Duration>(std::chrono::duration<int64_t, Fraction>(
             static_cast<int64_t>(fraction)));
}

template <typename T, typename Fraction>
T ReadChrono(const ChronoData& in, std::string_view path) {
  if constexpr (IsTimePoint<T>::value) {
    return T(ReadDuration<typename T::duration, Fraction>(in, path));
  } else {
    return ReadDuration<T, Fraction>(in, path);
  }
}

template <typename Fraction, typename T>
void WriteChronoValue(const T& value, ChronoData& out) {
  if constexpr (IsTimePoint<T>::value) {
    WriteChrono<Fraction>(value.time_since_epoch(), out);
  } else {
    WriteChrono<Fraction>(value, out);
  }
}

template <typename T, typename Stored>
bool InRange(Stored value) {
  return value >= static_cast<Stored>(std::numeric_limits<T>::min()) &&
         value <= static_cast<Stored>(std::numeric_limits<T>::max());
}

template <typename T, typename Stored>
T Narrow(Stored value, std::string_view path, std::optional<size_t> index) {
  if constexpr (!std::is_same_v<T, Stored>) {
    if (!InRange<T>(value)) {
      ThrowOutOfRange(path, Traits<T>::kind, static_cast<long double>(value), index);
    }
  }
  return static_cast<T>(value);
}

// Converts widened storage into `out` after a first pass has found every
// element in range, so a refusal leaves `out` untouched.
template <typename T, typename Stored>
void CopyNarrowed(const Stored* in, size_t count, T* out, std::string_view path) {
  bool all_in_range = true;
  for (size_t i = 0; i < count; ++i) all_in_range &= InRange<T>(in[i]);
  if (!all_in_range) {
    for (size_t i = 0; i < count; ++i) Narrow<T>(in[i], path, i);
  }
  for (size_t i = 0; i < count; ++i) out[i] = static_cast<T>(in[i]);
}

inline KVariant& MutableVariant(KVariant& value) { return value; }
inline KVariant& MutableVariant(PropertyNode& node) { return *node.mutable_value_type(); }
inline const KVariant& Variant(const KVariant& value) { return value; }
inline const KVariant& Variant(const PropertyNode& node) { return RequireValue(node, {}); }

template <typename Target>
using IfTarget = std::enable_if_t<std::is_same_v<Target, KVariant> || std::is_same_v<Target, PropertyNode>>;
template <typename Source>
using IfSource = IfTarget<Source>;

// A one-dimensional shape; a count beyond one axis's reach makes a shape
// that CheckArrayCount refuses.
inline Shape OneAxis(size_t count) {
  return Shape{static_cast<uint32_t>(std::min<size_t>(count, UINT32_MAX))};
}

template <typename T>
using ElementOf = Plain<decltype(*std::data(std::declval<const T&>()))>;

// Empties `field` and hands out `count` elements to overwrite; the storage
// grows at most once, and old elements are not copied when it does.
template <typename Element>
Element* Overwrite(protobuf::RepeatedField<Element>* field, int count) {
  field->Clear();
  field->Reserve(count);
  return field->AddNAlreadyReserved(count);
}

// The caller has checked the count (CheckArrayCount).
template <typename Fraction, typename T>
void WriteArray(KVariant& value, const T* data, size_t count, const Shape& shape, Order order) {
  using Tr = Traits<T>;
  ArrayDataUnion& array = *value.mutable_array_data();
  const int n = static_cast<int>(count);
  if constexpr (Tr::storage == Storage::kPacked || Tr::storage == Storage::kComplex) {
    auto* out = Overwrite(Tr::MutableValues(array), Tr::storage == Storage::kComplex ? 2 * n : n);
    if (count != 0) std::memcpy(out, data, count * sizeof(T));
  } else if constexpr (Tr::storage == Storage::kWidened) {
    auto* out = Overwrite(Tr::MutableValues(array), n);
    for (size_t i = 0; i < count; ++i) out[i] = data[i];
  } else if constexpr (Tr::storage == Storage::kBytes) {
    Tr::MutableValues(array)->assign(reinterpret_cast<const char*>(data), count);
  } else {
    auto* field = Tr::MutableValues(array);
    field->Clear();
    field->Reserve(n);
    for (size_t i = 0; i < count; ++i) {
      if constexpr (Tr::storage == Storage::kText) {
        const std::string_view text(data[i]);
        field->Add()->assign(text.data(), text.size());
      } else {
        WriteChronoValue<Fraction>(data[i], *field->Add());
      }
    }
  }
  WriteShape(array, shape, order);
}

// Points at the stored elements of a kind whose stored form is T.
template <typename T>
const T* StoredData(const ArrayDataUnion& array) {
  return reinterpret_cast<const T*>(Traits<T>::Values(array).data());
}

template <typename T>
constexpr bool kViewable = Traits<T>::storage == Storage::kPacked ||
                           Traits<T>::storage == Storage::kBytes ||
                           Traits<T>::storage == Storage::kComplex;

}  // namespace detail

// The kind a C++ type stands for: KindFor<uint16_t> is Kind::kUInt16.
template <typename T>
inline constexpr Kind KindFor = detail::Traits<detail::ValueType<T>>::kind;

// The C++ types KindTag gives the time kinds.
using SystemTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::nanoseconds>;

// Calls f(KindTag<K>{}) for the runtime kind K; KindTag<K>::type is the C++
// type that reads and writes K (std::string for str, std::chrono::nanoseconds
// for timedelta64, a nanosecond system_clock time point for datetime64).
template <Kind K>
struct KindTag;
#define MAV_VALUES_KIND_TAG(kind_, Type)     \
  template <>                                \
  struct KindTag<Kind::kind_> {              \
    static constexpr Kind kind = Kind::kind_; \
    using type = Type;                       \
  };
MAV_VALUES_KIND_TAG(kString, std::string)
MAV_VALUES_KIND_TAG(kFloat32, float)
MAV_VALUES_KIND_TAG(kFloat64, double)
MAV_VALUES_KIND_TAG(kInt8, int8_t)
MAV_VALUES_KIND_TAG(kInt16, int16_t)
MAV_VALUES_KIND_TAG(kInt32, int32_t)
MAV_VALUES_KIND_TAG(kInt64, int64_t)
MAV_VALUES_KIND_TAG(kUInt8, uint8_t)
MAV_VALUES_KIND_TAG(kUInt16, uint16_t)
MAV_VALUES_KIND_TAG(kUInt32, uint32_t)
MAV_VALUES_KIND_TAG(kUInt64, uint64_t)
MAV_VALUES_KIND_TAG(kBool, bool)
MAV_VALUES_KIND_TAG(kComplex64, std::complex<float>)
MAV_VALUES_KIND_TAG(kComplex128, std::complex<double>)
MAV_VALUES_KIND_TAG(kDuration, std::chrono::nanoseconds)
MAV_VALUES_KIND_TAG(kTimePoint, SystemTime)
#undef MAV_VALUES_KIND_TAG

template <typename F>
decltype(auto) VisitKind(Kind kind, F&& f) {
  switch (kind) {
    case Kind::kString: return f(KindTag<Kind::kString>{});
    case Kind::kFloat32: return f(KindTag<Kind::kFloat32>{});
    case Kind::kFloat64: return f(KindTag<Kind::kFloat64>{});
    case Kind::kInt8: return f(KindTag<Kind::kInt8>{});
    case Kind::kInt16: return f(KindTag<Kind::kInt16>{});
    case Kind::kInt32: return f(KindTag<Kind::kInt32>{});
    case Kind::kInt64: return f(KindTag<Kind::kInt64>{});
    case Kind::kUInt8: return f(KindTag<Kind::kUInt8>{});
    case Kind::kUInt16: return f(KindTag<Kind::kUInt16>{});
    case Kind::kUInt32: return f(KindTag<Kind::kUInt32>{});
    case Kind::kUInt64: return f(KindTag<Kind::kUInt64>{});
    case Kind::kBool: return f(KindTag<Kind::kBool>{});
    case Kind::kComplex64: return f(KindTag<Kind::kComplex64>{});
    case Kind::kComplex128: return f(KindTag<Kind::kComplex128>{});
    case Kind::kDuration: return f(KindTag<Kind::kDuration>{});
    case Kind::kTimePoint: break;
  }
  return f(KindTag<Kind::kTimePoint>{});
}

// ---------------------------------------------------------------------------
// Time

// Writes a duration or time point into `out` (seconds floored, fraction in
// Fraction units).
template <typename Fraction = std::nano, typename T>
void ToChronoData(const T& value, ChronoData* out) {
  static_assert(detail::IsChrono<T>::value, "a std::chrono duration or time_point");
  detail::WriteChronoValue<Fraction>(value, *out);
}

// Reads a duration or time point of type T; refuses a fraction of one second
// or more and a value T cannot hold.
template <typename T, typename Fraction = std::nano>
T FromChronoData(const ChronoData& in) {
  static_assert(detail::IsChrono<T>::value, "a std::chrono duration or time_point");
  return detail::ReadChrono<T, Fraction>(in, {});
}

// ---------------------------------------------------------------------------
// Scalars

// Makes `target` (a KVariant, or a PropertyNode that becomes a value) hold the
// scalar `value`, of the kind its C++ type stands for. wellknowntype is left
// as it is.
template <typename Fraction = std::nano, typename Target, typename T,
          typename = detail::IfTarget<Target>>
void SetValue(Target& target, const T& value) {
  using V = detail::ValueType<T>;
  using Tr = detail::Traits<V>;
  ScalarDataUnion& scalar = *detail::MutableVariant(target).mutable_scalar_data();
  if constexpr (Tr::storage == detail::Storage::kChrono) {
    detail::WriteChronoValue<Fraction>(value, *Tr::MutableScalar(scalar));
  } else {
    Tr::SetScalar(scalar, value);
  }
}

namespace detail {
template <typename T, typename Fraction>
T ReadScalar(const KVariant& value, std::string_view path) {
  static_assert(!std::is_pointer_v<T>, "read text as std::string or std::string_view");
  using Tr = Traits<T>;
  const ScalarDataUnion& scalar = RequireScalar(value, Tr::kind, path);
  if constexpr (Tr::storage == Storage::kChrono) {
    return ReadChrono<T, Fraction>(Tr::Scalar(scalar), path);
  } else if constexpr (Tr::storage == Storage::kText || Tr::storage == Storage::kComplex) {
    return T(Tr::Scalar(scalar));
  } else {
    return Narrow<T>(Tr::Scalar(scalar), path, std::nullopt);
  }
}
}  // namespace detail

// The scalar of kind KindFor<T>; refuses any other kind, an array, and a
// narrow value that does not fit T. std::string_view points into the message.
template <typename T, typename Fraction = std::nano, typename Source,
          typename = detail::IfSource<Source>>
T GetValue(const Source& source) {
  return detail::ReadScalar<T, Fraction>(detail::Variant(source), {});
}
template <typename T, typename Fraction = std::nano>
T GetValue(const PropertyNode& root, std::string_view path) {
  return detail::ReadScalar<T, Fraction>(detail::RequireValue(root, path), path);
}

// ---------------------------------------------------------------------------
// Arrays

// Makes `target` hold an array of `count` elements of the kind T stands for,
// with `shape` and `order`. Refused, with nothing written, when the count is
// not the product of the shape or the order is neither kC nor kF.
template <typename Fraction = std::nano, typename Target, typename T,
          typename = detail::IfTarget<Target>>
void SetArray(Target& target, const T* data, size_t count, const Shape& shape,
              Order order = Order::kC) {
  using V = std::remove_cv_t<T>;
  if (order != Order::kC && order != Order::kF) {
    // Every read would refuse the letter: refuse it here, before writing.
    throw ValueError(std::string("unknown data order '") + OrderLetter(order) +
                     "' (expected 'C' or 'F')");
  }
  detail::CheckArrayCount(shape, count, detail::Traits<V>::storage == detail::Storage::kComplex ? 2 : 1);
  detail::WriteArray<Fraction, V>(detail::MutableVariant(target), data, count, shape, order);
}
// From any contiguous container (std::vector, std::array, std::span, ...).
template <typename Fraction = std::nano, typename Target, typename Container,
          typename = detail::IfTarget<Target>,
          typename = detail::ElementOf<Container>>
void SetArray(Target& target, const Container& values, const Shape& shape, Order order = Order::kC) {
  SetArray<Fraction>(target, std::data(values), std::size(values), shape, order);
}
// One-dimensional.
template <typename Fraction = std::nano, typename Target, typename Container,
          typename = detail::IfTarget<Target>,
          typename = detail::ElementOf<Container>>
void SetArray(Target& target, const Container& values) {
  SetArray<Fraction>(target, std::data(values), std::size(values), detail::OneAxis(std::size(values)));
}
// A braced list takes its kind from its elements: {1, 0, 1} is an int32
// array (a bool never comes from an integer), {true, false} a bool array.
template <typename Fraction = std::nano, typename Target, typename T,
          typename = detail::IfTarget<Target>>
void SetArray(Target& target, std::initializer_list<T> values, const Shape& shape,
              Order order = Order::kC) {
  SetArray<Fraction>(target, values.begin(), values.size(), shape, order);
}
template <typename Fraction = std::nano, typename Target, typename T,
          typename = detail::IfTarget<Target>>
void SetArray(Target& target, std::initializer_list<T> values) {
  SetArray<Fraction>(target, values.begin(), values.size(), detail::OneAxis(values.size()));
}
// std::vector<bool> keeps no contiguous bools.
template <typename Target, typename = detail::IfTarget<Target>>
void SetArray(Target& target, const std::vector<bool>& values, const Shape& shape,
              Order order = Order::kC) {
  const std::unique_ptr<bool[]> copy(new bool[values.size()]);
  std::copy(values.begin(), values.end(), copy.get());
  SetArray(target, copy.get(), values.size(), shape, order);
}
template <typename Target, typename = detail::IfTarget<Target>>
void SetArray(Target& target, const std::vector<bool>& values) {
  SetArray(target, values, detail::OneAxis(values.size()));
}

namespace detail {
template <typename T>
ArrayView<T> ViewStored(const KVariant& value, std::string_view path) {
  static_assert(kViewable<T>,
                "int16/uint16, text and time arrays are not stored as this type: use ReadArray "
                "or CopyArray");
  Shape shape;
  Order order;
  const ArrayDataUnion& array = RequireArray(value, Traits<T>::kind, path, &shape, &order);
  return ArrayView<T>(StoredData<T>(array), StoredElementCount(array), shape, order);
}

template <typename T>
ArrayView<T> CopyStored(const KVariant& value, T* out, size_t capacity, std::string_view path) {
  using Tr = Traits<T>;
  static_assert(Tr::storage != Storage::kText && Tr::storage != Storage::kChrono,
                "text and time arrays are read with ReadArray");
  Shape shape;
  Order order;
  const ArrayDataUnion& array = RequireArray(value, Tr::kind, path, &shape, &order);
  const size_t count = StoredElementCount(array);
  if (count > capacity) ThrowBufferTooSmall(path, count, capacity);
  if constexpr (Tr::storage == Storage::kWidened) {
    CopyNarrowed(Tr::Values(array).data(), count, out, path);
  } else if (count != 0) {
    std::memcpy(out, StoredData<T>(array), count * sizeof(T));
  }
  return ArrayView<T>(out, count, shape, order);
}

template <typename T, typename Fraction>
Array<T> ReadStored(const KVariant& value, std::string_view path) {
  using Tr = Traits<T>;
  Array<T> result;
  const ArrayDataUnion& array = RequireArray(value, Tr::kind, path, &result.shape, &result.order);
  if constexpr (Tr::storage == Storage::kText || Tr::storage == Storage::kChrono) {
    const auto& stored = Tr::Values(array);
    result.values.reserve(static_cast<size_t>(stored.size()));
    for (const auto& element : stored) {
      if constexpr (Tr::storage == Storage::kText) {
        result.values.emplace_back(element);
      } else {
        result.values.push_back(ReadChrono<T, Fraction>(element, path));
      }
    }
  } else if constexpr (Tr::storage == Storage::kWidened) {
    const auto& stored = Tr::Values(array);
    std::vector<T> values(static_cast<size_t>(stored.size()));
    CopyNarrowed(stored.data(), values.size(), values.data(), path);
    result.values = std::move(values);
  } else {
    const T* data = StoredData<T>(array);
    result.values.assign(data, data + StoredElementCount(array));
  }
  return result;
}
}  // namespace detail

// A zero-copy view of an array whose stored form is T: float, double,
// int32_t, int64_t, uint32_t, uint64_t, bool, int8_t, uint8_t,
// std::complex<float>, std::complex<double>. Refuses another kind, a
// scalar, an unknown order and a shape that does not match the elements.
template <typename T, typename Source, typename = detail::IfSource<Source>>
ArrayView<T> ViewArray(const Source& source) {
  return detail::ViewStored<T>(detail::Variant(source), {});
}
template <typename T>
ArrayView<T> ViewArray(const PropertyNode& root, std::string_view path) {
  return detail::ViewStored<T>(detail::RequireValue(root, path), path);
}

// Copies a numeric, bool or complex array into the caller's buffer of
// `capacity` elements (16-bit kinds range-checked) and returns the copy's
// view. Refused when the buffer is too small; a refusal writes nothing.
template <typename T, typename Source, typename = detail::IfSource<Source>>
ArrayView<T> CopyArray(const Source& source, T* out, size_t capacity) {
  return detail::CopyStored<T>(detail::Variant(source), out, capacity, {});
}
template <typename T>
ArrayView<T> CopyArray(const PropertyNode& root, std::string_view path, T* out, size_t capacity) {
  return detail::CopyStored<T>(detail::RequireValue(root, path), out, capacity, path);
}

// Copies an array of any kind: text as std::string or std::string_view (the
// views point into the message), durations and time points as std::chrono
// values of T.
template <typename T, typename Fraction = std::nano, typename Source,
          typename = detail::IfSource<Source>>
Array<T> ReadArray(const Source& source) {
  return detail::ReadStored<T, Fraction>(detail::Variant(source), {});
}
template <typename T, typename Fraction = std::nano>
Array<T> ReadArray(const PropertyNode& root, std::string_view path) {
  return detail::ReadStored<T, Fraction>(detail::RequireValue(root, path), path);
}

// ---------------------------------------------------------------------------
// Trees
//
// A path is the keys and list indices from a node down, joined by '/':
// "calibration/gain", "roi/2". In a key, '~' is written "~0" and '/' "~1".
// A list index is canonical decimal: "01" names no item.
// The empty path is the node itself (so an empty key directly under the
// node has no path of its own; deeper, "a//b" and "a/" name empty keys).
//
// Building nests as deep as memory allows, and freeing never recurses; but a
// parse reads back at most 49 levels of lists or 33 of maps (the runtime's
// recursion budget of 100 messages), and sizing, writing and copying recurse
// once per level: the README gives the depths an 8 MiB stack holds.

// The child under `key`, created empty if missing. An empty node becomes a
// map; a node holding a list or a value, and a key that is not valid UTF-8,
// are refused. The child stays even when a later write to it is refused:
// SetArray(Child(root, "frame"), ...) that fails leaves "frame" as an empty
// node (SetLeaf, for scalars, creates nothing when it refuses).
MAV_PROTOBUF_EXPORT PropertyNode& Child(PropertyNode& node, std::string_view key);
// The list item at `index`; index == size appends. An empty node becomes a
// list; a node holding a map or a value, and an index past the end, are
// refused.
MAV_PROTOBUF_EXPORT PropertyNode& Child(PropertyNode& node, size_t index);
// Appends an empty item to a list (an empty node becomes one).
MAV_PROTOBUF_EXPORT PropertyNode& Append(PropertyNode& node);

// Sets the scalar leaf `parent[key]` in one call and returns it.
template <typename Fraction = std::nano, typename T>
PropertyNode& SetLeaf(PropertyNode& parent, std::string_view key, const T& value) {
  PropertyNode& child = Child(parent, key);
  SetValue<Fraction>(child, value);
  return child;
}

// The node at `path`, or nullptr when any step is missing.
MAV_PROTOBUF_EXPORT const PropertyNode* Find(const PropertyNode& root, std::string_view path);
MAV_PROTOBUF_EXPORT PropertyNode* Find(PropertyNode& root, std::string_view path);
// The node at `path`; throws ValueError naming the first missing step.
MAV_PROTOBUF_EXPORT const PropertyNode& At(const PropertyNode& root, std::string_view path);
MAV_PROTOBUF_EXPORT PropertyNode& At(PropertyNode& root, std::string_view path);

// One path step for `key`, escaped as above.
MAV_PROTOBUF_EXPORT std::string PathSegment(std::string_view key);

struct MapEntryRef {
  std::string_view key;
  const PropertyNode* node;
};
// A map's entries sorted by key (bytewise), for stable display. Refuses a
// node that is not a map.
MAV_PROTOBUF_EXPORT std::vector<MapEntryRef> SortedEntries(const PropertyNode& node);
MAV_PROTOBUF_EXPORT std::vector<MapEntryRef> SortedEntries(const PropertyMap& map);
// A list's items in order. Refuses a node that is not a list.
MAV_PROTOBUF_EXPORT const protobuf::RepeatedPtrField<PropertyNode>& ListItems(const PropertyNode& node);

// One leaf met by VisitLeaves: a value node, or an empty node (form kEmpty).
struct Leaf {
  std::string_view path;
  const PropertyNode& node;
  const KVariant& value;
  Form form;
  std::optional<Kind> kind;
  Shape shape;
};
// Walks every leaf under `root` depth-first, map entries in key order, list
// items in index order. Empty maps and lists have no leaves.
MAV_PROTOBUF_EXPORT void VisitLeaves(const PropertyNode& root,
                                     const std::function<void(const Leaf&)>& visit);

// ---------------------------------------------------------------------------
// Equality

MAV_PROTOBUF_EXPORT bool Equal(const KVariant& a, const KVariant& b);
MAV_PROTOBUF_EXPORT bool Equal(const PropertyNode& a, const PropertyNode& b);

}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_MAV_VALUES_H_
