// The save of the title editor: validation, the title record, its tracks or listing, and the
// row of the main window's list.

#include <QComboBox>
#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "editor/frmEdit.h"
#include "editor/frmTracksListing.h"
#include "lookups/lookupoperations.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

namespace {

const int kTypeMismatch = 13;
const int kObjectNotSet = 91;
const int kElementNotFound = 35601;
const QString kObjectNotSetText = "Object variable or With block variable not set";

// The caption of lblCreated back to a date: the locale's short form as shown, with a
// two-digit year read into 1930..2029, or an ISO date.
QDate DateOfCaption(const QString& text) {
    const QString format = QLocale::system().dateFormat(QLocale::ShortFormat);
    QDate date = QLocale::system().toDate(text, format);
    if (date.isValid() && !format.contains("yyyy") && date.year() < 1930) date = date.addYears(100);
    if (!date.isValid()) date = QDate::fromString(text, Qt::ISODate);
    if (!date.isValid()) throw VbError(kTypeMismatch);
    return date;
}

QString TrackName(const QString& line) {
    return line.left(gLenTrackName).replace("'", "''");
}

}  // namespace

bool frmEdit::Validate() {
    bool valid = true;
    auto fail = [this, &valid](const QString& message, QWidget* field) {
        MsgBox(message, vbInformation, windowTitle());
        if (valid) field->setFocus();
        valid = false;
    };

    txtTitle->setText(Trim(txtTitle->text()));
    if (txtTitle->text().isEmpty()) fail("You forgot to enter a title for the cd.", txtTitle);

    const std::array<QString, 7> messages{"You forgot to select a platform for the cd.",
                                          "You forgot to enter option 'by'.",
                                          "You forgot to select option 'type'.",
                                          "You forgot to select a specific kind.",
                                          "You must supply a mediatype.",
                                          "Select a rating for this title.",
                                          "Select the number of cd's."};
    for (int index = 0; index < 7; ++index) {
        if (Combo1[index]->currentIndex() == -1) fail(messages[index], Combo1[index]);
    }
    return valid;
}

void frmEdit::cmdOK_Click() {
    if (!Validate()) {
        IgnoreKeyUp = true;
        return;
    }
    const long titleIdBefore = gCurrentTitleId;
    const int vendorRow = Combo1[1]->currentIndex();
    const bool newVendor = ItemData(1) == kArtistNotYetStored;
    try {
        SetMousePointer(vbHourglass);
        // The save is one transaction, which the design does not ask for: a full disk or any
        // other failure half way would leave the title without some of its tracks, or the old
        // tracks gone and the count still theirs.
        try {
            RunAsTransaction(*gDatabase, [&] {
                if (newVendor) StoreArtist();
                WriteTitle();
                if (cmdTracks->isEnabled() && TracksEdited) {
                    const QString text = tracksListing_->Text();
                    if (cmdTracks->text() == ListingCaption())
                        WriteListing(text);
                    else
                        WriteTracks(text);
                }
                WriteShelfFields();
            });
        } catch (...) {
            gCurrentTitleId = titleIdBefore;
            if (newVendor) Combo1[1]->setItemData(vendorRow, qlonglong(kArtistNotYetStored));
            throw;
        }
        if (!gListDirty) UpdateMainList();
        if (!gRecordset) throw VbError(kObjectNotSet, kObjectNotSetText);
        gRecordset->Requery();
        Unload();
    } catch (const ArtistNotStored&) {
        // The vendor's own routine has said why in its box.
        SetMousePointer(vbArrow);
    } catch (const VbError& error) {
        SetMousePointer(vbArrow);
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbCritical);
    }
}

void frmEdit::StoreArtist() {
    QString name = Combo1[1]->currentText();
    const QString result = ModifyVendor(kLookupAdd, ItemData(0), name);
    if (result.isEmpty()) throw ArtistNotStored();
    Combo1[1]->setItemData(Combo1[1]->currentIndex(),
                           static_cast<qlonglong>(LookupResultId(result)));
}

void frmEdit::WriteTitle() {
    std::unique_ptr<Recordset> record;
    if (gModifyingTitle) {
        record = gDatabase->OpenRecordset(
            "select * from title where idcd = " + QString::number(gCurrentTitleId), dbOpenDynaset);
        record->Edit();
    } else {
        record = gDatabase->OpenRecordset("select * from title where idcd = 0", dbOpenDynaset);
        record->AddNew();
    }
    record->Fields("nmcd").SetValue(txtTitle->text());
    record->Fields("nrcds").SetValue(static_cast<qlonglong>(ItemData(6)));
    record->Fields("idvendor").SetValue(static_cast<qlonglong>(ItemData(1)));
    record->Fields("idplatform").SetValue(static_cast<qlonglong>(ItemData(0)));
    record->Fields("idtype").SetValue(static_cast<qlonglong>(ItemData(2)));
    record->Fields("idspecific").SetValue(static_cast<qlonglong>(ItemData(3)));
    record->Fields("idmediatype").SetValue(static_cast<qlonglong>(ItemData(4)));
    record->Fields("label").SetValue(Text2->text());
    record->Fields("iddevicetype").SetValue(1);
    record->Fields("rating").SetValue(static_cast<qlonglong>(ItemData(5)));
    record->Fields("created").SetValue(DateOfCaption(lblCreated->text()).toString(Qt::ISODate));
    record->Fields("modified").SetValue(QDate::currentDate().toString(Qt::ISODate));
    // The catalogue's line end is CR LF; the exports rely on it.
    const QString memo = Memo->toPlainText().replace(QChar('\n'), vbCrLf);
    record->Fields("memo").SetValue(Trim(memo).isEmpty() ? kEmptyTextMark : memo);
    WriteDiscFields(*record);
    gCurrentTitleId = record->Fields("idcd").Value().toLongLong();
    record->Update();
}

