#include "import/tablookups.h"

#include <memory>

#include "lookups/lookupengine.h"
#include "lookups/lookupoperations.h"
#include "store/catalogue.h"

namespace {

using AddOperation = QString (*)(int action, long id, QString& name);

void FindOrAdd(const QString& sql, const QString& idField, const QString& name, long parent,
               AddOperation add, std::unique_ptr<Recordset>& rs, bool create, long& id) {
    id = 0;
    rs = gDatabase->OpenRecordset(sql);
    if (!rs->IsEOF()) {
        rs->MoveLast();
        id = (*rs)[idField].toLongLong();
        return;
    }
    if (!create) return;
    QString wanted = name;
    const LastingLookupErrorsPassedOn stopsTheImport;
    const QString result = add(kLookupAdd, parent, wanted);
    id = result.isEmpty() ? 0 : LookupResultId(result);
}

QString Doubled(const QString& name) {
    return QString(name).replace("'", "''");
}

}  // namespace

void FindPlatformId(const QString& Name, std::unique_ptr<Recordset>& rs, bool Create, long& Id) {
    FindOrAdd("select * from platform where nmplatform = '" + Doubled(Name) + "'", "idplatform",
              Name, 0, ModifyPlatform, rs, Create, Id);
}

void FindTypeId(const QString& Name, long PlatformId, std::unique_ptr<Recordset>& rs, bool Create,
                long& Id) {
    FindOrAdd("select * from type where idplatform = " + QString::number(PlatformId) +
                  " and nmtype = '" + Doubled(Name) + "'",
              "idtype", Name, PlatformId, ModifyType, rs, Create, Id);
}

void FindVendorId(const QString& Name, long PlatformId, std::unique_ptr<Recordset>& rs, bool Create,
                  long& Id) {
    FindOrAdd("select * from vendor where idplatform = " + QString::number(PlatformId) +
                  " and nmvendor = '" + Doubled(Name) + "'",
              "idvendor", Name, PlatformId, ModifyVendor, rs, Create, Id);
}

void FindSpecificId(const QString& Name, long TypeId, std::unique_ptr<Recordset>& rs, bool Create,
                    long& Id) {
    FindOrAdd("select * from specific where idtype = " + QString::number(TypeId) +
                  " and nmspecific = '" + Doubled(Name) + "'",
              "idspecific", Name, TypeId, ModifySpecific, rs, Create, Id);
}

void FindMediatypeId(const QString& Name, long DeviceTypeId, std::unique_ptr<Recordset>& rs,
                     bool Create, long& Id) {
    FindOrAdd("select * from mediatype where iddevicetype = " + QString::number(DeviceTypeId) +
                  " and nmmediatype = '" + Doubled(Name) + "'",
              "idmediatype", Name, DeviceTypeId, ModifyMediatype, rs, Create, Id);
}
