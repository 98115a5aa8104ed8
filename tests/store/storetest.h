#pragma once

// Shared by the store's tests: catching the store's refusals and filling a catalogue.

#include <QString>

#include "store/dao.h"

// The number of the VbError that work raises, 0 when it raises none.
template <typename Work>
int ErrorNumber(Work&& work) {
    try {
        work();
    } catch (const VbError& error) {
        return error.Number;
    }
    return 0;
}

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
inline const char* const kJoin =
    "Select * from title,vendor,platform,type,specific,mediatype where title.idvendor = "
    "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = type.idtype "
    "and title.idspecific = specific.idspecific and title.idmediatype = mediatype.idmediatype "
    "order by platform.nmplatform, title.nmcd";
