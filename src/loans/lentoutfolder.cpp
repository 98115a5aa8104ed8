#include "loans/lentoutfolder.h"

#include "store/catalogue.h"

namespace loans {

QString LentOutSQL() {
    return "Select * from title,vendor,platform,type,specific,mediatype,loan,borrower where "
           "title.idvendor = vendor.idvendor and title.idplatform = platform.idplatform and "
           "title.idtype = type.idtype and title.idspecific = specific.idspecific and "
           "title.idmediatype = mediatype.idmediatype and loan.idcd = title.idcd and "
           "loan.idborrower = borrower.idborrower and loan.returned is null order by "
           "loan.due is null, loan.due, title.nmcd";
}

void OpenLentOutView() {
    gViewSQL = LentOutSQL();
    if (!gDatabase) return;
    try {
        gRecordset = gDatabase->OpenRecordset(gViewSQL, dbOpenDynaset, dbReadOnly);
    } catch (const VbError&) {
        // As in the other views: the former recordset stays.
    }
}

bool AnyTitleOut() {
    if (!gDatabase) return false;
    try {
        return !gDatabase
                    ->OpenRecordset("select idloan from loan where returned is null",
                                    dbOpenForwardOnly)
                    ->IsEOF();
    } catch (const VbError&) {
        // A catalogue without the loan tables has nothing out.
        return false;
    }
}

QStringList LentOutHeaders() {
    return {"Title", "By", "Type", "Lent to", "Due", "Mediatype"};
}

std::array<QString, 5> LentOutSubItemFields() {
    return {"nmvendor", "nmtype", "nmborrower", "due", "nmmediatype"};
}

QColor OverdueColour(const QColor& background) {
    // Both keep a contrast of more than 7 to 1 against white and black respectively.
    return background.lightnessF() >= 0.5 ? QColor(0xA5, 0x00, 0x00) : QColor(0xFF, 0xC8, 0xC8);
}

}  // namespace loans
