// Parses the same bytes in one piece and through streams that hand them over
// in blocks of 1 to 8 bytes, by each of the runtime's stream entry points: a
// CodedInputStream, a zero-copy stream, and a zero-copy stream read with its
// length. A stream parse that succeeds must have taken the whole input, and,
// unless an unpacked element runs on under the packed tag (which a stream may
// read differently near block ends), must agree with the flat parse on
// success and on every byte of the result. Whatever the input, no stream
// parse may stop the process where the runtime's DynamicMessage, given the
// same stream, does not.

#include <memory>

#include "fuzz_support.h"

using namespace mav_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Generic generic;
  static pb::LogSilencer quiet;  // the runtime logs its failed checks before throwing
  Input input;
  if (!Split(data, size, &input)) return 0;
  Deliberate deliberate;
  deliberate.Scan(input.type, input.bytes, IsMapEntry(input.type));

  std::unique_ptr<pb::Message> whole(NewOurs(input.type));
  const bool whole_ok = whole->ParseFromString(input.bytes);
  const std::string whole_bytes = whole_ok ? Deterministic(*whole) : std::string();

  for (int block = 1; block <= 8; ++block) {
    for (StreamEntry entry : kStreamEntries) {
      std::unique_ptr<pb::Message> chunked(NewOurs(input.type));
      const StreamOutcome ours = ParseInBlocks(chunked.get(), input.bytes, block, entry);
      if (ours.runtime_check_failed) {
        std::unique_ptr<pb::Message> theirs(generic.New(input.type));
        MAV_FUZZ_CHECK(ParseInBlocks(theirs.get(), input.bytes, block, entry).runtime_check_failed,
                       input);
        continue;
      }
      if (ours.ok) MAV_FUZZ_CHECK(ours.took_all, input);
      if (deliberate.continuation) continue;
      MAV_FUZZ_CHECK(ours.ok == whole_ok, input);
      if (whole_ok) MAV_FUZZ_CHECK(Deterministic(*chunked) == whole_bytes, input);
    }
  }
  return 0;
}
