// Build-time tool: turns a .proto file into a C++ fragment that holds the
// runtime's serialized FileDescriptorProto of it, so the library embeds exactly
// what the schema says and never a hand-kept copy.
//
//   embed_schema <proto_dir> <proto_file> <output> <symbol>

#include <google/protobuf/compiler/importer.h>
#include <google/protobuf/descriptor.pb.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

namespace {

class ErrorPrinter : public google::protobuf::compiler::MultiFileErrorCollector {
 public:
  void AddError(const std::string& file, int line, int column,
                const std::string& message) override {
    std::cerr << file << ":" << line + 1 << ":" << column + 1 << ": " << message
              << "\n";
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: embed_schema <proto_dir> <proto_file> <output> "
                 "<symbol>\n";
    return 2;
  }
  const std::string proto_dir = argv[1], proto_file = argv[2],
                    output = argv[3], symbol = argv[4];

  google::protobuf::compiler::DiskSourceTree tree;
  tree.MapPath("", proto_dir);
  ErrorPrinter errors;
  google::protobuf::compiler::Importer importer(&tree, &errors);
  const google::protobuf::FileDescriptor* file = importer.Import(proto_file);
  if (file == nullptr) {
    std::cerr << "embed_schema: " << proto_file << ": cannot be parsed\n";
    return 1;
  }
  google::protobuf::FileDescriptorProto proto;
  file->CopyTo(&proto);
  std::string bytes;
  proto.SerializeToString(&bytes);

  const std::string partial = output + ".partial";
  {
    std::ofstream out(partial, std::ios::binary | std::ios::trunc);
    out << "// Serialized descriptor of " << proto_file
        << ", produced at build time by embed_schema.\n";
    out << "alignas(8) constexpr char " << symbol << "[] = {";
    for (size_t i = 0; i < bytes.size(); ++i) {
      out << (i % 16 == 0 ? "\n    " : " ")
          << static_cast<int>(static_cast<signed char>(bytes[i])) << ",";
    }
    out << "\n};\n";
    if (!out.flush()) {
      std::cerr << "embed_schema: " << output << ": cannot be written\n";
      std::remove(partial.c_str());
      return 1;
    }
  }
  if (std::rename(partial.c_str(), output.c_str()) != 0) {
    std::cerr << "embed_schema: " << output << ": cannot be written\n";
    std::remove(partial.c_str());
    return 1;
  }
  return 0;
}
