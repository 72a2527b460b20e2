// Where heap-allocated message objects live.
//
// With mimalloc, a parse that builds thousands of nodes spends a fraction of
// what glibc's malloc costs on them: glibc keeps only a few freed blocks per
// size in its fast cache and sorts the rest through its bins on the next
// parse. Element storage (RepeatedField, strings, map nodes) is the runtime's
// and stays on the global allocator.
//
// Tools that watch the heap see only the global allocator: a sanitizer's
// runtime in the process or valgrind running it keeps messages there too, as
// does MAV_PROTOBUF_MESSAGE_ALLOCATOR=system in the environment (for heap
// counters and the like). The choice is made once, at the first message
// allocation, so a block is always freed by the allocator that made it.

#include "Mav.pb.h"

#include <cstdlib>
#include <cstring>
#include <new>

#ifdef MAV_PROTOBUF_USE_MIMALLOC
#include <mimalloc.h>
#if __has_include(<valgrind/valgrind.h>)
#include <valgrind/valgrind.h>
#endif

// Defined only where a sanitizer's runtime is linked into the process.
extern "C" {
__attribute__((weak)) void __asan_init();
__attribute__((weak)) void __tsan_init();
__attribute__((weak)) void __msan_init();
__attribute__((weak)) void __hwasan_init();
__attribute__((weak)) void __lsan_init();
}
#endif

namespace Tarnwick {
namespace MavProtobuf {
namespace internal {

#ifdef MAV_PROTOBUF_USE_MIMALLOC

namespace {

bool SanitizerInProcess() {
  return __asan_init != nullptr || __tsan_init != nullptr || __msan_init != nullptr ||
         __hwasan_init != nullptr || __lsan_init != nullptr;
}

bool RunningOnValgrind() {
#ifdef RUNNING_ON_VALGRIND
  if (RUNNING_ON_VALGRIND) return true;
#endif
  // Without its header, valgrind is still seen by the shims it preloads.
  const char* preload = std::getenv("LD_PRELOAD");
  return preload != nullptr && std::strstr(preload, "vgpreload") != nullptr;
}

bool MessagesUseGlobalAllocator() {
  static const bool use_global = [] {
    const char* choice = std::getenv("MAV_PROTOBUF_MESSAGE_ALLOCATOR");
    return (choice != nullptr && std::strcmp(choice, "system") == 0) || SanitizerInProcess() ||
           RunningOnValgrind();
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
