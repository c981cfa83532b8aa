#pragma once

#include "services/host_services.h"

namespace trvtrout::platform {

// A command line has no messages waiting.
class QuietMessageLoop : public MessageLoop {
 public:
  void DoEvents() override {}
};

}  // namespace trvtrout::platform
