#pragma once

// The refusals of the program's Jet writer, as the program's error object with Jet's numbers.

#include "toolkit/vberror.h"

namespace jet {

enum WriteErrorNumber {
    kErrorDuplicate = 3022,
    kErrorFileNotFound = 3024,
    kErrorDiskFull = 3026,
    kErrorLocked = 3045,
    kErrorCannotOpen = 3051,
    kErrorFieldTooSmall = 3163,
    kErrorUnsupported = 3251,
    kErrorNotJet = 3343,
    kErrorCorrupt = 3049,
    kErrorDataConversion = 3421,
};

class WriteError : public VbError {
  public:
    WriteError(int number, const QString& description) : VbError(number, description) {}
};

}  // namespace jet
