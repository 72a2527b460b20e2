// JSON text to trees and values. simdjson's on-demand parser reads the text
// in one pass straight into a fresh tree, which replaces the caller's only
// when all of it was read.
#include <google/protobuf/stubs/strutil.h>
#include <google/protobuf/unknown_field_set.h>
#include <google/protobuf/wire_format_lite.h>
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
namespace od = simdjson::ondemand;

// Where and why the text was refused.
struct Refusal {
  const char* at;
  std::string reason;
  bool syntax = false;  // found by simdjson, which may stop short of the real fault
};

[[noreturn]] void Refuse(const char* at, std::string reason) { throw Refusal{at, std::move(reason)}; }

// simdjson's errors in this form's words.
std::string SyntaxReason(simdjson::error_code error) {
  std::string reason;
  switch (error) {
    case simdjson::TAPE_ERROR:
    case simdjson::INCOMPLETE_ARRAY_OR_OBJECT:
      reason = "malformed JSON: a comma, a colon, a key or a closing } or ] is missing or out of place";
      break;
    case simdjson::NUMBER_ERROR: reason = "malformed number"; break;
    case simdjson::STRING_ERROR: reason = "malformed string (a bad escape or a control character)"; break;
    case simdjson::UNCLOSED_STRING: reason = "a string is not closed"; break;
    case simdjson::T_ATOM_ERROR:
    case simdjson::F_ATOM_ERROR:
    case simdjson::N_ATOM_ERROR: reason = "expected true, false or null"; break;
    case simdjson::UTF8_ERROR: reason = "the text is not UTF-8"; break;
    case simdjson::INCORRECT_TYPE: reason = "malformed value"; break;
    case simdjson::EMPTY: reason = "no JSON value"; break;
    case simdjson::DEPTH_ERROR: reason = "nested too deeply"; break;
    default: reason = simdjson::error_message(error); break;
  }
  return reason;
}

[[noreturn]] void RefuseSyntax(const char* at, simdjson::error_code error) {
  throw Refusal{at, SyntaxReason(error), true};
}

// Whether a parse reads an unknown field of this wire type as `known`.
bool ReadAsKnown(const protobuf::FieldDescriptor* known, protobuf::UnknownField::Type type) {
  if (known == nullptr) return false;
  using WireFormatLite = protobuf::internal::WireFormatLite;
  WireFormatLite::WireType wire = WireFormatLite::WIRETYPE_START_GROUP;
  switch (type) {
    case protobuf::UnknownField::TYPE_VARINT: wire = WireFormatLite::WIRETYPE_VARINT; break;
    case protobuf::UnknownField::TYPE_FIXED32: wire = WireFormatLite::WIRETYPE_FIXED32; break;
    case protobuf::UnknownField::TYPE_FIXED64: wire = WireFormatLite::WIRETYPE_FIXED64; break;
    case protobuf::UnknownField::TYPE_LENGTH_DELIMITED: wire = WireFormatLite::WIRETYPE_LENGTH_DELIMITED; break;
    case protobuf::UnknownField::TYPE_GROUP: break;
  }
  const auto expected =
      WireFormatLite::WireTypeForFieldType(static_cast<WireFormatLite::FieldType>(known->type()));
  return wire == expected ||
         (known->is_packable() && wire == WireFormatLite::WIRETYPE_LENGTH_DELIMITED);
}

// What is still open at the end of the text: the number of { and [ not
// closed, outside strings.
int OpenAtEnd(std::string_view json) {
  int open = 0;
  bool in_string = false;
  for (size_t at = 0; at < json.size(); ++at) {
    const char c = json[at];
    if (in_string) {
      if (c == '\\') ++at;
      else if (c == '"') in_string = false;
    } else if (c == '"') {
      in_string = true;
    } else if (c == '{' || c == '[') {
      ++open;
    } else if (c == '}' || c == ']') {
      --open;
    }
  }
  return in_string ? -1 : open;
}

bool IsNarrow(Kind kind) {
  return kind == Kind::kInt8 || kind == Kind::kInt16 || kind == Kind::kUInt8 || kind == Kind::kUInt16;
}

bool IsTag(std::string_view key) { return !key.empty() && key[0] == kTagMark && (key.size() == 1 || key[1] != kTagMark); }

template <typename Integer>
Integer Least() { return std::numeric_limits<Integer>::min(); }
template <typename Integer>
Integer Most() { return std::numeric_limits<Integer>::max(); }

// The range a kind allows without "widened": true.
struct Range {
  int64_t least;
  uint64_t most;
};
template <typename Narrow>
constexpr Range RangeOf() {
  return {std::numeric_limits<Narrow>::min(), std::numeric_limits<Narrow>::max()};
}

class Reader {
 public:
  Reader(od::document* document, const char* end) : document_(*document), end_(end) {}

