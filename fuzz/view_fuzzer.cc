// Holds the in-place views against the message classes: both read the input,
// Validate() must refuse exactly when ParseFromString does, and when the parse
// succeeds every node the view reaches, by walking and by path, must match
// the parsed tree in type, keys, items, kind, shape, order, wellknowntype and
// value (or refuse a read with the same message). On refused input the view's
// walk may succeed or throw DecodeError, but nothing else. The input's first
// byte picks the type as for the other fuzzers: KVariant is read as a value,
// every other type's bytes as a tree.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "MavValues.h"
#include "MavView.h"
#include "fuzz_support.h"

namespace {

using namespace Tarnwick::MavProtobuf;

[[noreturn]] void Finding(const std::string& what, const std::string& path) {
  std::fprintf(stderr, "view disagrees with the parse at '%s': %s\n", path.c_str(), what.c_str());
  std::abort();
}

void Expect(bool agree, const char* what, const std::string& path) {
  if (!agree) Finding(what, path);
}

// Bitwise for floating point, so NaN and -0.0 count.
template <typename T>
bool Same(const T& a, const T& b) {
  if constexpr (std::is_floating_point_v<T> || std::is_same_v<T, std::complex<float>> ||
                std::is_same_v<T, std::complex<double>>) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
  } else {
    return a == b;
  }
}

// Runs both reads; they must both throw the same message or give the same
// result.
template <typename R, typename Parsed, typename Viewed, typename Compare>
void Agree(const std::string& path, Parsed parsed, Viewed viewed, Compare compare) {
  std::optional<R> a, b;
  std::string a_error, b_error;
  try {
    a = parsed();
  } catch (const ValueError& error) {
    a_error = error.what();
  }
  try {
    b = viewed();
  } catch (const ValueError& error) {
    b_error = error.what();
  }
  if (a_error != b_error) Finding("refusals differ: '" + a_error + "' / '" + b_error + "'", path);
  if (a && !compare(*a, *b)) Finding("values differ", path);
}

void CompareValue(const KVariant& parsed, const ValueView& view, const std::string& path) {
  Expect(FormOf(parsed) == view.form(), "form", path);
  Expect(KindOf(parsed) == view.kind(), "kind", path);
  Expect(ShapeOf(parsed) == view.shape(), "shape", path);
  Expect(ShapeMatches(parsed) == view.shape_matches(), "shape match", path);
  Expect(parsed.wellknowntype() == view.wellknowntype(), "wellknowntype", path);
  if (FormOf(parsed) == Form::kArray) {
    Expect(parsed.array_data().dataorder() == view.dataorder(), "dataorder", path);
    Expect(StoredElementCount(parsed.array_data()) == view.element_count(), "element count", path);
  }
  if (!view.kind()) return;
  VisitKind(*view.kind(), [&](auto tag) {
    using T = typename decltype(tag)::type;
    if (view.form() == Form::kScalar) {
      Agree<T>(
          path, [&] { return GetValue<T>(parsed); }, [&] { return view.Get<T>(); },
          [](const T& a, const T& b) { return Same(a, b); });
    } else {
      Agree<Array<T>>(
          path, [&] { return ReadArray<T>(parsed); }, [&] { return view.ReadArray<T>(); },
          [](const Array<T>& a, const Array<T>& b) {
            if (a.shape != b.shape || a.order != b.order || a.values.size() != b.values.size()) return false;
            for (size_t i = 0; i < a.values.size(); ++i) {
              if (!Same<T>(a.values[i], b.values[i])) return false;
            }
            return true;
          });
    }
  });
  KVariant copy;
  view.CopyTo(&copy);
  Expect(Equal(copy, parsed), "copy", path);
}

