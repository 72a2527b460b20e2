// The variant unions: ScalarDataUnion, ArrayDataUnion and KVariant.

#include "frames.h"
#include "oneof_members.h"

namespace Tarnwick {
namespace MavProtobuf {

using wire::MakeTag;
using wire::WireFormatLite;

// ScalarDataUnion -----------------------------------------------------------

template class internal::MessageFrame<ScalarDataUnion>;

namespace {

// A scalar member read from the wire replaces whatever member was set; if the
// value cannot be read the oneof is left empty.
template <typename OneofT, typename T>
const char* ReadScalarMember(OneofT* oneof, uint32_t number, T internal::OneofSlot::*member,
                             const char* ptr, internal::ParseContext* ctx) {
  oneof->Clear();
  T value;
  ptr = wire::ReadValue(ptr, ctx, &value);
  if (ptr != nullptr) oneof->SetScalar(number, member, value);
  return ptr;
}

// Applies `action` (wire::SizeMember, wire::WriteMember, wire::MergeMember)
// to the set message member as its own class.
template <typename OneofT, typename Action>
auto ApplyToMessageMember(const OneofT& content, Action action) {
  const uint32_t number = content.case_number;
  switch (number) {
    case ScalarDataUnion::kComplexFloatContent:
      return action(number, wire::MessageMember<ComplexFloat>(content));
    case ScalarDataUnion::kComplexDoubleContent:
      return action(number, wire::MessageMember<ComplexDouble>(content));
    default:  // duration_content, timePoint_content
      return action(number, wire::MessageMember<ChronoData>(content));
  }
}

}  // namespace

ScalarDataUnion::ScalarDataUnion(const ScalarDataUnion& from) : MessageFrame(from) {
  MergeFields(from);
}

ScalarDataUnion::~ScalarDataUnion() { content_.Clear(); }

internal::FieldRead ScalarDataUnion::ReadField(uint32_t tag, const char* ptr,
                                               internal::ParseContext* ctx) {
  switch (tag) {
    case wire::LengthDelimitedTag(kStringContent):
      return wire::ReadBytes(mutable_string_content(), ptr, ctx);
    case MakeTag(kFloatContent, WireFormatLite::WIRETYPE_FIXED32):
      return ReadScalarMember(&content_, kFloatContent, &Slot::float_value, ptr, ctx);
    case MakeTag(kDoubleContent, WireFormatLite::WIRETYPE_FIXED64):
      return ReadScalarMember(&content_, kDoubleContent, &Slot::double_value, ptr, ctx);
    case MakeTag(kInt8Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kInt8Content, &Slot::int32_value, ptr, ctx);
    case MakeTag(kInt16Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kInt16Content, &Slot::int32_value, ptr, ctx);
    case MakeTag(kInt32Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kInt32Content, &Slot::int32_value, ptr, ctx);
    case MakeTag(kInt64Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kInt64Content, &Slot::int64_value, ptr, ctx);
    case MakeTag(kUnsignedInt8Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kUnsignedInt8Content, &Slot::uint32_value, ptr, ctx);
    case MakeTag(kUnsignedInt16Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kUnsignedInt16Content, &Slot::uint32_value, ptr, ctx);
    case MakeTag(kUnsignedInt32Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kUnsignedInt32Content, &Slot::uint32_value, ptr, ctx);
    case MakeTag(kUnsignedInt64Content, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kUnsignedInt64Content, &Slot::uint64_value, ptr, ctx);
    case MakeTag(kBoolContent, WireFormatLite::WIRETYPE_VARINT):
      return ReadScalarMember(&content_, kBoolContent, &Slot::bool_value, ptr, ctx);
    case wire::LengthDelimitedTag(kComplexFloatContent):
      return wire::ReadMessageMember<ComplexFloat>(&content_, kComplexFloatContent, ptr, ctx);
    case wire::LengthDelimitedTag(kComplexDoubleContent):
      return wire::ReadMessageMember<ComplexDouble>(&content_, kComplexDoubleContent, ptr, ctx);
    case wire::LengthDelimitedTag(kDurationContent):
      return wire::ReadMessageMember<ChronoData>(&content_, kDurationContent, ptr, ctx);
    case wire::LengthDelimitedTag(kTimePointContent):
      return wire::ReadMessageMember<ChronoData>(&content_, kTimePointContent, ptr, ctx);
  }
  return std::nullopt;
}

size_t ScalarDataUnion::FieldsByteSize() const {
  const Slot& slot = content_.slot;
  switch (content_case()) {
    case kStringContent: return wire::BytesFieldSize(kStringContent, slot.string.Get());
    case kFloatContent: return wire::ScalarFieldSize(kFloatContent, slot.float_value);
    case kDoubleContent: return wire::ScalarFieldSize(kDoubleContent, slot.double_value);
    case kInt8Content:
    case kInt16Content:
    case kInt32Content: return wire::ScalarFieldSize(content_case(), slot.int32_value);
    case kInt64Content: return wire::ScalarFieldSize(kInt64Content, slot.int64_value);
    case kUnsignedInt8Content:
    case kUnsignedInt16Content:
    case kUnsignedInt32Content: return wire::ScalarFieldSize(content_case(), slot.uint32_value);
    case kUnsignedInt64Content: return wire::ScalarFieldSize(kUnsignedInt64Content, slot.uint64_value);
    case kBoolContent: return wire::ScalarFieldSize(kBoolContent, slot.bool_value);
    case kComplexFloatContent:
    case kComplexDoubleContent:
    case kDurationContent:
    case kTimePointContent: return ApplyToMessageMember(content_, wire::SizeMember{});
    case CONTENT_NOT_SET: break;
  }
  return 0;
}

// The set member is written whatever its value: a zero still tells the
// receiver which kind it is.
uint8_t* ScalarDataUnion::WriteFields(uint8_t* target,
                                      internal::EpsCopyOutputStream* stream) const {
  const Slot& slot = content_.slot;
  switch (content_case()) {
    case kStringContent:
      return stream->WriteBytesMaybeAliased(kStringContent, slot.string.Get(), target);
    case kFloatContent: return wire::WriteScalarField(kFloatContent, slot.float_value, target, stream);
    case kDoubleContent: return wire::WriteScalarField(kDoubleContent, slot.double_value, target, stream);
    case kInt8Content:
    case kInt16Content:
    case kInt32Content: return wire::WriteScalarField(content_case(), slot.int32_value, target, stream);
    case kInt64Content: return wire::WriteScalarField(kInt64Content, slot.int64_value, target, stream);
    case kUnsignedInt8Content:
    case kUnsignedInt16Content:
    case kUnsignedInt32Content:
      return wire::WriteScalarField(content_case(), slot.uint32_value, target, stream);
    case kUnsignedInt64Content:
      return wire::WriteScalarField(kUnsignedInt64Content, slot.uint64_value, target, stream);
    case kBoolContent: return wire::WriteScalarField(kBoolContent, slot.bool_value, target, stream);
    case kComplexFloatContent:
    case kComplexDoubleContent:
    case kDurationContent:
    case kTimePointContent:
      return ApplyToMessageMember(content_, wire::WriteMember{target, stream});
    case CONTENT_NOT_SET: break;
  }
  return target;
}

void ScalarDataUnion::MergeFields(const ScalarDataUnion& from) {
  const uint32_t member = from.content_.case_number;
  switch (from.content_case()) {
    case CONTENT_NOT_SET:
      return;
    case kStringContent:
      set_string_content(from.string_content());
      return;
    case kComplexFloatContent:
    case kComplexDoubleContent:
    case kDurationContent:
    case kTimePointContent:
      ApplyToMessageMember(from.content_, wire::MergeInto(&content_));
      return;
    default:  // a number: its bits are copied as they are
      content_.Select(member);
      content_.slot = from.content_.slot;
      return;
  }
}

void ScalarDataUnion::ClearFields() { content_.Clear(); }

void ScalarDataUnion::SwapFields(ScalarDataUnion* other) { content_.Swap(&other->content_); }

// ArrayDataUnion ------------------------------------------------------------

template class internal::MessageFrame<ArrayDataUnion>;

namespace {

using internal::ArrayContent;

// The reader of each message member: it makes and parses the member's own
// class.
using MemberReader = const char* (*)(ArrayContent* content, uint32_t number, const char* ptr,
                                     internal::ParseContext* ctx);

template <typename T>
constexpr MemberReader ReaderOf() {
  return &wire::ReadMessageMember<T, ArrayContent>;
}

const MemberReader kArrayMemberReaders[] = {
    nullptr,
    ReaderOf<ArrayString>(),
    ReaderOf<ArrayFloat>(),
    ReaderOf<ArrayDouble>(),
    ReaderOf<ArrayInt8>(),
    ReaderOf<ArrayInt16>(),
    ReaderOf<ArrayInt32>(),
    ReaderOf<ArrayInt64>(),
    ReaderOf<ArrayUnsignedInt8>(),
    ReaderOf<ArrayUnsignedInt16>(),
    ReaderOf<ArrayUnsignedInt32>(),
    ReaderOf<ArrayUnsignedInt64>(),
    ReaderOf<ArrayBool>(),
    ReaderOf<ArrayFloat>(),       // complexFloat_content
    ReaderOf<ArrayDouble>(),      // complexDouble_content
    nullptr,                      // dataorder
    nullptr,                      // dimensions
    ReaderOf<ArrayChronoData>(),  // duration_content
    ReaderOf<ArrayChronoData>(),  // timePoint_content
};

constexpr uint32_t kLastArrayMember = ArrayDataUnion::kTimePointContent;

// Applies `action` (wire::SizeMember, wire::WriteMember, wire::MergeMember)
// to the set member as its own class.
template <typename OneofT, typename Action>
auto ApplyToMember(const OneofT& content, Action action) {
  const uint32_t number = content.case_number;
  switch (number) {
    case ArrayDataUnion::kStringContent:
      return action(number, wire::MessageMember<ArrayString>(content));
    case ArrayDataUnion::kFloatContent:
    case ArrayDataUnion::kComplexFloatContent:
      return action(number, wire::MessageMember<ArrayFloat>(content));
    case ArrayDataUnion::kDoubleContent:
    case ArrayDataUnion::kComplexDoubleContent:
      return action(number, wire::MessageMember<ArrayDouble>(content));
    case ArrayDataUnion::kInt8Content:
      return action(number, wire::MessageMember<ArrayInt8>(content));
    case ArrayDataUnion::kInt16Content:
      return action(number, wire::MessageMember<ArrayInt16>(content));
    case ArrayDataUnion::kInt32Content:
      return action(number, wire::MessageMember<ArrayInt32>(content));
    case ArrayDataUnion::kInt64Content:
      return action(number, wire::MessageMember<ArrayInt64>(content));
    case ArrayDataUnion::kUnsignedInt8Content:
      return action(number, wire::MessageMember<ArrayUnsignedInt8>(content));
    case ArrayDataUnion::kUnsignedInt16Content:
      return action(number, wire::MessageMember<ArrayUnsignedInt16>(content));
    case ArrayDataUnion::kUnsignedInt32Content:
      return action(number, wire::MessageMember<ArrayUnsignedInt32>(content));
    case ArrayDataUnion::kUnsignedInt64Content:
      return action(number, wire::MessageMember<ArrayUnsignedInt64>(content));
    case ArrayDataUnion::kBoolContent:
      return action(number, wire::MessageMember<ArrayBool>(content));
    default:  // duration_content, timePoint_content
      return action(number, wire::MessageMember<ArrayChronoData>(content));
  }
}

using Shape = protobuf::RepeatedField<uint32_t>;

// A shape has a handful of axes, too few for the packed-run algorithm's set-up
// to pay: up to kFewAxes are sized by a plain loop and written through a small
// buffer. Longer shapes take the packed-run path; the bytes are the same.
constexpr int kFewAxes = 4;

size_t ShapeFieldSize(const Shape& dimensions, protobuf::internal::CachedSize* cached_payload) {
  if (dimensions.size() > kFewAxes) {
    return wire::Packed<uint32_t>::FieldSize(ArrayDataUnion::kDimensionsFieldNumber, dimensions,
                                             cached_payload);
  }
  size_t payload = 0;
  for (uint32_t extent : dimensions) payload += wire::CodedOutputStream::VarintSize32(extent);
  cached_payload->Set(static_cast<int>(payload));
  return payload == 0 ? 0 : wire::TagSize(ArrayDataUnion::kDimensionsFieldNumber) + 1 + payload;
}

uint8_t* WriteShape(const Shape& dimensions, int cached_payload, uint8_t* target,
                    internal::EpsCopyOutputStream* stream) {
  if (dimensions.size() > kFewAxes) {
    return wire::Packed<uint32_t>::Write(ArrayDataUnion::kDimensionsFieldNumber, dimensions,
                                         cached_payload, target, stream);
  }
  if (dimensions.empty()) return target;
  uint8_t field[2 + (1 + kFewAxes) * varint::kMaxSize];  // tag, length, extents
  uint8_t* end = wire::WriteLengthDelimitedTag(ArrayDataUnion::kDimensionsFieldNumber, field);
  end = wire::WriteVarint32(static_cast<uint32_t>(cached_payload), end);
  for (uint32_t extent : dimensions) end = wire::WriteVarint32(extent, end);
  return stream->WriteRaw(field, static_cast<int>(end - field), target);
}

}  // namespace

ArrayDataUnion::ArrayDataUnion(const ArrayDataUnion& from) : MessageFrame(from) {
  MergeFields(from);
}

ArrayDataUnion::~ArrayDataUnion() {
  dataorder_.Destroy();
  content_.Clear();
}

internal::FieldRead ArrayDataUnion::ReadField(uint32_t tag, const char* ptr,
                                              internal::ParseContext* ctx) {
  switch (tag) {
    case wire::LengthDelimitedTag(kDataorderFieldNumber):
      return wire::ReadBytes(dataorder_.Mutable(nullptr), ptr, ctx);
    case wire::LengthDelimitedTag(kDimensionsFieldNumber):
      return wire::Packed<uint32_t>::ReadRun(&dimensions_, ptr, ctx);
    case MakeTag(kDimensionsFieldNumber, WireFormatLite::WIRETYPE_VARINT):
      return wire::Packed<uint32_t>::ReadUnpacked<wire::LengthDelimitedTag(kDimensionsFieldNumber)>(
          &dimensions_, ptr, ctx);
  }
  const uint32_t number = tag >> 3;
  if (WireFormatLite::GetTagWireType(tag) != WireFormatLite::WIRETYPE_LENGTH_DELIMITED || number > kLastArrayMember ||
      kArrayMemberReaders[number] == nullptr) {
    return std::nullopt;
  }
  return kArrayMemberReaders[number](&content_, number, ptr, ctx);
}

size_t ArrayDataUnion::FieldsByteSize() const {
  size_t size = ShapeFieldSize(dimensions_, &dimensions_cached_byte_size_);
  if (!dataorder().empty()) size += wire::BytesFieldSize(kDataorderFieldNumber, dataorder());
  if (content_case() != CONTENT_NOT_SET) size += ApplyToMember(content_, wire::SizeMember{});
  return size;
}

// Field-number order puts the shape between the members numbered below it
// (1 to 14) and the two chrono members (17, 18).
uint8_t* ArrayDataUnion::WriteFields(uint8_t* target,
                                     internal::EpsCopyOutputStream* stream) const {
  const uint32_t member = content_.case_number;
  if (member != CONTENT_NOT_SET && member < kDataorderFieldNumber) {
    target = ApplyToMember(content_, wire::WriteMember{target, stream});
  }
  if (!dataorder().empty()) {
    target = stream->WriteBytesMaybeAliased(kDataorderFieldNumber, dataorder(), target);
  }
  target = WriteShape(dimensions_, dimensions_cached_byte_size_.Get(), target, stream);
  if (member > kDimensionsFieldNumber) {
    target = ApplyToMember(content_, wire::WriteMember{target, stream});
  }
  return target;
}

void ArrayDataUnion::MergeFields(const ArrayDataUnion& from) {
  wire::Packed<uint32_t>::Append(&dimensions_, from.dimensions_);
  if (!from.dataorder().empty()) dataorder_.Set(from.dataorder(), nullptr);
  if (from.content_case() != CONTENT_NOT_SET) {
    ApplyToMember(from.content_, wire::MergeInto(&content_));
  }
}

void ArrayDataUnion::ClearFields() {
  dimensions_.Clear();
  dataorder_.ClearToEmpty();
  content_.Clear();
}

void ArrayDataUnion::SwapFields(ArrayDataUnion* other) {
  dimensions_.InternalSwap(&other->dimensions_);
  protobuf::internal::ArenaStringPtr::InternalSwap(&dataorder_, nullptr, &other->dataorder_,
                                                   nullptr);
  content_.Swap(&other->content_);
}

// KVariant ------------------------------------------------------------------

template class internal::MessageFrame<KVariant>;

namespace {

// Applies `action` (wire::SizeMember, wire::WriteMember, wire::MergeMember)
// to the set member as its own class.
template <typename OneofT, typename Action>
auto ApplyToData(const OneofT& data, Action action) {
  const uint32_t number = data.case_number;
  if (number == KVariant::kScalarData) {
    return action(number, wire::MessageMember<ScalarDataUnion>(data));
  }
  return action(number, wire::MessageMember<ArrayDataUnion>(data));
}

}  // namespace

KVariant::KVariant(const KVariant& from) : MessageFrame(from) { MergeFields(from); }

KVariant::~KVariant() {
  wellknowntype_.Destroy();
  data_.Clear();
}

internal::FieldRead KVariant::ReadField(uint32_t tag, const char* ptr,
                                        internal::ParseContext* ctx) {
  switch (tag) {
    case wire::LengthDelimitedTag(kScalarData):
      return wire::ReadMessageMember<ScalarDataUnion>(&data_, kScalarData, ptr, ctx);
    case wire::LengthDelimitedTag(kArrayData):
      return wire::ReadMessageMember<ArrayDataUnion>(&data_, kArrayData, ptr, ctx);
    case wire::LengthDelimitedTag(kWellknowntypeFieldNumber):
      return wire::ReadBytes(wellknowntype_.Mutable(nullptr), ptr, ctx);
  }
  return std::nullopt;
}

size_t KVariant::FieldsByteSize() const {
  size_t size = 0;
  if (data_case() != DATA_NOT_SET) size += ApplyToData(data_, wire::SizeMember{});
  if (!wellknowntype().empty()) {
    size += wire::BytesFieldSize(kWellknowntypeFieldNumber, wellknowntype());
  }
  return size;
}

uint8_t* KVariant::WriteFields(uint8_t* target, internal::EpsCopyOutputStream* stream) const {
  if (data_case() != DATA_NOT_SET) target = ApplyToData(data_, wire::WriteMember{target, stream});
  if (!wellknowntype().empty()) {
    target = stream->WriteBytesMaybeAliased(kWellknowntypeFieldNumber, wellknowntype(), target);
  }
  return target;
}

// A scalar merged into an array (or the other way round) replaces it.
void KVariant::MergeFields(const KVariant& from) {
  if (!from.wellknowntype().empty()) wellknowntype_.Set(from.wellknowntype(), nullptr);
  if (from.data_case() != DATA_NOT_SET) {
    ApplyToData(from.data_, wire::MergeInto(&data_));
  }
}

void KVariant::ClearFields() {
  wellknowntype_.ClearToEmpty();
  data_.Clear();
}

void KVariant::SwapFields(KVariant* other) {
  protobuf::internal::ArenaStringPtr::InternalSwap(&wellknowntype_, nullptr,
                                                   &other->wellknowntype_, nullptr);
  data_.Swap(&other->data_);
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
