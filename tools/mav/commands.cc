#include "commands.h"

#include <google/protobuf/text_format.h>

#include "MavJson.h"
#include "MavValues.h"
#include "MavView.h"
#include "check.h"
#include "failure.h"
#include "input.h"
#include "output.h"
#include "records.h"
#include "show.h"
#include "value_text.h"

namespace mav_tool {
namespace {

// A heading before each record of a delimited input.
std::string RecordHeading(const Request& request, size_t record) {
  return request.delimited ? "record " + std::to_string(record) + ":\n" : "";
}

// The node at the request's path in each tree of the input, read through a
// view: only the bytes on the way to it are read, and only the node itself is
// parsed, so a value is found in a large file without reading the rest.
template <typename Render>
void ConvertAtPath(const Request& request, Render&& render) {
  const Input input(request.file, !request.delimited);
  Output output(request.output);
  ForEachTreeBytes(input, request.delimited, [&](std::string_view bytes, size_t record) {
    const std::string where = request.delimited ? "record " + std::to_string(record) : "the input";
    PropertyNode node;
    bool found = false;
    ReadThroughView(input, where, [&] {
      if (const std::optional<NodeView> at = NodeView(bytes).Find(request.path)) {
        at->CopyTo(&node);
        found = true;
      }
    });
    if (!found) {
      throw Failure(input.name(), (request.delimited ? where + ": " : "") + "nothing at the path \"" +
                                      request.path + "\"");
    }
    output.Write(render(node, record, input));
  });
  output.Commit();
}

std::string JsonOf(const PropertyNode& node, bool pretty, const Input& input) {
  try {
    return ToJson(node, JsonOptions{pretty});
  } catch (const ValueError& error) {
    throw Failure(input.name(), error.what());
  }
}

// Reads every tree of the request's input and writes what `render` makes of
// each; the output appears only when all went well.
template <typename Render>
void Convert(const Request& request, Render&& render) {
  const Input input(request.file, !request.delimited);
  Output output(request.output);
  ForEachTree(input, request.delimited,
              [&](PropertyNode& tree, size_t record) { output.Write(render(tree, record, input)); });
  output.Commit();
}

}  // namespace

void Show(const Request& request) {
  if (!request.path.empty()) {
    return ConvertAtPath(request, [&](const PropertyNode& node, size_t record, const Input&) {
      return RecordHeading(request, record) + ShowTree(node, request.depth);
    });
  }
  Convert(request, [&](const PropertyNode& tree, size_t record, const Input&) {
    return RecordHeading(request, record) + ShowTree(tree, request.depth);
  });
}

void Get(const Request& request) {
  ConvertAtPath(request, [&](const PropertyNode& node, size_t, const Input& input) -> std::string {
    if (!node.has_value_type()) return JsonOf(node, true, input) + "\n";
    const KVariant& value = node.value_type();
    if (value.has_array_data()) return ArrayText(value.array_data(), '\n');
    return ScalarText(value.scalar_data()) + "\n";
  });
}

void Json(const Request& request) {
  Convert(request, [&](const PropertyNode& tree, size_t, const Input& input) {
    return JsonOf(tree, !request.delimited, input) + "\n";
  });
}

void Text(const Request& request) {
  Convert(request, [&](const PropertyNode& tree, size_t record, const Input&) {
    std::string text;
    google::protobuf::TextFormat::PrintToString(tree, &text);
    return RecordHeading(request, record) + text;
  });
}

// Values that cannot be read as the model says are listed as warnings after
// the report; with --strict the first one fails the command.
void Check(const Request& request) {
  if (request.quick) {
    const Input input(request.file, !request.delimited);
    Output output(request.output);
    ForEachTreeBytes(input, request.delimited, [&](std::string_view bytes, size_t record) {
      ReadThroughView(input, request.delimited ? "record " + std::to_string(record) : "the input",
                      [&] { NodeView(bytes).Validate(); });
      output.Write(RecordHeading(request, record) + input.name() + ": valid\n");
    });
    return output.Commit();
  }
  Convert(request, [&](const PropertyNode& tree, size_t record, const Input& input) {
    std::vector<std::string> warnings;
    const std::string report = CheckReport(tree, &warnings);
    if (request.strict && !warnings.empty()) {
      const std::string where = request.delimited ? "record " + std::to_string(record) + ": " : "";
      throw Failure(input.name(), where + std::to_string(warnings.size()) +
                                      " value(s) cannot be read as the model says; the first at " +
                                      warnings.front());
    }
    std::string text = RecordHeading(request, record) + input.name() + ": valid\n" + report;
    for (const std::string& warning : warnings) text += "warning: " + warning + "\n";
    return text;
  });
}

// JSON, or JSON Lines with --delimited, to deterministic wire bytes.
void Encode(const Request& request) {
  const Input input(request.file, false);
  Output output(request.output);
  const std::string_view text = input.bytes();
  const auto encode = [&](std::string_view json, size_t first_line) {
    PropertyNode tree;
    JsonError error;
    if (!FromJson(json, &tree, &error)) {
      error.line += first_line - 1;
      throw Failure(input.name(), error.ToString());
    }
    output.Write(TreeBytes(tree, request.delimited));
  };
  if (!request.delimited) {
    encode(text, 1);
  } else {
    size_t line = 1;
    for (size_t start = 0; start < text.size(); ++line) {
      size_t end = text.find('\n', start);
      if (end == std::string_view::npos) end = text.size();
      const std::string_view record = text.substr(start, end - start);
      if (record.find_first_not_of(" \t\r") != std::string_view::npos) encode(record, line);
      start = end + 1;
    }
  }
  output.Commit();
}

}  // namespace mav_tool