  // The document is a node; its root may be a scalar, which simdjson reads
  // from the document itself.
  void Root(PropertyNode* node) {
    const od::json_type type = Take(document_.type());
    if (type == od::json_type::null) return RootNull();
    if (type == od::json_type::object || type == od::json_type::array) {
      od::value value = Take(document_.get_value());
      Node(value, node);
    } else {
      Node(document_, node);
    }
    // Past the root value, the parser stands nowhere unless text follows.
    const char* after;
    if (document_.current_location().get(after) == simdjson::SUCCESS) Refuse(after, "unexpected text after the JSON value");
  }

 private:
  // simdjson refuses a root null that whitespace follows, which is all that
  // JSON allows after it: the empty tree's JSON ends with a newline.
  void RootNull() {
    const char* at = Where(document_);
    const std::string_view text(at, static_cast<size_t>(end_ - at));
    if (text.substr(0, 4) != "null") Refuse(at, "expected null");
    const size_t rest = text.find_first_not_of(" \t\n\r", 4);
    if (rest != std::string_view::npos) Refuse(at + rest, "unexpected text after the JSON value");
  }

  // The shared state of one tagged object while its fields are read.
  struct Tagged {
    std::string_view tag;
    const char* at;
    PropertyNode* node = nullptr;  // the $node, $map and $list forms
    KVariant* value = nullptr;     // the value forms
    std::optional<Kind> kind;
    bool array = false;
    unsigned seen = 0;
    bool widened = false;
    const char* outside_kind = nullptr;  // the first number only "widened" allows
    std::string outside_reason;
    const char* shape_at = nullptr;
    bool has_data = false;
    const char* data_at = nullptr;
    uint64_t data_count = 0;
  };

  template <typename Value>
  void Node(Value& json, PropertyNode* node) {
    const char* at = Where(json);
    switch (Take(json.type())) {
      case od::json_type::null:
        if (!Take(json.is_null())) Refuse(at, "expected null");
        return;
      case od::json_type::number:
        Fits(kPlainValueLevels, at);
        node->mutable_value_type()->mutable_scalar_data()->set_double_content(Take(json.get_double()));
        return;
      case od::json_type::string: {
        Fits(kPlainValueLevels, at);
        const std::string_view text = Take(json.get_string());
        node->mutable_value_type()->mutable_scalar_data()->set_string_content(text.data(), text.size());
        return;
      }
      case od::json_type::boolean:
        Fits(kPlainValueLevels, at);
        node->mutable_value_type()->mutable_scalar_data()->set_bool_content(Take(json.get_bool()));
        return;
      case od::json_type::array: {
        od::array items = Take(json.get_array());
        List(items, node->mutable_list_type(), at);
        return;
      }
      case od::json_type::object: {
        od::object object = Take(json.get_object());
        Object(object, node, at);
        return;
      }
    }
  }

  // A list is one message level, each item node one more.
  void List(od::array& items, PropertyList* list, const char* at) {
    Enter(1, at);
    for (auto item : items) {
      od::value value = Take(std::move(item));
      Enter(1, at);
      Node(value, list->add_list_data());
      Leave(1);
    }
    Leave(1);
  }

  // A map, or a tagged value when the first key is a tag.
  void Object(od::object& object, PropertyNode* node, const char* at) {
    Tagged tagged;
    PropertyMap* map = nullptr;
    for (auto field_result : object) {
      od::field field = Take(std::move(field_result));
      const char* key_at = field.key().raw() - 1;
      const std::string_view key = Take(field.unescaped_key());
      if (map == nullptr && tagged.tag.empty()) {
        if (IsTag(key)) {
          tagged.tag = key;
          tagged.at = at;
          BeginTagged(field.value(), node, &tagged);
          continue;
        }
        map = node->mutable_map_type();
        Enter(1, at);
      }
      if (map != nullptr)
        MapEntry(key, key_at, field.value(), map);
      else
        TaggedField(key, key_at, field.value(), &tagged);
    }
    if (map == nullptr && tagged.tag.empty()) {
      node->mutable_map_type();
      Fits(1, at);
    }
    if (map != nullptr) Leave(1);
    if (!tagged.tag.empty()) FinishTagged(tagged);
  }

  void MapEntries(od::object& object, PropertyMap* map, const char* at) {
    Enter(1, at);
    for (auto field_result : object) {
      od::field field = Take(std::move(field_result));
      const char* key_at = field.key().raw() - 1;
      MapEntry(Take(field.unescaped_key()), key_at, field.value(), map);
    }
    Leave(1);
  }

  void MapEntry(std::string_view key, const char* key_at, od::value& json, PropertyMap* map) {
    if (IsTag(key)) Refuse(key_at, "a map key that begins with \"$\" is written with \"$$\"");
    if (!key.empty() && key[0] == kTagMark) key.remove_prefix(1);
    auto [entry, inserted] = map->mutable_map_data()->insert({std::string(key), PropertyNode()});
    if (!inserted) Refuse(key_at, "duplicate key \"" + std::string(key) + "\"");
    // The entry and its node are a message level each.
    Enter(2, key_at);
    Node(json, &entry->second);
    Leave(2);
  }

