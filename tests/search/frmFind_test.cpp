// The search window driven as the user drives it, over a small catalogue: the statement it
// builds and the titles the search node then lists.

#include "search/frmFind.h"
#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString& kBase = kTitleJoin;
const QString kDefaultRanges =
    " and title.rating >= 0 and title.rating <= 100 and title.nrcds >= 0 and title.nrcds <= 12";

// Audio titles (platform 1) with tracks, PC titles (platform 3), one of them with a track too,
// so that the platform condition of a track search is what keeps it out.
void AddTitles() {
    const QStringList rows{
        "1, 'Blue Album', 1, 1, 1, 1, 2, 50",    "2, 'Rock Night', 2, 1, 2, 4, 4, 80",
        "3, 'Space Quest', 4, 3, 10, 21, 1, 90", "4, 'Office Tools', 5, 3, 11, 25, 1, 10",
        "5, 'Shock Wave', 4, 3, 10, 22, 3, 30",
    };
    for (const QString& row : rows)
        gDatabase->Execute(
            "insert into title (idcd, nmcd, idvendor, idplatform, idtype, idspecific, "
            "idmediatype, rating, nrcds) values (" +
            row + ", 1)");
    gDatabase->Execute("update title set nrcds = 3 where idcd = 3");
    gDatabase->Execute("update title set label = 'SQDISC1' where idcd = 3");
    const QStringList tracks{"1, 1, 'Morning Star'", "1, 2, 'Evening Song'", "2, 1, 'Star Power'",
                             "4, 1, 'Star'"};
    for (const QString& track : tracks)
        gDatabase->Execute("insert into Tracks (idcd, TrackID, TrackName) values (" + track + ")");
}

const MsgBoxCall kSearchAll{
    "You selected to search one category, but you have more than one in your view.\rDo you want "
    "to search all categories instead?",
    vbYesNoCancel + vbQuestion, "Confirm"};
const MsgBoxCall kSearchNodeRefused{
    "You selected to search the search-category, which is not possible. Please select to search "
    "all categories or select a different category in the main window.",
    vbCritical, "Unable to search the search-category"};

QStringList ListedTitles() {
    QStringList titles;
    for (int row = 0; row < gMainForm->ListItemCount(); ++row)
        titles << gMainForm->ListItemText(row);
    titles.sort();
    return titles;
}

frmFind* OpenFindWindow() {
    ShowFindWindow(gMainForm);
    frmFind* form = gFindForm;
    if (form) (void)QTest::qWaitForWindowActive(form);
    // The activation handler runs once the activation has been told to every window.
    QCoreApplication::sendPostedEvents(form, QEvent::MetaCall);
    return form;
}

// The window gets the focus back from the main window. The offscreen platform shares the
// activation of a window with its owner, so the event is delivered as the system would.
void ComeBackTo(frmFind* form) {
    QEvent deactivate(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(form, &deactivate);
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(form, &activate);
    QCoreApplication::sendPostedEvents(form, QEvent::MetaCall);
}

void Search(frmFind* form) {
    QTest::mouseClick(form->cmdSearch, Qt::LeftButton);
}

void TypeInto(QLineEdit* box, const QString& text) {
    box->clear();
    QTest::keyClicks(box, text);
}

}  // namespace

class FindTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        QVERIFY(folder_->startProgramWith(AddTitles));
    }

    void cleanup() {
        EndProgram();
        folder_.reset();
    }

    void trackSearchKeepsToTheAudioPlatform() {
        ScriptedDialogs dialogs;
        ClickTreeNode("key3");
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        TypeInto(form->Text1[7], "Star");
        form->Option1[1]->setChecked(true);
        Search(form);
        QVERIFY(
            gSearchSQL.contains(" and platform.idplatform = 3 and "
                                "title.idplatform = 1 and title.idcd in (select idcd from "
                                "tracks where TrackName like '*Star*')"));
        QCOMPARE(gMainForm->NodeKey(gMainForm->SelectedNode()), QString("search"));
        QCOMPARE(ListedTitles(), QStringList());

        form->Option1[2]->setChecked(true);
        Search(form);
        QCOMPARE(ListedTitles(), QStringList({"Blue Album", "Rock Night"}));
    }

    void wildcardsReachTheStoreAsJetsLike() {
        ScriptedDialogs dialogs;
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        form->Option1[2]->setChecked(true);
        const QList<QPair<QString, QStringList>> cases{
            {"S*Quest", {"Space Quest"}},
            {"?ock", {"Rock Night", "Shock Wave"}},
            {"[!R]ock", {"Shock Wave"}},
        };
        for (const auto& [pattern, expected] : cases) {
            TypeInto(form->Text1[0], pattern);
            Search(form);
            QCOMPARE(gSearchSQL,
                     kBase + " and title.nmcd like '*" + pattern + "*'" + kDefaultRanges);
            QCOMPARE(ListedTitles(), expected);
        }

        TypeInto(form->Text1[0], "");
        TypeInto(form->Text1[2], "DISC?");
        TypeInto(form->Text1[1], " ");
        Search(form);
        QCOMPARE(gSearchSQL, kBase + " and vendor.nmvendor like '* *' and label like '*DISC?*'" +
                                 kDefaultRanges);
        QCOMPARE(ListedTitles(), QStringList({"Space Quest"}));
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void barcodeBoxFindsTitlesByTheirBarcode() {
        ScriptedDialogs dialogs;
        gDatabase->Execute("insert into titlerelease (idcd, barcode) values (3, '036000291452')");
        gDatabase->Execute("insert into titlerelease (idcd, barcode) values (1, '5012345678900')");
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        form->Option1[2]->setChecked(true);
        TypeInto(form->txtBarcode, "0360*145");
        QTest::keyClick(form->txtBarcode, Qt::Key_Return);
        QCOMPARE(gSearchSQL, kBase +
                                 " and title.idcd in (select idcd from titlerelease where barcode "
                                 "like '*0360*145*')" +
                                 kDefaultRanges);
        QCOMPARE(ListedTitles(), QStringList({"Space Quest"}));
    }

    void scopeFollowsTheSelectedNode() {
        ScriptedDialogs dialogs;
        ClickTreeNode("key3key10");
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        form->Option1[0]->setChecked(true);
        Search(form);
        QCOMPARE(gSearchSQL,
                 kBase + " and platform.idplatform = 3 and title.idtype = 10" + kDefaultRanges);
        QCOMPARE(ListedTitles(), QStringList({"Shock Wave", "Space Quest"}));

        ClickTreeNode("key3key10");
        form->Option1[1]->setChecked(true);
        Search(form);
        QCOMPARE(gSearchSQL, kBase + " and platform.idplatform = 3" + kDefaultRanges);

        ClickTreeNode("key1");
        form->Option1[0]->setChecked(true);
        Search(form);
        QCOMPARE(gSearchSQL, kBase + " and platform.idplatform = 1" + kDefaultRanges);

        ClickTreeNode("root");
        form->Option1[1]->setChecked(true);
        const QString before = gSearchSQL;
        dialogs.answerMsgBox(vbNo);
        Search(form);
        QCOMPARE(dialogs.takeBoxes(), Boxes({kSearchAll}));
        QCOMPARE(gSearchSQL, before);
        dialogs.answerMsgBox(vbYes);
        Search(form);
        QCOMPARE(dialogs.takeBoxes(), Boxes({kSearchAll}));
        QCOMPARE(gSearchSQL, kBase + kDefaultRanges);
        QCOMPARE(ListedTitles().size(), 5);

        // The search node now shows the result; searching it again is refused.
        for (int option : {0, 1}) {
            form->Option1[option]->setEnabled(true);
            form->Option1[option]->setChecked(true);
            Search(form);
            QCOMPARE(dialogs.takeBoxes(), Boxes({kSearchNodeRefused}));
        }
        QCOMPARE(gSearchSQL, kBase + kDefaultRanges);
    }

    void activationRefreshesTheFormFromTheMainWindow() {
        ScriptedDialogs dialogs;
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        QCOMPARE(form->cmbMediatype->count(), 6);

        QTest::keyClicks(form->cmbMediatype, "DVD");
        gDatabase->Execute("insert into mediatype (nmmediatype, iddevicetype) values ('BD-R', 1)");
        ComeBackTo(form);
        QCOMPARE(form->cmbMediatype->count(), 7);
        QCOMPARE(form->cmbMediatype->currentText(), QString("DVD"));

        form->Option1[2]->setChecked(true);
        Search(form);
        QCOMPARE(gSearchSQL, kBase + " and nmmediatype like '*DVD*'" + kDefaultRanges);
        QCOMPARE(ListedTitles(), QStringList({"Rock Night"}));

        // With the search node selected only the whole catalogue can be searched, until another
        // node is chosen.
        form->Option1[0]->setChecked(true);
        ComeBackTo(form);
        QVERIFY(form->Option1[2]->isChecked());
        QVERIFY(!form->Option1[0]->isEnabled() && !form->Option1[1]->isEnabled());
        ClickTreeNode("key1");
        ComeBackTo(form);
        QVERIFY(form->Option1[0]->isEnabled() && form->Option1[1]->isEnabled());
        QVERIFY(form->Option1[2]->isChecked());
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    // A window closed before its activation handler ran is on its way out: the handler, which
    // lets events through, would let its deletion through too and go on with a freed window. It
    // does nothing, and the next search opens a new window.
    void closedWindowIsNotActivatedAgain() {
        ScriptedDialogs dialogs;
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        const QPointer<frmFind> closed(form);
        QEvent activate(QEvent::WindowActivate);
        QCoreApplication::sendEvent(form, &activate);
        form->close();
        QVERIFY(!gFindForm);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(closed.isNull());

        frmFind* next = OpenFindWindow();
        QVERIFY(next && next->isVisible());
        QCOMPARE(next->cmbMediatype->count(), 6);
    }

    void keysSearchAndClose() {
        ScriptedDialogs dialogs;
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        form->Option1[2]->setChecked(true);
        TypeInto(form->Text1[0], "Quest");
        QTest::keyClick(form->Text1[0], Qt::Key_Return);
        QCOMPARE(ListedTitles(), QStringList({"Space Quest"}));

        // A key-up whose key-down went elsewhere does nothing.
        TypeInto(form->Text1[0], "Rock");
        QTest::keyRelease(form->Text1[1], Qt::Key_Return);
        QCOMPARE(ListedTitles(), QStringList({"Space Quest"}));

        QTest::keyClick(form->ComboTwo[0], Qt::Key_Enter);
        QCOMPARE(ListedTitles(), QStringList({"Rock Night"}));

        const QPointer<frmFind> guard(form);
        QTest::keyClick(form->Text1[3], Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(guard.isNull());
        QVERIFY(!gFindForm);
    }

    // A key let go after the window's own box took its key-down does nothing, and getting the
    // focus back from that box is no activation.
    void boxesKeepTheirKeysAndTheFocus() {
        ScriptedDialogs dialogs;
        frmFind* form = OpenFindWindow();
        QVERIFY(form);
        const QPointer<frmFind> guard(form);
        Qt::Key keyInBox = Qt::Key_Escape;
        SetMsgBoxResponder([&](const MsgBoxCall& call) {
            dialogs.msgBoxes << call;
            QEvent deactivate(QEvent::WindowDeactivate);
            QCoreApplication::sendEvent(form, &deactivate);
            testsupport::PressKeyInAnotherWindow(keyInBox);
            return vbCancel;
        });

        // Escape on the "Confirm" box.
        ClickTreeNode("root");
        ComeBackTo(form);
        form->Option1[1]->setChecked(true);
        TypeInto(form->Text1[3], "Games");
        form->Text1[3]->setFocus();
        QTest::keyClick(form->Text1[3], Qt::Key_Return);
        QCOMPARE(dialogs.msgBoxes, Boxes({kSearchAll}));
        QEvent activate(QEvent::WindowActivate);
        QCoreApplication::sendEvent(form, &activate);
        QCoreApplication::sendPostedEvents(form, QEvent::MetaCall);
        QVERIFY(form->Text1[3]->hasFocus());
        QTest::keyRelease(form->Text1[3], Qt::Key_Escape);
        QVERIFY(guard && form->isVisible());

        // Enter on the "search-category" box.
        form->Option1[2]->setChecked(true);
        QTest::keyClick(form->Text1[3], Qt::Key_Return);
        QCOMPARE(gMainForm->NodeKey(gMainForm->SelectedNode()), QString("search"));
        form->Option1[0]->setEnabled(true);
        form->Option1[0]->setChecked(true);
        keyInBox = Qt::Key_Return;
        QTest::keyClick(form->Text1[3], Qt::Key_Return);
        QCOMPARE(dialogs.msgBoxes, Boxes({kSearchAll, kSearchNodeRefused}));
        QTest::keyRelease(form->Text1[3], Qt::Key_Return);
        QCOMPARE(dialogs.msgBoxes.size(), 2);
        QVERIFY(guard && form->isVisible());
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(FindTest)
#include "frmFind_test.moc"
