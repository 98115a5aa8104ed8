// The title editor's save: validation, the title record, tracks and listing, and the main
// window's list.

#include <QLineEdit>
#include <QPlainTextEdit>

#include "editor/editortest.h"

using namespace editortest;

namespace {

QStringList StoredTracks(long id) {
    QStringList rows;
    auto tracks = gDatabase->OpenRecordset("select TrackID, TrackName from Tracks where idcd = " +
                                               QString::number(id) + " order by TrackID",
                                           dbOpenSnapshot);
    for (; !tracks->IsEOF(); tracks->MoveNext())
        rows << tracks->Fields(0).Value().toString() + ":" + tracks->Fields(1).Value().toString();
    return rows;
}

QVariant TitleField(long id, const QString& field) {
    return Scalar("select " + field + " from title where idcd = " + QString::number(id));
}

// A title under Audio / Jazz / Album by "Unknown artist", ready to save.
void FillAudioTitle(frmEdit* form, const QString& title) {
    form->txtTitle->setText(title);
    ChooseText(form->Combo1[0], "Audio");
    ChooseText(form->Combo1[1], "Unknown artist");
    ChooseText(form->Combo1[2], "Jazz");
    ChooseText(form->Combo1[3], "Album");
}

}  // namespace

class frmEditSaveTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<RunningProgram> program;

  private slots:
    void init() {
        dialogs = std::make_unique<ScriptedDialogs>();
        program = std::make_unique<RunningProgram>();
        QVERIFY(gMainForm);
    }
    void cleanup() {
        program.reset();
        dialogs.reset();
    }

    void emptyFormNamesWhatIsMissing() {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        const long before = TitleCount();
        form->txtTitle->setText("   ");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCOMPARE(dialogs->prompts(), QStringList({"You forgot to enter a title for the cd.",
                                                  "You forgot to select a platform for the cd.",
                                                  "You forgot to enter option 'by'.",
                                                  "You forgot to select option 'type'.",
                                                  "You forgot to select a specific kind."}));
        for (const MsgBoxCall& box : dialogs->msgBoxes) {
            QCOMPARE(box.flags, int(vbInformation));
            QCOMPARE(box.title, QString("Add Title"));
        }
        QCOMPARE(form->txtTitle->text(), QString());
        QVERIFY(form && form->isVisible());
        QVERIFY(form->IgnoreKeyUp);
        QCOMPARE(TitleCount(), before);
        form->Unload();
    }

    void memoIsStoredWithTheCataloguesLineEnds() {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        FillAudioTitle(form, "Two lines");
        form->Memo->setPlainText("first line\nsecond line");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(dialogs->msgBoxes.isEmpty());
        const long id = gCurrentTitleId;
        QCOMPARE(TitleField(id, "memo").toString(), QString("first line\r\nsecond line"));

        // Loaded again, the memo shows its two lines; only blanks make a memo empty.
        form = OpenEditor(false, id);
        QCOMPARE(form->Memo->toPlainText(), QString("first line\nsecond line"));
        form->Memo->setPlainText("\t");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(TitleField(id, "memo").toString(), QString("\t"));
        form = OpenEditor(false, id);
        form->Memo->setPlainText("  ");
        form->txtTitle->setText("\tTabbed ");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(TitleField(id, "memo").toString(), kEmptyTextMark);
        QCOMPARE(TitleField(id, "nmcd").toString(), QString("\tTabbed"));
    }

    void newTitleWritesRecordTracksAndRow() {
        SelectNode("key1");
        const int rows = gMainForm->ListItemCount();
        QPointer<frmEdit> form = OpenEditor(true);
        FillAudioTitle(form, "  Blue Train ");
        form->Text2->setText("BT-1");
        form->Memo->setPlainText("   ");
        TypeTracks(form, {"One", "", "Don't stop"});
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form);
        QVERIFY(dialogs->msgBoxes.isEmpty());

        const long id = gCurrentTitleId;
        QCOMPARE(Scalar("select max(idcd) from title").toLongLong(), qlonglong(id));
        QCOMPARE(TitleField(id, "nmcd").toString(), QString("Blue Train"));
        QCOMPARE(TitleField(id, "idplatform").toInt(), 1);
        QCOMPARE(TitleField(id, "idtype").toInt(), 4);
        QCOMPARE(TitleField(id, "iddevicetype").toInt(), 1);
        QCOMPARE(TitleField(id, "rating").toInt(), 75);
        QCOMPARE(TitleField(id, "nrcds").toInt(), 1);
        QCOMPARE(TitleField(id, "label").toString(), QString("BT-1"));
        QCOMPARE(TitleField(id, "memo").toString(), kEmptyTextMark);
        QCOMPARE(TitleField(id, "created").toString(), QDate::currentDate().toString(Qt::ISODate));
        QCOMPARE(TitleField(id, "modified").toString(), QDate::currentDate().toString(Qt::ISODate));

        // The blank line keeps its place as a track of one blank; the quote is stored once.
        QCOMPARE(StoredTracks(id), QStringList({"0:One", "1: ", "2:Don't stop"}));
        QCOMPARE(TitleField(id, "NumTracks").toInt(), 3);

        const int row = gMainForm->ListIndexOfKey("id" + QString::number(id));
        QVERIFY(row >= 0);
        QCOMPARE(gMainForm->ListItemCount(), rows + 1);
        QCOMPARE(gMainForm->ListItemText(row), QString("Blue Train"));
        QCOMPARE(gMainForm->ListItemTag(row), QString::number(id));
        QCOMPARE(gMainForm->ListItemSubItems(row).mid(0, 4),
                 QStringList({"Unknown artist", "Jazz", "Album", "1"}));
    }

    void tracksTextsAtTheEdges() {
        SelectNode("key1");
        QPointer<frmEdit> form = OpenEditor(true);
        FillAudioTitle(form, "Edges");
        TypeTracks(form, {"a", "b", ""});
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        const long id = gCurrentTitleId;
        // A text that ends in a line end gets no extra row.
        QCOMPARE(StoredTracks(id), QStringList({"0:a", "1:b"}));

        // An empty text removes every row.
        form = OpenEditor(false, id);
        TypeTracks(form, {});
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCOMPARE(StoredTracks(id), QStringList());
        QCOMPARE(TitleField(id, "NumTracks").toInt(), 0);

        // The counter is one byte: the 257th line fails after row 255 is written, the box
        // names the overflow and the form stays open with the old count.
        form = OpenEditor(false, id);
        QStringList lines;
        for (int line = 0; line < 258; ++line) lines << QString("t%1").arg(line);
        OnNextModal([lines](frmTracksListing* dialog) {
            dialog->SetText(lines.join(kCrLf));
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCOMPARE(dialogs->prompts(), QStringList{"6: Overflow"});
        QCOMPARE(dialogs->msgBoxes[0].flags, int(vbCritical));
        QVERIFY(form && form->isVisible());
        QCOMPARE(Scalar("select count(*) from Tracks where idcd = " + QString::number(id)).toInt(),
                 256);
        QCOMPARE(TitleField(id, "NumTracks").toInt(), 0);
        form->Unload();
    }

    void listingRoadAndChangedPlatform() {
        SelectNode("key1");
        QPointer<frmEdit> form = OpenEditor(true);
        FillAudioTitle(form, "Switched");
        TypeTracks(form, {"t1"});
        // Saved as a pc title without opening the editor again: the text goes in as listing.
        ChooseText(form->Combo1[0], "PC");
        ChooseText(form->Combo1[1], "Own backup");
        ChooseText(form->Combo1[2], "Backup");
        ChooseText(form->Combo1[3], "Photos");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        const long id = gCurrentTitleId;
        QCOMPARE(TitleField(id, "listing").toString(), QString("t1"));
        QCOMPARE(StoredTracks(id), QStringList());
        // Added under another platform's node, the row shows until the next refill.
        QVERIFY(gMainForm->ListIndexOfKey("id" + QString::number(id)) >= 0);

        // An emptied listing is stored as an empty text.
        form = OpenEditor(false, id);
        OnNextModal([](frmTracksListing* dialog) {
            QCOMPARE(dialog->Text(), QString("t1"));
            dialog->Text1->clear();
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCOMPARE(TitleField(id, "listing").toString(), QString());
        QVERIFY(dialogs->msgBoxes.isEmpty());
    }

    void changedTitleStaysOrLeavesTheList() {
        const long id = StoreTitle(
            "'Moved', 1, 2, 1, 4, 10, 1, 'x', 1, 18, '2001-02-03', '2001-02-03', char(0), null");
        SelectNode("key1");
        const QString key = "id" + QString::number(id);
        const int row = gMainForm->ListIndexOfKey(key);
        QVERIFY(row >= 0);
        const int rows = gMainForm->ListItemCount();

        // Under the root a change stays in the list with its new texts, and keeps what the
        // form did not change.
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(false, id);
        form->txtTitle->setText("Renamed");
        ChooseText(form->Combo1[1], "Various artists");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QVERIFY(dialogs->msgBoxes.isEmpty());
        const int rootRow = gMainForm->ListIndexOfKey(key);
        QCOMPARE(gMainForm->ListItemText(rootRow), QString("Renamed"));
        QCOMPARE(gMainForm->ListItemSubItems(rootRow).value(0), QString("Various artists"));
        QCOMPARE(TitleField(id, "rating").toInt(), 18);
        QCOMPARE(TitleField(id, "created").toString(), QString("2001-02-03"));

        // Under its platform's node, a move to another platform takes the row out.
        SelectNode("key1");
        gMainForm->SelectListIndex(gMainForm->ListIndexOfKey(key));
        form = OpenEditor(false, id);
        ChooseText(form->Combo1[0], "PC");
        ChooseText(form->Combo1[1], "Own backup");
        ChooseText(form->Combo1[2], "Backup");
        ChooseText(form->Combo1[3], "Photos");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QVERIFY(dialogs->msgBoxes.isEmpty());
        QCOMPARE(gMainForm->ListIndexOfKey(key), -1);
        QCOMPARE(gMainForm->ListItemCount(), rows - 1);
        QCOMPARE(TitleField(id, "idplatform").toInt(), 3);
    }
};

VELMORA_TEST_MAIN(frmEditSaveTest)
#include "frmEdit_save_test.moc"
