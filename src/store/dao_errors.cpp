// Jet's numbers and texts for the store's refusals, and the engine's error list.

#include <QList>
#include <cerrno>
#include <cstring>

#include "store/dao_detail.h"

namespace {
QList<VbError> gLastErrors;
const char* const kDaoSource = "DAO.Database";

QString JetText(int number) {
    switch (number) {
        case 3001:
            return "Invalid argument.";
        case jetUpdateWithoutAddNew:
            return "Update or CancelUpdate without AddNew or Edit.";
        case jetNoCurrentRecord:
            return "No current record.";
        case jetDuplicateValues:
            return "The changes you requested to the table were not successful because they "
                   "would create duplicate values in the index, primary key, or relationship. "
                   "Change the data in the field or fields that contain duplicate data, remove "
                   "the index, or redefine the index to permit duplicate entries and try again.";
        case jetObjectReadOnly:
            return "Cannot update. Database or object is read-only.";
        case jetNotValidPassword:
            return "Not a valid password.";
        case jetTooFewParameters:
            return "Too few parameters. Expected 1.";
        case 3065:
            return "Cannot execute a select query.";
        case 3129:
            return "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', "
                   "or 'UPDATE'.";
        case jetCharactersAfterEnd:
            return "Characters found after end of SQL statement.";
        case jetFieldTooSmall:
            return "The field is too small to accept the amount of data you attempted to add. "
                   "Try inserting or pasting less data.";
        case 3164:
            return "Field cannot be updated.";
        case 3167:
            return "Record is deleted.";
        case jetFileAlreadyExists:
            return "Database already exists.";
        case 3219:
            return "Invalid operation.";
        case jetItemNotFound:
            return "Item not found in this collection.";
        case 3420:
            return "Object invalid or no longer set.";
        case jetDataConversion:
            return "Data type conversion error.";
        default:
            return QString();
    }
}

// Jet's text names no cause; the system's reason after it tells the user what to do about it. The
// engine keeps no reason when it found the disk full by a short write.
QString SystemReason(const dao_detail::Connection& connection, int otherwise) {
    const int error = sqlite3_system_errno(connection.db);
    if (error == 0 && otherwise == 0) return QString();
    return " (" + QString::fromLocal8Bit(std::strerror(error != 0 ? error : otherwise)) + ")";
}

}  // namespace

QList<VbError> DBEngine::Errors() {
    return gLastErrors;
}

namespace dao_detail {

void Raise(int number, const QString& description) {
    const VbError error(number, description.isEmpty() ? JetText(number) : description, kDaoSource);
    gLastErrors = {error};
    throw error;
}

void RaiseSqlite(const Connection& connection, sqlite3_stmt* failed) {
    const int code = sqlite3_extended_errcode(connection.db);
    const QString message = QString::fromUtf8(sqlite3_errmsg(connection.db));
    sqlite3_finalize(failed);
    switch (code) {
        case SQLITE_CONSTRAINT_CHECK:
            // The schema names its checks after what they guard: width_* and range_*.
            if (message.contains(": width_")) Raise(jetFieldTooSmall);
            if (message.contains(": range_")) Raise(jetDataConversion);
            Raise(3317, message);
        case SQLITE_CONSTRAINT_UNIQUE:
        case SQLITE_CONSTRAINT_PRIMARYKEY:
        case SQLITE_CONSTRAINT_ROWID:
            Raise(jetDuplicateValues);
        case SQLITE_CONSTRAINT_NOTNULL:
            Raise(3314, message);
        case SQLITE_CONSTRAINT_FOREIGNKEY:
            Raise(3201, message);
        case SQLITE_MISMATCH:
            Raise(jetDataConversion);
        case SQLITE_TOOBIG:
            Raise(jetFieldTooSmall);
        case SQLITE_READONLY:
            Raise(jetObjectReadOnly);
        case SQLITE_NOTADB:
            Raise(3343, "Unrecognized database format '" + connection.path + "'.");
        case SQLITE_CORRUPT:
            Raise(3049, "Cannot open database '" + connection.path +
                            "'. It may not be a database that your application recognizes, or "
                            "the file may be corrupt.");
        default:
            break;
    }
    switch (code & 0xFF) {
        case SQLITE_BUSY:
            Raise(jetExclusivelyLocked,
                  "Could not use '" + connection.path + "'; file already in use.");
        case SQLITE_LOCKED:
            Raise(3211, message);
        case SQLITE_READONLY:
            // A catalogue whose folder is read-only cannot make its journal there.
            Raise(jetObjectReadOnly);
        case SQLITE_IOERR:
            Raise(3043, "Disk or network error." + SystemReason(connection, 0));
        case SQLITE_FULL:
            Raise(3035, "System resource exceeded." + SystemReason(connection, ENOSPC));
        case SQLITE_CANTOPEN:
            Raise(3051, message);
        case SQLITE_CONSTRAINT:
            Raise(3317, message);
        case SQLITE_ERROR:
            // Jet reads a name it does not know as a parameter and asks for its value.
            if (message.startsWith("no such column") || message.startsWith("no such table"))
                Raise(jetTooFewParameters);
            if (message.startsWith("ambiguous column name")) Raise(3079, message);
            if (message.startsWith("no such function")) Raise(3085, message);
            Raise(jetSyntaxError, message);
        default:
            Raise(3000, message);
    }
}

}  // namespace dao_detail
