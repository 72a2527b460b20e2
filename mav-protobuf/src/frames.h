// Definitions of the frame templates declared in Mav.pb.h. Each source that
// defines message classes includes this file and instantiates the frames of
// its classes explicitly, so every frame is compiled once, in the library.
#ifndef MAV_PROTOBUF_SRC_FRAMES_H_
#define MAV_PROTOBUF_SRC_FRAMES_H_

#include "Mav.pb.h"
#include "wire.h"

#include <google/protobuf/io/zero_copy_stream.h>

#include <algorithm>
#include <climits>
#include <limits>

namespace Tarnwick {
namespace MavProtobuf {
namespace internal {

using protobuf::UnknownFieldSet;
using protobuf::internal::WireFormat;
using wire::MakeTag;
using wire::WireFormatLite;

// ---------------------------------------------------------------------------
// MessageFrame

template <typename Derived>
MessageFrame<Derived>::MessageFrame(const MessageFrame& from) : protobuf::Message() {
  _internal_metadata_.MergeFrom<UnknownFieldSet>(from._internal_metadata_);
}

template <typename Derived>
MessageFrame<Derived>::~MessageFrame() {
  _internal_metadata_.Delete<UnknownFieldSet>();
}

template <typename Derived>
const protobuf::Descriptor* MessageFrame<Derived>::GetDescriptor() {
  return protobuf_Mav_2eproto::MetadataAt(Derived::kIndexInFileMessages).descriptor;
}

template <typename Derived>
const protobuf::Reflection* MessageFrame<Derived>::GetReflection() {
  return protobuf_Mav_2eproto::MetadataAt(Derived::kIndexInFileMessages).reflection;
}

template <typename Derived>
protobuf::Metadata MessageFrame<Derived>::GetMetadata() const {
  return protobuf_Mav_2eproto::MetadataAt(Derived::kIndexInFileMessages);
}

// The runtime compares class data to recognise two objects of one class; for
// other pairs (a dynamic message of the same type, say) it merges by
// reflection.
template <typename Derived>
const protobuf::Message::ClassData MessageFrame<Derived>::kClassData = {
    &protobuf::Message::CopyWithSourceCheck, &MessageFrame::MergeImpl};

template <typename Derived>
const protobuf::Message::ClassData* MessageFrame<Derived>::GetClassData() const {
  return &kClassData;
}

template <typename Derived>
void MessageFrame<Derived>::MergeImpl(protobuf::Message& to, const protobuf::Message& from) {
  static_cast<Derived&>(to).MergeFrom(static_cast<const Derived&>(from));
}

template <typename Derived>
void MessageFrame<Derived>::CopyFrom(const Derived& from) {
  if (&from == this) return;
  Clear();
  MergeFrom(from);
}

template <typename Derived>
void MessageFrame<Derived>::MergeFrom(const Derived& from) {
  _internal_metadata_.MergeFrom<UnknownFieldSet>(from._internal_metadata_);
  static_cast<Derived*>(this)->MergeFields(from);
}

template <typename Derived>
void MessageFrame<Derived>::Swap(Derived* other) {
  if (other != this) InternalSwap(other);
}

template <typename Derived>
void MessageFrame<Derived>::InternalSwap(Derived* other) {
  SwapUnknownFields(other);
  static_cast<Derived*>(this)->SwapFields(other);
}

template <typename Derived>
void MessageFrame<Derived>::Clear() {
  static_cast<Derived*>(this)->ClearFields();
  _internal_metadata_.Clear<UnknownFieldSet>();
}

// Unknown fields are kept on parse and written after all known fields.
template <typename Derived>
size_t MessageFrame<Derived>::ByteSizeLong() const {
  size_t total = static_cast<const Derived*>(this)->FieldsByteSize();
  if (_internal_metadata_.have_unknown_fields()) {
    total += WireFormat::ComputeUnknownFieldsSize(
        _internal_metadata_.unknown_fields<UnknownFieldSet>(UnknownFieldSet::default_instance));
  }
  cached_size_.Set(protobuf::internal::ToCachedSize(total));
  return total;
}

template <typename Derived>
uint8_t* MessageFrame<Derived>::_InternalSerialize(uint8_t* target,
                                                   EpsCopyOutputStream* stream) const {
  target = static_cast<const Derived*>(this)->WriteFields(target, stream);
  if (_internal_metadata_.have_unknown_fields()) {
    target = WireFormat::InternalSerializeUnknownFieldsToArray(
        _internal_metadata_.unknown_fields<UnknownFieldSet>(UnknownFieldSet::default_instance),
        target, stream);
  }
  return target;
}

// A string that grows a piece at a time as the serializer asks for room, into
// capacity reserved up front: the zero fill that growing a std::string
// requires then touches each piece just before it is written, while it is in
// cache, rather than the whole output once more. Long runs of raw bytes (a
// fixed-width array's elements) are appended straight from their source, with
// no zero fill at all; "aliasing" is the runtime's name for that hand-over,
// and a copy made at once meets its contract.
class StringAppendStream final : public protobuf::io::ZeroCopyOutputStream {
 public:
  explicit StringAppendStream(std::string* output) : output_(output), start_(output->size()) {}
  bool Next(void** data, int* size) override {
    constexpr size_t kPiece = 16 * 1024;
    const size_t old_size = output_->size();
    const size_t spare = output_->capacity() - old_size;
    const size_t piece = spare > 0 ? std::min(spare, kPiece) : kPiece;
    output_->resize(old_size + piece);
    *data = &(*output_)[old_size];
    *size = static_cast<int>(piece);
    return true;
  }
  void BackUp(int count) override { output_->resize(output_->size() - static_cast<size_t>(count)); }
  int64_t ByteCount() const override { return static_cast<int64_t>(output_->size() - start_); }
  bool AllowsAliasing() const override { return true; }
  bool WriteAliasedRaw(const void* data, int size) override {
    output_->append(static_cast<const char*>(data), static_cast<size_t>(size));
    return true;
  }

