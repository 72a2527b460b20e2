#include "heap_counter.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace mav_bench {
namespace {

bool counting = false;
long long live = 0;  // may go below zero: blocks made before counting started are freed
long long peak = 0;

void* Allocate(size_t size) {
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  if (counting) {
    live += static_cast<long long>(malloc_usable_size(block));
    if (live > peak) peak = live;
  }
  return block;
}

void Release(void* block) {
  if (block == nullptr) return;
  if (counting) live -= static_cast<long long>(malloc_usable_size(block));
  std::free(block);
}

}  // namespace

HeapUse MeasureHeap(const std::function<void()>& code) {
  live = peak = 0;
  counting = true;
  code();
  counting = false;
  HeapUse use;
  use.peak = static_cast<size_t>(peak);
  use.retained = live > 0 ? static_cast<size_t>(live) : 0;
  return use;
}

}  // namespace mav_bench

void* operator new(size_t size) { return mav_bench::Allocate(size); }
void* operator new[](size_t size) { return mav_bench::Allocate(size); }
void operator delete(void* block) noexcept { mav_bench::Release(block); }
void operator delete[](void* block) noexcept { mav_bench::Release(block); }
void operator delete(void* block, size_t) noexcept { mav_bench::Release(block); }
void operator delete[](void* block, size_t) noexcept { mav_bench::Release(block); }
