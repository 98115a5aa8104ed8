#include "jet/jet.h"

#include <mdbtools.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <chrono>
#include <thread>

#include "jet/mdbrows.h"

namespace {

// Everything the program ever reads of a Jet file through libmdb: the catalogue, and each
// table's columns and rows.
void ReadEverything(const QByteArray& path) {
    MdbHandle* mdb = mdb_open(path.constData(), MDB_NOFLAGS);
    if (!mdb) return;
    GPtrArray* catalog = mdb_read_catalog(mdb, MDB_TABLE);
    for (guint i = 0; catalog && i < catalog->len; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalog, i));
        if (entry->object_type != MDB_TABLE) continue;
        MdbTableDef* table = mdb_read_table(entry);
        if (!table) continue;
        if (mdb_read_columns(table)) ForEachMdbRow(table, [](const MdbRowBuffers&) {});
        mdb_free_tabledef(table);
    }
    mdb_close(mdb);
}

}  // namespace

namespace jetfile {

bool LibmdbReadsSafely(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    const pid_t child = fork();
    // Without a child the question cannot be asked; the file is read as it always was.
    if (child < 0) return true;
    if (child == 0) {
        // The child dies quietly: no crash handler of this process reports its fault.
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) signal(fault, SIG_DFL);
        ReadEverything(name);
        _exit(0);
    }
    // A reading that loops on a damaged page would never end.
    constexpr auto kLongestReading = std::chrono::seconds(60);
    const auto deadline = std::chrono::steady_clock::now() + kLongestReading;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace jetfile
