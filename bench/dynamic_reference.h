// The runtime's generic implementation of the same schema: DynamicMessage
// from a descriptor pool of its own, compiled from Mav.proto at start-up, so
// nothing of the library's registration is shared with it.
#ifndef MAV_PROTOBUF_BENCH_DYNAMIC_REFERENCE_H_
#define MAV_PROTOBUF_BENCH_DYNAMIC_REFERENCE_H_

#include <google/protobuf/compiler/importer.h>
#include <google/protobuf/dynamic_message.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace mav_bench {

class DynamicReference {
 public:
  // Never destroyed: messages made from it may outlive static destruction.
  static DynamicReference& Get() {
    static DynamicReference* reference = new DynamicReference;
    return *reference;
  }

  // The prototype of the schema's message `name` (without the package).
  const google::protobuf::Message& Prototype(const std::string& name) {
    const auto* descriptor = pool_->FindMessageTypeByName("Tarnwick.MavProtobuf." + name);
    if (descriptor == nullptr) Fail(name.c_str());
    return *factory_.GetPrototype(descriptor);
  }

 private:
  class Errors : public google::protobuf::compiler::MultiFileErrorCollector {
    void AddError(const std::string& file, int line, int, const std::string& message) override {
      std::fprintf(stderr, "%s:%d: %s\n", file.c_str(), line, message.c_str());
    }
  };

  DynamicReference() : importer_(&sources_, &errors_) {
    sources_.MapPath("", MAV_PROTO_DIR);
    const auto* file = importer_.Import("Mav.proto");
    if (file == nullptr) Fail("Mav.proto");
    pool_ = file->pool();
  }
  [[noreturn]] static void Fail(const char* what) {
    std::fprintf(stderr, "cannot build the dynamic reference for %s\n", what);
    std::exit(1);
  }

  google::protobuf::compiler::DiskSourceTree sources_;
  Errors errors_;
  google::protobuf::compiler::Importer importer_;
  const google::protobuf::DescriptorPool* pool_ = nullptr;
  google::protobuf::DynamicMessageFactory factory_;
};

}  // namespace mav_bench

#endif  // MAV_PROTOBUF_BENCH_DYNAMIC_REFERENCE_H_
