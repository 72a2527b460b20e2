// Built with AddressSanitizer over a library built without it: reading a
// message after deleting it must be reported, which it is only if the
// library put the message where the sanitizer watches.

#include <cstdio>

#include "Mav.pb.h"

int main() {
  auto* value = new Tarnwick::MavProtobuf::KVariant;
  value->set_wellknowntype("frame");
  delete value;
  std::printf("%zu\n", value->wellknowntype().size());
  return 0;
}
