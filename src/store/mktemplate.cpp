// Builds the template catalogue data.dll from the checked-in schema script, with the program's
// password check inside, in the usable state.

#include <sqlite3.h>

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

#include "store/jettext.h"
#include "store/passwordcheck.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: velmora-mktemplate schema.sql data.dll\n");
        return 2;
    }
    QFile script(QString::fromLocal8Bit(argv[1]));
    if (!script.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", argv[1]);
        return 1;
    }
    const QByteArray sql = script.readAll();
    const QString target = QString::fromLocal8Bit(argv[2]);
    QFile::remove(target);

    sqlite3* db = nullptr;
    if (sqlite3_open(argv[2], &db) != SQLITE_OK) {
        std::fprintf(stderr, "cannot create %s\n", argv[2]);
        return 1;
    }
    // The schema declares its text columns in Jet's order, which must be known to declare it.
    jettext::Register(db);
    char* error = nullptr;
    if (sqlite3_exec(db, sql.constData(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::fprintf(stderr, "schema script failed: %s\n", error);
        sqlite3_free(error);
        sqlite3_close(db);
        QFile::remove(target);
        return 1;
    }
    passwordcheck::Write(db, kDatabasePassword);
    sqlite3_exec(db, "VACUUM", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return 0;
}
