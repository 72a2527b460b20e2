// File-level code of Mav.proto: the default instances, the reflection tables,
// and the registration of the schema with the runtime's descriptor pool and
// message factory.

#include <cstddef>

#include "Mav.pb.h"
#include "mav_descriptor.inc"  // kMavDescriptor: produced at build time from Mav.proto

// Default instances are built by the compiler: falling back to dynamic
// initialization would let another library's static initializer meet them
// unbuilt, so that fallback is made a compile error.
#if defined(__clang__)
#define MAV_CONSTINIT [[clang::require_constant_initialization]]
#else
#define MAV_CONSTINIT __constinit
#endif

namespace Tarnwick {
namespace MavProtobuf {

MAV_CONSTINIT KVariantDefaultTypeInternal _KVariant_default_instance_;
MAV_CONSTINIT PropertyMap_MapDataEntry_DoNotUseDefaultTypeInternal
    _PropertyMap_MapDataEntry_DoNotUse_default_instance_;
MAV_CONSTINIT PropertyMapDefaultTypeInternal _PropertyMap_default_instance_;
MAV_CONSTINIT PropertyNodeDefaultTypeInternal _PropertyNode_default_instance_;
MAV_CONSTINIT PropertyListDefaultTypeInternal _PropertyList_default_instance_;
MAV_CONSTINIT ComplexFloatDefaultTypeInternal _ComplexFloat_default_instance_;
MAV_CONSTINIT ComplexDoubleDefaultTypeInternal _ComplexDouble_default_instance_;
MAV_CONSTINIT ChronoDataDefaultTypeInternal _ChronoData_default_instance_;
MAV_CONSTINIT ArrayChronoDataDefaultTypeInternal _ArrayChronoData_default_instance_;
MAV_CONSTINIT ArrayStringDefaultTypeInternal _ArrayString_default_instance_;
MAV_CONSTINIT ArrayFloatDefaultTypeInternal _ArrayFloat_default_instance_;
MAV_CONSTINIT ArrayDoubleDefaultTypeInternal _ArrayDouble_default_instance_;
MAV_CONSTINIT ArrayInt8DefaultTypeInternal _ArrayInt8_default_instance_;
MAV_CONSTINIT ArrayInt16DefaultTypeInternal _ArrayInt16_default_instance_;
MAV_CONSTINIT ArrayInt32DefaultTypeInternal _ArrayInt32_default_instance_;
MAV_CONSTINIT ArrayInt64DefaultTypeInternal _ArrayInt64_default_instance_;
MAV_CONSTINIT ArrayUnsignedInt8DefaultTypeInternal _ArrayUnsignedInt8_default_instance_;
MAV_CONSTINIT ArrayUnsignedInt16DefaultTypeInternal _ArrayUnsignedInt16_default_instance_;
MAV_CONSTINIT ArrayUnsignedInt32DefaultTypeInternal _ArrayUnsignedInt32_default_instance_;
MAV_CONSTINIT ArrayUnsignedInt64DefaultTypeInternal _ArrayUnsignedInt64_default_instance_;
MAV_CONSTINIT ArrayBoolDefaultTypeInternal _ArrayBool_default_instance_;
MAV_CONSTINIT ArrayDataUnionDefaultTypeInternal _ArrayDataUnion_default_instance_;
MAV_CONSTINIT ScalarDataUnionDefaultTypeInternal _ScalarDataUnion_default_instance_;

#undef MAV_CONSTINIT

protobuf::Metadata PropertyMap_MapDataEntry_DoNotUse::GetMetadata() const {
  return protobuf_Mav_2eproto::MetadataAt(1);
}

}  // namespace MavProtobuf
}  // namespace Tarnwick

namespace {

using namespace Tarnwick::MavProtobuf;  // NOLINT: the tables name every class

constexpr uint32_t kAbsent = ~0u;
// Oneof members live in their oneof's shared storage, listed after the fields.
constexpr uint32_t kInOneof = protobuf::internal::kInvalidFieldOffsetTag;
constexpr int kMessageCount = 23;

}  // namespace

// Locations are taken from the classes themselves; the classes are not
// standard-layout, but have no virtual bases, so offsetof is exact.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

