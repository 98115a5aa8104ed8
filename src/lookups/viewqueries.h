#pragma once

// The statements behind the list's views, and the forced read of a tree node.

#include <QString>
#include <memory>

class Recordset;

// Stores the statement of kind in gViewSQL and opens it into gRecordset; errors are ignored.
void OpenView(const QString& kind, int first, int second, const QString& clause);
// Returns the statement of kind; with open, also opens it read-only into recordset.
QString GetViewSQL(const QString& kind, bool open, std::unique_ptr<Recordset>& recordset, int first,
                   int second, const QString& clause);
