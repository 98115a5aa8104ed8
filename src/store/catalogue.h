#pragma once

// mDatabase: the one open catalogue and the routines that open and compact it.

#include <QString>
#include <functional>
#include <memory>

#include "store/dao.h"

#include "store/passwordcheck.h"

extern std::unique_ptr<Database> gDatabase;
extern std::unique_ptr<Recordset> gRecordset;
extern QString gDatabasePath;
extern QString gDatabasePassword;
// The statement gRecordset was read from: the current view of the list.
extern QString gViewSQL;

// The folder of the catalogue and of its compaction: the program folder, or, when the user may not
// write there (a system-wide install), $XDG_DATA_HOME/velmora, made on first use.
QString CatalogueFolder();

// An error that every later change of the catalogue would meet too: it cannot be written (a
// read-only file or folder), the disk is full or failing. Work that writes many rows stops on
// the first one instead of reporting each.
bool CatalogueCannotBeWritten(const VbError& error);

// Opens gDatabasePath exclusively with the password into gDatabase.
void OpenCatalogue();

// Runs writes between BeginTrans and CommitTrans of database; any failure rolls them back,
// all of them, and goes on to the caller.
void RunAsTransaction(Database& database, const std::function<void()>& writes);

// Closes the catalogue, compacts it into data.compacted in the catalogue folder and puts the
// compacted file in its place. With reopen, opens it again and reads gViewSQL into gRecordset
// with filter and sort. Failures are reported in a box; the catalogue file always stays.
void CompactCatalogue(bool reopen, const QString& filter, const QString& sort);
// What ends the program when the catalogue cannot be opened again after a compaction and the
// user gave up; it runs from the event loop, after the compaction has returned.
void SetCatalogueLostHandler(std::function<void()> handler);
// Compacts source into target, which must not exist, carrying the password over. Returns an
// empty string on success, otherwise every engine error as "number|description<TAB>".
QString CompactInto(const QString& source, const QString& target, const QString& password);
