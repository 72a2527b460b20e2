// MavView: values and trees read straight from their serialized bytes,
// without parsing them into messages.
//
// A view points into bytes that the caller keeps alive and unchanged: a
// std::string, a buffer, a memory-mapped file. Views are small values, cheap
// to copy. Walking them reads only the bytes on the way: looking up
// "frame/3" reads the tags, lengths and keys of the entries and items it
// passes and skips everything else by its length, so a lookup costs the same
// whether what it skips is a byte or a gigabyte, and touches no page of it.
//
// Same answers as a parse. Every value, kind, shape, key and item read through
// a view equals what the message classes of Mav.pb.h hold after
// ParseFromString of the same bytes, read with MavValues.h; and the readers
// here refuse with the same ValueError wording where MavValues.h refuses.
// Most writers produce each field once, in order; the view reads those bytes
// in place. A few legal encodings say a thing in a way that cannot be read in
// place:
//   - a node that holds more than one member (the parse merges a map or a list
//     given twice, and a later member replaces an earlier one),
//   - a value with both or repeated scalar and array members, a map entry
//     whose value is given twice, dimensions or a numeric array given in more
//     than one run or one element per tag (the parse appends them),
//   - a map that repeats a key (the last entry wins; met when iterating),
//   - a tag 0, a group, a tag longer than two bytes, and anything malformed.
// For those the view parses that one message (the node, value or map that
// holds it) with the message classes and reads a canonical serialization of
// the result instead: a parse of that subtree and a copy of its bytes, shared
// by the views made from it and freed with the last of them. That is the
// only time a view allocates, beside shapes of more than Shape::kInlineRank
// dimensions, the copies that ReadArray makes, and iterating a map of more
// than a few hundred keys (one temporary index of its keys, to find repeats).
// A map iterated after such a parse comes in key order; otherwise entries and
// items come in the order of the bytes.
//
// Errors. A view checks the bytes it reads, as a parse would check them, and
// throws DecodeError (a ValueError) where they are malformed or nest deeper
// than the parse's limit of 100 messages; bytes it skips are not checked. So a
// lookup may succeed in an input that ParseFromString refuses elsewhere.
// Validate() reads everything and throws exactly when ParseFromString of the
// same bytes returns false. Reading a value as the wrong kind, a scalar as an
// array and so on throws ValueError as MavValues.h does.
//
// Thread safety: views only read, so any number of threads may read the same
// bytes through their own views.
#ifndef MAV_PROTOBUF_MAV_VIEW_H_
#define MAV_PROTOBUF_MAV_VIEW_H_

#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MavValues.h"

namespace Tarnwick {
namespace MavProtobuf {

// Bytes that a parse would refuse.
class MAV_PROTOBUF_EXPORT DecodeError : public ValueError {
 public:
  using ValueError::ValueError;
  ~DecodeError() override;
};

class NodeView;
class ValueView;

namespace view_detail {

// The bytes of one message: where they lie, how deep the message sits (the
// parse counts nested messages and refuses more than 100), and who owns them
// when the view made them itself (null when the caller does).
struct Span {
  const char* begin = nullptr;
  const char* end = nullptr;
  int depth = 0;
  std::shared_ptr<const std::string> owner;

  size_t size() const { return static_cast<size_t>(end - begin); }
};

// A scalar as the bytes hold it, before conversion to a C++ type.
struct Scalar {
  std::optional<Kind> kind;
  uint64_t bits = 0;            // varint kinds; float/double bit patterns; seconds
  uint64_t second_bits = 0;     // imaginary part; fraction of a second
  std::string_view text;
};

// An array as the bytes hold it.
struct ArrayRun {
  Kind kind;
  Span content;            // the array message (ArrayFloat, ArrayString, ...)
  std::string_view payload;  // the packed run or byte string, for numeric kinds
  size_t count = 0;        // elements stored (complex: parts / 2)
  Shape shape;
  Order order = Order::kC;
};

}  // namespace view_detail

struct EntryView;

// The entries of a map, in the order of the bytes (see above for a map that
// repeats a key).
class MAV_PROTOBUF_EXPORT MapView {
 public:
  class MAV_PROTOBUF_EXPORT Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = EntryView;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = EntryView;

    Iterator() = default;
    EntryView operator*() const;
    Iterator& operator++();
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.at_ == b.at_; }
    friend bool operator!=(const Iterator& a, const Iterator& b) { return a.at_ != b.at_; }

   private:
    friend class MapView;
    Iterator(view_detail::Span map, const char* at);
    void Settle();

