// Trees and values to JSON text, in one pass straight into the output string.
#include <google/protobuf/stubs/strutil.h>
#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "MavJson.h"
#include "MavValues.h"
#include "json_internal.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace {

using namespace json_internal;

// Whether `value` lies outside what the kind itself can hold, which only the
// widened storage of the 8- and 16-bit kinds allows.
template <typename Narrow, typename Stored>
bool OutsideKind(Stored value) {
  return value < Stored{std::numeric_limits<Narrow>::min()} || value > Stored{std::numeric_limits<Narrow>::max()};
}

template <typename Narrow, typename Stored>
bool AnyOutsideKind(const protobuf::RepeatedField<Stored>& values) {
  for (Stored value : values)
    if (OutsideKind<Narrow>(value)) return true;
  return false;
}

class Writer {
 public:
  Writer(std::string* out, const JsonOptions& options) : out_(*out), pretty_(options.pretty) {}

  void Node(const PropertyNode& node) {
    const bool tagged = !Unknown(node).empty();
    if (tagged) OpenTag(kNodeTag);
    switch (node.type_case()) {
      case PropertyNode::kMapType: Map(node.map_type()); break;
      case PropertyNode::kListType: List(node.list_type()); break;
      case PropertyNode::kValueType: Value(node.value_type()); break;
      case PropertyNode::TYPE_NOT_SET: out_ += "null"; break;
    }
    if (tagged) CloseTagWithUnknown(node);
  }

  void Value(const KVariant& value) {
    if (WritePlain(value)) return;
    out_ += '{';
    switch (value.data_case()) {
      case KVariant::kScalarData: Scalar(value.scalar_data()); break;
      case KVariant::kArrayData: Array(value.array_data()); break;
      case KVariant::DATA_NOT_SET:
        Key(kEmptyTag);
        out_ += "null";
        break;
    }
    if (!value.wellknowntype().empty()) {
      Field(kWellKnownTypeField);
      Text(value.wellknowntype());
    }
    ValueUnknowns(value);
    out_ += '}';
  }

 private:
  void Map(const PropertyMap& map) {
    const bool tagged = !Unknown(map).empty();
    if (tagged) OpenTag(kMapTag);
    out_ += '{';
    ++depth_;
    bool first = true;
    for (const MapEntryRef& entry : SortedEntries(map)) {
      if (!first) out_ += ',';
      first = false;
      NewLine();
      MapKey(entry.key);
      out_ += pretty_ ? ": " : ":";
      Node(*entry.node);
    }
    --depth_;
    if (!first) NewLine();
    out_ += '}';
    if (tagged) CloseTagWithUnknown(map);
  }

  void List(const PropertyList& list) {
    const bool tagged = !Unknown(list).empty();
    if (tagged) OpenTag(kListTag);
    out_ += '[';
    ++depth_;
    for (int i = 0; i < list.list_data_size(); ++i) {
      if (i > 0) out_ += ',';
      NewLine();
      Node(list.list_data(i));
    }
    --depth_;
    if (list.list_data_size() > 0) NewLine();
    out_ += ']';
    if (tagged) CloseTagWithUnknown(list);
  }

  // A float64, str or bool scalar that needs no tag.
  bool WritePlain(const KVariant& value) {
    if (value.data_case() != KVariant::kScalarData || !value.wellknowntype().empty() || !Unknown(value).empty() ||
        !Unknown(value.scalar_data()).empty())
      return false;
    const ScalarDataUnion& scalar = value.scalar_data();
    switch (scalar.content_case()) {
      case ScalarDataUnion::kDoubleContent:
        if (!std::isfinite(scalar.double_content())) return false;
        Real(scalar.double_content());
        return true;
      case ScalarDataUnion::kStringContent:
        if (!simdjson::validate_utf8(scalar.string_content())) return false;
        String(scalar.string_content());
        return true;
      case ScalarDataUnion::kBoolContent:
        out_ += scalar.bool_content() ? "true" : "false";
        return true;
      default:
        return false;
    }
  }

