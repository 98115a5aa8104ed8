#include "lookups/lookupoperations.h"

#include "lookups/lookupengine.h"
#include "store/fieldsizes.h"

namespace {

const LookupTable kPlatform{.table = "platform",
                            .idField = "idplatform",
                            .nameField = "nmplatform",
                            .noun = "platform",
                            .limit = &gLenPlatform,
                            .countSQL = "select * from title where idplatform = ",
                            .reservedPlatforms = true,
                            .treeDirtyAfterChange = true,
                            .treeDirtyAfterDelete = true,
                            .listDirtyAfterDelete = true};

// The mediatype window marks the list dirty itself, so no flag is set here.
const LookupTable kMediatype{.table = "mediatype",
                             .idField = "idmediatype",
                             .nameField = "nmmediatype",
                             .parentField = "iddevicetype",
                             .noun = "mediatype",
                             .limit = &gLenMediatype,
                             .countSQL = "select * from title where idmediatype = "};

// The count statement names "idspecifc", which title does not have: the store refuses it, the
// trap shows the store's message and a specific item is never deleted by this routine. That is
// how the program has always behaved, so the statement stays as it is.
const LookupTable kSpecific{.table = "specific",
                            .idField = "idspecific",
                            .nameField = "nmspecific",
                            .parentField = "idtype",
                            .noun = "specific item",
                            .limit = &gLenSpecific,
                            .countSQL = "select * from title where idspecifc = ",
                            .listDirtyAfterChange = true,
                            .listDirtyAfterDelete = true};

const LookupTable kType{.table = "type",
                        .idField = "idtype",
                        .nameField = "nmtype",
                        .parentField = "idplatform",
                        .noun = "type",
                        .limit = &gLenType,
                        .countSQL = "select * from title where idtype = ",
                        .treeDirtyAfterChange = true,
                        .listDirtyAfterChange = true,
                        .treeDirtyAfterDelete = true,
                        .listDirtyAfterDelete = true};

const LookupTable kVendor{.table = "vendor",
                          .idField = "idvendor",
                          .nameField = "nmvendor",
                          .parentField = "idplatform",
                          .noun = "vendor",
                          .limit = &gLenVendor,
                          .countSQL = "select * from title where idvendor = ",
                          .listDirtyAfterChange = true,
                          .listDirtyAfterDelete = true};

}  // namespace

QString ModifyPlatform(int action, long id, QString& name) {
    return ModifyLookup(kPlatform, action, id, name);
}

QString ModifyMediatype(int action, long id, QString& name) {
    return ModifyLookup(kMediatype, action, id, name);
}

QString ModifySpecific(int action, long id, QString& name) {
    return ModifyLookup(kSpecific, action, id, name);
}

QString ModifyType(int action, long id, QString& name) {
    return ModifyLookup(kType, action, id, name);
}

QString ModifyVendor(int action, long id, QString& name) {
    return ModifyLookup(kVendor, action, id, name);
}