// Per message, in file order: has-bits, unknown fields, extensions, oneof
// cases, weak fields, inlined-string flags; then one entry per field in
// declaration order, one per oneof, and (map entry only) the has-bit indices.
const uint32_t protobuf_Mav_2eproto::TableStruct::offsets[] = {
    // 0 KVariant
    kAbsent, offsetof(KVariant, _internal_metadata_), kAbsent,
    offsetof(KVariant, data_.case_number), kAbsent, kAbsent,
    kInOneof, kInOneof, offsetof(KVariant, wellknowntype_),
    offsetof(KVariant, data_.slot),
    // 1 PropertyMap.MapDataEntry
    offsetof(PropertyMap_MapDataEntry_DoNotUse, _has_bits_),
    offsetof(PropertyMap_MapDataEntry_DoNotUse, _internal_metadata_), kAbsent, kAbsent, kAbsent,
    kAbsent,
    offsetof(PropertyMap_MapDataEntry_DoNotUse, key_),
    offsetof(PropertyMap_MapDataEntry_DoNotUse, value_),
    0, 1,
    // 2 PropertyMap
    kAbsent, offsetof(PropertyMap, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(PropertyMap, map_data_),
    // 3 PropertyNode
    kAbsent, offsetof(PropertyNode, _internal_metadata_), kAbsent,
    offsetof(PropertyNode, type_.case_number), kAbsent, kAbsent,
    kInOneof, kInOneof, kInOneof,
    offsetof(PropertyNode, type_.slot),
    // 4 PropertyList
    kAbsent, offsetof(PropertyList, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(PropertyList, elements_),
    // 5 ComplexFloat
    kAbsent, offsetof(ComplexFloat, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ComplexFloat, first_), offsetof(ComplexFloat, second_),
    // 6 ComplexDouble
    kAbsent, offsetof(ComplexDouble, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ComplexDouble, first_), offsetof(ComplexDouble, second_),
    // 7 ChronoData
    kAbsent, offsetof(ChronoData, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ChronoData, first_), offsetof(ChronoData, second_),
    // 8 ArrayChronoData
    kAbsent, offsetof(ArrayChronoData, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayChronoData, elements_),
    // 9 ArrayString
    kAbsent, offsetof(ArrayString, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayString, string_content_),
    // 10 ArrayFloat
    kAbsent, offsetof(ArrayFloat, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayFloat, values_),
    // 11 ArrayDouble
    kAbsent, offsetof(ArrayDouble, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayDouble, values_),
    // 12 ArrayInt8
    kAbsent, offsetof(ArrayInt8, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayInt8, bytes_),
    // 13 ArrayInt16
    kAbsent, offsetof(ArrayInt16, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayInt16, values_),
    // 14 ArrayInt32
    kAbsent, offsetof(ArrayInt32, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayInt32, values_),
    // 15 ArrayInt64
    kAbsent, offsetof(ArrayInt64, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayInt64, values_),
    // 16 ArrayUnsignedInt8
    kAbsent, offsetof(ArrayUnsignedInt8, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayUnsignedInt8, bytes_),
    // 17 ArrayUnsignedInt16
    kAbsent, offsetof(ArrayUnsignedInt16, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayUnsignedInt16, values_),
    // 18 ArrayUnsignedInt32
    kAbsent, offsetof(ArrayUnsignedInt32, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayUnsignedInt32, values_),
    // 19 ArrayUnsignedInt64
    kAbsent, offsetof(ArrayUnsignedInt64, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayUnsignedInt64, values_),
    // 20 ArrayBool
    kAbsent, offsetof(ArrayBool, _internal_metadata_), kAbsent, kAbsent, kAbsent, kAbsent,
    offsetof(ArrayBool, values_),
    // 21 ArrayDataUnion: members 1-14, 17, 18, then dataorder and dimensions
    kAbsent, offsetof(ArrayDataUnion, _internal_metadata_), kAbsent,
    offsetof(ArrayDataUnion, content_.case_number), kAbsent, kAbsent,
    kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof,
    kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof,
    offsetof(ArrayDataUnion, dataorder_), offsetof(ArrayDataUnion, dimensions_),
    offsetof(ArrayDataUnion, content_.slot),
    // 22 ScalarDataUnion
    kAbsent, offsetof(ScalarDataUnion, _internal_metadata_), kAbsent,
    offsetof(ScalarDataUnion, content_.case_number), kAbsent, kAbsent,
    kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof,
    kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof, kInOneof,
    offsetof(ScalarDataUnion, content_.slot),
};

namespace {

// Where each message's entries start, and its object size.
const protobuf::internal::MigrationSchema kSchemas[kMessageCount] = {
    {0, -1, -1, sizeof(KVariant)},
    {10, 18, -1, sizeof(PropertyMap_MapDataEntry_DoNotUse)},
    {20, -1, -1, sizeof(PropertyMap)},
    {27, -1, -1, sizeof(PropertyNode)},
    {37, -1, -1, sizeof(PropertyList)},
    {44, -1, -1, sizeof(ComplexFloat)},
    {52, -1, -1, sizeof(ComplexDouble)},
    {60, -1, -1, sizeof(ChronoData)},
    {68, -1, -1, sizeof(ArrayChronoData)},
    {75, -1, -1, sizeof(ArrayString)},
    {82, -1, -1, sizeof(ArrayFloat)},
    {89, -1, -1, sizeof(ArrayDouble)},
    {96, -1, -1, sizeof(ArrayInt8)},
    {103, -1, -1, sizeof(ArrayInt16)},
    {110, -1, -1, sizeof(ArrayInt32)},
    {117, -1, -1, sizeof(ArrayInt64)},
    {124, -1, -1, sizeof(ArrayUnsignedInt8)},
    {131, -1, -1, sizeof(ArrayUnsignedInt16)},
    {138, -1, -1, sizeof(ArrayUnsignedInt32)},
    {145, -1, -1, sizeof(ArrayUnsignedInt64)},
    {152, -1, -1, sizeof(ArrayBool)},
    {159, -1, -1, sizeof(ArrayDataUnion)},
    {184, -1, -1, sizeof(ScalarDataUnion)},
};

#pragma GCC diagnostic pop

static_assert(sizeof(protobuf_Mav_2eproto::TableStruct::offsets) / sizeof(uint32_t) == 207,
              "one table entry per header slot, field and oneof of every message");

const protobuf::Message* const kDefaultInstances[kMessageCount] = {
    &_KVariant_default_instance_.instance,
    &_PropertyMap_MapDataEntry_DoNotUse_default_instance_.instance,
    &_PropertyMap_default_instance_.instance,
    &_PropertyNode_default_instance_.instance,
    &_PropertyList_default_instance_.instance,
    &_ComplexFloat_default_instance_.instance,
    &_ComplexDouble_default_instance_.instance,
    &_ChronoData_default_instance_.instance,
    &_ArrayChronoData_default_instance_.instance,
    &_ArrayString_default_instance_.instance,
    &_ArrayFloat_default_instance_.instance,
    &_ArrayDouble_default_instance_.instance,
    &_ArrayInt8_default_instance_.instance,
    &_ArrayInt16_default_instance_.instance,
    &_ArrayInt32_default_instance_.instance,
    &_ArrayInt64_default_instance_.instance,
    &_ArrayUnsignedInt8_default_instance_.instance,
    &_ArrayUnsignedInt16_default_instance_.instance,
    &_ArrayUnsignedInt32_default_instance_.instance,
    &_ArrayUnsignedInt64_default_instance_.instance,
    &_ArrayBool_default_instance_.instance,
    &_ArrayDataUnion_default_instance_.instance,
    &_ScalarDataUnion_default_instance_.instance,
};

// Filled once by the runtime when descriptors are first bound.
protobuf::Metadata file_level_metadata[kMessageCount];
protobuf::internal::once_flag descriptor_binding_once;

const protobuf::internal::DescriptorTable* DescriptorTableOfMav() {
  return &descriptor_table_Mav_2eproto;
}

}  // namespace

const protobuf::internal::DescriptorTable descriptor_table_Mav_2eproto = {
    false,
    false,
    sizeof(kMavDescriptor),
    kMavDescriptor,
    "Mav.proto",
    &descriptor_binding_once,
    nullptr,
    0,
    kMessageCount,
    kSchemas,
    kDefaultInstances,
    protobuf_Mav_2eproto::TableStruct::offsets,
    file_level_metadata,
    nullptr,
    nullptr,
};

void protobuf_Mav_2eproto::AddDescriptors() {
  static const bool registered = [] {
    protobuf::internal::VerifyVersion(GOOGLE_PROTOBUF_VERSION, 3021000, __FILE__);
    protobuf::internal::AddDescriptorsRunner runner(&descriptor_table_Mav_2eproto);
    return true;
  }();
  (void)registered;
}

protobuf::Metadata protobuf_Mav_2eproto::MetadataAt(int index) {
  return protobuf::internal::AssignDescriptors(&DescriptorTableOfMav, &descriptor_binding_once,
                                               file_level_metadata[index]);
}

namespace {

// The library's one static initializer: the schema is known to the runtime as
// soon as the library is loaded.
const bool kRegisteredAtLoad = (protobuf_Mav_2eproto::AddDescriptors(), true);

}  // namespace

namespace google {
namespace protobuf {

#define MAV_CREATE_ON_HEAP_OR_IN_ARENA(Type)                                 \
  template <>                                                                \
  ::Tarnwick::MavProtobuf::Type* Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::Type>( \
      Arena * arena) {                                                       \
    return Arena::Create<::Tarnwick::MavProtobuf::Type>(arena);              \
  }

MAV_CREATE_ON_HEAP_OR_IN_ARENA(KVariant)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(PropertyMap)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(PropertyNode)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(PropertyList)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ComplexFloat)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ComplexDouble)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ChronoData)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayChronoData)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayString)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayFloat)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayDouble)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayInt8)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayInt16)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayInt32)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayInt64)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayUnsignedInt8)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayUnsignedInt16)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayUnsignedInt32)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayUnsignedInt64)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayBool)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ArrayDataUnion)
MAV_CREATE_ON_HEAP_OR_IN_ARENA(ScalarDataUnion)

#undef MAV_CREATE_ON_HEAP_OR_IN_ARENA

// The map entry is the runtime's own template, which does support arenas.
template <>
::Tarnwick::MavProtobuf::PropertyMap_MapDataEntry_DoNotUse*
Arena::CreateMaybeMessage<::Tarnwick::MavProtobuf::PropertyMap_MapDataEntry_DoNotUse>(
    Arena* arena) {
  return Arena::CreateMessageInternal<::Tarnwick::MavProtobuf::PropertyMap_MapDataEntry_DoNotUse>(
      arena);
}

}  // namespace protobuf
}  // namespace google