  // Leaves the object open for the value's other fields.
  void Scalar(const ScalarDataUnion& scalar) {
    const std::optional<Kind> kind = KindOf(scalar);
    if (!kind) {
      Key(kScalarTag);
      out_ += "null";
      return;
    }
    KindKey(*kind);
    bool widened = false;
    switch (*kind) {
      case Kind::kString: Text(scalar.string_content()); break;
      case Kind::kFloat32: Real(scalar.float_content()); break;
      case Kind::kFloat64: Real(scalar.double_content()); break;
      case Kind::kInt8: widened = Narrow<int8_t>(scalar.int8_content()); break;
      case Kind::kInt16: widened = Narrow<int16_t>(scalar.int16_content()); break;
      case Kind::kInt32: Integer(scalar.int32_content()); break;
      case Kind::kInt64: Integer(scalar.int64_content()); break;
      case Kind::kUInt8: widened = Narrow<uint8_t>(scalar.unsignedint8_content()); break;
      case Kind::kUInt16: widened = Narrow<uint16_t>(scalar.unsignedint16_content()); break;
      case Kind::kUInt32: Integer(scalar.unsignedint32_content()); break;
      case Kind::kUInt64: Integer(scalar.unsignedint64_content()); break;
      case Kind::kBool: out_ += scalar.bool_content() ? "true" : "false"; break;
      case Kind::kComplex64: Pair(scalar.complexfloat_content().re_content(), scalar.complexfloat_content().im_content()); break;
      case Kind::kComplex128:
        Pair(scalar.complexdouble_content().re_content(), scalar.complexdouble_content().im_content());
        break;
      case Kind::kDuration: Chrono(scalar.duration_content(), DurationText, false); break;
      case Kind::kTimePoint: Chrono(scalar.timepoint_content(), TimePointText, false); break;
    }
    if (widened) Flag(kWidenedField);
  }

  void Array(const ArrayDataUnion& array) {
    const std::optional<Kind> kind = KindOf(array);
    Key(kArrayTag);
    if (kind) {
      out_ += '"';
      out_ += KindName(*kind);
      out_ += '"';
    } else {
      out_ += "null";
    }
    const uint64_t count = kind ? StoredElementCount(array) : 0;
    const bool odd_complex = (kind == Kind::kComplex64 && array.complexfloat_content().float_content_size() % 2) ||
                             (kind == Kind::kComplex128 && array.complexdouble_content().double_content_size() % 2);
    if (array.dimensions_size() > 0) {
      const bool fits = kind && !odd_complex && ExtentProduct(array.dimensions()) == count;
      Field(fits ? kShapeField : kDimensionsField);
      Numbers(array.dimensions());
    }
    if (!array.dataorder().empty()) {
      Field(kOrderField);
      Text(array.dataorder());
    }
    if (!kind) return;
    if ((kind == Kind::kInt16 && AnyOutsideKind<int16_t>(array.int16_content().int16_content())) ||
        (kind == Kind::kUInt16 && AnyOutsideKind<uint16_t>(array.unsignedint16_content().unsignedint16_content())))
      Flag(kWidenedField);
    Field(kDataField);
    switch (*kind) {
      case Kind::kString: Texts(array.string_content().string_content()); break;
      case Kind::kFloat32: Numbers(array.float_content().float_content()); break;
      case Kind::kFloat64: Numbers(array.double_content().double_content()); break;
      case Kind::kInt8: Bytes<int8_t>(array.int8_content().int8_content()); break;
      case Kind::kInt16: Numbers(array.int16_content().int16_content()); break;
      case Kind::kInt32: Numbers(array.int32_content().int32_content()); break;
      case Kind::kInt64: Numbers(array.int64_content().int64_content()); break;
      case Kind::kUInt8: Bytes<uint8_t>(array.unsignedint8_content().unsignedint8_content()); break;
      case Kind::kUInt16: Numbers(array.unsignedint16_content().unsignedint16_content()); break;
      case Kind::kUInt32: Numbers(array.unsignedint32_content().unsignedint32_content()); break;
      case Kind::kUInt64: Numbers(array.unsignedint64_content().unsignedint64_content()); break;
      case Kind::kBool: Numbers(array.bool_content().bool_content()); break;
      case Kind::kComplex64: Numbers(array.complexfloat_content().float_content()); break;
      case Kind::kComplex128: Numbers(array.complexdouble_content().double_content()); break;
      case Kind::kDuration: Chronos(array.duration_content(), DurationText); break;
      case Kind::kTimePoint: Chronos(array.timepoint_content(), TimePointText); break;
    }
  }

