// Counts the heap a piece of code uses, through a replacement of the global
// allocation functions that stays idle (plain malloc) unless a measurement is
// running, so timed runs are not disturbed.
#ifndef MAV_PROTOBUF_BENCH_HEAP_COUNTER_H_
#define MAV_PROTOBUF_BENCH_HEAP_COUNTER_H_

#include <cstddef>
#include <functional>

namespace mav_bench {

struct HeapUse {
  size_t peak = 0;      // most bytes live at once above the starting point
  size_t retained = 0;  // bytes still live when the code returns
};

// Runs `code` with counting on. Single-threaded use only.
HeapUse MeasureHeap(const std::function<void()>& code);

}  // namespace mav_bench

#endif  // MAV_PROTOBUF_BENCH_HEAP_COUNTER_H_
