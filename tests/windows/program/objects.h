#pragma once

#include <memory>

#include "tests/windows/program/dispatch_object.h"
#include "workbook/automation.h"

namespace trvtrout::tests {

// An object of the automation interface twice: one that writes its calls down, and one that does the work.
template <class Interface>
struct Twin {
  std::shared_ptr<Interface> noted, done;
};

// The application as a host sees it.
IDispatch* application_object(ProgramLife& life, Twin<automation::Application> application);

}  // namespace trvtrout::tests