  // "unknown": {"variant": ..., "union": ..., "member": ...}, the levels that
  // have any.
  void ValueUnknowns(const KVariant& value) {
    const protobuf::Message* levels[3] = {&value, nullptr, nullptr};
    if (value.has_scalar_data()) levels[1] = &value.scalar_data();
    if (value.has_array_data()) levels[1] = &value.array_data();
    if (levels[1] != nullptr) {
      if (const protobuf::FieldDescriptor* member = MessageMember(*levels[1]))
        levels[2] = &levels[1]->GetReflection()->GetMessage(*levels[1], member);
    }
    static constexpr std::string_view kNames[] = {kVariantLevel, kUnionLevel, kMemberLevel};
    bool open = false;
    for (int level = 0; level < 3; ++level) {
      if (levels[level] == nullptr || Unknown(*levels[level]).empty()) continue;
      if (!open) {
        Field(kUnknownField);
        out_ += '{';
      } else {
        out_ += ',';
      }
      open = true;
      Key(kNames[level]);
      UnknownBase64(*levels[level]);
    }
    if (open) out_ += '}';
  }

  // Elements of a duration or time point array: text when it has one, else
  // [seconds, fraction], with the element's unknown fields as a third item.
  void Chronos(const ArrayChronoData& array, std::optional<std::string> (*text)(int64_t, uint64_t)) {
    out_ += '[';
    bool first = true;
    for (const ChronoData& element : array.chrono_content()) {
      if (!first) out_ += Separator();
      first = false;
      Chrono(element, text, true);
    }
    out_ += ']';
  }

  void Chrono(const ChronoData& chrono, std::optional<std::string> (*text)(int64_t, uint64_t), bool own_unknowns) {
    const bool unknown = own_unknowns && !Unknown(chrono).empty();
    if (!unknown) {
      if (const std::optional<std::string> written = text(chrono.seconds_content(), chrono.fractional_content())) {
        String(*written);
        return;
      }
    }
    out_ += '[';
    Integer(chrono.seconds_content());
    out_ += Separator();
    Integer(chrono.fractional_content());
    if (unknown) {
      out_ += Separator();
      UnknownBase64(chrono);
    }
    out_ += ']';
  }

  // Writes a widened 8- or 16-bit value; true when it lies outside the kind.
  template <typename NarrowType, typename Stored>
  bool Narrow(Stored value) {
    Integer(value);
    return OutsideKind<NarrowType>(value);
  }

  template <typename Float>
  void Pair(Float re, Float im) {
    out_ += '[';
    Real(re);
    out_ += Separator();
    Real(im);
    out_ += ']';
  }

  // Straight into the output, a block at a time: each number and its
  // separator take at most kNumberRoom bytes, and only a block's worth of
  // that room is ever zeroed ahead of the digits.
  template <typename Number>
  void Numbers(const protobuf::RepeatedField<Number>& values) {
    static constexpr size_t kNumberRoom = 32;
    static constexpr int kBlock = 4096;
    const std::string_view separator = Separator();
    out_.reserve(out_.size() + static_cast<size_t>(values.size()) * (std::is_floating_point_v<Number> ? 20 : 8) + 2);
    out_ += '[';
    for (int start = 0; start < values.size(); start += kBlock) {
      const int stop = std::min(values.size(), start + kBlock);
      const size_t used = out_.size();
      out_.resize(used + static_cast<size_t>(stop - start) * kNumberRoom);
      char* at = out_.data() + used;
      for (int i = start; i < stop; ++i) {
        if (i > 0) at = std::copy(separator.begin(), separator.end(), at);
        at = Put(values.Get(i), at);
      }
      out_.resize(static_cast<size_t>(at - out_.data()));
    }
    out_ += ']';
  }

  // One number at `at`, as Real and Integer write it; returns its end.
  template <typename Number>
  static char* Put(Number value, char* at) {
    if constexpr (std::is_same_v<Number, bool>) {
      return value ? std::copy_n("true", 4, at) : std::copy_n("false", 5, at);
    } else if constexpr (std::is_floating_point_v<Number>) {
      if (!std::isfinite(value)) {
        const std::string_view text = std::isinf(value) ? (value < 0 ? kMinusInfinity : kInfinity)
                                                        : (std::signbit(value) ? kMinusNaN : kNaN);
        *at++ = '"';
        at = std::copy(text.begin(), text.end(), at);
        *at++ = '"';
        return at;
      }
      char* const start = at;
      at = std::to_chars(at, at + 30, value).ptr;
      if (std::find_if(start, at, [](char c) { return c == '.' || c == 'e'; }) == at) at = std::copy_n(".0", 2, at);
      return at;
    } else {
      return std::to_chars(at, at + 30, value).ptr;
    }
  }

