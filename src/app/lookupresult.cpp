#include "app/lookupresult.h"

long LookupResultId(const QString& result) {
    return result.section('~', 0, 0).toLong();
}

// Only the first "~" separates: the id never holds one, a name may.
QString LookupResultName(const QString& result) {
    const qsizetype separator = result.indexOf('~');
    return separator < 0 ? QString() : result.mid(separator + 1);
}
