// Registration of one workload's measurements: the same operations on every
// implementation that holds it (the library's classes, the runtime's
// DynamicMessage, and for some workloads the runtime's Struct), on the same
// wire bytes, plus memcpy of those bytes as the floor. Each benchmark reports
// the workload's element count as the counter "items", so the report can give
// time per element.
#ifndef MAV_PROTOBUF_BENCH_SUITE_H_
#define MAV_PROTOBUF_BENCH_SUITE_H_

#include <benchmark/benchmark.h>
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/message.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "heap_counter.h"

namespace mav_bench {

// One implementation's view of a workload: how to make the filled message.
// The first call builds it; later calls reuse it.
template <typename M>
class Subject {
 public:
  Subject(std::function<const M&()> prototype, std::function<std::string()> wire)
      : prototype_(std::move(prototype)), wire_(std::move(wire)) {}

  const std::string& Wire() {
    if (!built_) Build();
    return bytes_;
  }
  const M& Filled() {
    if (!built_) Build();
    return *filled_;
  }
  std::unique_ptr<M> New() { return std::unique_ptr<M>(static_cast<M*>(prototype_().New())); }

 private:
  void Build() {
    bytes_ = wire_();
    filled_ = New();
    if (!filled_->ParseFromString(bytes_)) std::abort();
    built_ = true;
  }

  std::function<const M&()> prototype_;
  std::function<std::string()> wire_;
  bool built_ = false;
  std::string bytes_;
  std::unique_ptr<M> filled_;
};

struct HeapProbe {
  std::string name;
  std::function<HeapUse()> measure;
};
inline std::vector<HeapProbe>& HeapProbes() {
  static std::vector<HeapProbe> probes;
  return probes;
}

template <typename M>
void AddHeapProbe(const std::string& name, std::shared_ptr<Subject<M>> subject) {
  HeapProbes().push_back({name, [subject] {
    const std::string& wire = subject->Wire();
    std::unique_ptr<M> parsed;
    HeapUse use = MeasureHeap([&] {
      parsed = subject->New();
      if (!parsed->ParseFromString(wire)) std::abort();
    });
    return use;
  }});
}

struct Options {
  int64_t items;             // elements or leaves, for time per element
  bool deterministic = false;  // also time deterministic serialization (maps)
};

template <typename M, typename Body>
benchmark::internal::Benchmark* Register(const std::string& name, const Options& options,
                                         std::shared_ptr<Subject<M>> subject, Body body) {
  return benchmark::RegisterBenchmark(name.c_str(), [subject, options, body](benchmark::State& state) {
    body(state, *subject);
    state.counters["items"] = static_cast<double>(options.items);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(subject->Wire().size()));
  })->Unit(benchmark::kMicrosecond);
}

// Destroying a large array takes next to no time, so a run measured until it
// adds up to the minimum time would parse the array millions of times.
constexpr int kDestroyIterations = 200;

// For benchmarks that time only part of each iteration themselves.
inline double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline void ParseOrFail(benchmark::State& state, google::protobuf::MessageLite* message,
                        const std::string& wire) {
  if (!message->ParseFromString(wire)) state.SkipWithError("parse failed");
}

// The operations of one implementation, named workload/implementation/op.
// `M` is the type a user would call them on, so the library's classes are
// timed through their own functions.
template <typename M>
void RegisterOperations(const std::string& workload, const std::string& implementation,
                        const Options& options, std::shared_ptr<Subject<M>> subject) {
  const std::string prefix = workload + "/" + implementation + "/";
  Register(prefix + "byte_size", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const M& message = s.Filled();
    for (auto _ : state) benchmark::DoNotOptimize(message.ByteSizeLong());
  });
  Register(prefix + "size_serialize_array", options, subject,
           [](benchmark::State& state, Subject<M>& s) {
             const M& message = s.Filled();
             std::string buffer(s.Wire().size(), '\0');
             for (auto _ : state) {
               if (!message.SerializeToArray(buffer.data(), static_cast<int>(buffer.size()))) {
                 state.SkipWithError("serialize failed");
               }
               benchmark::ClobberMemory();
             }
           });
  Register(prefix + "serialize_string", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const M& message = s.Filled();
    for (auto _ : state) {
      std::string out;
      message.SerializeToString(&out);
      benchmark::DoNotOptimize(out.data());
    }
  });
  if (options.deterministic) {
    Register(prefix + "serialize_deterministic", options, subject,
             [](benchmark::State& state, Subject<M>& s) {
               const M& message = s.Filled();
               std::string buffer(s.Wire().size(), '\0');
               for (auto _ : state) {
                 google::protobuf::io::ArrayOutputStream out(buffer.data(),
                                                             static_cast<int>(buffer.size()));
                 google::protobuf::io::CodedOutputStream coded(&out);
                 coded.SetSerializationDeterministic(true);
                 message.SerializeToCodedStream(&coded);
               }
             });
  }
  // Timed by hand, like "destroy": pausing the benchmark's timer around the
  // destruction costs about a tenth of a pass over 8 MiB, which reading the
  // clock twice does not.
  Register(prefix + "parse_fresh", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const std::string& wire = s.Wire();
    for (auto _ : state) {
      const auto start = std::chrono::steady_clock::now();
      std::unique_ptr<M> message = s.New();
      ParseOrFail(state, message.get(), wire);
      state.SetIterationTime(SecondsSince(start));
      message.reset();
    }
  })->UseManualTime();
  Register(prefix + "parse_reused", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const std::string& wire = s.Wire();
    std::unique_ptr<M> message = s.New();
    for (auto _ : state) ParseOrFail(state, message.get(), wire);
  });
  Register(prefix + "copy_from", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const M& source = s.Filled();
    std::unique_ptr<M> target = s.New();
    for (auto _ : state) target->CopyFrom(source);
  });
  Register(prefix + "destroy", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const std::string& wire = s.Wire();
    for (auto _ : state) {
      std::unique_ptr<M> message = s.New();
      ParseOrFail(state, message.get(), wire);
      const auto start = std::chrono::steady_clock::now();
      message.reset();
      state.SetIterationTime(SecondsSince(start));
    }
  })->UseManualTime()->Iterations(kDestroyIterations);
  AddHeapProbe(prefix + "parse_fresh", subject);
}

// memcpy of the workload's wire bytes between two warm buffers.
template <typename M>
void RegisterMemcpy(const std::string& workload, const Options& options,
                    std::shared_ptr<Subject<M>> subject) {
  Register(workload + "/memcpy/copy", options, subject, [](benchmark::State& state, Subject<M>& s) {
    const std::string& wire = s.Wire();
    std::string target(wire.size(), '\0');
    for (auto _ : state) {
      std::memcpy(target.data(), wire.data(), wire.size());
      benchmark::ClobberMemory();
    }
  });
}

}  // namespace mav_bench

#endif  // MAV_PROTOBUF_BENCH_SUITE_H_