void frmEdit::WriteTracks(const QString& text) {
    const QString id = QString::number(gCurrentTitleId);
    gDatabase->Execute("delete from tracks where idcd = " + id);
    // Held open while the rows go in, as the save always has; the rows go by statements.
    std::unique_ptr<Recordset> tracks =
        gDatabase->OpenRecordset("select * from tracks where idcd = 0", dbOpenDynaset);

    // One byte: the step past 255 fails, after the row with TrackId 255 is written.
    int counter = 0;
    qsizetype pos = 0;
    if (!text.isEmpty()) {
        qsizetype p = text.indexOf("\r\n", pos);
        while (p >= 0) {
            const QString line = text.mid(pos, p - pos);
            if (!line.isEmpty())
                gDatabase->Execute("INSERT INTO Tracks VALUES (" + id + "," +
                                   QString::number(counter) + ",'" + TrackName(line) + "')");
            else
                gDatabase->Execute("INSERT INTO Tracks VALUES (" + id + ", " +
                                   QString::number(counter) + ", ' ')");
            counter = CByte(counter + 1);
            pos = p + 2;
            p = text.indexOf("\r\n", pos);
        }
        if (pos < text.size()) {
            const QString rest = text.mid(pos);
            // The rest is never empty here; its statement stays the one the empty case has had.
            if (!rest.isEmpty())
                gDatabase->Execute("INSERT INTO Tracks VALUES (" + id + ", " +
                                   QString::number(counter) + ", '" + TrackName(rest) + "')");
            else
                gDatabase->Execute("INSERT INTO Tracks idcd, TrackId, TrackName VALUES (" + id +
                                   ", " + QString::number(counter) + ", ' ')");
            counter = CByte(counter + 1);
        }
    }
    gDatabase->Execute("UPDATE title SET NumTracks = " + QString::number(counter) +
                       " WHERE idcd = " + id);
    tracks.reset();
}

void frmEdit::WriteListing(const QString& text) {
    const QString id = QString::number(gCurrentTitleId);
    if (text.isEmpty()) {
        gDatabase->Execute("UPDATE title set listing = '' where idcd = " + id);
        return;
    }
    std::unique_ptr<Recordset> record =
        gDatabase->OpenRecordset("select * from title where idcd = " + id, dbOpenDynaset);
    record->Edit();
    record->Fields("listing").SetValue(text);
    record->Update();
}

void frmEdit::UpdateMainList() {
    MainWindow* main = TheMainWindow();
    if (!main) throw VbError(kObjectNotSet, kObjectNotSetText);
    const QString key = "id" + QString::number(gCurrentTitleId);
    const QStringList subItems{Combo1[1]->currentText(), Combo1[2]->currentText(),
                               Combo1[3]->currentText(), Combo1[6]->currentText(),
                               Combo1[4]->currentText()};

    if (gAddingTitle) {
        const long platform = ItemData(0);
        main->AddListItem(key, txtTitle->text(), platform < 6 ? int(platform) : 6, subItems,
                          QString::number(gCurrentTitleId));
        return;
    }

    const QString nodeKey = main->SelectedNodeKey();
    if (nodeKey.isEmpty()) throw VbError(kObjectNotSet, kObjectNotSetText);
    const QString parentKey = main->ParentNodeKey(nodeKey);
    bool goes = false;
    if (nodeKey == "root")
        goes = false;
    else if (!parentKey.isEmpty() && parentKey != "root")
        goes = Val(nodeKey.mid(parentKey.size() + 3)) != ItemData(2);
    else if (nodeKey == "search")
        goes = false;
    else
        goes = Val(nodeKey.mid(3)) != ItemData(0);

    if (goes) {
        const int selected = main->SelectedListIndex();
        if (selected < 0) throw VbError(kObjectNotSet, kObjectNotSetText);
        main->RemoveListItem(selected);
        return;
    }
    const int row = main->ListIndexOfKey(key);
    if (row < 0) throw VbError(kElementNotFound, "Element not found");
    main->SetListItem(row, txtTitle->text(), subItems);
}