 private:
  std::string* output_;
  size_t start_;
};

template <typename Derived>
bool MessageFrame<Derived>::AppendToString(std::string* output) const {
  const size_t size = ByteSizeLong();
  if (size > static_cast<size_t>(INT_MAX)) {
    GOOGLE_LOG(ERROR) << GetTypeName() << " exceeded maximum protobuf size of 2GB: " << size;
    return false;
  }
  // The serializer asks for room a little past the end of what it writes.
  output->reserve(output->size() + size + 64);
  StringAppendStream stream(output);
  protobuf::io::CodedOutputStream coded(&stream);
  coded.EnableAliasing(true);
  SerializeWithCachedSizes(&coded);
  return true;
}

template <typename Derived>
bool MessageFrame<Derived>::SerializeToString(std::string* output) const {
  output->clear();
  return AppendToString(output);
}

template <typename Derived>
std::string MessageFrame<Derived>::SerializeAsString() const {
  std::string output;
  if (!AppendToString(&output)) output.clear();
  return output;
}

// The caller sized the memory; the cached size may be stale (a field changed
// after ByteSizeLong()), and then the output is longer than it says. Bounding
// the stream by the cached size would send the excess to the stream's scratch
// buffer and return an end outside the caller's memory, so the stream is left
// unbounded and every byte goes where the caller pointed.
template <typename Derived>
uint8_t* MessageFrame<Derived>::InternalSerializeWithCachedSizesToArray(
    bool deterministic, uint8_t* target) const {
  EpsCopyOutputStream stream(target, std::numeric_limits<int>::max(), deterministic);
  return _InternalSerialize(target, &stream);
}

// Tag 0 ends the message (the caller decides whether that end was legal); an
// end-group tag, field number 0 and wire types 6 and 7 fail the parse; any
// other tag a class does not take is kept as an unknown field.
template <typename Derived>
const char* MessageFrame<Derived>::_InternalParse(const char* ptr, ParseContext* ctx) {
  const wire::OutermostParse outermost(ctx, ptr);
  while (!ctx->Done(&ptr)) {
    uint32_t tag;
    ptr = protobuf::internal::ReadTag(ptr, &tag);
    if (ptr == nullptr) return nullptr;
    if (FieldRead read = static_cast<Derived*>(this)->ReadField(tag, ptr, ctx)) {
      ptr = *read;
      if (ptr == nullptr) return nullptr;
      continue;
    }
    if (tag == 0) {
      ctx->SetLastTag(tag);
      return ptr;
    }
    if (WireFormatLite::GetTagWireType(tag) == WireFormatLite::WIRETYPE_END_GROUP) {
      return nullptr;
    }
    ptr = protobuf::internal::UnknownFieldParse(
        tag, _internal_metadata_.mutable_unknown_fields<UnknownFieldSet>(), ptr, ctx);
    if (ptr == nullptr) return nullptr;
  }
  return ptr;
}

// ---------------------------------------------------------------------------
// ScalarPairFrame

template <typename Derived, typename First, typename Second>
ScalarPairFrame<Derived, First, Second>::ScalarPairFrame(const ScalarPairFrame& from)
    : MessageFrame<Derived>(from), first_(from.first_), second_(from.second_) {}

template <typename Derived, typename First, typename Second>
ScalarPairFrame<Derived, First, Second>::ScalarPairFrame(ScalarPairFrame&& from) noexcept
    : ScalarPairFrame() {
  this->SwapUnknownFields(&from);
  SwapFields(&from);
}

template <typename Derived, typename First, typename Second>
auto ScalarPairFrame<Derived, First, Second>::operator=(const ScalarPairFrame& from)
    -> ScalarPairFrame& {
  this->CopyFrom(static_cast<const Derived&>(from));
  return *this;
}

template <typename Derived, typename First, typename Second>
auto ScalarPairFrame<Derived, First, Second>::operator=(ScalarPairFrame&& from) noexcept
    -> ScalarPairFrame& {
  if (this != &from) this->InternalSwap(static_cast<Derived*>(&from));
  return *this;
}

template <typename Derived, typename First, typename Second>
FieldRead ScalarPairFrame<Derived, First, Second>::ReadField(uint32_t tag, const char* ptr,
                                                            ParseContext* ctx) {
  switch (tag) {
    case MakeTag(1, wire::Codec<First>::kWireType):
      return wire::ReadValue(ptr, ctx, &first_);
    case MakeTag(2, wire::Codec<Second>::kWireType):
      return wire::ReadValue(ptr, ctx, &second_);
  }
  return std::nullopt;
}

template <typename Derived, typename First, typename Second>
size_t ScalarPairFrame<Derived, First, Second>::FieldsByteSize() const {
  size_t size = 0;
  if (!wire::Codec<First>::IsZero(first_)) size += wire::ScalarFieldSize(1, first_);
  if (!wire::Codec<Second>::IsZero(second_)) size += wire::ScalarFieldSize(2, second_);
  return size;
}

template <typename Derived, typename First, typename Second>
uint8_t* ScalarPairFrame<Derived, First, Second>::WriteFields(
    uint8_t* target, EpsCopyOutputStream* stream) const {
  if (!wire::Codec<First>::IsZero(first_)) {
    target = wire::WriteScalarField(1, first_, target, stream);
  }
  if (!wire::Codec<Second>::IsZero(second_)) {
    target = wire::WriteScalarField(2, second_, target, stream);
  }
  return target;
}

// A merge never resets a field to zero: only values that pass the zero test
// are copied (a -0.0 is not, a NaN is).
template <typename Derived, typename First, typename Second>
void ScalarPairFrame<Derived, First, Second>::MergeFields(const ScalarPairFrame& from) {
  if (!wire::Codec<First>::IsZero(from.first_)) first_ = from.first_;
  if (!wire::Codec<Second>::IsZero(from.second_)) second_ = from.second_;
}

template <typename Derived, typename First, typename Second>
void ScalarPairFrame<Derived, First, Second>::ClearFields() {
  first_ = 0;
  second_ = 0;
}

template <typename Derived, typename First, typename Second>
void ScalarPairFrame<Derived, First, Second>::SwapFields(ScalarPairFrame* other) {
  std::swap(first_, other->first_);
  std::swap(second_, other->second_);
}

// ---------------------------------------------------------------------------
// PackedArrayFrame

template <typename Derived, typename Element>
PackedArrayFrame<Derived, Element>::PackedArrayFrame(const PackedArrayFrame& from)
    : MessageFrame<Derived>(from) {
  MergeFields(from);
}

template <typename Derived, typename Element>
PackedArrayFrame<Derived, Element>::PackedArrayFrame(PackedArrayFrame&& from) noexcept
    : PackedArrayFrame() {
  this->SwapUnknownFields(&from);
  SwapFields(&from);
}

template <typename Derived, typename Element>
auto PackedArrayFrame<Derived, Element>::operator=(const PackedArrayFrame& from)
    -> PackedArrayFrame& {
  this->CopyFrom(static_cast<const Derived&>(from));
  return *this;
}

template <typename Derived, typename Element>
auto PackedArrayFrame<Derived, Element>::operator=(PackedArrayFrame&& from) noexcept
    -> PackedArrayFrame& {
  if (this != &from) this->InternalSwap(static_cast<Derived*>(&from));
  return *this;
}

template <typename Derived, typename Element>
FieldRead PackedArrayFrame<Derived, Element>::ReadField(uint32_t tag, const char* ptr,
                                                       ParseContext* ctx) {
  constexpr uint32_t kPackedTag = wire::LengthDelimitedTag(1);
  switch (tag) {
    case kPackedTag:
      return wire::Packed<Element>::ReadRun(&values_, ptr, ctx);
    case MakeTag(1, wire::Codec<Element>::kWireType):
      return wire::Packed<Element>::template ReadUnpacked<kPackedTag>(&values_, ptr, ctx);
  }
  return std::nullopt;
}

template <typename Derived, typename Element>
size_t PackedArrayFrame<Derived, Element>::FieldsByteSize() const {
  return wire::Packed<Element>::FieldSize(1, values_, &values_cached_byte_size_);
}

template <typename Derived, typename Element>
uint8_t* PackedArrayFrame<Derived, Element>::WriteFields(uint8_t* target,
                                                        EpsCopyOutputStream* stream) const {
  return wire::Packed<Element>::Write(1, values_, values_cached_byte_size_.Get(), target,
                                      stream);
}

template <typename Derived, typename Element>
void PackedArrayFrame<Derived, Element>::MergeFields(const PackedArrayFrame& from) {
  wire::Packed<Element>::Append(&values_, from.values_);
}

template <typename Derived, typename Element>
void PackedArrayFrame<Derived, Element>::ClearFields() {
  values_.Clear();
}

template <typename Derived, typename Element>
void PackedArrayFrame<Derived, Element>::SwapFields(PackedArrayFrame* other) {
  values_.InternalSwap(&other->values_);
}

// ---------------------------------------------------------------------------
// ByteArrayFrame

template <typename Derived>
ByteArrayFrame<Derived>::ByteArrayFrame(const ByteArrayFrame& from)
    : MessageFrame<Derived>(from) {
  MergeFields(from);
}

template <typename Derived>
ByteArrayFrame<Derived>::ByteArrayFrame(ByteArrayFrame&& from) noexcept : ByteArrayFrame() {
  this->SwapUnknownFields(&from);
  SwapFields(&from);
}

template <typename Derived>
auto ByteArrayFrame<Derived>::operator=(const ByteArrayFrame& from) -> ByteArrayFrame& {
  this->CopyFrom(static_cast<const Derived&>(from));
  return *this;
}

template <typename Derived>
auto ByteArrayFrame<Derived>::operator=(ByteArrayFrame&& from) noexcept -> ByteArrayFrame& {
  if (this != &from) this->InternalSwap(static_cast<Derived*>(&from));
  return *this;
}

template <typename Derived>
FieldRead ByteArrayFrame<Derived>::ReadField(uint32_t tag, const char* ptr,
                                             ParseContext* ctx) {
  if (tag != wire::LengthDelimitedTag(1)) return std::nullopt;
  return wire::ReadBytes(bytes_.Mutable(nullptr), ptr, ctx);
}

template <typename Derived>
size_t ByteArrayFrame<Derived>::FieldsByteSize() const {
  return bytes_.Get().empty() ? 0 : wire::BytesFieldSize(1, bytes_.Get());
}

// The stream may keep a reference to the bytes instead of copying them when it
// is allowed to alias.
template <typename Derived>
uint8_t* ByteArrayFrame<Derived>::WriteFields(uint8_t* target,
                                              EpsCopyOutputStream* stream) const {
  if (bytes_.Get().empty()) return target;
  return stream->WriteBytesMaybeAliased(1, bytes_.Get(), target);
}

template <typename Derived>
void ByteArrayFrame<Derived>::MergeFields(const ByteArrayFrame& from) {
  if (!from.bytes_.Get().empty()) bytes_.Set(from.bytes_.Get(), nullptr);
}

template <typename Derived>
void ByteArrayFrame<Derived>::ClearFields() {
  bytes_.ClearToEmpty();
}

template <typename Derived>
void ByteArrayFrame<Derived>::SwapFields(ByteArrayFrame* other) {
  protobuf::internal::ArenaStringPtr::InternalSwap(&bytes_, nullptr, &other->bytes_, nullptr);
}

// ---------------------------------------------------------------------------
// RepeatedMessageFrame

template <typename Derived, typename Element>
RepeatedMessageFrame<Derived, Element>::RepeatedMessageFrame(const RepeatedMessageFrame& from)
    : MessageFrame<Derived>(from), elements_(from.elements_) {}

template <typename Derived, typename Element>
RepeatedMessageFrame<Derived, Element>::RepeatedMessageFrame(
    RepeatedMessageFrame&& from) noexcept
    : RepeatedMessageFrame() {
  this->SwapUnknownFields(&from);
  SwapFields(&from);
}

template <typename Derived, typename Element>
auto RepeatedMessageFrame<Derived, Element>::operator=(const RepeatedMessageFrame& from)
    -> RepeatedMessageFrame& {
  this->CopyFrom(static_cast<const Derived&>(from));
  return *this;
}

template <typename Derived, typename Element>
auto RepeatedMessageFrame<Derived, Element>::operator=(RepeatedMessageFrame&& from) noexcept
    -> RepeatedMessageFrame& {
  if (this != &from) this->InternalSwap(static_cast<Derived*>(&from));
  return *this;
}

// Each occurrence appends one element, reusing a cleared one when there is.
template <typename Derived, typename Element>
FieldRead RepeatedMessageFrame<Derived, Element>::ReadField(uint32_t tag, const char* ptr,
                                                           ParseContext* ctx) {
  if (tag != wire::LengthDelimitedTag(1)) return std::nullopt;
  return wire::ParseNested(elements_.Add(), ptr, ctx);
}

template <typename Derived, typename Element>
size_t RepeatedMessageFrame<Derived, Element>::FieldsByteSize() const {
  size_t size = 0;
  for (const Element& element : elements_) size += wire::MessageFieldSize(1, element);
  return size;
}

// Every element is written, an empty one as the two bytes 10, 0, so the count
// survives.
template <typename Derived, typename Element>
uint8_t* RepeatedMessageFrame<Derived, Element>::WriteFields(
    uint8_t* target, EpsCopyOutputStream* stream) const {
  for (const Element& element : elements_) {
    target = wire::WriteMessageField(1, element, target, stream);
  }
  return target;
}

template <typename Derived, typename Element>
void RepeatedMessageFrame<Derived, Element>::MergeFields(const RepeatedMessageFrame& from) {
  elements_.MergeFrom(from.elements_);
}

template <typename Derived, typename Element>
void RepeatedMessageFrame<Derived, Element>::ClearFields() {
  elements_.Clear();
}

template <typename Derived, typename Element>
void RepeatedMessageFrame<Derived, Element>::SwapFields(RepeatedMessageFrame* other) {
  elements_.InternalSwap(&other->elements_);
}

}  // namespace internal
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_FRAMES_H_