  // The first field of a tagged object: what it is, and its main value.
  void BeginTagged(od::value& json, PropertyNode* node, Tagged* tagged) {
    const std::string_view tag = tagged->tag;
    const char* at = Where(json);
    if (tag == kNodeTag) {
      tagged->node = node;
      return Node(json, node);
    }
    if (tag == kMapTag) {
      tagged->node = node;
      od::object entries = Take(json.get_object(), at, "$map holds an object of entries");
      return MapEntries(entries, node->mutable_map_type(), at);
    }
    if (tag == kListTag) {
      tagged->node = node;
      od::array items = Take(json.get_array(), at, "$list holds an array of items");
      return List(items, node->mutable_list_type(), at);
    }
    KVariant* value = tagged->value = node->mutable_value_type();
    if (tag == kEmptyTag || tag == kScalarTag) {
      if (!Take(json.is_null())) Refuse(at, std::string(tag) + " holds null");
      if (tag == kScalarTag) value->mutable_scalar_data();
      return;
    }
    if (tag == kBase64Tag) {
      tagged->kind = Kind::kString;
      return value->mutable_scalar_data()->set_string_content(Base64(json));
    }
    if (tag == kArrayTag) {
      tagged->array = true;
      ArrayDataUnion* array = value->mutable_array_data();
      if (Take(json.is_null())) return;
      const std::string_view name = Take(json.get_string(), at, "$array holds a kind name or null");
      tagged->kind = ParseKind(name);
      if (!tagged->kind) Refuse(at, "unknown kind \"" + std::string(name) + "\"");
      return SelectArrayMember(*tagged->kind, array);
    }
    tagged->kind = ParseKind(tag.substr(1));
    if (!tagged->kind) Refuse(tagged->at, "unknown tag \"" + std::string(tag) + "\"");
    Scalar(json, *tagged->kind, value->mutable_scalar_data(), tagged);
  }

  enum FieldBit : unsigned {
    kSeenUnknown = 1,
    kSeenWellKnownType = 2,
    kSeenWidened = 4,
    kSeenShape = 8,
    kSeenOrder = 16,
    kSeenData = 32,
  };

  void TaggedField(std::string_view name, const char* name_at, od::value& json, Tagged* tagged) {
    const bool value_form = tagged->value != nullptr;
    const bool array_form = tagged->array;
    const bool with_data = array_form && tagged->kind;
    unsigned bit = 0;
    if (name == kUnknownField) bit = kSeenUnknown;
    else if (name == kWellKnownTypeField && value_form) bit = kSeenWellKnownType;
    else if (name == kWidenedField && tagged->kind && IsNarrow(*tagged->kind)) bit = kSeenWidened;
    else if ((name == kShapeField || name == kDimensionsField) && array_form) bit = kSeenShape;
    else if (name == kOrderField && array_form) bit = kSeenOrder;
    else if (name == kDataField && with_data) bit = kSeenData;
    if (bit == 0) Refuse(name_at, "unexpected field \"" + std::string(name) + "\" in a " + std::string(tagged->tag) + " object");
    if (tagged->seen & bit) Refuse(name_at, "duplicate field \"" + std::string(name) + "\"");
    tagged->seen |= bit;

    const char* at = Where(json);
    switch (bit) {
      case kSeenUnknown:
        if (value_form) return ValueUnknowns(json, tagged->value);
        return MergeUnknown(at, Base64(json), Holder(*tagged));
      case kSeenWellKnownType: return tagged->value->set_wellknowntype(Text(json));
      case kSeenWidened: tagged->widened = Take(json.get_bool(), at, "widened is true or false"); return;
      case kSeenShape: {
        tagged->shape_at = name == kShapeField ? at : nullptr;
        ArrayDataUnion* array = tagged->value->mutable_array_data();
        od::array extents = Take(json.get_array(), at, "a shape is an array of extents");
        for (auto extent : extents) {
          od::value item = Take(std::move(extent));
          array->add_dimensions(static_cast<uint32_t>(Unsigned(item, Most<uint32_t>(), "an extent")));
        }
        return;
      }
      case kSeenOrder: return tagged->value->mutable_array_data()->set_dataorder(Text(json));
      case kSeenData:
        tagged->has_data = true;
        tagged->data_at = at;
        return ArrayData(json, tagged);
    }
  }

  // The message a $node, $map or $list object's "unknown" belongs to.
  static protobuf::Message* Holder(const Tagged& tagged) {
    if (tagged.tag == kMapTag) return tagged.node->mutable_map_type();
    if (tagged.tag == kListTag) return tagged.node->mutable_list_type();
    return tagged.node;
  }

