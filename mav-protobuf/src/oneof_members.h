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

// Each union names the classes of its message members once, in a function
// object of the form
//   template <typename Visit> auto operator()(uint32_t number, Visit visit) const
// that calls visit(number, Class<M>()) with the class M of member `number`
// (passing the number on lets each case write its tag as a constant). Reading,
// sizing, writing and merging below go through it, so every call reaches the
// member's own class directly rather than through the virtual table, on every
// level of a tree.
template <typename M>
struct Class {
  using type = M;
};

// A member that is read again merges into the one already held; another
// member replaces it.
template <typename Members, typename OneofT>
const char* ReadMessageMember(OneofT* oneof, uint32_t number, const char* ptr,
                              ParseContext* ctx) {
  return Members()(number, [oneof, ptr, ctx](uint32_t number, auto member) {
    using M = typename decltype(member)::type;
    return ParseNested(oneof->template MutableMessage<M>(number), ptr, ctx);
  });
}

template <typename Members, typename OneofT>
size_t MessageMemberSize(const OneofT& oneof) {
  return Members()(oneof.case_number, [&oneof](uint32_t number, auto member) {
    using M = typename decltype(member)::type;
    return MessageFieldSize(number, static_cast<const M&>(*oneof.slot.message));
  });
}

template <typename Members, typename OneofT>
uint8_t* WriteMessageMember(const OneofT& oneof, uint8_t* target,
                            EpsCopyOutputStream* stream) {
  return Members()(oneof.case_number, [&oneof, target, stream](uint32_t number, auto member) {
    using M = typename decltype(member)::type;
    return WriteMessageField(number, static_cast<const M&>(*oneof.slot.message),
                             target, stream);
  });
}

// The same member merges field by field; another one is replaced by a copy.
template <typename Members, typename OneofT>
void MergeMessageMember(OneofT* to, const OneofT& from) {
  Members()(from.case_number, [to, &from](uint32_t number, auto member) {
    using M = typename decltype(member)::type;
    to->template MutableMessage<M>(number)
        ->MergeFrom(static_cast<const M&>(*from.slot.message));
  });
}

}  // namespace wire
}  // namespace MavProtobuf
}  // namespace Tarnwick

#endif  // MAV_PROTOBUF_SRC_ONEOF_MEMBERS_H_
