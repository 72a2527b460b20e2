// MavProtobuf: the message classes of Mav.proto (package Tarnwick.MavProtobuf)
// on the system protocol-buffer runtime.
//
// Every class behaves like a compiled message of the runtime: reflection, text
// format, JSON, dynamic messages and downstream schemas that import Mav.proto
// all work on it. What the classes share (registration, unknown fields, the
// copy/move/merge protocol, the wire algorithms) is written once in the frame
// templates of namespace internal; each class is the list of its fields and
// their accessors.
#ifndef MAV_PROTOBUF_MAV_PB_H_
#define MAV_PROTOBUF_MAV_PB_H_

#include <google/protobuf/stubs/common.h>

#if GOOGLE_PROTOBUF_VERSION < 3021000 || GOOGLE_PROTOBUF_VERSION >= 3022000
#error "MavProtobuf is built for the 3.21 line of the protocol-buffer runtime"
#endif

#include <google/protobuf/arena.h>
#include <google/protobuf/arenastring.h>
#include <google/protobuf/generated_message_reflection.h>
#include <google/protobuf/generated_message_util.h>
#include <google/protobuf/map.h>
#include <google/protobuf/map_entry.h>
#include <google/protobuf/map_field_inl.h>
#include <google/protobuf/message.h>
#include <google/protobuf/metadata_lite.h>
#include <google/protobuf/parse_context.h>
#include <google/protobuf/repeated_field.h>
#include <google/protobuf/unknown_field_set.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <new>
#include <optional>
#include <string>
#include <utility>

#define MAV_PROTOBUF_EXPORT __attribute__((visibility("default")))

// File-level registration of Mav.proto with the runtime.
MAV_PROTOBUF_EXPORT extern const ::google::protobuf::internal::DescriptorTable
    descriptor_table_Mav_2eproto;

namespace protobuf_Mav_2eproto {
// Registers Mav.proto with the generated pool and factory; runs once however
// often it is called. Loading the library calls it.
MAV_PROTOBUF_EXPORT void AddDescriptors();
// Descriptor and reflection of the message at `index` in the file, binding
// them on first use.
MAV_PROTOBUF_EXPORT ::google::protobuf::Metadata MetadataAt(int index);
struct MAV_PROTOBUF_EXPORT TableStruct {
  static const uint32_t offsets[];
};
}  // namespace protobuf_Mav_2eproto

namespace Tarnwick {
namespace MavProtobuf {

namespace protobuf = ::google::protobuf;

class KVariant;
class PropertyMap_MapDataEntry_DoNotUse;
class PropertyMap;
class PropertyNode;
class PropertyList;
class ComplexFloat;
class ComplexDouble;
class ChronoData;
class ArrayChronoData;
class ArrayString;
class ArrayFloat;
class ArrayDouble;
class ArrayInt8;
class ArrayInt16;
class ArrayInt32;
class ArrayInt64;
class ArrayUnsignedInt8;
class ArrayUnsignedInt16;
class ArrayUnsignedInt32;
class ArrayUnsignedInt64;
class ArrayBool;
class ArrayDataUnion;
class ScalarDataUnion;

}  // namespace MavProtobuf
}  // namespace Tarnwick

// Every class is created through the runtime's factory hook; declared before
// any use so the library's definitions are the ones taken.
namespace google {
namespace protobuf {
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::KVariant* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::KVariant>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::PropertyMap_MapDataEntry_DoNotUse* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::PropertyMap_MapDataEntry_DoNotUse>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::PropertyMap* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::PropertyMap>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::PropertyNode* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::PropertyNode>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::PropertyList* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::PropertyList>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ComplexFloat* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ComplexFloat>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ComplexDouble* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ComplexDouble>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ChronoData* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ChronoData>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayChronoData* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayChronoData>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayString* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayString>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayFloat* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayFloat>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayDouble* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayDouble>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayInt8* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayInt8>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayInt16* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayInt16>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayInt32* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayInt32>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayInt64* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayInt64>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayUnsignedInt8* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayUnsignedInt8>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayUnsignedInt16* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayUnsignedInt16>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayUnsignedInt32* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayUnsignedInt32>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayUnsignedInt64* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayUnsignedInt64>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayBool* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayBool>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ArrayDataUnion* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ArrayDataUnion>(Arena*);
template <> MAV_PROTOBUF_EXPORT ::Tarnwick::MavProtobuf::ScalarDataUnion* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::ScalarDataUnion>(Arena*);
}  // namespace protobuf
}  // namespace google

namespace Tarnwick {
namespace MavProtobuf {

namespace internal {

using protobuf::internal::ConstantInitialized;
using protobuf::internal::ParseContext;
using protobuf::io::EpsCopyOutputStream;

// Storage of a default instance: built at compile time, so it exists before any
// code runs, and never destroyed, so it outlives every user at exit.
template <typename T>
struct DefaultInstance {
  constexpr DefaultInstance() : instance(ConstantInitialized{}) {}
  ~DefaultInstance() {}
  union {
    T instance;
  };
};

// What a class's field reader made of one tag: no value when the tag is not one
// of the class's own fields, else the input position after the field (null
// when the input is malformed).
using FieldRead = std::optional<const char*>;

// Room for `more` further elements of a packed numeric field. The first
// allocation holds at least four elements whatever the runtime's growth
// policy: an unpacked element's reader goes on reading while the field has
// spare capacity, and what it accepts must not depend on the element width.
constexpr int kPackedFirstCapacity = 4;
template <typename T>
void ReservePacked(protobuf::RepeatedField<T>* values, int more) {
  const int wanted = values->size() + more;
  if (wanted <= values->Capacity()) return;
  values->Reserve(values->Capacity() == 0 ? (std::max)(wanted, kPackedFirstCapacity) : wanted);
}
template <typename T>
void AddPacked(protobuf::RepeatedField<T>* values, T value) {
  ReservePacked(values, 1);
  values->AddAlreadyReserved(value);
}

// Memory for message objects on the heap; see MessageFrame's operator new.
// AllocateMessage throws std::bad_alloc on failure, TryAllocateMessage returns
// null.
MAV_PROTOBUF_EXPORT void* AllocateMessage(size_t size);
MAV_PROTOBUF_EXPORT void* TryAllocateMessage(size_t size) noexcept;
MAV_PROTOBUF_EXPORT void FreeMessage(void* message) noexcept;

// The frame every message class shares: registration and reflection, the
// unknown-field store, the cached size, and the copy, merge, swap, parse and
// serialize protocol. Objects never belong to an arena: New(arena) with a
// non-null arena places the object in the arena's memory and has the arena
// destroy it, but the object reports no arena. A class supplies its fields through six hooks:
//   FieldRead ReadField(uint32_t tag, const char* ptr, ParseContext* ctx);
//   size_t FieldsByteSize() const;
//   uint8_t* WriteFields(uint8_t* target, EpsCopyOutputStream* stream) const;
//   void MergeFields(const Derived& from);
//   void ClearFields();
//   void SwapFields(Derived* other);
template <typename Derived>
class MAV_PROTOBUF_EXPORT MessageFrame : public protobuf::Message {
 public:
  static const protobuf::Descriptor* descriptor() { return GetDescriptor(); }
  static const protobuf::Descriptor* GetDescriptor();
  static const protobuf::Reflection* GetReflection();
  static const Derived& default_instance() {
    return *Derived::internal_default_instance();
  }

  // A tree is many small objects, and the system's malloc takes longer over
  // them than the parse itself, so the library allocates its own (arena
  // placement is unchanged). Every form of new is declared, as a class's own
  // operator new hides the global ones.
  static void* operator new(size_t size) { return AllocateMessage(size); }
  static void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return TryAllocateMessage(size);
  }
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* message) noexcept { FreeMessage(message); }
  static void operator delete(void* message, const std::nothrow_t&) noexcept {
    FreeMessage(message);
  }
  static void operator delete(void*, void*) noexcept {}

  using protobuf::Message::CopyFrom;
  void CopyFrom(const Derived& from);
  using protobuf::Message::MergeFrom;
  void MergeFrom(const Derived& from);
  void Swap(Derived* other);

  void Clear() final;
  bool IsInitialized() const final { return true; }
  size_t ByteSizeLong() const final;
  int GetCachedSize() const final { return cached_size_.Get(); }
  const char* _InternalParse(const char* ptr, ParseContext* ctx) final;
  uint8_t* _InternalSerialize(uint8_t* target,
                              EpsCopyOutputStream* stream) const final;
  // The runtime's string serializers, except that the string grows while it
  // is written instead of being zero-filled to its full size first, so a large
  // array's bytes go to memory once. Called through a base class reference,
  // the runtime's own versions run, with the same result.
  bool SerializeToString(std::string* output) const;
  bool AppendToString(std::string* output) const;
  std::string SerializeAsString() const;
  // Writes the same bytes as serialization into caller-sized memory; sizes
  // cached by ByteSizeLong() must be current. Returns the end of the output.
  uint8_t* InternalSerializeWithCachedSizesToArray(bool deterministic,
                                                   uint8_t* target) const;
  protobuf::Metadata GetMetadata() const final;

 protected:
  constexpr MessageFrame() = default;
  MessageFrame(const MessageFrame& from);
  ~MessageFrame() override;

  void InternalSwap(Derived* other);
  void SwapUnknownFields(MessageFrame* other) {
    _internal_metadata_.InternalSwap(&other->_internal_metadata_);
  }
  const ClassData* GetClassData() const final;

 private:
  friend class protobuf::Arena;
  template <typename T>
  friend class protobuf::Arena::InternalHelper;

  void SetCachedSize(int size) const final { cached_size_.Set(size); }
  static void MergeImpl(protobuf::Message& to, const protobuf::Message& from);
  static const ClassData kClassData;

  mutable protobuf::internal::CachedSize cached_size_;
};

// Two singular scalar fields, numbers 1 and 2 (ComplexFloat, ComplexDouble,
// ChronoData). Copy construction keeps the bits (a -0.0 survives); merge and
// serialization skip values that compare equal to zero.
template <typename Derived, typename First, typename Second>
class MAV_PROTOBUF_EXPORT ScalarPairFrame : public MessageFrame<Derived> {
 public:
  constexpr ScalarPairFrame() = default;
  explicit constexpr ScalarPairFrame(ConstantInitialized) {}
  ScalarPairFrame(const ScalarPairFrame& from);
  ScalarPairFrame(ScalarPairFrame&& from) noexcept;
  ScalarPairFrame& operator=(const ScalarPairFrame& from);
  ScalarPairFrame& operator=(ScalarPairFrame&& from) noexcept;

