// Built with nothing but `pkg-config --cflags --libs mavprotobuf`: exits 0 when
// a tree survives a round trip through bytes.
#include <cstdio>

#include "Mav.pb.h"

int main() {
  Tarnwick::MavProtobuf::PropertyNode root;
  auto& leaf = (*root.mutable_map_type()->mutable_map_data())["exposure"];
  leaf.mutable_value_type()->mutable_scalar_data()->set_double_content(0.25);

  Tarnwick::MavProtobuf::PropertyNode back;
  if (!back.ParseFromString(root.SerializeAsString()) ||
      back.map_type().map_data().at("exposure").value_type().scalar_data().double_content() != 0.25) {
    std::fprintf(stderr, "consumer: the tree did not survive a round trip\n");
    return 1;
  }
  return 0;
}
