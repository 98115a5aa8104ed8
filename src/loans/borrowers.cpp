#include "loans/borrowers.h"

#include "app/lookupresult.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbstrings.h"

namespace {

// The width of the borrower's name column.
const int kNameLimit = 100;

QString AskName(int action, const QString& name) {
    const bool adding = action == kLookupAdd;
    const QString prompt = (adding ? "Please enter a name for this new borrower:"
                                   : "Please enter a new name for this borrower:") +
                           vbCrLf + "(Max. length = " + QString::number(kNameLimit) + ")";
    return InputBox(prompt, adding ? "Add borrower" : "Rename borrower",
                    adding ? "New borrower" : name)
        .trimmed();
}

QString Quoted(const QString& text) {
    return "'" + QString(text).replace('\'', "''") + "'";
}

QString Delete(long id, const QString& name) {
    if (MsgBox("Are you sure you want to delete the borrower \"" + name + "\"?",
               vbYesNoCancel | vbQuestion, "Confirm Delete") != vbYes)
        return {};
    const long loans =
        gDatabase
            ->OpenRecordset("select count(*) from loan where idborrower = " + QString::number(id),
                            dbOpenSnapshot)
            ->Fields(0)
            .Value()
            .toLongLong();
    if (loans > 0) {
        // Loans are the title's history: they stay, and so does the one they name.
        MsgBox("Found " + QString::number(loans) + " loan(s) of the borrower \"" + name +
                   "\" in Velmora's Database." + vbCrLf +
                   "A borrower with loans cannot be deleted, since the loans are the history of "
                   "the cd-titles. You can however rename the borrower.",
               vbInformation, "Unable to delete borrower");
        return {};
    }
    gDatabase->Execute("delete from borrower where idborrower = " + QString::number(id));
    return "0~";
}

}  // namespace

QString ModifyBorrower(int action, long id, const QString& name) {
    try {
        if (action == kLookupDelete) {
            if (id <= 0)
                throw VbError(1501, "An error occured when trying to delete borrower " +
                                        QString::number(id) + ".");
            return Delete(id, name);
        }
        if (action != kLookupAdd && action != kLookupRename) return {};
        const QString wanted = AskName(action, name);
        if (wanted.size() > kNameLimit)
            throw VbError(
                1500, "Name is too long! Maximum length is " + QString::number(kNameLimit) + ".");
        if (wanted.isEmpty() || wanted == name) return {};
        if (action == kLookupAdd) {
            gDatabase->Execute("insert into borrower (nmborrower) values (" + Quoted(wanted) + ")");
            id = gDatabase->OpenRecordset("select max(idborrower) from borrower", dbOpenSnapshot)
                     ->Fields(0)
                     .Value()
                     .toLongLong();
        } else {
            gDatabase->Execute("update borrower set nmborrower = " + Quoted(wanted) +
                               " where idborrower = " + QString::number(id));
        }
        return QString::number(id) + "~" + wanted;
    } catch (const VbError& error) {
        MsgBox(error.Description, vbCritical);
        return {};
    }
}