 protected:
  First first_ = 0;
  Second second_ = 0;

 private:
  friend class MessageFrame<Derived>;
  FieldRead ReadField(uint32_t tag, const char* ptr, ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, EpsCopyOutputStream* stream) const;
  void MergeFields(const ScalarPairFrame& from);
  void ClearFields();
  void SwapFields(ScalarPairFrame* other);
};

// One packed repeated numeric field, number 1: the nine numeric and bool
// arrays. Packed is the only form written; the one-element-per-tag form is
// read too.
template <typename Derived, typename Element>
class MAV_PROTOBUF_EXPORT PackedArrayFrame : public MessageFrame<Derived> {
 public:
  constexpr PackedArrayFrame() = default;
  explicit constexpr PackedArrayFrame(ConstantInitialized) {}
  PackedArrayFrame(const PackedArrayFrame& from);
  PackedArrayFrame(PackedArrayFrame&& from) noexcept;
  PackedArrayFrame& operator=(const PackedArrayFrame& from);
  PackedArrayFrame& operator=(PackedArrayFrame&& from) noexcept;

 protected:
  protobuf::RepeatedField<Element> values_;
  // Payload length computed by the last ByteSizeLong(); the serializers write
  // it as the length prefix without recomputing it.
  mutable protobuf::internal::CachedSize values_cached_byte_size_;

 private:
  friend class MessageFrame<Derived>;
  FieldRead ReadField(uint32_t tag, const char* ptr, ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, EpsCopyOutputStream* stream) const;
  void MergeFields(const PackedArrayFrame& from);
  void ClearFields();
  void SwapFields(PackedArrayFrame* other);
};

// One singular bytes field, number 1, holding a whole 8-bit array (ArrayInt8,
// ArrayUnsignedInt8). A later occurrence on the wire replaces the bytes.
template <typename Derived>
class MAV_PROTOBUF_EXPORT ByteArrayFrame : public MessageFrame<Derived> {
 public:
  constexpr ByteArrayFrame() = default;
  explicit constexpr ByteArrayFrame(ConstantInitialized) {}
  ByteArrayFrame(const ByteArrayFrame& from);
  ByteArrayFrame(ByteArrayFrame&& from) noexcept;
  ByteArrayFrame& operator=(const ByteArrayFrame& from);
  ByteArrayFrame& operator=(ByteArrayFrame&& from) noexcept;
  ~ByteArrayFrame() override { bytes_.Destroy(); }

 protected:
  protobuf::internal::ArenaStringPtr bytes_{
      &protobuf::internal::fixed_address_empty_string, ConstantInitialized{}};

 private:
  friend class MessageFrame<Derived>;
  FieldRead ReadField(uint32_t tag, const char* ptr, ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, EpsCopyOutputStream* stream) const;
  void MergeFields(const ByteArrayFrame& from);
  void ClearFields();
  void SwapFields(ByteArrayFrame* other);
};

// One repeated message field, number 1 (ArrayChronoData, PropertyList).
// Cleared elements stay allocated and are reused by later additions.
template <typename Derived, typename Element>
class MAV_PROTOBUF_EXPORT RepeatedMessageFrame : public MessageFrame<Derived> {
 public:
  constexpr RepeatedMessageFrame() = default;
  explicit constexpr RepeatedMessageFrame(ConstantInitialized) {}
  RepeatedMessageFrame(const RepeatedMessageFrame& from);
  RepeatedMessageFrame(RepeatedMessageFrame&& from) noexcept;
  RepeatedMessageFrame& operator=(const RepeatedMessageFrame& from);
  RepeatedMessageFrame& operator=(RepeatedMessageFrame&& from) noexcept;

 protected:
  protobuf::RepeatedPtrField<Element> elements_;

 private:
  friend class MessageFrame<Derived>;
  FieldRead ReadField(uint32_t tag, const char* ptr, ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, EpsCopyOutputStream* stream) const;
  void MergeFields(const RepeatedMessageFrame& from);
  void ClearFields();
  void SwapFields(RepeatedMessageFrame* other);
};

// Bit set of field numbers, for telling a oneof which members are messages and
// which are byte strings.
constexpr uint32_t Members(std::initializer_list<uint32_t> numbers) {
  uint32_t set = 0;
  for (uint32_t number : numbers) set |= uint32_t{1} << number;
  return set;
}

// The storage a oneof's members share: a member occupies it by value, as a
// string pointer or as an owning message pointer.
union OneofSlot {
  constexpr OneofSlot() : message(nullptr) {}
  protobuf::Message* message;
  protobuf::internal::ArenaStringPtr string;
  float float_value;
  double double_value;
  int32_t int32_value;
  int64_t int64_value;
  uint32_t uint32_value;
  uint64_t uint64_value;
  bool bool_value;
};

// The storage a oneof's members share and the case word naming the member that
// is set (0: none). The oneof owns its message or string member; moving to
// another member or clearing frees it. The member accessor sets of every oneof
// are written here once.
template <uint32_t kMessageMembers, uint32_t kStringMembers = 0>
struct Oneof {
  using Slot = OneofSlot;

  Slot slot;
  uint32_t case_number = 0;

  bool Holds(uint32_t number) const { return case_number == number; }

  // Frees the member that is set and leaves the oneof empty.
  void Clear() {
    if (((kMessageMembers >> case_number) & 1) != 0) {
      delete slot.message;
    } else if (((kStringMembers >> case_number) & 1) != 0) {
      slot.string.Destroy();
    }
    case_number = 0;
  }
  void Clear(uint32_t number) {
    if (Holds(number)) Clear();
  }
  // Makes `number` the set member, freeing another one; a member that is
  // already set keeps its value.
  void Select(uint32_t number) {
    if (Holds(number)) return;
    Clear();
    case_number = number;
  }
  void Swap(Oneof* other) {
    std::swap(slot, other->slot);
    std::swap(case_number, other->case_number);
  }

  template <typename T>
  T Scalar(uint32_t number, T Slot::*member) const {
    return Holds(number) ? slot.*member : T{};
  }
  template <typename T>
  void SetScalar(uint32_t number, T Slot::*member, T value) {
    Select(number);
    slot.*member = value;
  }

  const std::string& String(uint32_t number) const {
    return Holds(number) ? slot.string.Get()
                         : protobuf::internal::GetEmptyStringAlreadyInited();
  }
  protobuf::internal::ArenaStringPtr* SelectString(uint32_t number) {
    if (!Holds(number)) {
      Clear();
      case_number = number;
      slot.string.InitDefault();
    }
    return &slot.string;
  }
  // The caller gets the very string the oneof held (a new empty one if the
  // member never left the shared empty string).
  std::string* ReleaseString(uint32_t number) {
    if (!Holds(number)) return nullptr;
    case_number = 0;
    if (slot.string.IsDefault()) return new std::string();
    return slot.string.Release();
  }
  // Adopts `value` itself, without the copy the runtime's SetAllocated makes
  // in its debug build: afterwards the member's address is `value`.
  void SetAllocatedString(uint32_t number, std::string* value) {
    Clear();
    if (value == nullptr) return;
    case_number = number;
    slot.string.InitAllocated(value, nullptr);
  }

  template <typename T>
  const T& Message(uint32_t number) const {
    return Holds(number) ? *static_cast<const T*>(slot.message)
                         : *T::internal_default_instance();
  }
  template <typename T>
  T* MutableMessage(uint32_t number) {
    if (!Holds(number)) {
      Clear();
      case_number = number;
      slot.message = new T();
    }
    return static_cast<T*>(slot.message);
  }
  template <typename T>
  T* ReleaseMessage(uint32_t number) {
    if (!Holds(number)) return nullptr;
    case_number = 0;
    return static_cast<T*>(std::exchange(slot.message, nullptr));
  }
  void SetAllocatedMessage(uint32_t number, protobuf::Message* value) {
    Clear();
    if (value == nullptr) return;
    case_number = number;
    slot.message = value;
  }
};

}  // namespace internal

// ---------------------------------------------------------------------------
// Value messages

