// Parses the same bytes in one piece and through a stream that hands them
// over in blocks of 1 to 7 bytes: the two must agree on success and, when
// both succeed, on every byte of the result.

#include <memory>

#include "fuzz_support.h"

using namespace mav_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input;
  if (!Split(data, size, &input)) return 0;
  const int block = 1 + static_cast<int>(data[0] / MessageTypes().size()) % 7;
  // Open finding (inputs under tests/regressions/chunked_fuzzer/): at each
  // block's end the parse context looks at the last buffered bytes to decide
  // whether a zero tag ends the parse there, reading them as the standard
  // wire format does. The unpacked reader's continuation reads a packed tag
  // and its length differently, so that guess can be wrong both ways: the
  // context pulls a stream that has ended and the final BackUp() aborts the
  // process, or it stops pulling at a zero byte the reader steps over and the
  // parse succeeds on a truncated input. Until the reader is fixed such
  // inputs are not run here.
  Deliberate deliberate;
  deliberate.Scan(input.type, input.bytes, IsMapEntry(input.type));
  if (deliberate.continuation) return 0;

  std::unique_ptr<pb::Message> whole(NewOurs(input.type));
  const bool whole_ok = whole->ParseFromString(input.bytes);

  std::unique_ptr<pb::Message> chunked(NewOurs(input.type));
  pb::io::ArrayInputStream blocks(input.bytes.data(), static_cast<int>(input.bytes.size()),
                                  block);
  bool chunked_ok;
  {
    pb::io::CodedInputStream coded(&blocks);
    chunked_ok = chunked->ParseFromCodedStream(&coded) && coded.ConsumedEntireMessage();
  }
  MAV_FUZZ_CHECK(chunked_ok == whole_ok, input);
  if (whole_ok) MAV_FUZZ_CHECK(Deterministic(*chunked) == Deterministic(*whole), input);
  return 0;
}