  template <typename Byte>
  void Bytes(const std::string& bytes) {
    out_ += '[';
    for (size_t i = 0; i < bytes.size(); ++i) {
      if (i > 0) out_ += Separator();
      Integer(static_cast<Byte>(bytes[i]));
    }
    out_ += ']';
  }

  void Texts(const protobuf::RepeatedPtrField<std::string>& texts) {
    out_ += '[';
    for (int i = 0; i < texts.size(); ++i) {
      if (i > 0) out_ += Separator();
      Text(texts.Get(i));
    }
    out_ += ']';
  }

  // Shortest text that reads back as the same number; always with a point or
  // an exponent, so a reader sees a floating-point number (and -0.0 keeps
  // its sign). Non-finite numbers are strings.
  template <typename Float>
  void Real(Float value) {
    char text[40];
    out_.append(text, Put(value, text));
  }

  template <typename Int>
  void Integer(Int value) {
    char text[40];
    out_.append(text, Put(value, text));
  }

  // A JSON string when the bytes are UTF-8, else {"$base64": "..."}.
  void Text(const std::string& bytes) {
    if (simdjson::validate_utf8(bytes)) return String(bytes);
    out_ += '{';
    Key(kBase64Tag);
    Quoted(Base64(bytes));
    out_ += '}';
  }

  void MapKey(std::string_view key) {
    if (!simdjson::validate_utf8(key))
      throw ValueError("the map key \"" + protobuf::CEscape(std::string(key)) + "\" is not valid UTF-8");
    if (!key.empty() && key.front() == kTagMark) {
      out_ += '"';
      out_ += kTagMark;
      Escaped(key);
      out_ += '"';
    } else {
      String(key);
    }
  }

  void String(std::string_view text) {
    out_ += '"';
    Escaped(text);
    out_ += '"';
  }

  void Escaped(std::string_view text) {
    static const char kHex[] = "0123456789abcdef";
    size_t plain = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      const unsigned char c = static_cast<unsigned char>(text[i]);
      if (c >= 0x20 && c != '"' && c != '\\') continue;
      out_.append(text.data() + plain, i - plain);
      plain = i + 1;
      switch (c) {
        case '"': out_ += "\\\""; break;
        case '\\': out_ += "\\\\"; break;
        case '\n': out_ += "\\n"; break;
        case '\t': out_ += "\\t"; break;
        case '\r': out_ += "\\r"; break;
        default:
          out_ += "\\u00";
          out_ += kHex[c >> 4];
          out_ += kHex[c & 15];
      }
    }
    out_.append(text.data() + plain, text.size() - plain);
  }

  static std::string Base64(const std::string& bytes) {
    std::string encoded;
    protobuf::Base64Escape(bytes, &encoded);
    return encoded;
  }

  void UnknownBase64(const protobuf::Message& message) {
    std::string bytes;
    Unknown(message).SerializeToString(&bytes);
    Quoted(Base64(bytes));
  }

  void OpenTag(std::string_view tag) {
    out_ += '{';
    Key(tag);
  }

  void CloseTagWithUnknown(const protobuf::Message& message) {
    Field(kUnknownField);
    UnknownBase64(message);
    out_ += '}';
  }

  void KindKey(Kind kind) {
    out_ += '"';
    out_ += kTagMark;
    out_ += KindName(kind);
    out_ += pretty_ ? "\": " : "\":";
  }

  void Key(std::string_view key) {
    Quoted(key);
    out_ += pretty_ ? ": " : ":";
  }

  void Field(std::string_view name) {
    out_ += Separator();
    Key(name);
  }

  void Flag(std::string_view name) {
    Field(name);
    out_ += "true";
  }

  void Quoted(std::string_view text) {
    out_ += '"';
    out_ += text;
    out_ += '"';
  }

  std::string_view Separator() const { return pretty_ ? ", " : ","; }

  void NewLine() {
    if (!pretty_) return;
    out_ += '\n';
    out_.append(2 * depth_, ' ');
  }

  std::string& out_;
  const bool pretty_;
  size_t depth_ = 0;
};

}  // namespace

std::string ToJson(const PropertyNode& node, const JsonOptions& options) {
  std::string json;
  Writer(&json, options).Node(node);
  return json;
}

std::string ToJson(const KVariant& value, const JsonOptions& options) {
  std::string json;
  Writer(&json, options).Value(value);
  return json;
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
