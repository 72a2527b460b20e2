// mav_tree: the life of one property tree.
//
//   mav_tree          builds a tree holding the key "m" with a 2x3 array of
//                     doubles, prints its wire bytes in hex, parses them back
//                     and prints the tree as text.
//   mav_tree FILE     reads FILE as the wire bytes of a PropertyNode and
//                     prints the tree as text.

#include <google/protobuf/text_format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "Mav.pb.h"

namespace {

using Tarnwick::MavProtobuf::ArrayDataUnion;
using Tarnwick::MavProtobuf::PropertyNode;

PropertyNode BuiltInTree() {
  PropertyNode root;
  PropertyNode& node = (*root.mutable_map_type()->mutable_map_data())["m"];
  ArrayDataUnion* array = node.mutable_value_type()->mutable_array_data();
  for (double value : {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}) {
    array->mutable_double_content()->add_double_content(value);
  }
  array->add_dimensions(2);
  array->add_dimensions(3);
  return root;
}

void PrintHex(const std::string& bytes) {
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::printf("%02X%c", static_cast<unsigned char>(bytes[i]),
                (i + 1) % 16 == 0 || i + 1 == bytes.size() ? '\n' : ' ');
  }
}

bool PrintTree(const PropertyNode& tree) {
  std::string text;
  if (!google::protobuf::TextFormat::PrintToString(tree, &text)) return false;
  std::fputs(text.c_str(), stdout);
  return true;
}

int Fail(const std::string& input, const std::string& problem) {
  std::cerr << "mav_tree: " << input << ": " << problem << "\n";
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    std::cerr << "usage: mav_tree [FILE]\n";
    return 2;
  }
  if (argc == 2) {
    const std::string path = argv[1];
    std::ifstream in(path, std::ios::binary);
    if (!in) return Fail(path, std::strerror(errno));
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) return Fail(path, "read error");
    PropertyNode tree;
    if (!tree.ParseFromString(bytes)) return Fail(path, "not the wire form of a PropertyNode");
    return PrintTree(tree) ? 0 : Fail(path, "cannot be printed as text");
  }

  const PropertyNode tree = BuiltInTree();
  std::string bytes;
  if (!tree.SerializeToString(&bytes)) return Fail("built-in tree", "cannot be serialized");
  std::printf("wire bytes (%zu):\n", bytes.size());
  PrintHex(bytes);

  PropertyNode parsed;
  if (!parsed.ParseFromString(bytes)) return Fail("built-in tree", "its bytes do not parse back");
  std::printf("\nparsed back:\n");
  return PrintTree(parsed) ? 0 : Fail("built-in tree", "cannot be printed as text");
}
