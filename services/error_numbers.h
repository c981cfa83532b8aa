#pragma once

namespace trvtrout {

// The numbers that a ServiceError bears, as the class's own platform counts them. kFileHeld is the only one that the
// class acts on.
enum class ErrorNumber : int {
  kNone = 0,
  kInvalidCall = 5,
  kBadFileName = 52,
  kNoSuchFile = 53,
  kDeviceError = 57,  // whatever has no number of its own
  kFileExists = 58,
  kDiskFull = 61,
  kTooManyFiles = 67,
  kFileHeld = 70,  // by another program, or it may not be written or deleted
  kPathAccess = 75,
  kNoSuchFolder = 76,
  kAutomation = 1004,  // a spreadsheet's own errors
};

}  // namespace trvtrout
