// Exits 0 when a message of the consumer's own schema, holding a KVariant,
// survives a round trip through bytes.
#include <cstdio>

// The documented include form, which must work from any prefix.
#include "MavValues.h"
#include "consumer.pb.h"

int main() {
  consumer::Reading reading;
  reading.set_channel("temperature");
  reading.mutable_value()->mutable_scalar_data()->set_double_content(21.5);
  reading.mutable_value()->set_wellknowntype("celsius");

  consumer::Reading back;
  if (!back.ParseFromString(reading.SerializeAsString())) {
    std::fprintf(stderr, "consumer: round trip does not parse\n");
    return 1;
  }
  if (back.value().scalar_data().double_content() != 21.5 ||
      back.value().wellknowntype() != "celsius" ||
      back.GetDescriptor()->FindFieldByName("value")->message_type() !=
          Tarnwick::MavProtobuf::KVariant::descriptor()) {
    std::fprintf(stderr, "consumer: round trip changed the message\n");
    return 1;
  }
  return 0;
}
