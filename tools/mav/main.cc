// mav: looks at, checks and converts property trees on disk.
#include <CLI/CLI.hpp>

#include <climits>
#include <cstdio>
#include <memory>
#include <string>
#include <functional>

#include "MavValues.h"
#include "commands.h"
#include "failure.h"

namespace {

using mav_tool::Request;

// Usage errors exit with 2 and show the usage; CLI11's own codes do not.
constexpr int kUsageError = 2;
constexpr int kFailure = 1;

// A command's usage line names the tool too: "Usage: mav json ...".
class Formatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    const bool named = app->get_parent() == nullptr || name.rfind("mav ", 0) == 0;
    return CLI::Formatter::make_usage(app, named ? name : "mav " + name);
  }
};

// --depth: a whole number of levels, said in plain words when it is not.
std::string CheckDepth(std::string& text) {
  const std::string wanted = "expected a whole number from 1 to " + std::to_string(INT_MAX);
  if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != std::string::npos) {
    return wanted + ", not '" + text + "'";
  }
  const long long depth = std::stoll(text);
  if (depth < 1 || depth > INT_MAX) return wanted + ", not " + text;
  return "";
}

int UsageError(const std::string& message, const CLI::App& usage) {
  std::fprintf(stderr, "mav: %s\n", message.c_str());
  std::fputs(usage.help().c_str(), stderr);
  return kUsageError;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Shows, checks and converts MavProtobuf property trees (files of serialized PropertyNode).", "mav"};
  app.set_version_flag("--version", "mav " MAV_VERSION);
  app.require_subcommand(1);
  app.footer("FILE may be - for standard input. Output goes to standard output unless -o names a file.");
  app.formatter(std::make_shared<Formatter>());

  Request request;
  std::function<void(const Request&)> command;
  const auto add = [&](const char* name, const char* description, void (*run)(const Request&), const char* input) {
    CLI::App* sub = app.add_subcommand(name, description);
    sub->add_option("FILE", request.file, input)->required();
    sub->add_option("-o,--output", request.output, "Write to this file instead of standard output (complete or not at all)");
    sub->add_flag("--delimited", request.delimited,
                  std::string(name) == "encode" || std::string(name) == "json"
                      ? "A sequence of length-delimited records, as JSON Lines on the JSON side"
                      : "A sequence of length-delimited records, each handled in turn");
    sub->callback([&command, run] { command = run; });
    sub->allow_extras();  // reported below, in the order given
    return sub;
  };
  const char* kTree = "A serialized PropertyNode";
  const char* kPathHelp =
      "A node: map keys and list indices joined by /, e.g. gain or settings/channels/0 "
      "(in a key, / is written ~1 and ~ is written ~0; array elements have no path)";
  CLI::App* show = add("show", "Print the tree indented, each leaf with its kind, shape and value", mav_tool::Show, kTree);
  show->add_option("--depth", request.depth, "Show this many levels below the starting node")->check(CLI::Validator(CheckDepth, "N"));
  show->add_option("--path", request.path, kPathHelp);
  CLI::App* get = add("get", "Print one value plainly, for scripts (exit 1 if the path is missing)", mav_tool::Get, kTree);
  get->add_option("PATH", request.path, kPathHelp)->required();
  add("json", "Print the natural JSON form", mav_tool::Json, kTree);
  add("encode", "Turn the natural JSON form into deterministic wire bytes", mav_tool::Encode, "A JSON file");
  add("text", "Print the runtime's text format", mav_tool::Text, kTree);
  CLI::App* check = add("check", "Parse, then count nodes, leaves and bytes per kind (exit 1 if not valid)",
                        mav_tool::Check, kTree);
  check->add_flag("--strict", request.strict,
                  "Also fail (exit 1) on values that are well formed but cannot be read as the model says; "
                  "without it they are listed as warnings");
  check->add_flag("--quick", request.quick,
                  "Only check that the input parses, reading it in place without building the tree "
                  "(no counts, no warnings)");
  check->get_option("--quick")->excludes("--strict");

  const auto is_command = [&app](const std::string& word) {
    return !app.get_subcommands([&word](const CLI::App* sub) { return sub->check_name(word); }).empty();
  };
  if (argc > 1 && argv[1][0] != '-' && !is_command(argv[1])) {
    return UsageError(std::string("unknown command '") + argv[1] +
                          "' (the commands are show, get, json, encode, text, check)",
                      app);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    return UsageError(e.what(), chosen.empty() ? app : *chosen.front());
  }
  for (const CLI::App* sub : app.get_subcommands()) {
    const std::vector<std::string> extras = sub->remaining();
    if (extras.empty()) continue;
    std::string listed;
    for (const std::string& extra : extras) listed += (listed.empty() ? "" : " ") + extra;
    return UsageError((extras.size() > 1 ? "unexpected arguments: " : "unexpected argument: ") + listed,
                      *sub);
  }

  try {
    command(request);
    return 0;
  } catch (const mav_tool::Failure& failure) {
    std::fprintf(stderr, "mav: %s: %s\n", failure.file().c_str(), failure.what());
  } catch (const Tarnwick::MavProtobuf::ValueError& error) {
    std::fprintf(stderr, "mav: %s: %s\n", mav_tool::DisplayName(request.file).c_str(), error.what());
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "mav: %s: not enough memory\n", mav_tool::DisplayName(request.file).c_str());
  }
  return kFailure;
}
