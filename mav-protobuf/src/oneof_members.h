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

// The set message member as `M`, its own class.
template <typename M, typename OneofT>
const M& MessageMember(const OneofT& oneof) {
  return static_cast<const M&>(*oneof.slot.message);
}

// Sizing and writing of a set message member, given its number and the member
// as its own class, so that the calls go straight to that class (see
// MessageFieldSize). Each union has one function that picks the class by the
// member's number and applies one of these. A set member is written even when
// it is empty (tag and length 0).
struct SizeMember {
  template <typename M>
  size_t operator()(uint32_t number, const M& member) const {
    return MessageFieldSize(number, member);
  }
};
struct WriteMember {
  uint8_t* target;
  EpsCopyOutputStream* stream;
  template <typename M>
  uint8_t* operator()(uint32_t number, const M& member) const {
    return WriteMessageField(number, member, target, stream);
  }
};

// Merges a member into the same member of `to`, field by field; another
// member there is replaced by a copy.
template <typename OneofT>
struct MergeMember {
  OneofT* to;
  template <typename M>
  void operator()(uint32_t number, const M& member) const {
    to->template MutableMessage<M>(number)->MergeFrom(member);
  }
};
template <typename OneofT>
MergeMember<OneofT> MergeInto(OneofT* to) {
  return {to};
}

}  // namespace wire
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_ONEOF_MEMBERS_H_
