// The title editor: its opening, its dependent lists, the gold buttons, the keys, the tracks
// editor's held texts, and the save (validation, the title record, tracks and listing, and the
// main window's list).

#include <QLineEdit>
#include <QPlainTextEdit>

#include "editor/editortest.h"
#include "toolkit/controls/ctlGoldButton.h"

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
    ChooseTitleKind(form, "Audio", "Jazz", "Album", "Unknown artist");
}

}  // namespace

class frmEditTest : public QObject {
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

    void addRoadListsAndCascade() {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        QCOMPARE(form->Combo1[0]->currentIndex(), -1);
        for (int list : {1, 2, 3}) QVERIFY(!form->Combo1[list]->isEnabled());
        QVERIFY(!form->cmdTracks->isEnabled());

        ChooseText(form->Combo1[0], "Audio");
        QCOMPARE(Texts(form->Combo1[1]), QStringList({"Unknown artist", "Various artists"}));
        QCOMPARE(form->Combo1[1]->currentIndex(), -1);
        QCOMPARE(Texts(form->Combo1[2]),
                 QStringList({"Classical", "Compilation", "Jazz", "Pop", "Rock", "Soundtrack"}));
        QVERIFY(form->Combo1[1]->isEnabled() && form->Combo1[2]->isEnabled());
        QVERIFY(!form->Combo1[3]->isEnabled());
        QVERIFY(form->cmdTracks->isEnabled());

        ChooseText(form->Combo1[2], "Jazz");
        QVERIFY(form->Combo1[3]->isEnabled());
        QCOMPARE(Texts(form->Combo1[3]), QStringList({"Album", "Live"}));

        // Another platform empties the specific items and keeps the tracks button's caption.
        ChooseText(form->Combo1[0], "Video");
        QVERIFY(!form->cmdTracks->isEnabled());
        QCOMPARE(form->cmdTracks->text(), QString("Enter audiotracks here..."));
        QCOMPARE(form->Combo1[3]->count(), 0);
        QVERIFY(!form->Combo1[3]->isEnabled());
        QCOMPARE(Texts(form->Combo1[2]), QStringList({"Concert", "Documentary", "Movie"}));
        form->Unload();

        // From a type node the platform and the type come preselected.
        SelectNode("key1key4");
        form = OpenEditor(true);
        QCOMPARE(form->Combo1[0]->currentText(), QString("Audio"));
        QCOMPARE(form->Combo1[2]->currentText(), QString("Jazz"));
        QCOMPARE(Texts(form->Combo1[3]), QStringList({"Album", "Live"}));
        QCOMPARE(form->Combo1[1]->currentIndex(), -1);
        // Escape ends the editor.
        QTest::keyClick(form->txtTitle, Qt::Key_Escape);
        QVERIFY(!gEditForm);
    }

    // Keys pressed in an open list are the list's: its key-ups neither close nor save.
    void openListTakesItsKeys() {
        SelectNode("key1key4");
        QPointer<frmEdit> form = OpenEditor(true);
        QVERIFY(QTest::qWaitForWindowActive(form));
        form->txtTitle->setText("Typed title");
        QComboBox* vendors = form->Combo1[1];
        vendors->setFocus();
        const long before = TitleCount();

        // The open list holds the keyboard: key-downs go to it, the key-up after it closed comes
        // to the window.
        vendors->showPopup();
        QTest::keyPress(vendors->view(), Qt::Key_Escape);
        QVERIFY(!vendors->view()->isVisible());
        QTest::keyRelease(form->windowHandle(), Qt::Key_Escape);
        QVERIFY(form && form->isVisible());
        QCOMPARE(form->txtTitle->text(), QString("Typed title"));

        vendors->showPopup();
        const int first = vendors->view()->currentIndex().row();
        QTest::keyClick(vendors->view(), Qt::Key_Down);
        QTest::keyPress(vendors->view(), Qt::Key_Return);
        QVERIFY(!vendors->view()->isVisible());
        QTest::keyRelease(form->windowHandle(), Qt::Key_Return);
        QVERIFY(form && form->isVisible());
        QCOMPARE(vendors->currentIndex(), first + 1);
        QCOMPARE(TitleCount(), before);
        QVERIFY(dialogs->msgBoxes.isEmpty());

        // Closed, the list hands Enter to the save again.
        QTest::keyClick(vendors, Qt::Key_Return);
        QVERIFY(!dialogs->msgBoxes.isEmpty());
    }

