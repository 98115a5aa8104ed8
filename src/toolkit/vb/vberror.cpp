#include "toolkit/vb/vberror.h"

#include "toolkit/vb/vbruntime.h"

VbError::VbError(int number, const QString& description, const QString& source)
    : Number(number),
      Description(description.isEmpty() ? StandardDescription(number) : description),
      Source(source.isEmpty() ? ProgramFileName() : source),
      whatText(QString("%1: %2").arg(number).arg(Description).toUtf8()) {}

QString VbError::StandardDescription(int number) {
    switch (number) {
        case 5:
            return "Invalid procedure call or argument";
        case 6:
            return "Overflow";
        case 9:
            return "Subscript out of range";
        case 11:
            return "Division by zero";
        case 13:
            return "Type mismatch";
        case 52:
            return "Bad file name or number";
        case 53:
            return "File not found";
        case 61:
            return "Disk full";
        case 70:
            return "Permission denied";
        case 75:
            return "Path/File access error";
        case 76:
            return "Path not found";
        case 94:
            return "Invalid use of Null";
        case 380:
            return "Invalid property value";
        default:
            return "Application-defined or object-defined error";
    }
}

const char* VbError::what() const noexcept {
    return whatText.constData();
}

QString ProgramFileName() {
    return App.EXEName;
}
