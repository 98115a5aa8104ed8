#include "store/fieldsizes.h"

#include "store/catalogue.h"
#include "toolkit/vb/vbruntime.h"

int gLenTitle = 0;
int gLenLabel = 0;
int gLenPlatform = 0;
int gLenType = 0;
int gLenSpecific = 0;
int gLenMediatype = 0;
int gLenVendor = 0;
int gLenTrackName = 0;

namespace {
// The globals hold one byte each: a column wider than 255 overflows (error 6) at start.
int ByteSized(int size) {
    return CByte(size);
}
}  // namespace

void ReadFieldSizes() {
    auto recordset = gDatabase->OpenRecordset(
        "Select title.label, title.nmcd, vendor.nmvendor, platform.nmplatform, type.nmtype, "
        "specific.nmspecific, mediatype.nmmediatype, Tracks.TrackName from "
        "title,vendor,platform,type,specific,mediatype,Tracks where title.idvendor = "
        "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = "
        "type.idtype and title.idspecific = specific.idspecific and title.idmediatype = "
        "mediatype.idmediatype and title.idcd = Tracks.idcd and title.idcd = 0");
    gLenLabel = ByteSized(recordset->Fields("label").Size());
    gLenTitle = ByteSized(recordset->Fields("nmcd").Size());
    gLenVendor = ByteSized(recordset->Fields("nmvendor").Size());
    gLenPlatform = ByteSized(recordset->Fields("nmplatform").Size());
    gLenType = ByteSized(recordset->Fields("nmtype").Size());
    gLenSpecific = ByteSized(recordset->Fields("nmspecific").Size());
    gLenMediatype = ByteSized(recordset->Fields("nmmediatype").Size());
    gLenTrackName = ByteSized(recordset->Fields("TrackName").Size());
}