    view_detail::Span map_;
    const char* at_ = nullptr;    // the current entry, null at the end
    const char* next_ = nullptr;  // just past it
    std::string_view key_;
    std::string_view value_;
    bool has_value_ = false;
  };

  MapView() = default;

  // Reads every entry's key first, to find repeated keys (allocating only as
  // the header says).
  Iterator begin() const;
  Iterator end() const { return Iterator(); }
  // The number of distinct keys.
  size_t size() const;
  bool empty() const { return begin() == end(); }
  // The node under `key` (the last entry with that key wins), or nothing.
  // Reads every entry's key, never a value it does not return.
  std::optional<NodeView> Find(std::string_view key) const;

 private:
  friend class NodeView;
  explicit MapView(view_detail::Span span) : span_(std::move(span)) {}

  view_detail::Span span_;
};

// The items of a list, in order.
class MAV_PROTOBUF_EXPORT ListView {
 public:
  class MAV_PROTOBUF_EXPORT Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = NodeView;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = NodeView;

    Iterator() = default;
    NodeView operator*() const;
    Iterator& operator++();
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.at_ == b.at_; }
    friend bool operator!=(const Iterator& a, const Iterator& b) { return a.at_ != b.at_; }

   private:
    friend class ListView;
    Iterator(view_detail::Span list, const char* at);
    void Settle();

    view_detail::Span list_;
    const char* at_ = nullptr;  // the current item, null at the end
    const char* next_ = nullptr;
    std::string_view item_;
  };

  ListView() = default;

  // Reads every item's tag and length first.
  Iterator begin() const;
  Iterator end() const { return Iterator(); }
  // Counts the items.
  size_t size() const;
  bool empty() const { return begin() == end(); }
  // The item at `index`, or nothing past the end; reads the items before it.
  std::optional<NodeView> Find(size_t index) const;

 private:
  friend class NodeView;
  explicit ListView(view_detail::Span span) : span_(std::move(span)) {}

  view_detail::Span span_;
};

// A value (KVariant): a scalar, an array or nothing, read with MavValues.h's
// types and conventions.
class MAV_PROTOBUF_EXPORT ValueView {
 public:
  // Nothing.
  ValueView() = default;
  // A serialized KVariant.
  explicit ValueView(std::string_view bytes);

  Form form() const { return form_; }
  // The element kind; nothing for an empty value.
  std::optional<Kind> kind() const { return kind_; }
  // As ShapeOf: the dimensions of an array (its element count as one axis
  // when it has none), rank 0 for a scalar or nothing. Does not check them.
  Shape shape() const;
  // Whether an array's shape accounts for exactly its stored elements (true
  // for scalars and nothing), as ShapeMatches.
  bool shape_matches() const;
  // The stored dataorder ("" when absent); order() reads it, refusing text
  // other than "", "C" and "F".
  std::string_view dataorder() const { return dataorder_; }
  Order order() const;
  // The stored element count of an array (complex: pairs), 0 otherwise.
  size_t element_count() const;
  std::string_view wellknowntype() const { return wellknowntype_; }

  // The scalar as T, as GetValue<T, Fraction> reads it: refuses another kind,
  // an array, and a narrow value that does not fit. std::string_view points
  // into the bytes.
  template <typename T, typename Fraction = std::nano>
  T Get() const;

  // The elements of an array of a fixed-width kind (float, double, int8_t,
  // uint8_t, std::complex<float>, std::complex<double>) where they lie in the
  // bytes; nothing when the bytes are not aligned for T (copy them with
  // CopyArray or ReadArray then, or read ArrayBytes). Refuses another kind, a
  // scalar, an unknown order and a shape that does not match the elements.
  template <typename T>
  std::optional<ArrayView<T>> ViewArray() const;
  // The raw elements of a fixed-width kind in place, little-endian, at any
  // alignment (complex: re, im, re, im, ...). Refuses as ViewArray.
  std::string_view ArrayBytes(Kind kind) const;
  // Copies a numeric, bool or complex array into the caller's buffer of
  // `capacity` elements; varints are decoded a whole run at a time, straight
  // into the buffer, 16-bit kinds range-checked as they go. Refused when the
  // buffer is too small (nothing written) and when an element does not fit
  // (the buffer then holds part of the array).
  template <typename T>
  ArrayView<T> CopyArray(T* out, size_t capacity) const;
  // An array of any kind, copied: text as std::string or std::string_view
  // (pointing into the bytes), durations and time points as std::chrono
  // values of T.
  template <typename T, typename Fraction = std::nano>
  Array<T> ReadArray() const;