  void FinishTagged(const Tagged& tagged) {
    if (tagged.value != nullptr) Fits(ValueLevels(*tagged.value), tagged.at);
    if (tagged.outside_kind && !tagged.widened) Refuse(tagged.outside_kind, tagged.outside_reason);
    if (!tagged.array || !tagged.kind) return;
    if (!tagged.has_data) Refuse(tagged.at, "an array needs its \"data\"");
    if (tagged.shape_at == nullptr) return;
    const std::optional<uint64_t> product = ExtentProduct(tagged.value->array_data().dimensions());
    if (product != tagged.data_count)
      Refuse(tagged.shape_at, "the shape holds " + (product ? std::to_string(*product) : std::string("too many")) +
                                  " elements, the data " + std::to_string(tagged.data_count));
  }

  // ---- values

  void Scalar(od::value& json, Kind kind, ScalarDataUnion* scalar, Tagged* tagged) {
    const char* at = Where(json);
    switch (kind) {
      case Kind::kString: return scalar->set_string_content(Text(json));
      case Kind::kFloat32: return scalar->set_float_content(Real<float>(json));
      case Kind::kFloat64: return scalar->set_double_content(Real<double>(json));
      case Kind::kInt8: return scalar->set_int8_content(Narrow<int32_t>(json, RangeOf<int8_t>(), tagged));
      case Kind::kInt16: return scalar->set_int16_content(Narrow<int32_t>(json, RangeOf<int16_t>(), tagged));
      case Kind::kInt32: return scalar->set_int32_content(Integer<int32_t>(json));
      case Kind::kInt64: return scalar->set_int64_content(Integer<int64_t>(json));
      case Kind::kUInt8: return scalar->set_unsignedint8_content(Narrow<uint32_t>(json, RangeOf<uint8_t>(), tagged));
      case Kind::kUInt16: return scalar->set_unsignedint16_content(Narrow<uint32_t>(json, RangeOf<uint16_t>(), tagged));
      case Kind::kUInt32: return scalar->set_unsignedint32_content(Integer<uint32_t>(json));
      case Kind::kUInt64: return scalar->set_unsignedint64_content(Integer<uint64_t>(json));
      case Kind::kBool: return scalar->set_bool_content(Take(json.get_bool(), at, "a bool is true or false"));
      case Kind::kComplex64: return Complex<float>(json, scalar->mutable_complexfloat_content());
      case Kind::kComplex128: return Complex<double>(json, scalar->mutable_complexdouble_content());
      case Kind::kDuration: return Chrono(json, ParseDuration, scalar->mutable_duration_content(), false);
      case Kind::kTimePoint: return Chrono(json, ParseTimePoint, scalar->mutable_timepoint_content(), false);
    }
  }

  template <typename Float, typename Message>
  void Complex(od::value& json, Message* complex) {
    const char* at = Where(json);
    od::array parts = Take(json.get_array(), at, "a complex number is [re, im]");
    Float values[2];
    size_t count = 0;
    for (auto part : parts) {
      od::value item = Take(std::move(part));
      if (count == 2) Refuse(at, "a complex number is [re, im]");
      values[count++] = Real<Float>(item);
    }
    if (count != 2) Refuse(at, "a complex number is [re, im]");
    complex->set_re_content(values[0]);
    complex->set_im_content(values[1]);
  }

  // Text, or [seconds, fraction] with the element's unknown fields as an
  // optional third item.
  void Chrono(od::value& json, std::optional<json_internal::Chrono> (*parse)(std::string_view), ChronoData* chrono,
              bool may_carry_unknown) {
    const char* at = Where(json);
    if (Take(json.type()) == od::json_type::string) {
      const std::string_view text = Take(json.get_string());
      const std::optional<json_internal::Chrono> parsed = parse(text);
      if (!parsed) Refuse(at, "\"" + std::string(text) + "\" is not a " + (parse == ParseDuration ? "duration like \"-1.5s\"" : "UTC time like \"2024-05-01T12:00:00.25Z\""));
      chrono->set_seconds_content(parsed->seconds);
      chrono->set_fractional_content(parsed->nanos);
      return;
    }
    const char* kForm = may_carry_unknown ? "a time is text or [seconds, fraction(, unknown)]" : "a time is text or [seconds, fraction]";
    od::array items = Take(json.get_array(), at, kForm);
    size_t count = 0;
    for (auto item_result : items) {
      od::value item = Take(std::move(item_result));
      switch (count++) {
        case 0: chrono->set_seconds_content(Integer<int64_t>(item)); break;
        case 1: chrono->set_fractional_content(Integer<uint64_t>(item)); break;
        case 2:
          if (may_carry_unknown) {
            MergeUnknown(Where(item), Base64(item), chrono);
            break;
          }
          [[fallthrough]];
        default: Refuse(at, kForm);
      }
    }
    if (count < 2) Refuse(at, kForm);
  }

