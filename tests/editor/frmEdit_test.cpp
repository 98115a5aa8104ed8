// The title editor's opening, its dependent lists, the gold buttons, the keys and the tracks
// editor's held texts.

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "editor/editortest.h"
#include "toolkit/ctlGoldButton.h"

using namespace editortest;

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
        QCOMPARE(form->windowTitle(), QString("Add Title"));
        QCOMPARE(form->cmdOK->text(), QString("&Add"));
        QCOMPARE(form->Combo1[0]->currentIndex(), -1);
        QCOMPARE(Texts(form->Combo1[0]),
                 QStringList({"Audio", "Game console", "Macintosh", "PC", "Video"}));
        for (int list : {1, 2, 3}) QVERIFY(!form->Combo1[list]->isEnabled());
        QVERIFY(!form->cmdTracks->isEnabled());

        // Rating runs 100 down to 0 with the odd row of 18, preselected at 75; one cd; the
        // first mediatype.
        QCOMPARE(form->Combo1[5]->count(), 101);
        QCOMPARE(form->Combo1[5]->itemData(82).toInt(), 18);
        QCOMPARE(form->Combo1[5]->itemText(82), QString("28"));
        QCOMPARE(form->Combo1[5]->itemText(81), QString("19"));
        QCOMPARE(form->Combo1[5]->currentData().toInt(), 75);
        QCOMPARE(form->Combo1[6]->count(), 12);
        QCOMPARE(form->Combo1[6]->currentData().toInt(), 1);
        QCOMPARE(form->Combo1[4]->currentIndex(), 0);

        QStringList tips;
        for (QLabel* label : form->findChildren<QLabel*>())
            if (label->text() == "Rating") tips << label->toolTip();
        QCOMPARE(tips, QStringList{"Give your a cd-title a rating"});

        ChooseText(form->Combo1[0], "Audio");
        QCOMPARE(Texts(form->Combo1[1]), QStringList({"Unknown artist", "Various artists"}));
        QCOMPARE(form->Combo1[1]->currentIndex(), -1);
        QCOMPARE(Texts(form->Combo1[2]),
                 QStringList({"Classical", "Compilation", "Jazz", "Pop", "Rock", "Soundtrack"}));
        QVERIFY(form->Combo1[1]->isEnabled() && form->Combo1[2]->isEnabled());
        QVERIFY(!form->Combo1[3]->isEnabled());
        QVERIFY(form->cmdTracks->isEnabled());
        QCOMPARE(form->cmdTracks->text(), form->TracksCaption());

        ChooseText(form->Combo1[2], "Jazz");
        QVERIFY(form->Combo1[3]->isEnabled());
        QCOMPARE(Texts(form->Combo1[3]), QStringList({"Album", "Live"}));
        QCOMPARE(form->Combo1[3]->itemData(0).toLongLong(),
                 Scalar("select idspecific from specific where idtype = 4 and nmspecific = "
                        "'Album'")
                     .toLongLong());

        // Another platform empties the specific items and keeps the tracks button's caption.
        ChooseText(form->Combo1[0], "Video");
        QVERIFY(!form->cmdTracks->isEnabled());
        QCOMPARE(form->cmdTracks->text(), QString("Enter audiotracks here..."));
        QCOMPARE(form->Combo1[3]->count(), 0);
        QVERIFY(!form->Combo1[3]->isEnabled());
        QCOMPARE(Texts(form->Combo1[2]), QStringList({"Concert", "Documentary", "Movie"}));
        ChooseText(form->Combo1[0], "PC");
        QVERIFY(form->cmdTracks->isEnabled());
        QCOMPARE(form->cmdTracks->text(), QString("Enter listing here..."));
        form->Unload();

        // From a type node the platform and the type come preselected.
        SelectNode("key1key4");
        form = OpenEditor(true);
        QCOMPARE(form->Combo1[0]->currentText(), QString("Audio"));
        QCOMPARE(form->Combo1[2]->currentText(), QString("Jazz"));
        QCOMPARE(Texts(form->Combo1[3]), QStringList({"Album", "Live"}));
        QCOMPARE(form->Combo1[1]->currentIndex(), -1);
        form->Unload();

        // From a platform node only the platform.
        SelectNode("key3");
        form = OpenEditor(true);
        QCOMPARE(form->Combo1[0]->currentText(), QString("PC"));
        QCOMPARE(form->Combo1[2]->currentIndex(), -1);
        QCOMPARE(form->cmdTracks->text(), form->ListingCaption());
        form->Unload();
        QVERIFY(!gEditForm);

        // The main window's commands run the editor modally; Escape ends it.
        gAddingTitle = true;
        gModifyingTitle = false;
        QString opened;
        QTimer::singleShot(0, [&opened] {
            auto* modal = qobject_cast<frmEdit*>(QApplication::activeModalWidget());
            QVERIFY(modal);
            opened = modal->windowTitle();
            QTest::keyClick(modal->txtTitle, Qt::Key_Escape);
        });
        ShowEditForm();
        QCOMPARE(opened, QString("Add Title"));
        QVERIFY(!gEditForm);
    }

    void editRoadLoadsEveryField() {
        const long id = StoreTitle(
            "'Kind of Blue', 4, 2, 1, 4, 10, 2, 'JC-12', 1, 18, '2001-02-03', '2002-03-04', "
            "'first' || char(13) || char(10) || 'second', null");
        const long marked = StoreTitle(
            "'Marked', 1, 1, 1, 1, 1, 1, char(0), 1, 50, '2001-02-03', '2001-02-03', char(0), "
            "null");

        QPointer<frmEdit> form = OpenEditor(false, id);
        QCOMPARE(form->windowTitle(), QString("Edit Title"));
        QCOMPARE(form->cmdOK->text(), QString("&Update"));
        QCOMPARE(form->txtTitle->text(), QString("Kind of Blue"));
        QCOMPARE(form->Combo1[0]->currentText(), QString("Audio"));
        QCOMPARE(form->Combo1[1]->currentData().toLongLong(), 2LL);
        QCOMPARE(form->Combo1[2]->currentText(), QString("Jazz"));
        QCOMPARE(form->Combo1[3]->currentData().toLongLong(), 10LL);
        QCOMPARE(form->Combo1[4]->currentData().toLongLong(), 2LL);
        QCOMPARE(form->Combo1[5]->currentText(), QString("28"));
        QCOMPARE(form->Combo1[6]->currentText(), QString("4"));
        QCOMPARE(form->Text2->text(), QString("JC-12"));
        QCOMPARE(form->Memo->toPlainText(), QString("first\nsecond"));
        QCOMPARE(form->lblCreated->text(), ShortDate(QDate(2001, 2, 3)));
        QCOMPARE(form->lblModified->text(), ShortDate(QDate(2002, 3, 4)));
        QVERIFY(form->cmdTracks->isEnabled());
        form->Unload();

        form = OpenEditor(false, marked);
        QCOMPARE(form->Text2->text(), QString());
        QCOMPARE(form->Memo->toPlainText(), QString());
        form->Unload();
    }

    void goldButtonsChangeTheLists() {
        SelectNode("key1");
        QPointer<frmEdit> form = OpenEditor(true);

        dialogs->answerInput("Joan Merrit");
        QTest::mouseClick(form->cmdVendor[0], Qt::LeftButton);
        QCOMPARE(dialogs->inputs.size(), 1);
        QCOMPARE(dialogs->inputs[0].title, QString("Add vendor"));
        const QVariant newId = Scalar("select idvendor from vendor where nmvendor = 'Joan Merrit'");
        QVERIFY(!newId.isNull());
        QCOMPARE(Scalar("select idplatform from vendor where idvendor = " + newId.toString())
                     .toLongLong(),
                 1LL);
        QCOMPARE(form->Combo1[1]->currentText(), QString("Joan Merrit"));
        QCOMPARE(form->Combo1[1]->currentData().toLongLong(), newId.toLongLong());

        dialogs->answerInput("Joan Merritt");
        QTest::mouseClick(form->cmdVendor[1], Qt::LeftButton);
        QCOMPARE(dialogs->inputs[1].defaultText, QString("Joan Merrit"));
        QCOMPARE(form->Combo1[1]->currentText(), QString("Joan Merritt"));

        dialogs->answerMsgBox(vbYes);
        QTest::mouseClick(form->cmdVendor[2], Qt::LeftButton);
        QCOMPARE(form->Combo1[1]->currentIndex(), -1);
        QCOMPARE(form->Combo1[1]->findText("Joan Merritt"), -1);
        QVERIFY(
            Scalar("select idvendor from vendor where idvendor = " + newId.toString()).isNull());

        // A new type is selected and fills its (empty) specific items.
        dialogs->answerInput("Bebop");
        QTest::mouseClick(form->cmdType[0], Qt::LeftButton);
        QCOMPARE(form->Combo1[2]->currentText(), QString("Bebop"));
        QVERIFY(form->Combo1[3]->isEnabled());
        QCOMPARE(form->Combo1[3]->count(), 0);

        // Nothing to rename, and no type to add a specific item to: no dialogue at all.
        ChooseText(form->Combo1[0], "Video");
        const int asked = dialogs->inputs.size();
        QTest::mouseClick(form->cmdSpecific[0], Qt::LeftButton);
        QTest::mouseClick(form->cmdVendor[1], Qt::LeftButton);
        QCOMPARE(dialogs->inputs.size(), asked);
        QVERIFY(dialogs->msgBoxes.size() == 1);
        form->Unload();
    }

    void keysRunAtKeyUp() {
        SelectNode("key1key4");
        QPointer<frmEdit> form = OpenEditor(true);
        form->txtTitle->setText("Keys");
        ChooseText(form->Combo1[1], "Various artists");
        ChooseText(form->Combo1[3], "Live");
        const long before = TitleCount();

        // The key-up of the Enter that closed the lookup's input box reaches the title field.
        dialogs->answerInput("Cool");
        QTest::mouseClick(form->cmdSpecific[0], Qt::LeftButton);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(form->txtTitle, &release);
        QVERIFY(form && form->isVisible());
        QCOMPARE(TitleCount(), before);
        QCOMPARE(form->Combo1[3]->currentText(), QString("Cool"));

        // Enter in the memo makes a new line; Enter in the title saves.
        form->Memo->setFocus();
        QTest::keyClicks(form->Memo, "a");
        QTest::keyClick(form->Memo, Qt::Key_Return);
        QVERIFY(form && form->isVisible());
        QCOMPARE(form->Memo->toPlainText(), QString("a\n"));
        QTest::keyClick(form->txtTitle, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form);
        QCOMPARE(TitleCount(), before + 1);
        QVERIFY(dialogs->msgBoxes.isEmpty());

        // Escape closes without saving, from the memo too.
        form = OpenEditor(true);
        form->txtTitle->setText("Not saved");
        QTest::keyClick(form->Memo, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form);
        QCOMPARE(TitleCount(), before + 1);
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
        QCOMPARE(tracks->windowTitle(), QString("TracksListing"));
        QCOMPARE(tracks->Text(), "t1" + kCrLf + "t2");

        // Listing: its own text, empty on the add road.
        ChooseText(form->Combo1[0], "PC");
        QString shown;
        OnNextModal([&shown](frmTracksListing* dialog) {
            shown = dialog->windowTitle() + "|" + dialog->Text();
            QTest::keyClicks(dialog->Text1, "files");
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(shown, QString("Edit listing here...|"));

        // Back to tracks; Cancel restores this opening's text, Restore the text at load.
        ChooseText(form->Combo1[0], "Audio");
        QStringList seen;
        OnNextModal([&seen](frmTracksListing* dialog) {
            seen << dialog->windowTitle() + "|" + dialog->Text();
            QTest::keyClicks(dialog->Text1, "x");
            QTest::mouseClick(dialog->cmdCancel, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        seen << tracks->Text();
        OnNextModal([&seen](frmTracksListing* dialog) {
            QTest::mouseClick(dialog->cmdRestore, Qt::LeftButton);
            seen << dialog->Text();
            QVERIFY(dialog->isVisible());
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(seen, QStringList({"Edit tracks here...|t1" + kCrLf + "t2", "t1" + kCrLf + "t2",
                                    QString()}));

        ChooseText(form->Combo1[0], "PC");
        OnNextModal([&shown](frmTracksListing* dialog) {
            shown = dialog->Text();
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(shown, QString("files"));
        form->Unload();
    }

    void tracksEditorReadsTheStoredTitle() {
        const long id = StoreTitle(
            "'Three', 1, 1, 1, 1, 1, 1, 'x', 1, 50, '2001-02-03', '2001-02-03', 'm', null");
        for (const char* row : {"0, 'a'", "2, 'c'", "1, ' '"})
            gDatabase->Execute("insert into Tracks values (" + QString::number(id) + ", " +
                               QString(row) + ")");
        QPointer<frmEdit> form = OpenEditor(false, id);
        QString shown;
        OnNextModal([&shown](frmTracksListing* dialog) {
            shown = dialog->windowTitle() + "|" + dialog->Text();
            QTest::mouseClick(dialog->cmdCancel, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(shown, "Edit tracks here...|a" + kCrLf + " " + kCrLf + "c");
        form->Unload();

        const long pc = StoreTitle(
            "'Disk', 1, 4, 3, 10, 21, 1, 'x', 1, 50, '2001-02-03', '2001-02-03', 'm', char(0)");
        form = OpenEditor(false, pc);
        OnNextModal([&shown](frmTracksListing* dialog) {
            shown = dialog->windowTitle() + "|" + dialog->Text();
            QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
        QCOMPARE(shown, QString("Edit listing here...|"));
        form->Unload();
    }
};

VELMORA_TEST_MAIN(frmEditTest)
#include "frmEdit_test.moc"
