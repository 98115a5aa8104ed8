#include "lookups/viewqueries.h"

#include "app/mGlobals.h"
#include "store/catalogue.h"

namespace {

const QString kTreeSQL =
    "Select platform.idplatform, platform.nmplatform, type.idtype, type.nmtype from platform, "
    "type, platform left join type on platform.idplatform = type.idplatform and "
    "platform.visible = true order by platform.nmplatform, type.nmtype";

const QString kAllSQL =
    "Select * from title,vendor,platform,type,specific,mediatype where title.idvendor = "
    "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = type.idtype "
    "and title.idspecific = specific.idspecific and title.idmediatype = mediatype.idmediatype "
    "order by platform.nmplatform, title.nmcd";

const QString kRangeHead =
    "Select * from title,vendor,platform,type,specific,mediatype where title.idvendor = "
    "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = type.idtype "
    "and title.idspecific = specific.idspecific and title.idmediatype = mediatype.idmediatype "
    "and title.idplatform = vendor.idplatform and platform.idplatform >= ";

const QString kInHead =
    "Select * from title,vendor,platform,type,specific,mediatype where title.idvendor = "
    "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = type.idtype "
    "and title.idspecific = specific.idspecific and title.idmediatype = mediatype.idmediatype "
    "and title.idplatform = vendor.idplatform and platform.idplatform in ";

const QString kTail = " order by platform.nmplatform, title.nmcd";

QString PlatformSQL(int first, int second, const QString& clause) {
    if (!clause.isEmpty()) return kInHead + clause + kTail;
    return kRangeHead + QString::number(first) +
           " and platform.idplatform <= " + QString::number(second) + kTail;
}

QString PlatformTypeSQL(int first, const QString& clause) {
    return kInHead + clause + " and title.idtype = " + QString::number(first) + kTail;
}

}  // namespace

void OpenView(const QString& kind, int first, int second, const QString& clause) {
    QString sql;
    int options = dbReadOnly;
    if (kind == "search") {
        sql = gSearchSQL;
    } else if (kind == "platform") {
        sql = PlatformSQL(first, second, clause);
    } else if (kind == "all") {
        sql = kAllSQL;
    } else if (kind == "platformtype") {
        // The one view that is not read-only.
        sql = PlatformTypeSQL(first, clause);
        options = 0;
    } else {
        return;
    }
    gViewSQL = sql;
    if (!gDatabase) return;
    try {
        gRecordset = gDatabase->OpenRecordset(sql, dbOpenDynaset, options);
    } catch (const VbError&) {
        // A view that cannot be opened leaves the former one in place.
    }
}

QString GetViewSQL(const QString& kind, bool open, std::unique_ptr<Recordset>& recordset, int first,
                   int second, const QString& clause) {
    QString sql;
    if (kind == "treeview")
        sql = kTreeSQL;
    else if (kind == "platform")
        sql = PlatformSQL(first, second, clause);
    else if (kind == "all platform")
        sql = "Select * from platform order by nmplatform";
    else if (kind == "search")
        sql = gSearchSQL;
    else if (kind == "all type")
        sql = "Select * from type";
    else if (kind == "all")
        sql = kAllSQL;
    else if (kind == "platformtype")
        sql = PlatformTypeSQL(first, clause);
    else if (kind == "mediatype")
        sql = "select idmediatype, nmmediatype from mediatype";
    if (open && !sql.isEmpty() && gDatabase) {
        try {
            recordset = gDatabase->OpenRecordset(sql, dbOpenDynaset, dbReadOnly);
        } catch (const VbError&) {
            // As with the views: the caller keeps what it had.
        }
    }
    return sql;
}