class MAV_PROTOBUF_EXPORT ComplexFloat final
    : public internal::ScalarPairFrame<ComplexFloat, float, float> {
 public:
  using ScalarPairFrame::ScalarPairFrame;
  static constexpr int kIndexInFileMessages = 5;
  static const ComplexFloat* internal_default_instance();
  ComplexFloat* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ComplexFloat>(arena);
  }

  enum : int { kReContentFieldNumber = 1, kImContentFieldNumber = 2 };
  float re_content() const { return first_; }
  void set_re_content(float value) { first_ = value; }
  void clear_re_content() { first_ = 0; }
  float im_content() const { return second_; }
  void set_im_content(float value) { second_ = value; }
  void clear_im_content() { second_ = 0; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ComplexDouble final
    : public internal::ScalarPairFrame<ComplexDouble, double, double> {
 public:
  using ScalarPairFrame::ScalarPairFrame;
  static constexpr int kIndexInFileMessages = 6;
  static const ComplexDouble* internal_default_instance();
  ComplexDouble* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ComplexDouble>(arena);
  }

  enum : int { kReContentFieldNumber = 1, kImContentFieldNumber = 2 };
  double re_content() const { return first_; }
  void set_re_content(double value) { first_ = value; }
  void clear_re_content() { first_ = 0; }
  double im_content() const { return second_; }
  void set_im_content(double value) { second_ = value; }
  void clear_im_content() { second_ = 0; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// A duration or a time point: whole seconds and an unsigned fraction whose unit
// the application chooses.
class MAV_PROTOBUF_EXPORT ChronoData final
    : public internal::ScalarPairFrame<ChronoData, int64_t, uint64_t> {
 public:
  using ScalarPairFrame::ScalarPairFrame;
  static constexpr int kIndexInFileMessages = 7;
  static const ChronoData* internal_default_instance();
  ChronoData* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ChronoData>(arena);
  }

  enum : int { kSecondsContentFieldNumber = 1, kFractionalContentFieldNumber = 2 };
  int64_t seconds_content() const { return first_; }
  void set_seconds_content(int64_t value) { first_ = value; }
  void clear_seconds_content() { first_ = 0; }
  uint64_t fractional_content() const { return second_; }
  void set_fractional_content(uint64_t value) { second_ = value; }
  void clear_fractional_content() { second_ = 0; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// ---------------------------------------------------------------------------
// Arrays

class MAV_PROTOBUF_EXPORT ArrayChronoData final
    : public internal::RepeatedMessageFrame<ArrayChronoData, ChronoData> {
 public:
  using RepeatedMessageFrame::RepeatedMessageFrame;
  static constexpr int kIndexInFileMessages = 8;
  static const ArrayChronoData* internal_default_instance();
  ArrayChronoData* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayChronoData>(arena);
  }

  enum : int { kChronoContentFieldNumber = 1 };
  int chrono_content_size() const { return elements_.size(); }
  const ChronoData& chrono_content(int index) const { return elements_.Get(index); }
  ChronoData* mutable_chrono_content(int index) { return elements_.Mutable(index); }
  ChronoData* add_chrono_content() { return elements_.Add(); }
  void clear_chrono_content() { elements_.Clear(); }
  const protobuf::RepeatedPtrField<ChronoData>& chrono_content() const { return elements_; }
  protobuf::RepeatedPtrField<ChronoData>* mutable_chrono_content() { return &elements_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// A sequence of byte strings; elements are not checked as UTF-8, so text in any
// encoding and opaque blocks travel unchanged.
class MAV_PROTOBUF_EXPORT ArrayString final : public internal::MessageFrame<ArrayString> {
 public:
  constexpr ArrayString() = default;
  explicit constexpr ArrayString(internal::ConstantInitialized) {}
  ArrayString(const ArrayString& from);
  ArrayString(ArrayString&& from) noexcept : ArrayString() { InternalSwap(&from); }
  ArrayString& operator=(const ArrayString& from) { CopyFrom(from); return *this; }
  ArrayString& operator=(ArrayString&& from) noexcept {
    if (this != &from) InternalSwap(&from);
    return *this;
  }
  static constexpr int kIndexInFileMessages = 9;
  static const ArrayString* internal_default_instance();
  ArrayString* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayString>(arena);
  }

  enum : int { kStringContentFieldNumber = 1 };
  int string_content_size() const { return string_content_.size(); }
  const std::string& string_content(int index) const { return string_content_.Get(index); }
  std::string* mutable_string_content(int index) { return string_content_.Mutable(index); }
  void set_string_content(int index, const std::string& value) { *string_content_.Mutable(index) = value; }
  void set_string_content(int index, std::string&& value) { *string_content_.Mutable(index) = std::move(value); }
  void set_string_content(int index, const char* value) { string_content_.Mutable(index)->assign(value); }
  void set_string_content(int index, const void* value, size_t size) {
    string_content_.Mutable(index)->assign(static_cast<const char*>(value), size);
  }
  std::string* add_string_content() { return string_content_.Add(); }
  void add_string_content(const std::string& value) { string_content_.Add()->assign(value); }
  void add_string_content(std::string&& value) { string_content_.Add(std::move(value)); }
  void add_string_content(const char* value) { string_content_.Add()->assign(value); }
  void add_string_content(const void* value, size_t size) {
    string_content_.Add()->assign(static_cast<const char*>(value), size);
  }
  void clear_string_content() { string_content_.Clear(); }
  const protobuf::RepeatedPtrField<std::string>& string_content() const { return string_content_; }
  protobuf::RepeatedPtrField<std::string>* mutable_string_content() { return &string_content_; }

 private:
  friend class MessageFrame<ArrayString>;
  friend struct ::protobuf_Mav_2eproto::TableStruct;
  internal::FieldRead ReadField(uint32_t tag, const char* ptr, internal::ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const;
  void MergeFields(const ArrayString& from);
  void ClearFields();
  void SwapFields(ArrayString* other);

  protobuf::RepeatedPtrField<std::string> string_content_;
};

class MAV_PROTOBUF_EXPORT ArrayFloat final
    : public internal::PackedArrayFrame<ArrayFloat, float> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 10;
  static const ArrayFloat* internal_default_instance();
  ArrayFloat* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayFloat>(arena);
  }

  enum : int { kFloatContentFieldNumber = 1 };
  int float_content_size() const { return values_.size(); }
  float float_content(int index) const { return values_.Get(index); }
  void set_float_content(int index, float value) { values_.Set(index, value); }
  void add_float_content(float value) { internal::AddPacked(&values_, value); }
  void clear_float_content() { values_.Clear(); }
  const protobuf::RepeatedField<float>& float_content() const { return values_; }
  protobuf::RepeatedField<float>* mutable_float_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ArrayDouble final
    : public internal::PackedArrayFrame<ArrayDouble, double> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 11;
  static const ArrayDouble* internal_default_instance();
  ArrayDouble* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayDouble>(arena);
  }

  enum : int { kDoubleContentFieldNumber = 1 };
  int double_content_size() const { return values_.size(); }
  double double_content(int index) const { return values_.Get(index); }
  void set_double_content(int index, double value) { values_.Set(index, value); }
  void add_double_content(double value) { internal::AddPacked(&values_, value); }
  void clear_double_content() { values_.Clear(); }
  const protobuf::RepeatedField<double>& double_content() const { return values_; }
  protobuf::RepeatedField<double>* mutable_double_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// Signed 8-bit values, one byte each, in one byte string.
class MAV_PROTOBUF_EXPORT ArrayInt8 final : public internal::ByteArrayFrame<ArrayInt8> {
 public:
  using ByteArrayFrame::ByteArrayFrame;
  static constexpr int kIndexInFileMessages = 12;
  static const ArrayInt8* internal_default_instance();
  ArrayInt8* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayInt8>(arena);
  }

  enum : int { kInt8ContentFieldNumber = 1 };
  const std::string& int8_content() const { return bytes_.Get(); }
  void set_int8_content(const std::string& value) { bytes_.Set(value, nullptr); }
  void set_int8_content(std::string&& value) { bytes_.Set(std::move(value), nullptr); }
  void set_int8_content(const char* value) { bytes_.Set(value, nullptr); }
  void set_int8_content(const void* value, size_t size) { bytes_.SetBytes(value, size, nullptr); }
  std::string* mutable_int8_content() { return bytes_.Mutable(nullptr); }
  std::string* release_int8_content() { return bytes_.Release(); }
  // The runtime adopts `value` in its release build but a copy of it in its
  // debug build: keep using the accessor, not `value`, afterwards.
  void set_allocated_int8_content(std::string* value) { bytes_.SetAllocated(value, nullptr); }
  void clear_int8_content() { bytes_.ClearToEmpty(); }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// Signed 16-bit values carried as int32: nothing narrows or checks them.
class MAV_PROTOBUF_EXPORT ArrayInt16 final
    : public internal::PackedArrayFrame<ArrayInt16, int32_t> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 13;
  static const ArrayInt16* internal_default_instance();
  ArrayInt16* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayInt16>(arena);
  }

  enum : int { kInt16ContentFieldNumber = 1 };
  int int16_content_size() const { return values_.size(); }
  int32_t int16_content(int index) const { return values_.Get(index); }
  void set_int16_content(int index, int32_t value) { values_.Set(index, value); }
  void add_int16_content(int32_t value) { internal::AddPacked(&values_, value); }
  void clear_int16_content() { values_.Clear(); }
  const protobuf::RepeatedField<int32_t>& int16_content() const { return values_; }
  protobuf::RepeatedField<int32_t>* mutable_int16_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ArrayInt32 final
    : public internal::PackedArrayFrame<ArrayInt32, int32_t> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 14;
  static const ArrayInt32* internal_default_instance();
  ArrayInt32* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayInt32>(arena);
  }

  enum : int { kInt32ContentFieldNumber = 1 };
  int int32_content_size() const { return values_.size(); }
  int32_t int32_content(int index) const { return values_.Get(index); }
  void set_int32_content(int index, int32_t value) { values_.Set(index, value); }
  void add_int32_content(int32_t value) { internal::AddPacked(&values_, value); }
  void clear_int32_content() { values_.Clear(); }
  const protobuf::RepeatedField<int32_t>& int32_content() const { return values_; }
  protobuf::RepeatedField<int32_t>* mutable_int32_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ArrayInt64 final
    : public internal::PackedArrayFrame<ArrayInt64, int64_t> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 15;
  static const ArrayInt64* internal_default_instance();
  ArrayInt64* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayInt64>(arena);
  }

  enum : int { kInt64ContentFieldNumber = 1 };
  int int64_content_size() const { return values_.size(); }
  int64_t int64_content(int index) const { return values_.Get(index); }
  void set_int64_content(int index, int64_t value) { values_.Set(index, value); }
  void add_int64_content(int64_t value) { internal::AddPacked(&values_, value); }
  void clear_int64_content() { values_.Clear(); }
  const protobuf::RepeatedField<int64_t>& int64_content() const { return values_; }
  protobuf::RepeatedField<int64_t>* mutable_int64_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// Unsigned 8-bit values, one byte each, in one byte string.
class MAV_PROTOBUF_EXPORT ArrayUnsignedInt8 final
    : public internal::ByteArrayFrame<ArrayUnsignedInt8> {
 public:
  using ByteArrayFrame::ByteArrayFrame;
  static constexpr int kIndexInFileMessages = 16;
  static const ArrayUnsignedInt8* internal_default_instance();
  ArrayUnsignedInt8* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayUnsignedInt8>(arena);
  }

  enum : int { kUnsignedInt8ContentFieldNumber = 1 };
  const std::string& unsignedint8_content() const { return bytes_.Get(); }
  void set_unsignedint8_content(const std::string& value) { bytes_.Set(value, nullptr); }
  void set_unsignedint8_content(std::string&& value) { bytes_.Set(std::move(value), nullptr); }
  void set_unsignedint8_content(const char* value) { bytes_.Set(value, nullptr); }
  void set_unsignedint8_content(const void* value, size_t size) { bytes_.SetBytes(value, size, nullptr); }
  std::string* mutable_unsignedint8_content() { return bytes_.Mutable(nullptr); }
  std::string* release_unsignedint8_content() { return bytes_.Release(); }
  // The runtime adopts `value` in its release build but a copy of it in its
  // debug build: keep using the accessor, not `value`, afterwards.
  void set_allocated_unsignedint8_content(std::string* value) { bytes_.SetAllocated(value, nullptr); }
  void clear_unsignedint8_content() { bytes_.ClearToEmpty(); }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// Unsigned 16-bit values carried as uint32: nothing narrows or checks them.
