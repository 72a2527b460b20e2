// mav: looks at, checks and converts property trees on disk.
#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
  CLI::App app{"Shows, checks and converts MavProtobuf property trees.", "mav"};
  app.set_version_flag("--version", "mav " MAV_VERSION);
  CLI11_PARSE(app, argc, argv);
  return 0;
}