  void SelectArrayMember(Kind kind, ArrayDataUnion* array) {
    switch (kind) {
      case Kind::kString: array->mutable_string_content(); break;
      case Kind::kFloat32: array->mutable_float_content(); break;
      case Kind::kFloat64: array->mutable_double_content(); break;
      case Kind::kInt8: array->mutable_int8_content(); break;
      case Kind::kInt16: array->mutable_int16_content(); break;
      case Kind::kInt32: array->mutable_int32_content(); break;
      case Kind::kInt64: array->mutable_int64_content(); break;
      case Kind::kUInt8: array->mutable_unsignedint8_content(); break;
      case Kind::kUInt16: array->mutable_unsignedint16_content(); break;
      case Kind::kUInt32: array->mutable_unsignedint32_content(); break;
      case Kind::kUInt64: array->mutable_unsignedint64_content(); break;
      case Kind::kBool: array->mutable_bool_content(); break;
      case Kind::kComplex64: array->mutable_complexfloat_content(); break;
      case Kind::kComplex128: array->mutable_complexdouble_content(); break;
      case Kind::kDuration: array->mutable_duration_content(); break;
      case Kind::kTimePoint: array->mutable_timepoint_content(); break;
    }
  }

  void ArrayData(od::value& json, Tagged* tagged) {
    od::array items = Take(json.get_array(), tagged->data_at, "\"data\" is an array");
    ArrayDataUnion* array = tagged->value->mutable_array_data();
    const Kind kind = *tagged->kind;
    uint64_t count = 0;
    switch (kind) {
      case Kind::kString: count = Each(items, [&](od::value& item) { array->mutable_string_content()->add_string_content(Text(item)); }); break;
      case Kind::kFloat32: count = Reals(items, array->mutable_float_content()->mutable_float_content()); break;
      case Kind::kFloat64: count = Reals(items, array->mutable_double_content()->mutable_double_content()); break;
      case Kind::kInt8: count = Bytes<int8_t>(items, array->mutable_int8_content()->mutable_int8_content()); break;
      case Kind::kInt16: count = Narrows(items, RangeOf<int16_t>(), array->mutable_int16_content()->mutable_int16_content(), tagged); break;
      case Kind::kInt32: count = Integers(items, array->mutable_int32_content()->mutable_int32_content()); break;
      case Kind::kInt64: count = Integers(items, array->mutable_int64_content()->mutable_int64_content()); break;
      case Kind::kUInt8: count = Bytes<uint8_t>(items, array->mutable_unsignedint8_content()->mutable_unsignedint8_content()); break;
      case Kind::kUInt16: count = Narrows(items, RangeOf<uint16_t>(), array->mutable_unsignedint16_content()->mutable_unsignedint16_content(), tagged); break;
      case Kind::kUInt32: count = Integers(items, array->mutable_unsignedint32_content()->mutable_unsignedint32_content()); break;
      case Kind::kUInt64: count = Integers(items, array->mutable_unsignedint64_content()->mutable_unsignedint64_content()); break;
      case Kind::kBool: {
        auto* bools = array->mutable_bool_content()->mutable_bool_content();
        count = Each(items, [&](od::value& item) { bools->Add(Take(item.get_bool(), Where(item), "expected true or false")); });
        break;
      }
      case Kind::kComplex64: count = Reals(items, array->mutable_complexfloat_content()->mutable_float_content()); break;
      case Kind::kComplex128: count = Reals(items, array->mutable_complexdouble_content()->mutable_double_content()); break;
      case Kind::kDuration: {
        auto* chronos = array->mutable_duration_content();
        count = Each(items, [&](od::value& item) { Chrono(item, ParseDuration, chronos->add_chrono_content(), true); });
        break;
      }
      case Kind::kTimePoint: {
        auto* chronos = array->mutable_timepoint_content();
        count = Each(items, [&](od::value& item) { Chrono(item, ParseTimePoint, chronos->add_chrono_content(), true); });
        break;
      }
    }
    if (kind == Kind::kComplex64 || kind == Kind::kComplex128) {
      // An odd count has no shape that fits it.
      count = count % 2 ? std::numeric_limits<uint64_t>::max() : count / 2;
    }
    tagged->data_count = count;
  }

  template <typename Visit>
  uint64_t Each(od::array& items, Visit&& visit) {
    uint64_t count = 0;
    for (auto item_result : items) {
      od::value item = Take(std::move(item_result));
      visit(item);
      ++count;
    }
    return count;
  }

  template <typename Float>
  uint64_t Reals(od::array& items, protobuf::RepeatedField<Float>* values) {
    values->Reserve(static_cast<int>(Take(items.count_elements())));
    return Each(items, [&](od::value& item) { values->AddAlreadyReserved(Real<Float>(item)); });
  }

