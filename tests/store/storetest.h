#pragma once

// Shared by the store's tests: filling a catalogue and reading it through the lists' join.

#include <QString>

#include "store/dao.h"
#include "support/testsupport.h"

// Files a title under the template's audio platform (type Pop, Album, Various artists, CD-ROM),
// or under the given lookups.
inline void AddTitle(Database& database, const QString& name, int platform = 1, int type = 1,
                     int specific = 1, int vendor = 1) {
    database.Execute(
        QString("INSERT INTO title (nmcd, nrcds, idvendor, idplatform, idtype, idspecific, "
                "idmediatype, iddevicetype, capacity, rating) VALUES ('%1', 1, %2, %3, %4, %5, 1, "
                "1, 650.5, 3)")
            .arg(name)
            .arg(vendor)
            .arg(platform)
            .arg(type)
            .arg(specific));
}

// The join every list view rests on.
inline const QString& kJoin = kTitleJoinInListOrder;
