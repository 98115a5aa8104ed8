#include "bench/syntheticcatalogue.h"

#include <sqlite3.h>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <vector>

#include "store/catalogue.h"
#include "toolkit/vb/vberror.h"

namespace {

const int kUserPlatforms = 3;
const int kVendorsPerPlatform = 40;
const int kTracksPerTitle = 12;

const char* const kWords[] = {"Midnight", "Harbour", "Silver", "Echoes",  "Northern", "Lights",
                              "Garden",   "Machine", "Velvet", "Horizon", "Paper",    "Tigers",
                              "Winter",   "Road",    "Golden", "Signal",  "Quiet",    "Storm",
                              "Electric", "Rivers",  "Hollow", "Crown",   "Distant",  "Shore"};
const int kWordCount = sizeof(kWords) / sizeof(kWords[0]);

class Connection {
  public:
    explicit Connection(sqlite3* handle) : handle_(handle) {}

    void Execute(const QString& sql) {
        char* message = nullptr;
        if (sqlite3_exec(handle_, sql.toUtf8().constData(), nullptr, nullptr, &message) !=
            SQLITE_OK) {
            const QString text = QString::fromUtf8(message);
            sqlite3_free(message);
            throw VbError(0, text);
        }
    }

    std::vector<std::pair<int, int>> Pairs(const QString& sql) {
        std::vector<std::pair<int, int>> result;
        sqlite3_stmt* statement = Prepare(sql);
        while (sqlite3_step(statement) == SQLITE_ROW)
            result.emplace_back(sqlite3_column_int(statement, 0), sqlite3_column_int(statement, 1));
        sqlite3_finalize(statement);
        return result;
    }

    sqlite3_stmt* Prepare(const QString& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(handle_, sql.toUtf8().constData(), -1, &statement, nullptr) !=
            SQLITE_OK)
            throw VbError(0, QString::fromUtf8(sqlite3_errmsg(handle_)));
        return statement;
    }

    void Step(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE)
            throw VbError(0, QString::fromUtf8(sqlite3_errmsg(handle_)));
        sqlite3_reset(statement);
    }

  private:
    sqlite3* handle_;
};

// The lookups a title is made of: per platform its types (each with its specific items) and
// vendors.
struct Lookups {
    std::vector<int> platforms;
    std::vector<std::vector<std::pair<int, std::vector<int>>>> types;
    std::vector<std::vector<int>> vendors;
};

void AddUserPlatforms(Connection& db) {
    for (int platform = 0; platform < kUserPlatforms; ++platform) {
        db.Execute(QString("INSERT INTO platform (nmplatform, visible) VALUES ('Own shelf %1', 1)")
                       .arg(platform + 1));
        db.Execute("INSERT INTO type (nmtype, idplatform) VALUES ('Mixed', last_insert_rowid())");
        db.Execute(
            "INSERT INTO specific (nmspecific, idtype) VALUES ('Various', "
            "last_insert_rowid())");
    }
    for (const auto& [platform, unused] : db.Pairs("SELECT idplatform, 0 FROM platform"))
        for (int vendor = 0; vendor < kVendorsPerPlatform; ++vendor)
            db.Execute(QString("INSERT INTO vendor (nmvendor, idplatform) VALUES ('Vendor %1 of "
                               "%2', %2)")
                           .arg(vendor + 1)
                           .arg(platform));
}

Lookups ReadLookups(Connection& db) {
    Lookups lookups;
    for (const auto& [platform, unused] :
         db.Pairs("SELECT idplatform, 0 FROM platform ORDER BY idplatform")) {
        lookups.platforms.push_back(platform);
        std::vector<std::pair<int, std::vector<int>>> types;
        for (const auto& [type, unusedType] :
             db.Pairs(QString("SELECT idtype, 0 FROM type WHERE idplatform = %1").arg(platform))) {
            std::vector<int> specifics;
            for (const auto& [specific, unusedSpecific] : db.Pairs(
                     QString("SELECT idspecific, 0 FROM specific WHERE idtype = %1").arg(type)))
                specifics.push_back(specific);
            if (!specifics.empty()) types.emplace_back(type, specifics);
        }
        std::vector<int> vendors;
        for (const auto& [vendor, unusedVendor] : db.Pairs(
                 QString("SELECT idvendor, 0 FROM vendor WHERE idplatform = %1").arg(platform)))
            vendors.push_back(vendor);
        lookups.types.push_back(types);
        lookups.vendors.push_back(vendors);
    }
    return lookups;
}