class MAV_PROTOBUF_EXPORT ArrayUnsignedInt16 final
    : public internal::PackedArrayFrame<ArrayUnsignedInt16, uint32_t> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 17;
  static const ArrayUnsignedInt16* internal_default_instance();
  ArrayUnsignedInt16* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayUnsignedInt16>(arena);
  }

  enum : int { kUnsignedInt16ContentFieldNumber = 1 };
  int unsignedint16_content_size() const { return values_.size(); }
  uint32_t unsignedint16_content(int index) const { return values_.Get(index); }
  void set_unsignedint16_content(int index, uint32_t value) { values_.Set(index, value); }
  void add_unsignedint16_content(uint32_t value) { internal::AddPacked(&values_, value); }
  void clear_unsignedint16_content() { values_.Clear(); }
  const protobuf::RepeatedField<uint32_t>& unsignedint16_content() const { return values_; }
  protobuf::RepeatedField<uint32_t>* mutable_unsignedint16_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ArrayUnsignedInt32 final
    : public internal::PackedArrayFrame<ArrayUnsignedInt32, uint32_t> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 18;
  static const ArrayUnsignedInt32* internal_default_instance();
  ArrayUnsignedInt32* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayUnsignedInt32>(arena);
  }

  enum : int { kUnsignedInt32ContentFieldNumber = 1 };
  int unsignedint32_content_size() const { return values_.size(); }
  uint32_t unsignedint32_content(int index) const { return values_.Get(index); }
  void set_unsignedint32_content(int index, uint32_t value) { values_.Set(index, value); }
  void add_unsignedint32_content(uint32_t value) { internal::AddPacked(&values_, value); }
  void clear_unsignedint32_content() { values_.Clear(); }
  const protobuf::RepeatedField<uint32_t>& unsignedint32_content() const { return values_; }
  protobuf::RepeatedField<uint32_t>* mutable_unsignedint32_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ArrayUnsignedInt64 final
    : public internal::PackedArrayFrame<ArrayUnsignedInt64, uint64_t> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 19;
  static const ArrayUnsignedInt64* internal_default_instance();
  ArrayUnsignedInt64* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayUnsignedInt64>(arena);
  }

  enum : int { kUnsignedInt64ContentFieldNumber = 1 };
  int unsignedint64_content_size() const { return values_.size(); }
  uint64_t unsignedint64_content(int index) const { return values_.Get(index); }
  void set_unsignedint64_content(int index, uint64_t value) { values_.Set(index, value); }
  void add_unsignedint64_content(uint64_t value) { internal::AddPacked(&values_, value); }
  void clear_unsignedint64_content() { values_.Clear(); }
  const protobuf::RepeatedField<uint64_t>& unsignedint64_content() const { return values_; }
  protobuf::RepeatedField<uint64_t>* mutable_unsignedint64_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

