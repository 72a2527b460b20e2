// Parses the same bytes in one piece and through a stream that hands them
// over in blocks of 1 to 7 bytes: the two must agree on success and, when
// both succeed, on every byte of the result; a stream parse that succeeds
// must leave the stream at its end.

#include <memory>

#include "fuzz_support.h"

using namespace mav_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input;
  if (!Split(data, size, &input)) return 0;
  const int block = 1 + static_cast<int>(data[0] / MessageTypes().size()) % 7;
  // Where an unpacked element runs on under the packed tag, a stream parse
  // reads the packed run plainly near block ends, so only the stream's own
  // promises are checked: success means the whole stream was taken.
  Deliberate deliberate;
  deliberate.Scan(input.type, input.bytes, IsMapEntry(input.type));

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
  const auto input_size = static_cast<int64_t>(input.bytes.size());
  if (chunked_ok) MAV_FUZZ_CHECK(blocks.ByteCount() == input_size, input);
  if (deliberate.continuation) return 0;
  MAV_FUZZ_CHECK(chunked_ok == whole_ok, input);
  if (whole_ok) MAV_FUZZ_CHECK(Deterministic(*chunked) == Deterministic(*whole), input);
  return 0;
}
