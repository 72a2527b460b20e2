// Where heap-allocated message objects live.
//
// With mimalloc, a parse that builds thousands of nodes spends a fraction of
// what glibc's malloc costs on them: glibc keeps only a few freed blocks per
// size in its fast cache and sorts the rest through its bins on the next
// parse. Element storage (RepeatedField, strings, map nodes) is the runtime's
// and stays on the global allocator.
//
// MAV_PROTOBUF_MESSAGE_ALLOCATOR=system in the environment keeps messages on
// the global allocator too, for tools that only see that one (valgrind, heap
// counters). The choice is made once, at the first message allocation, so a
// block is always freed by the allocator that made it.

#include "Mav.pb.h"

#include <cstdlib>
#include <cstring>
#include <new>

#ifdef MAV_PROTOBUF_USE_MIMALLOC
#include <mimalloc.h>
#endif

namespace Tarnwick {
namespace MavProtobuf {
namespace internal {

#ifdef MAV_PROTOBUF_USE_MIMALLOC

namespace {

bool MessagesUseGlobalAllocator() {
  static const bool use_global = [] {
    const char* choice = std::getenv("MAV_PROTOBUF_MESSAGE_ALLOCATOR");
    return choice != nullptr && std::strcmp(choice, "system") == 0;
  }();
  return use_global;
}

}  // namespace

void* AllocateMessage(size_t size) {
  return MessagesUseGlobalAllocator() ? ::operator new(size) : mi_new(size);
}

void* TryAllocateMessage(size_t size) noexcept {
  return MessagesUseGlobalAllocator() ? ::operator new(size, std::nothrow) : mi_malloc(size);
}

void FreeMessage(void* message) noexcept {
  if (MessagesUseGlobalAllocator()) {
    ::operator delete(message);
  } else {
    mi_free(message);
  }
}

#else

void* AllocateMessage(size_t size) { return ::operator new(size); }

void* TryAllocateMessage(size_t size) noexcept { return ::operator new(size, std::nothrow); }

void FreeMessage(void* message) noexcept { ::operator delete(message); }

#endif

}  // namespace internal
}  // namespace MavProtobuf
}  // namespace Tarnwick