  // Reads every byte of the value and throws DecodeError where a parse of
  // them would fail.
  void Validate() const;
  // The value as a message.
  void CopyTo(KVariant* out) const;

 private:
  friend class NodeView;
  explicit ValueView(view_detail::Span span);
  void Load();
  bool LoadPlain();
  bool LoadScalar(const view_detail::Span& scalar);
  bool LoadArray(const view_detail::Span& array);
  bool LoadContent();
  bool HasHalfElement() const;
  view_detail::Scalar RequireScalar(Kind kind) const;
  view_detail::ArrayRun RequireArray(Kind kind) const;
  // Decodes a varint kind's elements into `out`, an array of the kind's type.
  static void CopyVarints(const view_detail::ArrayRun& run, void* out);
  static std::vector<std::string_view> Elements(const view_detail::ArrayRun& run);

  view_detail::Span span_;     // the KVariant
  view_detail::Span content_;  // an array's content message (ArrayFloat, ArrayString, ...)
  Form form_ = Form::kEmpty;
  std::optional<Kind> kind_;
  std::string_view wellknowntype_;
  std::string_view dataorder_;
  std::string_view dimensions_;  // the packed run
  std::string_view payload_;     // a numeric array's packed run or byte string
  size_t count_ = 0;             // an array's stored elements (complex: pairs)
  view_detail::Scalar scalar_;
};

enum class NodeType : uint8_t { kEmpty, kMap, kList, kValue };

// A node of a tree: a map, a list, a value or empty.
class MAV_PROTOBUF_EXPORT NodeView {
 public:
  // An empty node.
  NodeView() = default;
  // A serialized PropertyNode, the root of a tree. Reads the node's own
  // fields, not its children.
  explicit NodeView(std::string_view bytes);
  NodeView(const void* data, size_t size)
      : NodeView(std::string_view(static_cast<const char*>(data), size)) {}

  NodeType type() const { return type_; }
  bool is_empty() const { return type_ == NodeType::kEmpty; }
  bool is_map() const { return type_ == NodeType::kMap; }
  bool is_list() const { return type_ == NodeType::kList; }
  bool is_value() const { return type_ == NodeType::kValue; }

  // The member, refused (ValueError) when the node holds another.
  MapView map() const;
  ListView list() const;
  ValueView value() const;

  // The node at `path` (MavValues.h's path syntax), or nothing when a step is
  // missing. Walking allocates nothing.
  std::optional<NodeView> Find(std::string_view path) const;
  // The node at `path`; throws ValueError naming the first missing step.
  NodeView At(std::string_view path) const;
  // The value at `path`; throws ValueError when there is none.
  ValueView ValueAt(std::string_view path) const;

  // Reads every byte under this node and throws DecodeError where
  // ParseFromString of them would fail.
  void Validate() const;
  // The node as a message, as a parse of its bytes gives it (unknown fields
  // dropped).
  void CopyTo(PropertyNode* out) const;

 private:
  friend class MapView;
  friend class ListView;
  NodeView(std::string_view bytes, int depth, std::shared_ptr<const std::string> owner);
  void Load(view_detail::Span node);

  view_detail::Span member_;  // the map, list or value message
  NodeType type_ = NodeType::kEmpty;
};

struct EntryView {
  std::string_view key;
  NodeView node;
};

// Every leaf under `root`, depth-first, as VisitLeaves walks a tree but in the
// order of the bytes: the path, the leaf's node (a value or empty) and its
// value (empty for an empty node). Empty maps and lists have no leaves. The
// path is rebuilt in one buffer as the walk goes.
MAV_PROTOBUF_EXPORT void VisitLeaves(
    const NodeView& root,
    const std::function<void(std::string_view path, const NodeView& node, const ValueView& value)>& visit);

// ---------------------------------------------------------------------------
// Template definitions

namespace view_detail {

template <typename T>
constexpr bool kFixedWidth = detail::Traits<T>::storage == detail::Storage::kBytes ||
                             detail::Traits<T>::storage == detail::Storage::kComplex ||
                             std::is_same_v<T, float> || std::is_same_v<T, double>;

// The chrono fields of one element as ChronoData, which MavValues.h reads.
MAV_PROTOBUF_EXPORT void ChronoFields(std::string_view element, int depth, ChronoData* out);

}  // namespace view_detail