class MAV_PROTOBUF_EXPORT ArrayBool final
    : public internal::PackedArrayFrame<ArrayBool, bool> {
 public:
  using PackedArrayFrame::PackedArrayFrame;
  static constexpr int kIndexInFileMessages = 20;
  static const ArrayBool* internal_default_instance();
  ArrayBool* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayBool>(arena);
  }

  enum : int { kBoolContentFieldNumber = 1 };
  int bool_content_size() const { return values_.size(); }
  bool bool_content(int index) const { return values_.Get(index); }
  void set_bool_content(int index, bool value) { values_.Set(index, value); }
  void add_bool_content(bool value) { internal::AddPacked(&values_, value); }
  void clear_bool_content() { values_.Clear(); }
  const protobuf::RepeatedField<bool>& bool_content() const { return values_; }
  protobuf::RepeatedField<bool>* mutable_bool_content() { return &values_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// ---------------------------------------------------------------------------
// Unions

namespace internal {
// The sixteen message members of ArrayDataUnion's `content`.
using ArrayContent =
    Oneof<Members({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 17, 18})>;
}  // namespace internal

// One n-dimensional array of sixteen element kinds, its shape `dimensions` and
// the opaque `dataorder`. Nothing relates the element count to the shape.
class MAV_PROTOBUF_EXPORT ArrayDataUnion final
    : public internal::MessageFrame<ArrayDataUnion> {
 public:
  constexpr ArrayDataUnion() = default;
  explicit constexpr ArrayDataUnion(internal::ConstantInitialized) {}
  ArrayDataUnion(const ArrayDataUnion& from);
  ArrayDataUnion(ArrayDataUnion&& from) noexcept : ArrayDataUnion() { InternalSwap(&from); }
  ArrayDataUnion& operator=(const ArrayDataUnion& from) { CopyFrom(from); return *this; }
  ArrayDataUnion& operator=(ArrayDataUnion&& from) noexcept {
    if (this != &from) InternalSwap(&from);
    return *this;
  }
  ~ArrayDataUnion() override;
  static constexpr int kIndexInFileMessages = 21;
  static const ArrayDataUnion* internal_default_instance();
  ArrayDataUnion* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ArrayDataUnion>(arena);
  }

  enum ContentCase {
    kStringContent = 1,
    kFloatContent = 2,
    kDoubleContent = 3,
    kInt8Content = 4,
    kInt16Content = 5,
    kInt32Content = 6,
    kInt64Content = 7,
    kUnsignedInt8Content = 8,
    kUnsignedInt16Content = 9,
    kUnsignedInt32Content = 10,
    kUnsignedInt64Content = 11,
    kBoolContent = 12,
    kComplexFloatContent = 13,
    kComplexDoubleContent = 14,
    kDurationContent = 17,
    kTimePointContent = 18,
    CONTENT_NOT_SET = 0,
  };
  enum : int {
    kStringContentFieldNumber = 1,
    kFloatContentFieldNumber = 2,
    kDoubleContentFieldNumber = 3,
    kInt8ContentFieldNumber = 4,
    kInt16ContentFieldNumber = 5,
    kInt32ContentFieldNumber = 6,
    kInt64ContentFieldNumber = 7,
    kUnsignedInt8ContentFieldNumber = 8,
    kUnsignedInt16ContentFieldNumber = 9,
    kUnsignedInt32ContentFieldNumber = 10,
    kUnsignedInt64ContentFieldNumber = 11,
    kBoolContentFieldNumber = 12,
    kComplexFloatContentFieldNumber = 13,
    kComplexDoubleContentFieldNumber = 14,
    kDataorderFieldNumber = 15,
    kDimensionsFieldNumber = 16,
    kDurationContentFieldNumber = 17,
    kTimePointContentFieldNumber = 18,
  };

  ContentCase content_case() const { return static_cast<ContentCase>(content_.case_number); }
  void clear_content() { content_.Clear(); }

  bool has_string_content() const { return content_.Holds(kStringContent); }
  const ArrayString& string_content() const { return content_.Message<ArrayString>(kStringContent); }
  ArrayString* mutable_string_content() { return content_.MutableMessage<ArrayString>(kStringContent); }
  ArrayString* release_string_content() { return content_.ReleaseMessage<ArrayString>(kStringContent); }
  void set_allocated_string_content(ArrayString* value) { content_.SetAllocatedMessage(kStringContent, value); }
  void clear_string_content() { content_.Clear(kStringContent); }

  bool has_float_content() const { return content_.Holds(kFloatContent); }
  const ArrayFloat& float_content() const { return content_.Message<ArrayFloat>(kFloatContent); }
  ArrayFloat* mutable_float_content() { return content_.MutableMessage<ArrayFloat>(kFloatContent); }
  ArrayFloat* release_float_content() { return content_.ReleaseMessage<ArrayFloat>(kFloatContent); }
  void set_allocated_float_content(ArrayFloat* value) { content_.SetAllocatedMessage(kFloatContent, value); }
  void clear_float_content() { content_.Clear(kFloatContent); }

  bool has_double_content() const { return content_.Holds(kDoubleContent); }
  const ArrayDouble& double_content() const { return content_.Message<ArrayDouble>(kDoubleContent); }
  ArrayDouble* mutable_double_content() { return content_.MutableMessage<ArrayDouble>(kDoubleContent); }
  ArrayDouble* release_double_content() { return content_.ReleaseMessage<ArrayDouble>(kDoubleContent); }
  void set_allocated_double_content(ArrayDouble* value) { content_.SetAllocatedMessage(kDoubleContent, value); }
  void clear_double_content() { content_.Clear(kDoubleContent); }

  bool has_int8_content() const { return content_.Holds(kInt8Content); }
  const ArrayInt8& int8_content() const { return content_.Message<ArrayInt8>(kInt8Content); }
  ArrayInt8* mutable_int8_content() { return content_.MutableMessage<ArrayInt8>(kInt8Content); }
  ArrayInt8* release_int8_content() { return content_.ReleaseMessage<ArrayInt8>(kInt8Content); }
  void set_allocated_int8_content(ArrayInt8* value) { content_.SetAllocatedMessage(kInt8Content, value); }
  void clear_int8_content() { content_.Clear(kInt8Content); }

  bool has_int16_content() const { return content_.Holds(kInt16Content); }
  const ArrayInt16& int16_content() const { return content_.Message<ArrayInt16>(kInt16Content); }
  ArrayInt16* mutable_int16_content() { return content_.MutableMessage<ArrayInt16>(kInt16Content); }
  ArrayInt16* release_int16_content() { return content_.ReleaseMessage<ArrayInt16>(kInt16Content); }
  void set_allocated_int16_content(ArrayInt16* value) { content_.SetAllocatedMessage(kInt16Content, value); }
  void clear_int16_content() { content_.Clear(kInt16Content); }

  bool has_int32_content() const { return content_.Holds(kInt32Content); }
  const ArrayInt32& int32_content() const { return content_.Message<ArrayInt32>(kInt32Content); }
  ArrayInt32* mutable_int32_content() { return content_.MutableMessage<ArrayInt32>(kInt32Content); }
  ArrayInt32* release_int32_content() { return content_.ReleaseMessage<ArrayInt32>(kInt32Content); }
  void set_allocated_int32_content(ArrayInt32* value) { content_.SetAllocatedMessage(kInt32Content, value); }
  void clear_int32_content() { content_.Clear(kInt32Content); }

  bool has_int64_content() const { return content_.Holds(kInt64Content); }
  const ArrayInt64& int64_content() const { return content_.Message<ArrayInt64>(kInt64Content); }
  ArrayInt64* mutable_int64_content() { return content_.MutableMessage<ArrayInt64>(kInt64Content); }
  ArrayInt64* release_int64_content() { return content_.ReleaseMessage<ArrayInt64>(kInt64Content); }
  void set_allocated_int64_content(ArrayInt64* value) { content_.SetAllocatedMessage(kInt64Content, value); }
  void clear_int64_content() { content_.Clear(kInt64Content); }

  bool has_unsignedint8_content() const { return content_.Holds(kUnsignedInt8Content); }
  const ArrayUnsignedInt8& unsignedint8_content() const { return content_.Message<ArrayUnsignedInt8>(kUnsignedInt8Content); }
  ArrayUnsignedInt8* mutable_unsignedint8_content() { return content_.MutableMessage<ArrayUnsignedInt8>(kUnsignedInt8Content); }
  ArrayUnsignedInt8* release_unsignedint8_content() { return content_.ReleaseMessage<ArrayUnsignedInt8>(kUnsignedInt8Content); }
  void set_allocated_unsignedint8_content(ArrayUnsignedInt8* value) { content_.SetAllocatedMessage(kUnsignedInt8Content, value); }
  void clear_unsignedint8_content() { content_.Clear(kUnsignedInt8Content); }

  bool has_unsignedint16_content() const { return content_.Holds(kUnsignedInt16Content); }
  const ArrayUnsignedInt16& unsignedint16_content() const { return content_.Message<ArrayUnsignedInt16>(kUnsignedInt16Content); }
  ArrayUnsignedInt16* mutable_unsignedint16_content() { return content_.MutableMessage<ArrayUnsignedInt16>(kUnsignedInt16Content); }
  ArrayUnsignedInt16* release_unsignedint16_content() { return content_.ReleaseMessage<ArrayUnsignedInt16>(kUnsignedInt16Content); }
  void set_allocated_unsignedint16_content(ArrayUnsignedInt16* value) { content_.SetAllocatedMessage(kUnsignedInt16Content, value); }
  void clear_unsignedint16_content() { content_.Clear(kUnsignedInt16Content); }

  bool has_unsignedint32_content() const { return content_.Holds(kUnsignedInt32Content); }
  const ArrayUnsignedInt32& unsignedint32_content() const { return content_.Message<ArrayUnsignedInt32>(kUnsignedInt32Content); }
  ArrayUnsignedInt32* mutable_unsignedint32_content() { return content_.MutableMessage<ArrayUnsignedInt32>(kUnsignedInt32Content); }
  ArrayUnsignedInt32* release_unsignedint32_content() { return content_.ReleaseMessage<ArrayUnsignedInt32>(kUnsignedInt32Content); }
  void set_allocated_unsignedint32_content(ArrayUnsignedInt32* value) { content_.SetAllocatedMessage(kUnsignedInt32Content, value); }
  void clear_unsignedint32_content() { content_.Clear(kUnsignedInt32Content); }

  bool has_unsignedint64_content() const { return content_.Holds(kUnsignedInt64Content); }
  const ArrayUnsignedInt64& unsignedint64_content() const { return content_.Message<ArrayUnsignedInt64>(kUnsignedInt64Content); }
  ArrayUnsignedInt64* mutable_unsignedint64_content() { return content_.MutableMessage<ArrayUnsignedInt64>(kUnsignedInt64Content); }
  ArrayUnsignedInt64* release_unsignedint64_content() { return content_.ReleaseMessage<ArrayUnsignedInt64>(kUnsignedInt64Content); }
  void set_allocated_unsignedint64_content(ArrayUnsignedInt64* value) { content_.SetAllocatedMessage(kUnsignedInt64Content, value); }
  void clear_unsignedint64_content() { content_.Clear(kUnsignedInt64Content); }

  bool has_bool_content() const { return content_.Holds(kBoolContent); }
  const ArrayBool& bool_content() const { return content_.Message<ArrayBool>(kBoolContent); }
  ArrayBool* mutable_bool_content() { return content_.MutableMessage<ArrayBool>(kBoolContent); }
  ArrayBool* release_bool_content() { return content_.ReleaseMessage<ArrayBool>(kBoolContent); }
  void set_allocated_bool_content(ArrayBool* value) { content_.SetAllocatedMessage(kBoolContent, value); }
  void clear_bool_content() { content_.Clear(kBoolContent); }

  // Real and imaginary parts in one flat sequence; the sender picks the order.
  bool has_complexfloat_content() const { return content_.Holds(kComplexFloatContent); }
  const ArrayFloat& complexfloat_content() const { return content_.Message<ArrayFloat>(kComplexFloatContent); }
  ArrayFloat* mutable_complexfloat_content() { return content_.MutableMessage<ArrayFloat>(kComplexFloatContent); }
  ArrayFloat* release_complexfloat_content() { return content_.ReleaseMessage<ArrayFloat>(kComplexFloatContent); }
  void set_allocated_complexfloat_content(ArrayFloat* value) { content_.SetAllocatedMessage(kComplexFloatContent, value); }
  void clear_complexfloat_content() { content_.Clear(kComplexFloatContent); }

  bool has_complexdouble_content() const { return content_.Holds(kComplexDoubleContent); }
  const ArrayDouble& complexdouble_content() const { return content_.Message<ArrayDouble>(kComplexDoubleContent); }
  ArrayDouble* mutable_complexdouble_content() { return content_.MutableMessage<ArrayDouble>(kComplexDoubleContent); }
  ArrayDouble* release_complexdouble_content() { return content_.ReleaseMessage<ArrayDouble>(kComplexDoubleContent); }
  void set_allocated_complexdouble_content(ArrayDouble* value) { content_.SetAllocatedMessage(kComplexDoubleContent, value); }
  void clear_complexdouble_content() { content_.Clear(kComplexDoubleContent); }

  bool has_duration_content() const { return content_.Holds(kDurationContent); }
  const ArrayChronoData& duration_content() const { return content_.Message<ArrayChronoData>(kDurationContent); }
  ArrayChronoData* mutable_duration_content() { return content_.MutableMessage<ArrayChronoData>(kDurationContent); }
  ArrayChronoData* release_duration_content() { return content_.ReleaseMessage<ArrayChronoData>(kDurationContent); }
  void set_allocated_duration_content(ArrayChronoData* value) { content_.SetAllocatedMessage(kDurationContent, value); }
  void clear_duration_content() { content_.Clear(kDurationContent); }

  bool has_timepoint_content() const { return content_.Holds(kTimePointContent); }
  const ArrayChronoData& timepoint_content() const { return content_.Message<ArrayChronoData>(kTimePointContent); }
  ArrayChronoData* mutable_timepoint_content() { return content_.MutableMessage<ArrayChronoData>(kTimePointContent); }
  ArrayChronoData* release_timepoint_content() { return content_.ReleaseMessage<ArrayChronoData>(kTimePointContent); }
  void set_allocated_timepoint_content(ArrayChronoData* value) { content_.SetAllocatedMessage(kTimePointContent, value); }
  void clear_timepoint_content() { content_.Clear(kTimePointContent); }

  const std::string& dataorder() const { return dataorder_.Get(); }
  void set_dataorder(const std::string& value) { dataorder_.Set(value, nullptr); }
  void set_dataorder(std::string&& value) { dataorder_.Set(std::move(value), nullptr); }
  void set_dataorder(const char* value) { dataorder_.Set(value, nullptr); }
  void set_dataorder(const void* value, size_t size) { dataorder_.SetBytes(value, size, nullptr); }
  std::string* mutable_dataorder() { return dataorder_.Mutable(nullptr); }
  std::string* release_dataorder() { return dataorder_.Release(); }
  // The runtime adopts `value` in its release build but a copy of it in its
  // debug build: keep using the accessor, not `value`, afterwards.
  void set_allocated_dataorder(std::string* value) { dataorder_.SetAllocated(value, nullptr); }
  void clear_dataorder() { dataorder_.ClearToEmpty(); }

  int dimensions_size() const { return dimensions_.size(); }
  uint32_t dimensions(int index) const { return dimensions_.Get(index); }
  void set_dimensions(int index, uint32_t value) { dimensions_.Set(index, value); }
  void add_dimensions(uint32_t value) { internal::AddPacked(&dimensions_, value); }
  void clear_dimensions() { dimensions_.Clear(); }
  const protobuf::RepeatedField<uint32_t>& dimensions() const { return dimensions_; }
  protobuf::RepeatedField<uint32_t>* mutable_dimensions() { return &dimensions_; }

 private:
  friend class MessageFrame<ArrayDataUnion>;
  friend struct ::protobuf_Mav_2eproto::TableStruct;
  internal::FieldRead ReadField(uint32_t tag, const char* ptr, internal::ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const;
  void MergeFields(const ArrayDataUnion& from);
  void ClearFields();
  void SwapFields(ArrayDataUnion* other);

  protobuf::RepeatedField<uint32_t> dimensions_;
  mutable protobuf::internal::CachedSize dimensions_cached_byte_size_;
  protobuf::internal::ArenaStringPtr dataorder_{
      &protobuf::internal::fixed_address_empty_string, internal::ConstantInitialized{}};
  internal::ArrayContent content_;
};

// One scalar of sixteen kinds. Integers narrower than 32 bits are carried as
// full 32-bit values: set_int8_content(300) stores and sends 300. A set member
// is written even when it is zero, so the receiver learns its kind.
class MAV_PROTOBUF_EXPORT ScalarDataUnion final
    : public internal::MessageFrame<ScalarDataUnion> {
  using Slot = internal::OneofSlot;

 public:
  constexpr ScalarDataUnion() = default;
  explicit constexpr ScalarDataUnion(internal::ConstantInitialized) {}
  ScalarDataUnion(const ScalarDataUnion& from);
  ScalarDataUnion(ScalarDataUnion&& from) noexcept : ScalarDataUnion() { InternalSwap(&from); }
  ScalarDataUnion& operator=(const ScalarDataUnion& from) { CopyFrom(from); return *this; }
  ScalarDataUnion& operator=(ScalarDataUnion&& from) noexcept {
    if (this != &from) InternalSwap(&from);
    return *this;
  }
  ~ScalarDataUnion() override;
  static constexpr int kIndexInFileMessages = 22;
  static const ScalarDataUnion* internal_default_instance();
  ScalarDataUnion* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<ScalarDataUnion>(arena);
  }

  enum ContentCase {
    kStringContent = 1,
    kFloatContent = 2,
    kDoubleContent = 3,
    kInt8Content = 4,
    kInt16Content = 5,
    kInt32Content = 6,
    kInt64Content = 7,
    kUnsignedInt8Content = 8,
    kUnsignedInt16Content = 9,
    kUnsignedInt32Content = 10,
    kUnsignedInt64Content = 11,
    kBoolContent = 12,
    kComplexFloatContent = 13,
    kComplexDoubleContent = 14,
    kDurationContent = 15,
    kTimePointContent = 16,
    CONTENT_NOT_SET = 0,
  };
  enum : int {
    kStringContentFieldNumber = 1,
    kFloatContentFieldNumber = 2,
    kDoubleContentFieldNumber = 3,
    kInt8ContentFieldNumber = 4,
    kInt16ContentFieldNumber = 5,
    kInt32ContentFieldNumber = 6,
    kInt64ContentFieldNumber = 7,
    kUnsignedInt8ContentFieldNumber = 8,
    kUnsignedInt16ContentFieldNumber = 9,
    kUnsignedInt32ContentFieldNumber = 10,
    kUnsignedInt64ContentFieldNumber = 11,
    kBoolContentFieldNumber = 12,
    kComplexFloatContentFieldNumber = 13,
    kComplexDoubleContentFieldNumber = 14,
    kDurationContentFieldNumber = 15,
    kTimePointContentFieldNumber = 16,
  };

  ContentCase content_case() const { return static_cast<ContentCase>(content_.case_number); }
  void clear_content() { content_.Clear(); }

  const std::string& string_content() const { return content_.String(kStringContent); }
  void set_string_content(const std::string& value) { content_.SelectString(kStringContent)->Set(value, nullptr); }
  // Copies: the oneof keeps its own string.
  void set_string_content(std::string&& value) { content_.SelectString(kStringContent)->Set(value, nullptr); }
  void set_string_content(const char* value) { content_.SelectString(kStringContent)->Set(value, nullptr); }
  void set_string_content(const void* value, size_t size) {
    content_.SelectString(kStringContent)->SetBytes(value, size, nullptr);
  }
  std::string* mutable_string_content() { return content_.SelectString(kStringContent)->Mutable(nullptr); }
  std::string* release_string_content() { return content_.ReleaseString(kStringContent); }
  void set_allocated_string_content(std::string* value) { content_.SetAllocatedString(kStringContent, value); }
  void clear_string_content() { content_.Clear(kStringContent); }

  float float_content() const { return content_.Scalar(kFloatContent, &Slot::float_value); }
  void set_float_content(float value) { content_.SetScalar(kFloatContent, &Slot::float_value, value); }
  void clear_float_content() { content_.Clear(kFloatContent); }

  double double_content() const { return content_.Scalar(kDoubleContent, &Slot::double_value); }
  void set_double_content(double value) { content_.SetScalar(kDoubleContent, &Slot::double_value, value); }
  void clear_double_content() { content_.Clear(kDoubleContent); }

  int32_t int8_content() const { return content_.Scalar(kInt8Content, &Slot::int32_value); }
  void set_int8_content(int32_t value) { content_.SetScalar(kInt8Content, &Slot::int32_value, value); }
  void clear_int8_content() { content_.Clear(kInt8Content); }

  int32_t int16_content() const { return content_.Scalar(kInt16Content, &Slot::int32_value); }
  void set_int16_content(int32_t value) { content_.SetScalar(kInt16Content, &Slot::int32_value, value); }
  void clear_int16_content() { content_.Clear(kInt16Content); }

  int32_t int32_content() const { return content_.Scalar(kInt32Content, &Slot::int32_value); }
  void set_int32_content(int32_t value) { content_.SetScalar(kInt32Content, &Slot::int32_value, value); }
  void clear_int32_content() { content_.Clear(kInt32Content); }

  int64_t int64_content() const { return content_.Scalar(kInt64Content, &Slot::int64_value); }
  void set_int64_content(int64_t value) { content_.SetScalar(kInt64Content, &Slot::int64_value, value); }
  void clear_int64_content() { content_.Clear(kInt64Content); }

  uint32_t unsignedint8_content() const { return content_.Scalar(kUnsignedInt8Content, &Slot::uint32_value); }
  void set_unsignedint8_content(uint32_t value) { content_.SetScalar(kUnsignedInt8Content, &Slot::uint32_value, value); }
  void clear_unsignedint8_content() { content_.Clear(kUnsignedInt8Content); }

  uint32_t unsignedint16_content() const { return content_.Scalar(kUnsignedInt16Content, &Slot::uint32_value); }
  void set_unsignedint16_content(uint32_t value) { content_.SetScalar(kUnsignedInt16Content, &Slot::uint32_value, value); }
  void clear_unsignedint16_content() { content_.Clear(kUnsignedInt16Content); }

  uint32_t unsignedint32_content() const { return content_.Scalar(kUnsignedInt32Content, &Slot::uint32_value); }
  void set_unsignedint32_content(uint32_t value) { content_.SetScalar(kUnsignedInt32Content, &Slot::uint32_value, value); }
  void clear_unsignedint32_content() { content_.Clear(kUnsignedInt32Content); }

  uint64_t unsignedint64_content() const { return content_.Scalar(kUnsignedInt64Content, &Slot::uint64_value); }
  void set_unsignedint64_content(uint64_t value) { content_.SetScalar(kUnsignedInt64Content, &Slot::uint64_value, value); }
  void clear_unsignedint64_content() { content_.Clear(kUnsignedInt64Content); }

  bool bool_content() const { return content_.Scalar(kBoolContent, &Slot::bool_value); }
  void set_bool_content(bool value) { content_.SetScalar(kBoolContent, &Slot::bool_value, value); }
  void clear_bool_content() { content_.Clear(kBoolContent); }

  bool has_complexfloat_content() const { return content_.Holds(kComplexFloatContent); }
  const ComplexFloat& complexfloat_content() const { return content_.Message<ComplexFloat>(kComplexFloatContent); }
  ComplexFloat* mutable_complexfloat_content() { return content_.MutableMessage<ComplexFloat>(kComplexFloatContent); }
  ComplexFloat* release_complexfloat_content() { return content_.ReleaseMessage<ComplexFloat>(kComplexFloatContent); }
  void set_allocated_complexfloat_content(ComplexFloat* value) { content_.SetAllocatedMessage(kComplexFloatContent, value); }
  void clear_complexfloat_content() { content_.Clear(kComplexFloatContent); }

  bool has_complexdouble_content() const { return content_.Holds(kComplexDoubleContent); }
  const ComplexDouble& complexdouble_content() const { return content_.Message<ComplexDouble>(kComplexDoubleContent); }
  ComplexDouble* mutable_complexdouble_content() { return content_.MutableMessage<ComplexDouble>(kComplexDoubleContent); }
  ComplexDouble* release_complexdouble_content() { return content_.ReleaseMessage<ComplexDouble>(kComplexDoubleContent); }
  void set_allocated_complexdouble_content(ComplexDouble* value) { content_.SetAllocatedMessage(kComplexDoubleContent, value); }
  void clear_complexdouble_content() { content_.Clear(kComplexDoubleContent); }

  bool has_duration_content() const { return content_.Holds(kDurationContent); }
  const ChronoData& duration_content() const { return content_.Message<ChronoData>(kDurationContent); }
  ChronoData* mutable_duration_content() { return content_.MutableMessage<ChronoData>(kDurationContent); }
  ChronoData* release_duration_content() { return content_.ReleaseMessage<ChronoData>(kDurationContent); }
  void set_allocated_duration_content(ChronoData* value) { content_.SetAllocatedMessage(kDurationContent, value); }
  void clear_duration_content() { content_.Clear(kDurationContent); }

  bool has_timepoint_content() const { return content_.Holds(kTimePointContent); }
  const ChronoData& timepoint_content() const { return content_.Message<ChronoData>(kTimePointContent); }
  ChronoData* mutable_timepoint_content() { return content_.MutableMessage<ChronoData>(kTimePointContent); }
  ChronoData* release_timepoint_content() { return content_.ReleaseMessage<ChronoData>(kTimePointContent); }
  void set_allocated_timepoint_content(ChronoData* value) { content_.SetAllocatedMessage(kTimePointContent, value); }
  void clear_timepoint_content() { content_.Clear(kTimePointContent); }

 private:
  friend class MessageFrame<ScalarDataUnion>;
  friend struct ::protobuf_Mav_2eproto::TableStruct;
  internal::FieldRead ReadField(uint32_t tag, const char* ptr, internal::ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const;
  void MergeFields(const ScalarDataUnion& from);
  void ClearFields();
  void SwapFields(ScalarDataUnion* other);

  internal::Oneof<internal::Members({13, 14, 15, 16}), internal::Members({1})> content_;
};

// A value: one scalar or one array, and the application's opaque
// `wellknowntype` tag beside it.
class MAV_PROTOBUF_EXPORT KVariant final : public internal::MessageFrame<KVariant> {
 public:
  constexpr KVariant() = default;
  explicit constexpr KVariant(internal::ConstantInitialized) {}
  KVariant(const KVariant& from);
  KVariant(KVariant&& from) noexcept : KVariant() { InternalSwap(&from); }
  KVariant& operator=(const KVariant& from) { CopyFrom(from); return *this; }
  KVariant& operator=(KVariant&& from) noexcept {
    if (this != &from) InternalSwap(&from);
    return *this;
  }
  ~KVariant() override;
  static constexpr int kIndexInFileMessages = 0;
  static const KVariant* internal_default_instance();
  KVariant* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<KVariant>(arena);
  }

  enum DataCase {
    kScalarData = 1,
    kArrayData = 2,
    DATA_NOT_SET = 0,
  };
  enum : int {
    kScalarDataFieldNumber = 1,
    kArrayDataFieldNumber = 2,
    kWellknowntypeFieldNumber = 3,
  };

  DataCase data_case() const { return static_cast<DataCase>(data_.case_number); }
  void clear_data() { data_.Clear(); }

  bool has_scalar_data() const { return data_.Holds(kScalarData); }
  const ScalarDataUnion& scalar_data() const { return data_.Message<ScalarDataUnion>(kScalarData); }
  ScalarDataUnion* mutable_scalar_data() { return data_.MutableMessage<ScalarDataUnion>(kScalarData); }
  ScalarDataUnion* release_scalar_data() { return data_.ReleaseMessage<ScalarDataUnion>(kScalarData); }
  void set_allocated_scalar_data(ScalarDataUnion* value) { data_.SetAllocatedMessage(kScalarData, value); }
  void clear_scalar_data() { data_.Clear(kScalarData); }

  bool has_array_data() const { return data_.Holds(kArrayData); }
  const ArrayDataUnion& array_data() const { return data_.Message<ArrayDataUnion>(kArrayData); }
  ArrayDataUnion* mutable_array_data() { return data_.MutableMessage<ArrayDataUnion>(kArrayData); }
  ArrayDataUnion* release_array_data() { return data_.ReleaseMessage<ArrayDataUnion>(kArrayData); }
  void set_allocated_array_data(ArrayDataUnion* value) { data_.SetAllocatedMessage(kArrayData, value); }
  void clear_array_data() { data_.Clear(kArrayData); }

  const std::string& wellknowntype() const { return wellknowntype_.Get(); }
  void set_wellknowntype(const std::string& value) { wellknowntype_.Set(value, nullptr); }
  void set_wellknowntype(std::string&& value) { wellknowntype_.Set(std::move(value), nullptr); }
  void set_wellknowntype(const char* value) { wellknowntype_.Set(value, nullptr); }
  void set_wellknowntype(const void* value, size_t size) { wellknowntype_.SetBytes(value, size, nullptr); }
  std::string* mutable_wellknowntype() { return wellknowntype_.Mutable(nullptr); }
  std::string* release_wellknowntype() { return wellknowntype_.Release(); }
  // The runtime adopts `value` in its release build but a copy of it in its
  // debug build: keep using the accessor, not `value`, afterwards.
  void set_allocated_wellknowntype(std::string* value) { wellknowntype_.SetAllocated(value, nullptr); }
  void clear_wellknowntype() { wellknowntype_.ClearToEmpty(); }

 private:
  friend class MessageFrame<KVariant>;
  friend struct ::protobuf_Mav_2eproto::TableStruct;
  internal::FieldRead ReadField(uint32_t tag, const char* ptr, internal::ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const;
  void MergeFields(const KVariant& from);
  void ClearFields();
  void SwapFields(KVariant* other);

  protobuf::internal::ArenaStringPtr wellknowntype_{
      &protobuf::internal::fixed_address_empty_string, internal::ConstantInitialized{}};
  internal::Oneof<internal::Members({1, 2})> data_;
};

// ---------------------------------------------------------------------------
// Property tree

// One node of the tree: a map of nodes, a list of nodes or a value. Deleting a
// node deletes its subtree.
class MAV_PROTOBUF_EXPORT PropertyNode final : public internal::MessageFrame<PropertyNode> {
 public:
  constexpr PropertyNode() = default;
  explicit constexpr PropertyNode(internal::ConstantInitialized) {}
  PropertyNode(const PropertyNode& from);
  PropertyNode(PropertyNode&& from) noexcept : PropertyNode() { InternalSwap(&from); }
  PropertyNode& operator=(const PropertyNode& from) { CopyFrom(from); return *this; }
  PropertyNode& operator=(PropertyNode&& from) noexcept {
    if (this != &from) InternalSwap(&from);
    return *this;
  }
  ~PropertyNode() override;
  static constexpr int kIndexInFileMessages = 3;
  static const PropertyNode* internal_default_instance();
  PropertyNode* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<PropertyNode>(arena);
  }

  enum TypeCase {
    kMapType = 1,
    kListType = 2,
    kValueType = 3,
    TYPE_NOT_SET = 0,
  };
  enum : int {
    kMapTypeFieldNumber = 1,
    kListTypeFieldNumber = 2,
    kValueTypeFieldNumber = 3,
  };

  TypeCase type_case() const { return static_cast<TypeCase>(type_.case_number); }
  void clear_type() { type_.Clear(); }

  bool has_map_type() const { return type_.Holds(kMapType); }
  const PropertyMap& map_type() const;
  PropertyMap* mutable_map_type();
  PropertyMap* release_map_type();
  void set_allocated_map_type(PropertyMap* value);
  void clear_map_type() { type_.Clear(kMapType); }

  bool has_list_type() const { return type_.Holds(kListType); }
  const PropertyList& list_type() const;
  PropertyList* mutable_list_type();
  PropertyList* release_list_type();
  void set_allocated_list_type(PropertyList* value);
  void clear_list_type() { type_.Clear(kListType); }

  bool has_value_type() const { return type_.Holds(kValueType); }
  const KVariant& value_type() const { return type_.Message<KVariant>(kValueType); }
  KVariant* mutable_value_type() { return type_.MutableMessage<KVariant>(kValueType); }
  KVariant* release_value_type() { return type_.ReleaseMessage<KVariant>(kValueType); }
  void set_allocated_value_type(KVariant* value) { type_.SetAllocatedMessage(kValueType, value); }
  void clear_value_type() { type_.Clear(kValueType); }

 private:
  friend class MessageFrame<PropertyNode>;
  friend struct ::protobuf_Mav_2eproto::TableStruct;
  internal::FieldRead ReadField(uint32_t tag, const char* ptr, internal::ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const;
  void MergeFields(const PropertyNode& from);
  void ClearFields();
  void SwapFields(PropertyNode* other);
  void FreeMember();

  internal::Oneof<internal::Members({1, 2, 3})> type_;
};

// The element form of PropertyMap.map_data on the wire and in reflection;
// callers use the map itself.
class MAV_PROTOBUF_EXPORT PropertyMap_MapDataEntry_DoNotUse final
    : public protobuf::internal::MapEntry<
          PropertyMap_MapDataEntry_DoNotUse, std::string, PropertyNode,
          protobuf::internal::WireFormatLite::TYPE_STRING,
          protobuf::internal::WireFormatLite::TYPE_MESSAGE> {
 public:
  using SuperType = protobuf::internal::MapEntry<
      PropertyMap_MapDataEntry_DoNotUse, std::string, PropertyNode,
      protobuf::internal::WireFormatLite::TYPE_STRING,
      protobuf::internal::WireFormatLite::TYPE_MESSAGE>;
  PropertyMap_MapDataEntry_DoNotUse() = default;
  explicit constexpr PropertyMap_MapDataEntry_DoNotUse(internal::ConstantInitialized) {}
  explicit PropertyMap_MapDataEntry_DoNotUse(protobuf::Arena* arena) : SuperType(arena) {}
  static const PropertyMap_MapDataEntry_DoNotUse* internal_default_instance();

  void MergeFrom(const PropertyMap_MapDataEntry_DoNotUse& other) { MergeFromInternal(other); }
  using protobuf::Message::MergeFrom;

  // Inside a map, the map checks the key after storing the entry, so that a
  // bad key is reported with its entry kept; an entry parsed on its own checks
  // its key here, as the runtime's generic entry does.
  static bool ValidateKey(std::string* key);
  static bool ValidateValue(void*) { return true; }
  // The runtime's entry counts a missing value as a missing required field;
  // in this proto3 schema it stands for an empty node, as it does in the map.
  bool IsInitialized() const final { return true; }
  // ByteSizeLong() always counts the key and the value; the runtime's cached
  // size counts only those that were set, so the array serializer, which
  // trusts it, would disagree with the size. Both count both here.
  int GetCachedSize() const final {
    return 2 * kTagSize + KeyTypeHandler::GetCachedSize(key()) +
           ValueTypeHandler::GetCachedSize(value());
  }

  // An entry read without a value holds none; the runtime's entry measures
  // its value without asking.
  size_t SpaceUsedLong() const final {
    size_t size = sizeof(*this) + KeyTypeHandler::SpaceUsedInMapEntryLong(key_);
    if (value_ != nullptr) size += value_->SpaceUsedLong();
    return size;
  }

  protobuf::Metadata GetMetadata() const final;

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// Text keys (UTF-8, checked on parse) to nodes.
class MAV_PROTOBUF_EXPORT PropertyMap final : public internal::MessageFrame<PropertyMap> {
 public:
  using MapDataField = protobuf::internal::MapField<
      PropertyMap_MapDataEntry_DoNotUse, std::string, PropertyNode,
      protobuf::internal::WireFormatLite::TYPE_STRING,
      protobuf::internal::WireFormatLite::TYPE_MESSAGE>;

  PropertyMap() = default;
  explicit constexpr PropertyMap(internal::ConstantInitialized tag) : map_data_(tag) {}
  PropertyMap(const PropertyMap& from);
  PropertyMap(PropertyMap&& from) noexcept : PropertyMap() { InternalSwap(&from); }
  PropertyMap& operator=(const PropertyMap& from) { CopyFrom(from); return *this; }
  PropertyMap& operator=(PropertyMap&& from) noexcept {
    if (this != &from) InternalSwap(&from);
    return *this;
  }
  ~PropertyMap() override;
  static constexpr int kIndexInFileMessages = 2;
  static const PropertyMap* internal_default_instance();
  PropertyMap* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<PropertyMap>(arena);
  }

  enum : int { kMapDataFieldNumber = 1 };
  int map_data_size() const { return map_data_.size(); }
  const protobuf::Map<std::string, PropertyNode>& map_data() const { return map_data_.GetMap(); }
  protobuf::Map<std::string, PropertyNode>* mutable_map_data() { return map_data_.MutableMap(); }
  void clear_map_data() { map_data_.Clear(); }

 private:
  friend class MessageFrame<PropertyMap>;
  friend struct ::protobuf_Mav_2eproto::TableStruct;
  internal::FieldRead ReadField(uint32_t tag, const char* ptr, internal::ParseContext* ctx);
  size_t FieldsByteSize() const;
  uint8_t* WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const;
  void MergeFields(const PropertyMap& from);
  void ClearFields();
  void SwapFields(PropertyMap* other);

  MapDataField map_data_;
};

// An ordered list of nodes, which may mix maps, lists and values.
class MAV_PROTOBUF_EXPORT PropertyList final
    : public internal::RepeatedMessageFrame<PropertyList, PropertyNode> {
 public:
  using RepeatedMessageFrame::RepeatedMessageFrame;
  static constexpr int kIndexInFileMessages = 4;
  static const PropertyList* internal_default_instance();
  PropertyList* New(protobuf::Arena* arena = nullptr) const final {
    return CreateMaybeMessage<PropertyList>(arena);
  }

  enum : int { kListDataFieldNumber = 1 };
  int list_data_size() const { return elements_.size(); }
  const PropertyNode& list_data(int index) const { return elements_.Get(index); }
  PropertyNode* mutable_list_data(int index) { return elements_.Mutable(index); }
  PropertyNode* add_list_data() { return elements_.Add(); }
  void clear_list_data() { elements_.Clear(); }
  const protobuf::RepeatedPtrField<PropertyNode>& list_data() const { return elements_; }
  protobuf::RepeatedPtrField<PropertyNode>* mutable_list_data() { return &elements_; }

 private:
  friend struct ::protobuf_Mav_2eproto::TableStruct;
};

// ---------------------------------------------------------------------------
// Default instances

struct KVariantDefaultTypeInternal : internal::DefaultInstance<KVariant> {};
struct PropertyMap_MapDataEntry_DoNotUseDefaultTypeInternal
    : internal::DefaultInstance<PropertyMap_MapDataEntry_DoNotUse> {};
struct PropertyMapDefaultTypeInternal : internal::DefaultInstance<PropertyMap> {};
struct PropertyNodeDefaultTypeInternal : internal::DefaultInstance<PropertyNode> {};
struct PropertyListDefaultTypeInternal : internal::DefaultInstance<PropertyList> {};
struct ComplexFloatDefaultTypeInternal : internal::DefaultInstance<ComplexFloat> {};
struct ComplexDoubleDefaultTypeInternal : internal::DefaultInstance<ComplexDouble> {};
struct ChronoDataDefaultTypeInternal : internal::DefaultInstance<ChronoData> {};
struct ArrayChronoDataDefaultTypeInternal : internal::DefaultInstance<ArrayChronoData> {};
struct ArrayStringDefaultTypeInternal : internal::DefaultInstance<ArrayString> {};
struct ArrayFloatDefaultTypeInternal : internal::DefaultInstance<ArrayFloat> {};
struct ArrayDoubleDefaultTypeInternal : internal::DefaultInstance<ArrayDouble> {};
struct ArrayInt8DefaultTypeInternal : internal::DefaultInstance<ArrayInt8> {};
struct ArrayInt16DefaultTypeInternal : internal::DefaultInstance<ArrayInt16> {};
struct ArrayInt32DefaultTypeInternal : internal::DefaultInstance<ArrayInt32> {};
struct ArrayInt64DefaultTypeInternal : internal::DefaultInstance<ArrayInt64> {};
struct ArrayUnsignedInt8DefaultTypeInternal : internal::DefaultInstance<ArrayUnsignedInt8> {};
struct ArrayUnsignedInt16DefaultTypeInternal : internal::DefaultInstance<ArrayUnsignedInt16> {};
struct ArrayUnsignedInt32DefaultTypeInternal : internal::DefaultInstance<ArrayUnsignedInt32> {};
struct ArrayUnsignedInt64DefaultTypeInternal : internal::DefaultInstance<ArrayUnsignedInt64> {};
struct ArrayBoolDefaultTypeInternal : internal::DefaultInstance<ArrayBool> {};
struct ArrayDataUnionDefaultTypeInternal : internal::DefaultInstance<ArrayDataUnion> {};
struct ScalarDataUnionDefaultTypeInternal : internal::DefaultInstance<ScalarDataUnion> {};

MAV_PROTOBUF_EXPORT extern KVariantDefaultTypeInternal _KVariant_default_instance_;
MAV_PROTOBUF_EXPORT extern PropertyMap_MapDataEntry_DoNotUseDefaultTypeInternal
    _PropertyMap_MapDataEntry_DoNotUse_default_instance_;
MAV_PROTOBUF_EXPORT extern PropertyMapDefaultTypeInternal _PropertyMap_default_instance_;
MAV_PROTOBUF_EXPORT extern PropertyNodeDefaultTypeInternal _PropertyNode_default_instance_;
MAV_PROTOBUF_EXPORT extern PropertyListDefaultTypeInternal _PropertyList_default_instance_;
MAV_PROTOBUF_EXPORT extern ComplexFloatDefaultTypeInternal _ComplexFloat_default_instance_;
MAV_PROTOBUF_EXPORT extern ComplexDoubleDefaultTypeInternal _ComplexDouble_default_instance_;
MAV_PROTOBUF_EXPORT extern ChronoDataDefaultTypeInternal _ChronoData_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayChronoDataDefaultTypeInternal _ArrayChronoData_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayStringDefaultTypeInternal _ArrayString_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayFloatDefaultTypeInternal _ArrayFloat_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayDoubleDefaultTypeInternal _ArrayDouble_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayInt8DefaultTypeInternal _ArrayInt8_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayInt16DefaultTypeInternal _ArrayInt16_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayInt32DefaultTypeInternal _ArrayInt32_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayInt64DefaultTypeInternal _ArrayInt64_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayUnsignedInt8DefaultTypeInternal _ArrayUnsignedInt8_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayUnsignedInt16DefaultTypeInternal _ArrayUnsignedInt16_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayUnsignedInt32DefaultTypeInternal _ArrayUnsignedInt32_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayUnsignedInt64DefaultTypeInternal _ArrayUnsignedInt64_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayBoolDefaultTypeInternal _ArrayBool_default_instance_;
MAV_PROTOBUF_EXPORT extern ArrayDataUnionDefaultTypeInternal _ArrayDataUnion_default_instance_;
MAV_PROTOBUF_EXPORT extern ScalarDataUnionDefaultTypeInternal _ScalarDataUnion_default_instance_;

inline const KVariant* KVariant::internal_default_instance() { return &_KVariant_default_instance_.instance; }
inline const PropertyMap_MapDataEntry_DoNotUse* PropertyMap_MapDataEntry_DoNotUse::internal_default_instance() {
  return &_PropertyMap_MapDataEntry_DoNotUse_default_instance_.instance;
}
inline const PropertyMap* PropertyMap::internal_default_instance() { return &_PropertyMap_default_instance_.instance; }
inline const PropertyNode* PropertyNode::internal_default_instance() { return &_PropertyNode_default_instance_.instance; }
inline const PropertyList* PropertyList::internal_default_instance() { return &_PropertyList_default_instance_.instance; }
inline const ComplexFloat* ComplexFloat::internal_default_instance() { return &_ComplexFloat_default_instance_.instance; }
inline const ComplexDouble* ComplexDouble::internal_default_instance() { return &_ComplexDouble_default_instance_.instance; }
inline const ChronoData* ChronoData::internal_default_instance() { return &_ChronoData_default_instance_.instance; }
inline const ArrayChronoData* ArrayChronoData::internal_default_instance() { return &_ArrayChronoData_default_instance_.instance; }
inline const ArrayString* ArrayString::internal_default_instance() { return &_ArrayString_default_instance_.instance; }
inline const ArrayFloat* ArrayFloat::internal_default_instance() { return &_ArrayFloat_default_instance_.instance; }
inline const ArrayDouble* ArrayDouble::internal_default_instance() { return &_ArrayDouble_default_instance_.instance; }
inline const ArrayInt8* ArrayInt8::internal_default_instance() { return &_ArrayInt8_default_instance_.instance; }
inline const ArrayInt16* ArrayInt16::internal_default_instance() { return &_ArrayInt16_default_instance_.instance; }
inline const ArrayInt32* ArrayInt32::internal_default_instance() { return &_ArrayInt32_default_instance_.instance; }
inline const ArrayInt64* ArrayInt64::internal_default_instance() { return &_ArrayInt64_default_instance_.instance; }
inline const ArrayUnsignedInt8* ArrayUnsignedInt8::internal_default_instance() {
  return &_ArrayUnsignedInt8_default_instance_.instance;
}
inline const ArrayUnsignedInt16* ArrayUnsignedInt16::internal_default_instance() {
  return &_ArrayUnsignedInt16_default_instance_.instance;
}
inline const ArrayUnsignedInt32* ArrayUnsignedInt32::internal_default_instance() {
  return &_ArrayUnsignedInt32_default_instance_.instance;
}
inline const ArrayUnsignedInt64* ArrayUnsignedInt64::internal_default_instance() {
  return &_ArrayUnsignedInt64_default_instance_.instance;
}
inline const ArrayBool* ArrayBool::internal_default_instance() { return &_ArrayBool_default_instance_.instance; }
inline const ArrayDataUnion* ArrayDataUnion::internal_default_instance() {
  return &_ArrayDataUnion_default_instance_.instance;
}
inline const ScalarDataUnion* ScalarDataUnion::internal_default_instance() {
  return &_ScalarDataUnion_default_instance_.instance;
}

// PropertyNode's members that need the map and list classes complete.
inline const PropertyMap& PropertyNode::map_type() const { return type_.Message<PropertyMap>(kMapType); }
inline PropertyMap* PropertyNode::mutable_map_type() { return type_.MutableMessage<PropertyMap>(kMapType); }
inline PropertyMap* PropertyNode::release_map_type() { return type_.ReleaseMessage<PropertyMap>(kMapType); }
inline void PropertyNode::set_allocated_map_type(PropertyMap* value) { type_.SetAllocatedMessage(kMapType, value); }
inline const PropertyList& PropertyNode::list_type() const { return type_.Message<PropertyList>(kListType); }
inline PropertyList* PropertyNode::mutable_list_type() { return type_.MutableMessage<PropertyList>(kListType); }
inline PropertyList* PropertyNode::release_list_type() { return type_.ReleaseMessage<PropertyList>(kListType); }
inline void PropertyNode::set_allocated_list_type(PropertyList* value) { type_.SetAllocatedMessage(kListType, value); }

}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_MAV_PB_H_