void CompareNode(const PropertyNode& parsed, const NodeView& view, const std::string& path) {
  Expect(static_cast<int>(parsed.type_case()) == static_cast<int>(view.type()), "node type", path);
  switch (view.type()) {
    case NodeType::kMap: {
      const auto& entries = parsed.map_type().map_data();
      Expect(entries.size() == view.map().size(), "entry count", path);
      for (const EntryView& entry : view.map()) {
        const auto found = entries.find(std::string(entry.key));
        const std::string child = path + "/" + PathSegment(entry.key);
        Expect(found != entries.end(), "a key the parse does not have", child);
        CompareNode(found->second, entry.node, child);
        const std::optional<NodeView> by_key = view.map().Find(entry.key);
        Expect(by_key && by_key->type() == entry.node.type(), "lookup by key", child);
      }
      return;
    }
    case NodeType::kList: {
      const auto& items = parsed.list_type().list_data();
      Expect(static_cast<size_t>(items.size()) == view.list().size(), "item count", path);
      int index = 0;
      for (const NodeView& item : view.list()) {
        CompareNode(items[index], item, path + "/" + std::to_string(index));
        ++index;
      }
      return;
    }
    case NodeType::kValue:
      CompareValue(parsed.value_type(), view.value(), path);
      return;
    case NodeType::kEmpty:
      return;
  }
}

// Every leaf by its path, from the root. An empty key directly under the root
// has no path of its own (its path names the root).
void CompareLeaves(const PropertyNode& parsed, const NodeView& root) {
  VisitLeaves(root, [&](std::string_view path, const NodeView& node, const ValueView&) {
    const PropertyNode* found = Find(parsed, path);
    Expect(found != nullptr, "a leaf the parse does not have", std::string(path));
    const std::optional<NodeView> again = root.Find(path);
    Expect(again && (again->type() == node.type() || path.empty()), "path lookup", std::string(path));
    CompareNode(*found, *again, std::string(path));
  });
}

// A walk that only has to end without crashing.
void Touch(const NodeView& node) {
  switch (node.type()) {
    case NodeType::kMap:
      for (const EntryView& entry : node.map()) Touch(entry.node);
      return;
    case NodeType::kList:
      for (const NodeView& item : node.list()) Touch(item);
      return;
    case NodeType::kValue: {
      const ValueView value = node.value();
      value.shape();
      if (value.kind()) {
        VisitKind(*value.kind(), [&](auto tag) {
          using T = typename decltype(tag)::type;
          try {
            if (value.form() == Form::kScalar) {
              value.Get<T>();
            } else {
              value.ReadArray<T>();
            }
          } catch (const DecodeError&) {
            throw;
          } catch (const ValueError&) {
          }
        });
      }
      return;
    }
    case NodeType::kEmpty:
      return;
  }
}

template <typename View>
bool Validates(const View& view) {
  try {
    view.Validate();
    return true;
  } catch (const DecodeError&) {
    return false;
  }
}

void CheckValue(std::string_view bytes) {
  KVariant parsed;
  const bool parses = parsed.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
  std::optional<ValueView> view;
  try {
    view.emplace(bytes);
  } catch (const DecodeError&) {
  }
  if (parses != (view && Validates(*view))) {
    Finding(parses ? "a value the parse reads is refused" : "a value the parse refuses is accepted", "");
  }
  if (parses) CompareValue(parsed, *view, "");
}

void CheckTree(std::string_view bytes) {
  PropertyNode parsed;
  const bool parses = parsed.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
  std::optional<NodeView> root;
  try {
    root.emplace(bytes);
  } catch (const DecodeError&) {
  }
  if (parses != (root && Validates(*root))) {
    Finding(parses ? "Validate refuses what the parse reads" : "Validate accepts what the parse refuses", "");
  }
  if (!parses) {
    try {
      if (root) Touch(*root);
    } catch (const DecodeError&) {
    }
    return;
  }
  CompareNode(parsed, *root, "");
  CompareLeaves(parsed, *root);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  mav_fuzz::pb::SetLogHandler(nullptr);  // the UTF-8 check logs every bad key
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  mav_fuzz::Input input;
  if (!mav_fuzz::Split(data, size, &input)) return 0;
  if (input.type == KVariant::descriptor()) {
    CheckValue(input.bytes);
  } else {
    CheckTree(input.bytes);
  }
  return 0;
}
