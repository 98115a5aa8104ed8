#pragma once

// The refusals of the Jet file code, with Jet's error numbers; the store turns them into the
// program's error object.

#include <QByteArray>
#include <QString>
#include <exception>

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

class WriteError : public std::exception {
  public:
    WriteError(int number, const QString& description)
        : Number(number), Description(description), what_(description.toUtf8()) {}
    const char* what() const noexcept override { return what_.constData(); }

    int Number;
    QString Description;

  private:
    QByteArray what_;
};

}  // namespace jet
