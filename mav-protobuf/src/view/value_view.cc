// Values read in place.
#include <algorithm>
#include <climits>
#include <limits>

#include "../values/values_internal.h"
#include "../varint.h"
#include "scan.h"

namespace Tarnwick {
namespace MavProtobuf {

using view_internal::Canonical;
using view_internal::Field;
using view_internal::kFixed32;
using view_internal::kFixed64;
using view_internal::kLength;
using view_internal::kVarint;
using view_internal::Nested;
using view_internal::ReadField;
using view_internal::Span;
using view_internal::Tag;
using view_internal::ThrowMalformed;

namespace {

// ArrayDataUnion numbers its two time members after dataorder and
// dimensions.
constexpr uint32_t kFirstArrayTimeField = ArrayDataUnion::kDurationContentFieldNumber;
constexpr uint32_t kTimeShift = kFirstArrayTimeField - static_cast<uint32_t>(Kind::kDuration);

std::optional<Kind> ArrayKindOf(uint32_t number) {
  if (number >= 1 && number <= static_cast<uint32_t>(Kind::kComplex128)) return static_cast<Kind>(number);
  if (number == kFirstArrayTimeField || number == kFirstArrayTimeField + 1) {
    return static_cast<Kind>(number - kTimeShift);
  }
  return std::nullopt;
}

// How an array kind's elements lie in its content message.
enum class Layout { kFixed32, kFixed64, kVarint, kBytes, kText, kChrono };

Layout LayoutOf(Kind kind) {
  switch (kind) {
    case Kind::kFloat32:
    case Kind::kComplex64: return Layout::kFixed32;
    case Kind::kFloat64:
    case Kind::kComplex128: return Layout::kFixed64;
    case Kind::kInt8:
    case Kind::kUInt8: return Layout::kBytes;
    case Kind::kString: return Layout::kText;
    case Kind::kDuration:
    case Kind::kTimePoint: return Layout::kChrono;
    default: return Layout::kVarint;
  }
}

uint32_t ScalarWireType(Kind kind) {
  switch (kind) {
    case Kind::kFloat32: return kFixed32;
    case Kind::kFloat64: return kFixed64;
    case Kind::kString:
    case Kind::kComplex64:
    case Kind::kComplex128:
    case Kind::kDuration:
    case Kind::kTimePoint: return kLength;
    default: return kVarint;
  }
}

bool IsComplex(Kind kind) { return kind == Kind::kComplex64 || kind == Kind::kComplex128; }

// The wire type of one element given in a tag of its own.
uint32_t UnpackedWireType(Layout layout) {
  switch (layout) {
    case Layout::kFixed32: return kFixed32;
    case Layout::kFixed64: return kFixed64;
    default: return kVarint;
  }
}

// The two fields of ComplexFloat, ComplexDouble or ChronoData, numbered 1 and
// 2 with wire type `type`; the last of each wins, as in a parse. False when a
// field needs a parse.
bool ReadPair(const Span& message, uint32_t type, uint64_t* first, uint64_t* second) {
  *first = 0;
  *second = 0;
  for (const char* at = message.begin; at < message.end;) {
    Field field;
    at = ReadField(at, message.end, &field);
    if (at == nullptr) return false;
    if (field.tag == Tag(1, static_cast<view_internal::WireType>(type))) *first = field.value;
    if (field.tag == Tag(2, static_cast<view_internal::WireType>(type))) *second = field.value;
  }
  return true;
}

// The fields numbered 1 in `content`, one per string or time element.
template <typename Visit>
void ForEachElement(const Span& content, Visit visit) {
  for (const char* at = content.begin; at < content.end;) {
    Field field;
    at = ReadField(at, content.end, &field);
    if (field.tag == Tag(1, kLength)) visit(field.bytes);
  }
}

}  // namespace

namespace view_detail {

void ChronoFields(std::string_view element, int depth, ChronoData* out) {
  const Span span{element.data(), element.data() + element.size(), depth, nullptr};
  uint64_t seconds, fraction;
  if (depth > view_internal::kMaxDepth || !ReadPair(span, kVarint, &seconds, &fraction)) {
    // Loaded values have checked their elements; this is only reached for
    // bytes that changed under the view.
    ThrowMalformed("a time element that does not read");
  }
  out->set_seconds_content(static_cast<int64_t>(seconds));
  out->set_fractional_content(fraction);
}

}  // namespace view_detail

ValueView::ValueView(std::string_view bytes)
    : span_{bytes.data(), bytes.data() + bytes.size(), 0, nullptr} {
  Load();
}

ValueView::ValueView(Span span) : span_(std::move(span)) { Load(); }

void ValueView::Load() {
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (LoadPlain()) return;
    span_ = Canonical<KVariant>(span_);
  }
  ThrowMalformed("a value that does not read back");
}

// Reads the value's fields where the bytes hold each member once; false when
// the value needs a parse.
bool ValueView::LoadPlain() {
  form_ = Form::kEmpty;
  kind_.reset();
  wellknowntype_ = dataorder_ = dimensions_ = payload_ = {};
  scalar_ = view_detail::Scalar();
  count_ = 0;
  std::string_view member;
  uint32_t short_tag;
  if (view_internal::ReadShortField(span_.begin, span_.end, &short_tag, &member) &&
      (short_tag == Tag(1, kLength) || short_tag == Tag(2, kLength))) {
    form_ = short_tag == Tag(1, kLength) ? Form::kScalar : Form::kArray;
    return form_ == Form::kScalar ? LoadScalar(Nested(span_, member)) : LoadArray(Nested(span_, member));
  }
  int members = 0;
  for (const char* at = span_.begin; at < span_.end;) {
    Field field;
    at = ReadField(at, span_.end, &field);
    if (at == nullptr) return false;
    if (field.tag == Tag(1, kLength) || field.tag == Tag(2, kLength)) {
      form_ = field.number() == 1 ? Form::kScalar : Form::kArray;
      member = field.bytes;
      ++members;
    } else if (field.tag == Tag(3, kLength)) {
      wellknowntype_ = field.bytes;
    }
  }
  if (members > 1) return false;
  if (form_ == Form::kScalar) return LoadScalar(Nested(span_, member));
  if (form_ == Form::kArray) return LoadArray(Nested(span_, member));
  return true;
}

bool ValueView::LoadScalar(const Span& scalar) {
  int members = 0;
  for (const char* at = scalar.begin; at < scalar.end;) {
    Field field;
    at = ReadField(at, scalar.end, &field);
    if (at == nullptr) return false;
    const uint32_t number = field.number();
    if (number == 0 || number > static_cast<uint32_t>(Kind::kTimePoint)) continue;
    const Kind kind = static_cast<Kind>(number);
    // A member number with another wire type is an unknown field.
    if ((field.tag & 7) != ScalarWireType(kind)) continue;
    switch (kind) {
      case Kind::kString: scalar_.text = field.bytes; break;
      case Kind::kComplex64:
      case Kind::kComplex128:
      case Kind::kDuration:
      case Kind::kTimePoint: {
        const uint32_t type = kind == Kind::kComplex64    ? kFixed32
                              : kind == Kind::kComplex128 ? kFixed64
                                                          : kVarint;
        if (!ReadPair(Nested(scalar, field.bytes), type, &scalar_.bits, &scalar_.second_bits)) return false;
        break;
      }
      default: scalar_.bits = field.value; break;
    }
    scalar_.kind = kind;
    if (++members > 1) return false;
  }
  kind_ = scalar_.kind;
  return true;
}

bool ValueView::LoadArray(const Span& array) {
  std::string_view content;
  int members = 0;
  int dimension_runs = 0;
  for (const char* at = array.begin; at < array.end;) {
    Field field;
    at = ReadField(at, array.end, &field);
    if (at == nullptr) return false;
    const uint32_t number = field.number();
    if (number == ArrayDataUnion::kDataorderFieldNumber) {
      if ((field.tag & 7) == kLength) dataorder_ = field.bytes;
    } else if (number == ArrayDataUnion::kDimensionsFieldNumber) {
      if ((field.tag & 7) == kVarint) return false;  // one per tag: the parse appends them
      if ((field.tag & 7) == kLength) {
        dimensions_ = field.bytes;
        if (++dimension_runs > 1) return false;
      }
    } else if ((field.tag & 7) == kLength) {
      if (const std::optional<Kind> kind = ArrayKindOf(number)) {
        kind_ = kind;
        content = field.bytes;
        ++members;
      }
    }
  }
  if (members > 1) return false;
  if (!dimensions_.empty()) {
    // Each extent must read as the parse reads it.
    for (const char* at = dimensions_.data(); at < dimensions_.data() + dimensions_.size();) {
      uint64_t extent;
      at = view_internal::ReadVarint(at, dimensions_.data() + dimensions_.size(), &extent);
      if (at == nullptr) return false;
    }
  }
  if (!kind_) return true;
  content_ = Nested(array, content);
  return LoadContent();
}

// The array message of the kind: one packed run, one byte string, or one
// field per string or time element.
bool ValueView::LoadContent() {
  const Layout layout = LayoutOf(*kind_);
  int runs = 0;
  for (const char* at = content_.begin; at < content_.end;) {
    Field field;
    at = ReadField(at, content_.end, &field);
    if (at == nullptr) return false;
    if (field.number() != 1) continue;
    if ((field.tag & 7) == kLength) {
      if (layout == Layout::kText || layout == Layout::kChrono) {
        ++count_;
      } else {
        payload_ = field.bytes;
        // Packed runs append; byte strings replace.
        if (layout != Layout::kBytes && ++runs > 1) return false;
      }
    } else if (layout != Layout::kBytes && layout != Layout::kText && layout != Layout::kChrono &&
               (field.tag & 7) == UnpackedWireType(layout)) {
      return false;
    }
  }
  switch (layout) {
    case Layout::kFixed32:
    case Layout::kFixed64: {
      const size_t width = layout == Layout::kFixed32 ? 4 : 8;
      if (payload_.size() % width != 0) return false;
      count_ = payload_.size() / width;
      if (IsComplex(*kind_)) count_ /= 2;
      break;
    }
    case Layout::kVarint:
      if (!payload_.empty() && static_cast<uint8_t>(payload_.back()) >= 0x80) return false;
      count_ = static_cast<size_t>(varint::CountEnds(payload_.data(), payload_.data() + payload_.size()));
      break;
    case Layout::kBytes: count_ = payload_.size(); break;
    case Layout::kChrono:
      // Each element is a message one level further down.
      if (count_ != 0) Nested(content_, {});
      for (const char* at = content_.begin; at < content_.end;) {
        Field field;
        at = ReadField(at, content_.end, &field);
        uint64_t seconds, fraction;
        if (field.tag == Tag(1, kLength) &&
            !ReadPair(Nested(content_, field.bytes), kVarint, &seconds, &fraction)) {
          return false;
        }
      }
      break;
    case Layout::kText: break;
  }
  return true;
}

// ---------------------------------------------------------------------------
// Shapes and checks

namespace {

Shape DecodeDimensions(std::string_view run) {
  if (run.empty()) return Shape();
  uint32_t extents[Shape::kInlineRank];
  std::vector<uint32_t> spilled;
  size_t rank = 0;
  for (const char* at = run.data(); at < run.data() + run.size();) {
    uint64_t extent = 0;
    at = view_internal::ReadVarint(at, run.data() + run.size(), &extent);
    if (rank < Shape::kInlineRank) {
      extents[rank] = static_cast<uint32_t>(extent);
    } else {
      if (rank == Shape::kInlineRank) spilled.assign(extents, extents + rank);
      spilled.push_back(static_cast<uint32_t>(extent));
    }
    ++rank;
  }
  return rank <= Shape::kInlineRank ? Shape(extents, rank) : Shape(spilled);
}

}  // namespace

Shape ValueView::shape() const {
  if (form_ != Form::kArray) return Shape();
  if (dimensions_.empty()) return detail::OneAxis(count_);
  return DecodeDimensions(dimensions_);
}

namespace {

// As ShapeMatches: `dimensions` are the stored ones (none: one axis of the
// count), `half` whether a complex array's parts do not pair up.
bool Matches(const Shape& dimensions, size_t count, bool half) {
  if (half) return false;
  if (dimensions.empty()) return count <= UINT32_MAX;
  if (std::find(dimensions.begin(), dimensions.end(), 0u) != dimensions.end()) return count == 0;
  uint64_t product = 1;
  for (uint32_t extent : dimensions) {
    if (__builtin_mul_overflow(product, uint64_t{extent}, &product)) return false;
  }
  return product == count;
}

}  // namespace

bool ValueView::HasHalfElement() const {
  if (!kind_ || !IsComplex(*kind_)) return false;
  const size_t part = LayoutOf(*kind_) == Layout::kFixed32 ? 4 : 8;
  return (payload_.size() / part) % 2 != 0;
}

bool ValueView::shape_matches() const {
  if (form_ != Form::kArray) return true;
  return Matches(DecodeDimensions(dimensions_), count_, HasHalfElement());
}

Order ValueView::order() const {
  if (dataorder_.empty()) return Order::kC;
  const std::optional<Order> order = ParseOrder(dataorder_);
  if (!order) detail::ThrowUnknownOrder({}, dataorder_);
  return *order;
}

size_t ValueView::element_count() const { return form_ == Form::kArray ? count_ : 0; }

view_detail::Scalar ValueView::RequireScalar(Kind kind) const {
  if (form_ != Form::kScalar || kind_ != kind) {
    detail::ThrowKindMismatch({}, kind, Form::kScalar, kind_, form_);
  }
  return scalar_;
}

view_detail::ArrayRun ValueView::RequireArray(Kind kind) const {
  if (form_ != Form::kArray || kind_ != kind) detail::ThrowKindMismatch({}, kind, Form::kArray, kind_, form_);
  view_detail::ArrayRun run{kind, content_, payload_, count_, DecodeDimensions(dimensions_), Order::kC};
  if (!Matches(run.shape, count_, HasHalfElement())) detail::ThrowShapeMismatch({}, run.shape, count_, kind);
  if (run.shape.empty()) run.shape = detail::OneAxis(count_);
  run.order = order();
  return run;
}

std::string_view ValueView::ArrayBytes(Kind kind) const {
  const Layout layout = LayoutOf(kind);
  if (layout != Layout::kFixed32 && layout != Layout::kFixed64 && layout != Layout::kBytes) {
    values_internal::Fail(std::string(KindName(kind)) + " arrays are not stored as raw elements");
  }
  return RequireArray(kind).payload;
}

namespace {

// Decodes the run into `out` through `from_wire`, which turns a varint into
// the element as its field stores it; false when a varint is longer than ten
// bytes.
template <typename T, typename FromWire>
bool DecodeElements(const view_detail::ArrayRun& run, T* out, FromWire from_wire) {
  const int count = static_cast<int>(run.count);
  if (count == 0) return true;  // an absent run has no bytes to point at
  int decoded = 0;
  const char* after = varint::DecodeRun(run.payload.data(), run.payload.data() + run.payload.size(), count,
                                        out, &decoded, from_wire);
  return after != nullptr && decoded == count;
}

// The 16-bit kinds travel as 32-bit fields, which the run decoder writes a
// vector at a time: a block at a time into 32 bits, then range-checked and
// narrowed into `out`. Only a refusal decodes again, to name the element.
template <typename Narrow, typename Stored>
bool DecodeNarrow(const view_detail::ArrayRun& run, Narrow* out) {
  // A block ends on a varint's last byte, so it holds at most kBlock whole
  // varints and the decoder may read it to its end.
  constexpr size_t kBlock = 8192;
  Stored wide[kBlock];
  const char* at = run.payload.data();
  const char* const end = at + run.payload.size();
  size_t done = 0;
  // Both 16-bit ranges are 65536 wide: an element fits when its offset from
  // the lowest value has no bit above the sixteenth, which one OR collects.
  constexpr Stored kLowest = std::numeric_limits<Narrow>::min();
  uint32_t offsets = 0;
  while (at < end) {
    const char* stop = end - at > static_cast<ptrdiff_t>(kBlock) ? at + kBlock : end;
    while (stop > at && static_cast<uint8_t>(stop[-1]) >= 0x80) --stop;
    const int count = stop == at ? 0 : varint::CountEnds(at, stop);
    if (count == 0 || done + static_cast<size_t>(count) > run.count) return false;
    int decoded = 0;
    at = varint::DecodeRun(at, stop, count, wide, &decoded, [](uint64_t raw) { return static_cast<Stored>(raw); });
    if (at == nullptr || decoded != count) return false;
    Narrow* const block = out + done;
    for (int i = 0; i < count; ++i) {
      offsets |= static_cast<uint32_t>(wide[i]) - static_cast<uint32_t>(kLowest);
      block[i] = static_cast<Narrow>(wide[i]);
    }
    done += static_cast<size_t>(count);
  }
  if ((offsets >> 16) != 0) {
    std::vector<Stored> all(run.count);
    DecodeElements(run, all.data(), [](uint64_t raw) { return static_cast<Stored>(raw); });
    detail::CopyNarrowed(all.data(), all.size(), out, {});
  }
  return done == run.count;
}

template <typename T>
bool DecodeAs(const view_detail::ArrayRun& run, void* out) {
  return DecodeElements(run, static_cast<T*>(out), [](uint64_t raw) {
    if constexpr (std::is_same_v<T, bool>) {
      return raw != 0;
    } else {
      return static_cast<T>(raw);
    }
  });
}

}  // namespace

void ValueView::CopyVarints(const view_detail::ArrayRun& run, void* out) {
  bool decoded = false;
  switch (run.kind) {
    case Kind::kInt16: decoded = DecodeNarrow<int16_t, int32_t>(run, static_cast<int16_t*>(out)); break;
    case Kind::kUInt16: decoded = DecodeNarrow<uint16_t, uint32_t>(run, static_cast<uint16_t*>(out)); break;
    case Kind::kInt32: decoded = DecodeAs<int32_t>(run, out); break;
    case Kind::kUInt32: decoded = DecodeAs<uint32_t>(run, out); break;
    case Kind::kInt64: decoded = DecodeAs<int64_t>(run, out); break;
    case Kind::kUInt64: decoded = DecodeAs<uint64_t>(run, out); break;
    case Kind::kBool: decoded = DecodeAs<bool>(run, out); break;
    default: break;
  }
  if (!decoded) ThrowMalformed("a varint longer than ten bytes in an array");
}

std::vector<std::string_view> ValueView::Elements(const view_detail::ArrayRun& run) {
  std::vector<std::string_view> elements;
  elements.reserve(run.count);
  ForEachElement(run.content, [&elements](std::string_view element) { elements.push_back(element); });
  return elements;
}

void ValueView::Validate() const {
  if (form_ != Form::kArray || !kind_ || LayoutOf(*kind_) != Layout::kVarint) return;
  // Varint runs are the one thing loading does not read whole.
  for (const char* at = payload_.data(); at < payload_.data() + payload_.size();) {
    uint64_t value;
    at = view_internal::ReadVarint(at, payload_.data() + payload_.size(), &value);
    if (at == nullptr) ThrowMalformed("a varint longer than ten bytes in an array");
  }
}

void ValueView::CopyTo(KVariant* out) const {
  out->Clear();
  view_internal::ParseInto(span_, out);
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
