#include "lookups/lookupengine.h"

#include "app/mGlobals.h"
#include "lookups/lookupoperations.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbstrings.h"

namespace {

constexpr long kFirstUserPlatform = 6;

int gLastingErrorsPassedOn = 0;

void SetDirtyFlags(bool tree, bool list) {
    if (tree) gTreeDirty = true;
    if (list) gListDirty = true;
}

// The wanted name of an add skips the dialogue and is used up; otherwise the user is asked.
QString AskForName(const LookupTable& lookup, int action, QString& name) {
    if (action == kLookupAdd && !name.isEmpty()) {
        QString wanted = name;
        name.clear();
        return wanted;
    }
    const QString limitText = vbCrLf + "(Max. length = " + QString::number(*lookup.limit) + ")";
    if (action == kLookupAdd) {
        return InputBox("Please enter a name for this new " + lookup.noun + ":" + limitText,
                        "Add " + lookup.noun, "New " + lookup.noun);
    }
    return InputBox("Please enter a new name for this " + lookup.noun + ":" + limitText,
                    "Rename " + lookup.noun, name);
}

QString AddOrRename(const LookupTable& lookup, int action, long id, QString& name) {
    const QString newName = Trim(AskForName(lookup, action, name));
    if (newName.length() > *lookup.limit) {
        throw VbError(
            1500, "Name is too long! Maximum length is " + QString::number(*lookup.limit) + ".");
    }
    // A cancelled box and an unchanged name both end here without a word; case counts.
    if (newName.isEmpty() || newName == name) return {};

    QString result;
    RunAsTransaction(*gDatabase, [&] {
        auto recordset = gDatabase->OpenRecordset("select * from " + lookup.table + " where " +
                                                      lookup.idField + " = " + QString::number(id),
                                                  dbOpenDynaset);
        if (action == kLookupAdd) {
            recordset->AddNew();
            if (!lookup.parentField.isEmpty())
                recordset->Fields(lookup.parentField).SetValue(qlonglong(id));
        } else {
            recordset->Edit();
        }
        recordset->Fields(lookup.nameField).SetValue(newName);
        // The counter of a new row is known before Update, so the result is made here.
        result =
            QString::number(recordset->Fields(lookup.idField).Value().toLongLong()) + "~" + newName;
        recordset->Update();
    });
    SetDirtyFlags(lookup.treeDirtyAfterChange, lookup.listDirtyAfterChange);
    return result;
}

long CountRelatedTitles(const LookupTable& lookup, long id) {
    auto titles = gDatabase->OpenRecordset(lookup.countSQL + QString::number(id), dbOpenDynaset);
    if (titles->RecordCount() < 1) return 0;
    titles->MoveLast();
    return titles->RecordCount();
}

// The related titles are not deleted here: the catalogue's relations remove them with the row.
QString Delete(const LookupTable& lookup, long id, const QString& name) {
    const QString refusalTitle = "Unable to delete " + lookup.noun;
    if (lookup.reservedPlatforms) {
        if (id < kFirstUserPlatform) {
            MsgBox("These folders cannot be deleted since they are a part of the program." +
                       vbCrLf + "You can however 'hide' this platform.",
                   vbInformation, refusalTitle);
            return {};
        }
    } else if (id <= 0) {
        throw VbError(1501, "An error occured when trying to delete " + lookup.noun + " " +
                                QString::number(id) + ".");
    }

    const QString quotedName = "\"" + name + "\"";
    if (MsgBox("Are you sure you want to delete the " + lookup.noun + " " + quotedName + "?",
               vbYesNoCancel + vbQuestion, "Confirm Delete") != vbYes) {
        return {};
    }

    const long related = CountRelatedTitles(lookup, id);
    if (related > 0) {
        const QString count = QString::number(related);
        const QString question = "Found " + count + " CD-title(s) with " + lookup.noun + " " +
                                 quotedName + "." + vbCrLf + "Deleting this " + lookup.noun +
                                 " means that " + count + " CD-title(s) will be deleted too!" +
                                 vbCrLf + "Do you want to delete the " + count +
                                 " CD-title(s) as well?";
        if (MsgBox(question, vbYesNoCancel + vbExclamation,
                   "Found related CD-tile(s) in Velmora's Database!") != vbYes) {
            MsgBox("You didn't want the cd-title(s) deleted. As a consequence the " + lookup.noun +
                       " will not be deleted.",
                   vbInformation, refusalTitle);
            return {};
        }
    }
    // The row goes with the rows that hang from it (titles, their tracks, types, specific items)
    // in one transaction: all of them or, on any failure, none.
    RunAsTransaction(*gDatabase, [&] {
        gDatabase->Execute("delete from " + lookup.table + " where " + lookup.idField + " = " +
                           QString::number(id));
    });
    SetDirtyFlags(lookup.treeDirtyAfterDelete, lookup.listDirtyAfterDelete);
    return "0~";
}

}  // namespace

QString ModifyLookup(const LookupTable& lookup, int action, long id, QString& name) {
    try {
        switch (action) {
            case kLookupAdd:
            case kLookupRename:
                return AddOrRename(lookup, action, id, name);
            case kLookupDelete:
                return Delete(lookup, id, name);
            default:
                return {};
        }
    } catch (const VbError& error) {
        if (gLastingErrorsPassedOn > 0 && CatalogueCannotBeWritten(error)) throw;
        MsgBox(error.Description, vbCritical);
        return {};
    }
}

LastingLookupErrorsPassedOn::LastingLookupErrorsPassedOn() {
    ++gLastingErrorsPassedOn;
}

LastingLookupErrorsPassedOn::~LastingLookupErrorsPassedOn() {
    --gLastingErrorsPassedOn;
}
