#pragma once

// The one routine behind every lookup operation. The five tables differ only in the texts,
// statements, limits and dirty flags described by a LookupTable; the steps are the same.

#include <QString>

struct LookupTable {
    QString table;          // "platform"
    QString idField;        // "idplatform"
    QString nameField;      // "nmplatform"
    QString parentField{};  // the field set from id on add; empty where the table has no parent
    QString noun;           // "platform", "specific item": the word used in every box
    const int* limit = nullptr;  // the name field's width, read when the catalogue opens
    QString countSQL;            // finds the titles related to a row; the id is appended
    // Platforms keep their reserved rows (ids below 6); the other tables only refuse ids <= 0.
    bool reservedPlatforms = false;
    // Which parts of the main window must be rebuilt after an add or rename, and after a delete.
    bool treeDirtyAfterChange = false;
    bool listDirtyAfterChange = false;
    bool treeDirtyAfterDelete = false;
    bool listDirtyAfterDelete = false;
};

// Adds (action 1), renames (2) or deletes (3) a row of the described table; see
// lookupoperations.h for the arguments and the result string.
QString ModifyLookup(const LookupTable& lookup, int action, long id, QString& name);

// While one lives, ModifyLookup passes an error that every later change would meet too
// (CatalogueCannotBeWritten) on to its caller instead of showing it: an import that makes the
// lookups of many lines stops on it with one box.
class LastingLookupErrorsPassedOn {
  public:
    LastingLookupErrorsPassedOn();
    ~LastingLookupErrorsPassedOn();
    LastingLookupErrorsPassedOn(const LastingLookupErrorsPassedOn&) = delete;
    LastingLookupErrorsPassedOn& operator=(const LastingLookupErrorsPassedOn&) = delete;
};