  template <typename Stored>
  uint64_t Integers(od::array& items, protobuf::RepeatedField<Stored>* values) {
    values->Reserve(static_cast<int>(Take(items.count_elements())));
    return Each(items, [&](od::value& item) { values->AddAlreadyReserved(Integer<Stored>(item)); });
  }

  template <typename Stored>
  uint64_t Narrows(od::array& items, Range range, protobuf::RepeatedField<Stored>* values, Tagged* tagged) {
    values->Reserve(static_cast<int>(Take(items.count_elements())));
    return Each(items, [&](od::value& item) { values->AddAlreadyReserved(Narrow<Stored>(item, range, tagged)); });
  }

  template <typename Byte>
  uint64_t Bytes(od::array& items, std::string* bytes) {
    bytes->reserve(Take(items.count_elements()));
    return Each(items, [&](od::value& item) {
      bytes->push_back(static_cast<char>(Integer<Byte>(item)));
    });
  }

  // ---- numbers and text

  // A number, or "NaN", "-NaN", "Infinity", "-Infinity". A float32 is read
  // from its own digits, so it is not rounded twice. Nothing but the number
  // is looked at until something is wrong: this runs once per element.
  template <typename Float>
  Float Real(od::value& json) {
    double value;
    if constexpr (std::is_same_v<Float, double>) {
      if (json.get_double().get(value) != simdjson::SUCCESS) return NonFinite<Float>(json);
      return value;
    } else {
      const std::string_view token = json.raw_json_token();
      if (json.get_double().get(value) != simdjson::SUCCESS) return NonFinite<Float>(json);
      float narrow;
      const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), narrow);
      if (error != std::errc() || end == token.data())
        Refuse(token.data(), std::string(Trimmed(token)) + " is out of range for float32");
      return narrow;
    }
  }

  template <typename Float>
  Float NonFinite(od::value& json) {
    const char* at = Where(json);
    const std::string_view token = Trimmed(json.raw_json_token());
    if (!token.empty() && (token[0] == '-' || (token[0] >= '0' && token[0] <= '9'))) {
      double value;
      const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
      if (error == std::errc::result_out_of_range) {
        Refuse(at, std::string(token) + " is out of range for " +
                       (std::is_same_v<Float, double> ? "float64" : "float32"));
      }
      Refuse(at, std::string(token) + " is not a JSON number");
    }
    const std::string_view text = Take(json.get_string(), at, "expected a number");
    if (text == kNaN) return std::numeric_limits<Float>::quiet_NaN();
    if (text == kMinusNaN) return -std::numeric_limits<Float>::quiet_NaN();
    if (text == kInfinity) return std::numeric_limits<Float>::infinity();
    if (text == kMinusInfinity) return -std::numeric_limits<Float>::infinity();
    Refuse(at, "\"" + std::string(text) + "\" is not a number");
  }

  // `kind` names the kind in errors: an 8- or 16-bit kind is read in its
  // 32-bit storage type.
  template <typename Stored>
  Stored Integer(od::value& json, std::string_view kind = KindName(KindFor<Stored>)) {
    if constexpr (std::is_signed_v<Stored>) {
      const char* at = Where(json);
      const int64_t value = Signed(json, kind);
      if (value < Least<Stored>() || value > Most<Stored>()) RefuseRange(json, at, kind);
      return static_cast<Stored>(value);
    } else {
      return static_cast<Stored>(Unsigned(json, Most<Stored>(), kind));
    }
  }

  // An 8- or 16-bit value in its 32-bit storage: outside the kind's own
  // range only with "widened": true, which may come later in the object.
  template <typename Stored>
  Stored Narrow(od::value& json, Range range, Tagged* tagged) {
    const char* at = Where(json);
    const Stored value = Integer<Stored>(json, KindName(*tagged->kind));
    const bool outside = std::is_signed_v<Stored> ? (int64_t(value) < range.least || int64_t(value) > int64_t(range.most))
                                                  : uint64_t(value) > range.most;
    if (outside && tagged->outside_kind == nullptr) {
      tagged->outside_kind = at;
      tagged->outside_reason = std::to_string(value) + " is out of range for " + std::string(KindName(*tagged->kind)) +
                               " (a stored value beyond it needs \"widened\": true)";
    }
    return value;
  }

  int64_t Signed(od::value& json, std::string_view kind) {
    const char* at = Where(json);
    int64_t value;
    if (json.get_int64().get(value) != simdjson::SUCCESS) RefuseInteger(json, at, kind);
    return value;
  }

  uint64_t Unsigned(od::value& json, uint64_t most, std::string_view what) {
    const char* at = Where(json);
    uint64_t value;
    if (json.get_uint64().get(value) != simdjson::SUCCESS || value > most) RefuseInteger(json, at, what);
    return value;
  }

  // Digits that no integer kind holds are out of range; anything else
  // (including a leading zero, which JSON does not allow) is no integer.
  [[noreturn]] void RefuseInteger(od::value& json, const char* at, std::string_view kind) {
    const std::string_view token = Trimmed(json.raw_json_token());
    const std::string_view digits = token.substr(!token.empty() && token[0] == '-');
    const bool leading_zero = digits.size() > 1 && digits[0] == '0';
    if (!digits.empty() && !leading_zero && digits.find_first_not_of("0123456789") == std::string_view::npos)
      RefuseRange(json, at, kind);
    Refuse(at, "expected an integer, found " + std::string(token));
  }

  [[noreturn]] void RefuseRange(od::value& json, const char* at, std::string_view kind) {
    Refuse(at, std::string(Trimmed(json.raw_json_token())) + " is out of range for " + std::string(kind));
  }

  // A string, or {"$base64": "..."} for bytes that are not UTF-8.
  std::string Text(od::value& json) {
    const char* at = Where(json);
    if (Take(json.type()) == od::json_type::string) return std::string(Take(json.get_string()));
    od::object object = Take(json.get_object(), at, "expected text: a string or {\"$base64\": ...}");
    std::string bytes;
    size_t fields = 0;
    for (auto field_result : object) {
      od::field field = Take(std::move(field_result));
      if (Take(field.unescaped_key()) != kBase64Tag || fields++ > 0)
        Refuse(at, "expected text: a string or {\"$base64\": ...}");
      bytes = Base64(field.value());
    }
    if (fields == 0) Refuse(at, "expected text: a string or {\"$base64\": ...}");
    return bytes;
  }

  std::string Base64(od::value& json) {
    const char* at = Where(json);
    const std::string_view text = Take(json.get_string(), at, "expected base64 text");
    std::string bytes;
    if (!protobuf::Base64Unescape(protobuf::StringPiece(text.data(), text.size()), &bytes))
      Refuse(at, "\"" + std::string(text) + "\" is not base64");
    return bytes;
  }

  void MergeUnknown(const char* at, const std::string& bytes, protobuf::Message* message) {
    protobuf::UnknownFieldSet fields;
    if (!fields.ParseFromString(bytes)) Refuse(at, "the unknown fields are not protocol-buffer wire bytes");
    // They stand for fields of a newer schema; one that a parse would read as
    // a field this schema knows would change the value's meaning once
    // written as binary. (A known number in another wire type stays unknown
    // on parse, so it may stand here.)
    for (int index = 0; index < fields.field_count(); ++index) {
      const protobuf::UnknownField& field = fields.field(index);
      if (ReadAsKnown(message->GetDescriptor()->FindFieldByNumber(field.number()), field.type())) {
        Refuse(at, "the unknown fields hold field " + std::to_string(field.number()) + ", which " +
                       message->GetDescriptor()->name() + " knows");
      }
    }
    MutableUnknown(message)->MergeFrom(fields);
  }

  // {"variant": ..., "union": ..., "member": ...}
  void ValueUnknowns(od::value& json, KVariant* value) {
    od::object levels = Take(json.get_object(), Where(json), "\"unknown\" of a value is an object of levels");
    for (auto field_result : levels) {
      od::field field = Take(std::move(field_result));
      const char* name_at = field.key().raw() - 1;
      const std::string_view level = Take(field.unescaped_key());
      protobuf::Message* holder = nullptr;
      if (level == kVariantLevel) holder = value;
      else if (level == kUnionLevel) holder = Union(value);
      else if (level == kMemberLevel) holder = Member(value);
      if (holder == nullptr) Refuse(name_at, "no level \"" + std::string(level) + "\" here to hold unknown fields");
      if (HasUnknown(*holder)) Refuse(name_at, "duplicate field \"" + std::string(level) + "\"");
      MergeUnknown(Where(field.value()), Base64(field.value()), holder);
    }
  }

  static bool HasUnknown(const protobuf::Message& message) { return !Unknown(message).empty(); }

  static protobuf::Message* Union(KVariant* value) {
    if (value->has_scalar_data()) return value->mutable_scalar_data();
    if (value->has_array_data()) return value->mutable_array_data();
    return nullptr;
  }

  // The union's member message, if its kind has one.
  static protobuf::Message* Member(KVariant* value) {
    protobuf::Message* holder = Union(value);
    const protobuf::FieldDescriptor* member = holder ? MessageMember(*holder) : nullptr;
    return member ? holder->GetReflection()->MutableMessage(holder, member) : nullptr;
  }

  // ---- nesting

  // The bytes of what is read must parse again, and a parse of the bytes
  // takes at most this many nested messages (the runtime's default
  // recursion limit). Counting them also keeps deep JSON off the stack.
  static constexpr int kWireDepthLimit = 100;
  // A KVariant and its scalar union.
  static constexpr int kPlainValueLevels = 2;

  void Enter(int levels, const char* at) {
    Fits(levels, at);
    depth_ += levels;
  }
  void Leave(int levels) { depth_ -= levels; }
  void Fits(int levels, const char* at) const {
    if (depth_ + levels > kWireDepthLimit)
      Refuse(at, "nested deeper than the " + std::to_string(kWireDepthLimit) + " message levels a parse of the bytes allows");
  }

  // The KVariant, its union, the union's member message and a time
  // array's element messages.
  static int ValueLevels(const KVariant& value) {
    const protobuf::Message* holder = value.has_scalar_data() ? static_cast<const protobuf::Message*>(&value.scalar_data())
                                      : value.has_array_data() ? &value.array_data()
                                                               : nullptr;
    if (holder == nullptr) return 1;
    const protobuf::FieldDescriptor* member = MessageMember(*holder);
    if (member == nullptr) return 2;
    const protobuf::Message& held = holder->GetReflection()->GetMessage(*holder, member);
    const bool elements = held.GetDescriptor() == ArrayChronoData::descriptor() &&
                          static_cast<const ArrayChronoData&>(held).chrono_content_size() > 0;
    return elements ? 4 : 3;
  }

  // ---- simdjson results and locations

  template <typename T>
  T Take(simdjson::simdjson_result<T>&& result) {
    T value;
    if (const simdjson::error_code error = std::move(result).get(value)) RefuseSyntax(Location(), error);
    return value;
  }

  template <typename T>
  T Take(simdjson::simdjson_result<T>&& result, const char* at, const char* expected) {
    T value;
    if (const simdjson::error_code error = std::move(result).get(value)) {
      if (error == simdjson::INCORRECT_TYPE) Refuse(at, expected);
      RefuseSyntax(at, error);
    }
    return value;
  }

  template <typename Value>
  const char* Where(Value& json) {
    const char* at;
    return json.current_location().get(at) == simdjson::SUCCESS ? at : Location();
  }

  // Where the parser stands, for errors that simdjson itself finds.
  const char* Location() {
    const char* at;
    return document_.current_location().get(at) == simdjson::SUCCESS ? at : end_;
  }

  static std::string_view Trimmed(std::string_view token) {
    while (!token.empty() && (token.back() == ' ' || token.back() == '\n' || token.back() == '\r' || token.back() == '\t'))
      token.remove_suffix(1);
    return token;
  }

  od::document& document_;
  const char* end_;
  int depth_ = 0;  // message levels above the node being read
};