template <typename T, typename Fraction>
T ValueView::Get() const {
  static_assert(!std::is_pointer_v<T>, "read text as std::string or std::string_view");
  using Tr = detail::Traits<T>;
  const view_detail::Scalar scalar = RequireScalar(Tr::kind);
  if constexpr (Tr::storage == detail::Storage::kChrono) {
    ChronoData chrono;
    chrono.set_seconds_content(static_cast<int64_t>(scalar.bits));
    chrono.set_fractional_content(scalar.second_bits);
    return detail::ReadChrono<T, Fraction>(chrono, {});
  } else if constexpr (Tr::storage == detail::Storage::kText) {
    return T(scalar.text);
  } else if constexpr (Tr::storage == detail::Storage::kComplex) {
    using Part = typename T::value_type;
    Part re, im;
    if constexpr (sizeof(Part) == 4) {
      const uint32_t re_bits = static_cast<uint32_t>(scalar.bits);
      const uint32_t im_bits = static_cast<uint32_t>(scalar.second_bits);
      std::memcpy(&re, &re_bits, sizeof(Part));
      std::memcpy(&im, &im_bits, sizeof(Part));
    } else {
      std::memcpy(&re, &scalar.bits, sizeof(Part));
      std::memcpy(&im, &scalar.second_bits, sizeof(Part));
    }
    return T(re, im);
  } else if constexpr (std::is_same_v<T, float>) {
    const uint32_t bits = static_cast<uint32_t>(scalar.bits);
    float value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
  } else if constexpr (std::is_same_v<T, double>) {
    double value;
    std::memcpy(&value, &scalar.bits, sizeof(value));
    return value;
  } else if constexpr (std::is_same_v<T, bool>) {
    return scalar.bits != 0;
  } else {
    // The field's own type first (an int32 field keeps the low 32 bits of
    // the varint), then MavValues.h's narrowing.
    using Stored = typename Tr::Stored;
    return detail::Narrow<T>(static_cast<Stored>(scalar.bits), {}, std::nullopt);
  }
}

template <typename T>
std::optional<ArrayView<T>> ValueView::ViewArray() const {
  static_assert(view_detail::kFixedWidth<T>,
                "only float, double, int8_t, uint8_t and complex arrays lie in the bytes as they "
                "are: use CopyArray or ReadArray");
  const view_detail::ArrayRun run = RequireArray(detail::Traits<T>::kind);
  if (reinterpret_cast<std::uintptr_t>(run.payload.data()) % alignof(T) != 0) return std::nullopt;
  return ArrayView<T>(reinterpret_cast<const T*>(run.payload.data()), run.count, run.shape,
                      run.order);
}

template <typename T>
ArrayView<T> ValueView::CopyArray(T* out, size_t capacity) const {
  using Tr = detail::Traits<T>;
  static_assert(Tr::storage != detail::Storage::kText && Tr::storage != detail::Storage::kChrono,
                "text and time arrays are read with ReadArray");
  const view_detail::ArrayRun run = RequireArray(Tr::kind);
  if (run.count > capacity) detail::ThrowBufferTooSmall({}, run.count, capacity);
  if constexpr (view_detail::kFixedWidth<T>) {
    if (run.count != 0) std::memcpy(out, run.payload.data(), run.count * sizeof(T));
  } else {
    CopyVarints(run, out);
  }
  return ArrayView<T>(out, run.count, run.shape, run.order);
}

template <typename T, typename Fraction>
Array<T> ValueView::ReadArray() const {
  using Tr = detail::Traits<T>;
  const view_detail::ArrayRun run = RequireArray(Tr::kind);
  Array<T> result;
  result.shape = run.shape;
  result.order = run.order;
  if constexpr (Tr::storage == detail::Storage::kText || Tr::storage == detail::Storage::kChrono) {
    const std::vector<std::string_view> elements = Elements(run);
    result.values.reserve(elements.size());
    for (std::string_view element : elements) {
      if constexpr (Tr::storage == detail::Storage::kText) {
        result.values.emplace_back(element);
      } else {
        ChronoData chrono;
        view_detail::ChronoFields(element, run.content.depth + 1, &chrono);
        result.values.push_back(detail::ReadChrono<T, Fraction>(chrono, {}));
      }
    }
  } else if constexpr (std::is_same_v<T, bool>) {
    // std::vector<bool> keeps no contiguous bools.
    const std::unique_ptr<bool[]> values(new bool[run.count]);
    CopyArray<bool>(values.get(), run.count);
    result.values.assign(values.get(), values.get() + run.count);
  } else {
    result.values.resize(run.count);
    CopyArray<T>(result.values.data(), run.count);
  }
  return result;
}

}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_MAV_VIEW_H_
