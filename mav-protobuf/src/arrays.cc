// The array messages: nine packed numeric arrays, two byte arrays, the string
// array and the chrono array.

#include "frames.h"

namespace Tarnwick {
namespace MavProtobuf {

template class internal::MessageFrame<ArrayFloat>;
template class internal::PackedArrayFrame<ArrayFloat, float>;
template class internal::MessageFrame<ArrayDouble>;
template class internal::PackedArrayFrame<ArrayDouble, double>;
template class internal::MessageFrame<ArrayInt16>;
template class internal::PackedArrayFrame<ArrayInt16, int32_t>;
template class internal::MessageFrame<ArrayInt32>;
template class internal::PackedArrayFrame<ArrayInt32, int32_t>;
template class internal::MessageFrame<ArrayInt64>;
template class internal::PackedArrayFrame<ArrayInt64, int64_t>;
template class internal::MessageFrame<ArrayUnsignedInt16>;
template class internal::PackedArrayFrame<ArrayUnsignedInt16, uint32_t>;
template class internal::MessageFrame<ArrayUnsignedInt32>;
template class internal::PackedArrayFrame<ArrayUnsignedInt32, uint32_t>;
template class internal::MessageFrame<ArrayUnsignedInt64>;
template class internal::PackedArrayFrame<ArrayUnsignedInt64, uint64_t>;
template class internal::MessageFrame<ArrayBool>;
template class internal::PackedArrayFrame<ArrayBool, bool>;

template class internal::MessageFrame<ArrayInt8>;
template class internal::ByteArrayFrame<ArrayInt8>;
template class internal::MessageFrame<ArrayUnsignedInt8>;
template class internal::ByteArrayFrame<ArrayUnsignedInt8>;

template class internal::MessageFrame<ArrayChronoData>;
template class internal::RepeatedMessageFrame<ArrayChronoData, ChronoData>;

// ArrayString ---------------------------------------------------------------

template class internal::MessageFrame<ArrayString>;

ArrayString::ArrayString(const ArrayString& from)
    : MessageFrame(from), string_content_(from.string_content_) {}

internal::FieldRead ArrayString::ReadField(uint32_t tag, const char* ptr,
                                           internal::ParseContext* ctx) {
  if (tag != wire::LengthDelimitedTag(1)) {
    return std::nullopt;
  }
  return wire::ReadBytes(string_content_.Add(), ptr, ctx);
}

size_t ArrayString::FieldsByteSize() const {
  size_t size = 0;
  for (const std::string& element : string_content_) size += wire::BytesFieldSize(1, element);
  return size;
}

// Empty elements are written too (10, 0), so the element count survives.
uint8_t* ArrayString::WriteFields(uint8_t* target,
                                  internal::EpsCopyOutputStream* stream) const {
  for (const std::string& element : string_content_) {
    target = stream->WriteBytes(1, element, target);
  }
  return target;
}

void ArrayString::MergeFields(const ArrayString& from) {
  string_content_.MergeFrom(from.string_content_);
}

void ArrayString::ClearFields() { string_content_.Clear(); }

void ArrayString::SwapFields(ArrayString* other) {
  string_content_.InternalSwap(&other->string_content_);
}

}  // namespace MavProtobuf
}  // namespace Tarnwick