JsonError ErrorAt(std::string_view json, size_t offset, std::string reason) {
  offset = std::min(offset, json.size());
  JsonError error;
  const std::string_view before = json.substr(0, offset);
  error.line = static_cast<size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
  const size_t line_start = before.rfind('\n');
  error.column = offset - (line_start == std::string_view::npos ? 0 : line_start + 1) + 1;
  error.reason = std::move(reason);
  return error;
}

bool Parse(std::string_view json, PropertyNode* root, JsonError* error) {
  thread_local od::parser parser;
  // A byte-order mark says nothing in UTF-8; editors on some systems write one.
  const size_t skipped = json.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
  const std::string_view body = json.substr(skipped);
  const simdjson::padded_string padded(body);
  od::document document;
  if (const simdjson::error_code failure = parser.iterate(padded).get(document)) {
    if (error) *error = ErrorAt(json, json.size(), SyntaxReason(failure));
    return false;
  }
  try {
    Reader(&document, padded.data() + padded.size()).Root(root);
    return true;
  } catch (const Refusal& refusal) {
    if (error == nullptr) return false;
    // simdjson notices a missing } or ] wherever its look-ahead stumbles;
    // the fault is at the end.
    const int open = refusal.syntax ? OpenAtEnd(body) : 0;
    if (open != 0) {
      *error = ErrorAt(json, json.size(),
                       open < 0 ? "a string is not closed" : "the JSON ends before a closing } or ]");
    } else {
      *error = ErrorAt(json, skipped + static_cast<size_t>(refusal.at - padded.data()), refusal.reason);
    }
    return false;
  }
}

}  // namespace

std::string JsonError::ToString() const {
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + reason;
}

bool FromJson(std::string_view json, PropertyNode* node, JsonError* error) {
  PropertyNode read;
  if (!Parse(json, &read, error)) return false;
  node->Swap(&read);
  return true;
}

bool FromJson(std::string_view json, KVariant* value, JsonError* error) {
  PropertyNode read;
  if (!Parse(json, &read, error)) return false;
  if (read.type_case() != PropertyNode::kValueType || !Unknown(read).empty()) {
    if (error) *error = ErrorAt(json, 0, "the JSON is a map, a list or null, not a value");
    return false;
  }
  value->Swap(read.mutable_value_type());
  return true;
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
