// The view's way out: a message whose bytes it cannot read in place is parsed
// by the message classes, exactly as a parse of the whole input would parse
// it at that depth, and read again from a canonical serialization.
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/parse_context.h>
#include <google/protobuf/stubs/common.h>

#include "../wire.h"
#include "scan.h"

namespace Tarnwick {
namespace MavProtobuf {

DecodeError::~DecodeError() = default;

namespace view_internal {

void ThrowMalformed(std::string_view what) {
  throw DecodeError("malformed input: " + std::string(what));
}

// Keys are nearly always ASCII, checked a word at a time.
bool IsUtf8(std::string_view text) {
  uint64_t seen = 0;
  size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    uint64_t word;
    std::memcpy(&word, text.data() + at, 8);
    seen |= word;
  }
  for (; at < text.size(); ++at) seen |= static_cast<uint8_t>(text[at]);
  if ((seen & 0x8080808080808080u) == 0) return true;
  return protobuf::internal::IsStructurallyValidUTF8(text.data(), static_cast<int>(text.size()));
}

Span Nested(const Span& parent, std::string_view bytes) {
  if (parent.depth + 1 > kMaxDepth) {
    ThrowMalformed("messages nested deeper than " + std::to_string(kMaxDepth));
  }
  return Span{bytes.data(), bytes.data() + bytes.size(), parent.depth + 1, parent.owner};
}

// The parse of the whole input reaches this message with the budget left
// after `depth` levels, and with the whole input in memory (a flat input), so
// the message is parsed with that budget and marked as a flat input for the
// packed continuation rule.
template <typename M>
void ParseInto(const Span& span, M* out) {
  const char* ptr;
  protobuf::internal::ParseContext ctx(kMaxDepth - span.depth, false, &ptr,
                                       protobuf::StringPiece(span.begin, span.size()));
  const protobuf::internal::ParseContext* const outer = wire::bounded_parse;
  wire::bounded_parse = &ctx;
  ptr = out->_InternalParse(ptr, &ctx);
  wire::bounded_parse = outer;
  if (ptr == nullptr || !ctx.EndedAtLimit()) {
    ThrowMalformed("the bytes of a " + M::descriptor()->name() + " do not parse");
  }
}

template <typename M>
Span Canonical(const Span& span) {
  M message;
  ParseInto(span, &message);
  message.DiscardUnknownFields();
  auto bytes = std::make_shared<std::string>();
  {
    protobuf::io::StringOutputStream stream(bytes.get());
    protobuf::io::CodedOutputStream output(&stream);
    output.SetSerializationDeterministic(true);
    message.SerializePartialToCodedStream(&output);
  }
  return Span{bytes->data(), bytes->data() + bytes->size(), span.depth, std::move(bytes)};
}

template void ParseInto<PropertyNode>(const Span&, PropertyNode*);
template void ParseInto<KVariant>(const Span&, KVariant*);
template Span Canonical<PropertyNode>(const Span&);
template Span Canonical<PropertyMap>(const Span&);
template Span Canonical<PropertyList>(const Span&);
template Span Canonical<KVariant>(const Span&);

}  // namespace view_internal
}  // namespace MavProtobuf
}  // namespace Tarnwick