    void tracksEditorHoldsTextsAcrossPlatforms() {
        SelectNode("key1");
        QPointer<frmEdit> form = OpenEditor(true);
        TypeTracks(form, {"t1", "t2"});
        QVERIFY(form->TracksEdited);
        frmTracksListing* tracks = form->TracksListing();
        QVERIFY(tracks && !tracks->isVisible());
        QCOMPARE(tracks->Text(), "t1" + kCrLf + "t2");

        // Listing: its own text, empty on the add road.
        ChooseText(form->Combo1[0], "PC");
        QString shown;
        OnModal<frmTracksListing>([&shown](frmTracksListing* dialog) {
            shown = dialog->windowTitle() + "|" + dialog->Text();
            QTest::keyClicks(dialog->Text1, "files");
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(shown, QString("Edit listing here...|"));

        // Back to tracks; Cancel restores this opening's text, Restore the text at load.
        ChooseText(form->Combo1[0], "Audio");
        QStringList seen;
        OnModal<frmTracksListing>([&seen](frmTracksListing* dialog) {
            seen << dialog->windowTitle() + "|" + dialog->Text();
            QTest::keyClicks(dialog->Text1, "x");
            QTest::mouseClick(dialog->cmdCancel, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        seen << tracks->Text();
        OnModal<frmTracksListing>([&seen](frmTracksListing* dialog) {
            QTest::mouseClick(dialog->cmdRestore, Qt::LeftButton);
            seen << dialog->Text();
            QVERIFY(dialog->isVisible());
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(seen, QStringList({"Edit tracks here...|t1" + kCrLf + "t2", "t1" + kCrLf + "t2",
                                    QString()}));

        ChooseText(form->Combo1[0], "PC");
        QCOMPARE(ShownInTracksEditor(form), QString("Edit listing here...|files"));
        form->Unload();
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
        ClickOK(form);
        QVERIFY(dialogs->msgBoxes.isEmpty());
        const long id = gCurrentTitleId;
        QCOMPARE(TitleField(id, "memo").toString(), QString("first line\r\nsecond line"));

        // Loaded again, the memo shows its two lines; a tab is no blank, in the memo or the title.
        form = OpenEditor(false, id);
        QCOMPARE(form->Memo->toPlainText(), QString("first line\nsecond line"));
        form->Memo->setPlainText("\t");
        form->txtTitle->setText("\tTabbed ");
        ClickOK(form);
        QCOMPARE(TitleField(id, "memo || nmcd").toString(), QString("\t\tTabbed"));
    }

    void newTitleWritesRecordTracksAndRow() {
        SelectNode("key1");
        const int rows = gMainForm->ListItemCount();
        QPointer<frmEdit> form = OpenEditor(true);
        FillAudioTitle(form, "  Blue Train ");
        form->Text2->setText("BT-1");
        form->Memo->setPlainText("   ");
        TypeTracks(form, {"One", "", "Don't stop"});
        ClickOK(form);
        QVERIFY(!form);
        QVERIFY(dialogs->msgBoxes.isEmpty());

        const long id = gCurrentTitleId;
        const QString today = QDate::currentDate().toString(Qt::ISODate);
        QCOMPARE(TitleField(id,
                            "nmcd || '|' || idplatform || '|' || idtype || '|' || iddevicetype "
                            "|| '|' || rating || '|' || nrcds || '|' || label || '|' || "
                            "memo || '|' || created || '|' || modified")
                     .toString(),
                 "Blue Train|1|4|1|75|1|BT-1|" + kEmptyTextMark + "|" + today + "|" + today);

        // The blank line keeps its place as a track of one blank; the quote is stored once.
        QCOMPARE(StoredTracks(id), QStringList({"0:One", "1: ", "2:Don't stop"}));
        QCOMPARE(TitleField(id, "NumTracks").toInt(), 3);

        const int row = gMainForm->ListIndexOfKey("id" + QString::number(id));
        QCOMPARE(gMainForm->ListItemCount(), rows + 1);
        QCOMPARE(gMainForm->ListItemText(row), QString("Blue Train"));
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

        // The counter is one byte: the 257th line fails. The save is one transaction: the box
        // names the overflow, the form stays open with what was typed, and the catalogue holds
        // the title as it was, with its old tracks and count.
        form = OpenEditor(false, id);
        form->txtTitle->setText("Edges renamed");
        auto saveTooManyTracks = [this](frmEdit* form) {
            QStringList lines;
            for (int line = 0; line < 258; ++line) lines << QString("t%1").arg(line);
            OnModal<frmTracksListing>([lines](frmTracksListing* dialog) {
                dialog->SetText(lines.join(kCrLf));
                QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
            });
            QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
            QTest::mouseClick(form->cmdOK, Qt::LeftButton);
            QCOMPARE(dialogs->takeBoxes(), Boxes({{"6: Overflow", vbCritical, "Velmora"}}));
        };
        saveTooManyTracks(form);
        QVERIFY(form && form->isVisible());
        QCOMPARE(form->txtTitle->text(), QString("Edges renamed"));
        QCOMPARE(StoredTracks(id), QStringList({"0:a", "1:b"}));
        QCOMPARE(TitleField(id, "nmcd || '|' || NumTracks").toString(), QString("Edges|2"));
        QCOMPARE(gCurrentTitleId, id);
        form->Unload();

        // An empty text removes every row.
        form = OpenEditor(false, id);
        TypeTracks(form, {});
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QCOMPARE(StoredTracks(id), QStringList());
        QCOMPARE(TitleField(id, "NumTracks").toInt(), 0);

        // A failed add leaves no title behind, and a second click adds it once.
        const long titles = TitleCount();
        form = OpenEditor(true);
        FillAudioTitle(form, "Too many");
        saveTooManyTracks(form);
        QCOMPARE(TitleCount(), titles);
        QCOMPARE(RowCount("Tracks where TrackName = 't0'"), 0L);
        TypeTracks(form, {"x"});
        ClickOK(form);
        QVERIFY(!form);
        QCOMPARE(TitleCount(), titles + 1);
    }

    void listingRoadAndChangedPlatform() {
        SelectNode("key1");
        QPointer<frmEdit> form = OpenEditor(true);
        FillAudioTitle(form, "Switched");
        TypeTracks(form, {"t1"});
        // Saved as a pc title without opening the editor again: the text goes in as listing.
        ChooseTitleKind(form, "PC", "Backup", "Photos", "Own backup");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        const long id = gCurrentTitleId;
        QCOMPARE(TitleField(id, "listing").toString(), QString("t1"));
        QCOMPARE(StoredTracks(id), QStringList());
        // Added under another platform's node, the row shows until the next refill.
        QVERIFY(gMainForm->ListIndexOfKey("id" + QString::number(id)) >= 0);

        // An emptied listing is stored as an empty text.
        form = OpenEditor(false, id);
        OnModal<frmTracksListing>([](frmTracksListing* dialog) {
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
        ChooseTitleKind(form, "PC", "Backup", "Photos", "Own backup");
        QTest::mouseClick(form->cmdOK, Qt::LeftButton);
        QVERIFY(dialogs->msgBoxes.isEmpty());
        QCOMPARE(gMainForm->ListIndexOfKey(key), -1);
        QCOMPARE(gMainForm->ListItemCount(), rows - 1);
        QCOMPARE(TitleField(id, "idplatform").toInt(), 3);
    }
};

VELMORA_TEST_MAIN(frmEditTest)
#include "frmEdit_test.moc"
