#pragma once

#include <QString>
#include <memory>

class Recordset;

// The lookups of a TAB import: each finds the row of a name (the last of several wins) or,
// with Create, adds it through the lookup operations. Id is 0 when the row neither exists nor
// could be made. Recordset is left on the query of the lookup. An add that fails because the
// catalogue cannot be written is thrown, for the import to stop on.
void FindPlatformId(const QString& Name, std::unique_ptr<Recordset>& rs, bool Create, long& Id);
void FindTypeId(const QString& Name, long PlatformId, std::unique_ptr<Recordset>& rs, bool Create,
                long& Id);
void FindVendorId(const QString& Name, long PlatformId, std::unique_ptr<Recordset>& rs, bool Create,
                  long& Id);
void FindSpecificId(const QString& Name, long TypeId, std::unique_ptr<Recordset>& rs, bool Create,
                    long& Id);
void FindMediatypeId(const QString& Name, long DeviceTypeId, std::unique_ptr<Recordset>& rs,
                     bool Create, long& Id);
