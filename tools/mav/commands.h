// The commands of mav, each reading one input and writing one output.
#ifndef MAV_TOOLS_MAV_COMMANDS_H_
#define MAV_TOOLS_MAV_COMMANDS_H_

#include <string>

namespace mav_tool {

struct Request {
  std::string file;        // "-" is standard input
  std::string output;      // empty or "-" is standard output
  bool delimited = false;  // a sequence of length-delimited records (JSON Lines for JSON)
  std::string path;        // show --path, get PATH
  int depth = -1;          // show --depth
  bool strict = false;     // check --strict
  bool quick = false;      // check --quick
};

// Each throws Failure for anything that goes wrong.
void Show(const Request& request);
void Get(const Request& request);
void Json(const Request& request);
void Encode(const Request& request);
void Text(const Request& request);
void Check(const Request& request);

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_COMMANDS_H_
