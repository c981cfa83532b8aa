#include <csignal>

#include "host/command_line.h"
#include "platform/files/unfinished.h"

namespace {

using namespace trvtrout::host;

// Whoever stops the command finds nothing half done beside the files.
void stop(int signal) {
  trvtrout::platform::remove_unfinished();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

int main(int argc, char** argv) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    // A signal that the command was started to ignore (nohup) stays ignored.
    if (std::signal(signal, stop) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
  // A limit on the size of files and a reader that went away come back as errors, which are reported.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return run_command_line(argc, argv);
  } catch (const std::exception& error) {
    complain(error.what());
    return kTrouble;
  }
}
