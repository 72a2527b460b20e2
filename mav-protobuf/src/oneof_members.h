// The message members of a oneof, handled generically: every union of the
// schema (KVariant, PropertyNode, ArrayDataUnion, ScalarDataUnion) holds
// message members, and they all read, size, write and merge alike. Internal to
// the library.
#ifndef MAV_PROTOBUF_SRC_ONEOF_MEMBERS_H_
#define MAV_PROTOBUF_SRC_ONEOF_MEMBERS_H_

#include "wire.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace wire {

// A member that is read again merges into the one already held; another
// member replaces it.
template <typename T, typename OneofT>
const char* ReadMessageMember(OneofT* oneof, uint32_t number, const char* ptr,
                              ParseContext* ctx) {
  return ParseNested(oneof->template MutableMessage<T>(number), ptr, ctx);
}

template <typename OneofT>
size_t MessageMemberSize(const OneofT& oneof) {
  return MessageFieldSize(oneof.case_number, *oneof.slot.message);
}

// A set member is written even when it is empty (tag and length 0). Written
// here rather than by the runtime's out-of-line message writer: a tree
// crosses a oneof at nearly every level.
template <typename OneofT>
uint8_t* WriteMessageMember(const OneofT& oneof, uint8_t* target,
                            EpsCopyOutputStream* stream) {
  const protobuf::Message& member = *oneof.slot.message;
  target = stream->EnsureSpace(target);
  target = WireFormatLite::WriteTagToArray(oneof.case_number,
                                           WireFormatLite::WIRETYPE_LENGTH_DELIMITED, target);
  target = CodedOutputStream::WriteVarint32ToArray(static_cast<uint32_t>(member.GetCachedSize()),
                                                   target);
  return member._InternalSerialize(target, stream);
}

// The same member merges field by field; another one is replaced by a copy.
template <typename OneofT>
void MergeMessageMember(OneofT* to, const OneofT& from, const protobuf::Message& prototype) {
  to->MutableMessage(from.case_number, prototype)->MergeFrom(*from.slot.message);
}

}  // namespace wire
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_ONEOF_MEMBERS_H_