QByteArray TitleName(unsigned seed, int number) {
    const QString name = QString("%1 %2 %3")
                             .arg(kWords[seed % kWordCount], kWords[(seed / 7) % kWordCount])
                             .arg(number);
    return name.toUtf8();
}

void AddTitles(Connection& db, const Lookups& lookups, int titles) {
    sqlite3_stmt* title = db.Prepare(
        "INSERT INTO title (nmcd, nrcds, idvendor, idplatform, idtype, idspecific, idmediatype, "
        "iddevicetype, idfilesystem, label, rating, listing, NumTracks, memo, created, modified, "
        "visible) VALUES (?, ?, ?, ?, ?, ?, ?, 1, 1, 'BENCH', 3, char(0), 12, char(0), "
        "'2024-01-01', '2024-01-01', 1)");
    sqlite3_stmt* track =
        db.Prepare("INSERT INTO Tracks (idcd, TrackID, TrackName) VALUES (?, ?, ?)");
    unsigned seed = 12345;
    int platformSlot = 0;
    for (int number = 1; number <= titles; ++number) {
        seed = seed * 1103515245u + 12345u;
        // Every platform gets titles, never the same one twice in a row.
        platformSlot = (platformSlot + 1 + (seed >> 16) % 2) % lookups.platforms.size();
        const auto& types = lookups.types[platformSlot];
        const auto& vendors = lookups.vendors[platformSlot];
        const auto& [type, specifics] = types[(seed >> 8) % types.size()];
        const QByteArray name = TitleName(seed >> 4, number);
        sqlite3_bind_text(title, 1, name.constData(), name.size(), SQLITE_TRANSIENT);
        sqlite3_bind_int(title, 2, 1 + (seed >> 20) % 3);
        sqlite3_bind_int(title, 3, vendors[(seed >> 12) % vendors.size()]);
        sqlite3_bind_int(title, 4, lookups.platforms[platformSlot]);
        sqlite3_bind_int(title, 5, type);
        sqlite3_bind_int(title, 6, specifics[(seed >> 24) % specifics.size()]);
        sqlite3_bind_int(title, 7, 1 + (seed >> 10) % 6);
        db.Step(title);
        const sqlite3_int64 idcd = sqlite3_last_insert_rowid(sqlite3_db_handle(title));
        for (int trackNumber = 1; trackNumber <= kTracksPerTitle; ++trackNumber) {
            const QByteArray trackName = QString("Track %1").arg(trackNumber).toUtf8();
            sqlite3_bind_int64(track, 1, idcd);
            sqlite3_bind_int(track, 2, trackNumber);
            sqlite3_bind_text(track, 3, trackName.constData(), trackName.size(), SQLITE_TRANSIENT);
            db.Step(track);
        }
    }
    sqlite3_finalize(title);
    sqlite3_finalize(track);
}

void InstallFile(const QString& source, const QString& target) {
    QFile::remove(target);
    if (!QFile::copy(source, target)) throw VbError(0, "Cannot copy " + source + " to " + target);
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
}

}  // namespace

void BuildSyntheticCatalogue(const QString& folder, int titles) {
    const QString templatePath = VELMORA_TEMPLATE_PATH;
    const QDir dir(folder);
    InstallFile(templatePath, dir.filePath("data.dll"));
    InstallFile(templatePath, dir.filePath("data.gdb"));
    gDatabasePath = dir.filePath("data.gdb");
    gDatabasePassword = kDatabasePassword;
    OpenCatalogue();
    Connection db(gDatabase->Handle());
    db.Execute("BEGIN");
    AddUserPlatforms(db);
    AddTitles(db, ReadLookups(db), titles);
    db.Execute("COMMIT");
    gRecordset.reset();
    gDatabase->Close();
    gDatabase.reset();
}
