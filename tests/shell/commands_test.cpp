// The main window's commands, driven through the real button bar, menus, mouse and keys.

#include <csignal>

#include "app/mGlobals.h"
#include "disc/lookupserver.h"
#include "editor/frmEdit.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/terminationsignals.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"
#include "update/frmDownload.h"

namespace {

QString TitleName(int idcd) {
    return Scalar("select nmcd from title where idcd = " + QString::number(idcd)).toString();
}

struct MenuState {
    QStringList enabled;
    bool searchEnabled = false;
};

}  // namespace

class CommandsTest : public QObject {
    Q_OBJECT

  private:
    TempProgramFolder* folder_ = nullptr;
    ScriptedDialogs* dialogs_ = nullptr;

    frmMain* form() { return gMainForm; }

    QPoint NodePoint(QTreeWidgetItem* node) {
        form()->TV1->scrollToItem(node);
        return form()->TV1->visualItemRect(node).center();
    }

    QPoint ListRowPoint(int row) {
        QAbstractItemModel* model = form()->ListView1->model();
        return form()->ListView1->visualRect(model->index(row, 0)).center();
    }

    // A point of the viewport below the last row, where no node or item lies.
    static QPoint EmptySpot(QAbstractItemView* view) {
        return QPoint(4, view->viewport()->height() - 4);
    }

    void RightClick(QAbstractItemView* view, const QPoint& point) {
        QTest::mousePress(view->viewport(), Qt::RightButton, Qt::NoModifier, point);
        QTest::mouseRelease(view->viewport(), Qt::RightButton, Qt::NoModifier, point);
    }

    // Right-clicks in the tree and reports what the menu offered while it was up; when
    // choose is given, that item is then triggered as the user would pick it.
    MenuState RightClickTree(const QPoint& point, QAction* choose = nullptr) {
        MenuState state;
        form()->PopupMenuHook = [&](QMenu* menu) {
            QCOMPARE(menu, form()->mnuTreeviewContext);
            for (QAction* item :
                 {form()->mnuReadRecordsFromFolder, form()->mnuAddFolder, form()->mnuRenameFolder,
                  form()->mnuDeleteFolder, form()->mnuHideFolder})
                if (item->isEnabled()) state.enabled << item->objectName();
            state.searchEnabled = form()->mnuSearchCD2->isEnabled();
            if (choose) choose->trigger();
        };
        RightClick(form()->TV1, point);
        form()->PopupMenuHook = {};
        return state;
    }

    void SelectListRow(int row) {
        // A modal window closed just before may have left the main window inactive.
        form()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form()));
        QTest::mouseClick(form()->ListView1->viewport(), Qt::LeftButton, Qt::NoModifier,
                          ListRowPoint(row));
        form()->ListView1->setFocus();
        QCOMPARE(form()->SelectedListIndex(), row);
        QCOMPARE(form()->focusName, QString("listview"));
    }

    void PressKey(QWidget* down, QWidget* up, Qt::Key key) {
        QTest::keyPress(down, key);
        QTest::keyRelease(up, key);
    }

  private slots:
    void init() {
        folder_ = new TempProgramFolder();
        folder_->openCatalogue();
        // Two audio titles, the first with two tracks.
        gDatabase->Execute(
            "insert into title (idcd, nmcd, nrcds, idvendor, idplatform, idtype, idspecific, "
            "idmediatype) values (1, 'Blue Harbour', 1, 1, 1, 1, 1, 1), "
            "(2, 'Quiet Fields', 2, 1, 1, 2, 4, 1)");
        gDatabase->Execute(
            "insert into Tracks (idcd, TrackID, TrackName) values (1, 1, 'Dawn'), (1, 2, 'Dusk')");
        folder_->closeCatalogue();

        dialogs_ = new ScriptedDialogs();
        gSplashForm = new frmSplash();
        gMainForm = new frmMain();
        gMainForm->Form_Load();
        QVERIFY(gMainForm && !gMainForm->IsUnloaded());
        gSplashForm->Timer->stop();
        gMainForm->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(gMainForm));
    }

    void cleanup() {
        if (gMainForm) {
            gMainForm->SetMousePointer(vbArrow);
            gMainForm->Unload();
        }
        if (gSplashForm) gSplashForm->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        delete dialogs_;
        delete folder_;
    }

    void helpOpensThePageOrSaysWhereItIs() {
        const QString page = folder_->file("velmora.html");
        form()->Toolbar1_ButtonClick("help");
        QCOMPARE(dialogs_->takeBoxes(),
                 Boxes({{"The help page " + page + " is missing.", vbExclamation, "Velmora"}}));

        QVERIFY(QFile::copy(testsupport::HelpFolder() + "/velmora.html", page));
        QList<QUrl> opened;
        SetDocumentOpener([&opened](const QUrl& url) {
            opened << url;
            return true;
        });
        form()->Toolbar1_ButtonClick("help");
        QCOMPARE(opened, QList<QUrl>({QUrl::fromLocalFile(page)}));
        QVERIFY(dialogs_->msgBoxes.isEmpty());
        SetDocumentOpener({});
    }

    void toolbarCommandsWaitForTheArrow() {
        gAddingTitle = false;
        form()->SetMousePointer(vbHourglass);
        form()->ToolbarButton("addcd")->trigger();
        QVERIFY(!gAddingTitle);

        form()->SetMousePointer(vbArrow);
        gModifyingTitle = true;
        testsupport::RejectNextModal();
        form()->ToolbarButton("addcd")->trigger();
        QVERIFY(gAddingTitle);
        QVERIFY(!gModifyingTitle);

        // Modify needs a selected title in the list that has the focus; it gives the arrow
        // back when the editor closes.
        SelectListRow(0);
        testsupport::RejectNextModal();
        form()->ToolbarButton("modifycd")->trigger();
        QVERIFY(gModifyingTitle);
        QVERIFY(!gAddingTitle);
        QCOMPARE(form()->MousePointer(), int(vbArrow));

        // Quit under the hourglass waits for the arrow, then ends the program.
        QPointer<frmMain> window = form();
        window->SetMousePointer(vbHourglass);
        window->ToolbarButton("quit")->trigger();
        QTest::qWait(20);
        QVERIFY(!window->IsUnloaded());
        window->SetMousePointer(vbArrow);
        QTRY_VERIFY(window.isNull() || window->IsUnloaded());
        QVERIFY(!gMainForm);
    }

    // Quit, the close button and SIGTERM during the update's download are held until the
    // download has returned; the download's window is never freed twice.
    void endingDuringTheUpdateDownloadWaitsForIt() {
        lookupserver::LookupServer server;
        lookupserver::Reply stalled = lookupserver::Body(QByteArray(5000, 'u'));
        stalled.announced = 50000;
        stalled.stall = true;
        server.answer("/upd.sh", stalled);
        server.answer(
            "/software/updates/velmora.ini",
            lookupserver::Body("[LastRelease]\r\nLatestMajor=1\r\n[1Major]\r\nminor=9\r\n"
                               "revision=0\r\nURL=" +
                               server.url().toLatin1() + "/upd.sh\r\nfilename=upd.sh\r\n"));
        qputenv("VELMORA_UPDATE_SERVER", server.url().toLocal8Bit());
        const QTemporaryDir wine;
        qputenv("WINEPREFIX", wine.path().toLocal8Bit());
        QDir().mkpath(wine.filePath("drive_c/windows"));
        dialogs_->answerMsgBox(vbYes);
        dialogs_->defaultMsgBoxAnswer = vbOK;
        QPointer<frmMain> window = form();
        QPointer<frmDownload> download;
        bool downloading = false;
        QTimer::singleShot(400, [&] {
            download = window->findChild<frmDownload*>();
            downloading = download;
            window->ToolbarButton("quit")->trigger();
            window->close();
            ::raise(SIGTERM);
            QTimer::singleShot(300, [&] {
                QVERIFY(window && !window->IsUnloaded());
                if (download) download->CancelButton->click();
            });
        });
        TerminationSignals terminationSignals;
        window->ToolbarButton("update")->trigger();
        QVERIFY(downloading);
        QTRY_VERIFY(window.isNull() || window->IsUnloaded());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(window.isNull());
        qunsetenv("VELMORA_UPDATE_SERVER");
        qunsetenv("WINEPREFIX");
    }

    // The end with the title editor open closes the editor first, as Cancel, and then compacts
    // the catalogue: no window that uses the catalogue is left open while it is closed.
    void endClosesTheOpenEditorBeforeTheCatalogue() {
        gModifyingTitle = true;
        gCurrentTitleId = 1;
        gEditForm = new frmEdit(form());
        gEditForm->Form_Load();
        gEditForm->show();
        const QPointer<frmEdit> editor(gEditForm);
        bool editorOpenWhileCompacting = false;
        const int listener = AddProgressListener([&](const QString& operation, qint64, qint64) {
            if (operation == "Compacting byte") editorOpenWhileCompacting |= gEditForm != nullptr;
        });
        TerminationSignals terminationSignals;
        ::raise(SIGTERM);
        QTRY_VERIFY(!gMainForm);
        RemoveProgressListener(listener);
        QVERIFY(!editorOpenWhileCompacting);
        QCOMPARE(ReadBytes(folder_->file("data.gdb"), 15), QByteArray("SQLite format F"));
    }

    // The maintenance window closed with changes compacts the catalogue, which closes it: that
    // waits until other work, which may have the catalogue open, has returned. Input and an end
    // asked for while the catalogue is closed wait for the compaction; the end then guards it.
    void compactionWaitsForOtherWorkAndHoldsOffInputAndTheEnd() {
        std::unique_ptr<Recordset> titles =
            gDatabase->OpenRecordset("select * from title", dbOpenDynaset, dbReadOnly);
        const QPointer<frmMain> window = form();
        int reports = 0;
        bool endedWhileCompacting = false;
        bool treeMovedWhileCompacting = false;
        const int listener = AddProgressListener([&](const QString& operation, qint64, qint64) {
            if (operation != "Compacting byte" || reports++ > 0) return;
            const QTreeWidgetItem* selected = window->TV1->currentItem();
            QTest::keyClick(window->TV1, Qt::Key_Down);
            treeMovedWhileCompacting = window->TV1->currentItem() != selected;
            window->Unload();
            endedWhileCompacting = window->IsUnloaded();
        });
        {
            const BusyScope otherWork;
            testsupport::RejectNextModal([](QWidget*) { gTreeDirty = true; });
            form()->Toolbar1_ButtonClick("maintenance");
            QVERIFY(!titles->IsEOF());
            QCOMPARE(reports, 0);
        }
        QTRY_VERIFY(reports > 0);
        titles.reset();
        QTRY_VERIFY(window.isNull() || window->IsUnloaded());
        RemoveProgressListener(listener);
        QVERIFY(!treeMovedWhileCompacting);
        QVERIFY(!endedWhileCompacting);
        QCOMPARE(ReadBytes(folder_->file("data.gdb"), 15), QByteArray("SQLite format F"));
    }

    void treeContextMenuOffersWhatTheNodeAllows() {
        QTreeWidgetItem* selectedBefore = form()->SelectedNode();
        const QStringList folderItems = {"mnuReadRecordsFromFolder", "mnuAddFolder",
                                         "mnuRenameFolder", "mnuDeleteFolder", "mnuHideFolder"};

        MenuState platform = RightClickTree(NodePoint(NodeWithKey("key3")));
        QCOMPARE(platform.enabled, folderItems);
        QVERIFY(!platform.searchEnabled);
        // A right click on another node neither selects nor reads it.
        QCOMPARE(form()->SelectedNode(), selectedBefore);
        QCOMPARE(gSelectedKey, QString("key1"));
        QVERIFY(!form()->DropHighlight());

        MenuState search = RightClickTree(NodePoint(NodeWithKey("search")));
        QVERIFY(search.enabled.isEmpty());
        QVERIFY(!search.searchEnabled);

        // Beside the nodes the rules apply to the selected platform, and Search is offered.
        QVERIFY(!form()->TV1->itemAt(EmptySpot(form()->TV1)));
        MenuState beside = RightClickTree(EmptySpot(form()->TV1));
        QCOMPARE(beside.enabled, folderItems);
        QVERIFY(beside.searchEnabled);

        // Open reads the folder that was right-clicked.
        RightClickTree(NodePoint(NodeWithKey("key3")), form()->mnuReadRecordsFromFolder);
        QCOMPARE(form()->NodeKey(form()->SelectedNode()), QString("key3"));
        QCOMPARE(gSelectedKey, QString("key3"));
        QCOMPARE(gRequestedKey, QString("key3"));
        QCOMPARE(form()->ListItemCount(), 0);
        QCOMPARE(form()->lastTreeButton, 1);

        // Hide takes away the right-clicked platform, not the selected one, whose node and
        // index stay those of the folder read.
        QTreeWidgetItem* root = form()->Node(1);
        QTreeWidgetItem* console = root->child(1);
        QTreeWidgetItem* video = root->child(root->childCount() - 2);
        const QString consoleKey = form()->NodeKey(console);
        form()->SelectNode(video);
        gSelectedIndex = form()->NodeIndex(video);
        dialogs_->answerMsgBox(vbYes);
        RightClickTree(NodePoint(console), form()->mnuHideFolder);
        QVERIFY(!NodeWithKey(consoleKey));
        QCOMPARE(form()->SelectedNode(), video);
        QCOMPARE(form()->Node(gSelectedIndex), video);
        QCOMPARE(RowCount("platform where visible = 0 and nmplatform = 'Game console'"), 1L);
    }

    void listContextMenuOffersTitleItemsOnlyOnAnItem() {
        QStringList enabled;
        form()->PopupMenuHook = [&](QMenu* menu) {
            QCOMPARE(menu, form()->mnuListviewContext);
            for (QAction* item : menu->actions())
                if (!item->isSeparator() && item->isEnabled()) enabled << item->objectName();
        };
        SelectListRow(1);
        RightClick(form()->ListView1, ListRowPoint(0));
        QCOMPARE(enabled, QStringList({"mnuViewProperties", "mnuNewCD", "mnuRenameCD",
                                       "mnuDeleteCD", "mnuLendCD", "mnuSearchCD1",
                                       "mnuListviewMaintenance", "mnuFetchCovers"}));

        enabled.clear();
        SelectListRow(1);
        QVERIFY(!form()->ListView1->indexAt(EmptySpot(form()->ListView1)).isValid());
        RightClick(form()->ListView1, EmptySpot(form()->ListView1));
        QCOMPARE(enabled, QStringList({"mnuNewCD", "mnuSearchCD1", "mnuListviewMaintenance",
                                       "mnuFetchCovers"}));
        QCOMPARE(form()->SelectedListIndex(), -1);
        form()->PopupMenuHook = {};

        // Nothing selected: the title commands have nothing to act on.
        form()->mnuDeleteCD->trigger();
        form()->mnuRenameCD->trigger();
        QVERIFY(dialogs_->msgBoxes.isEmpty());
        QVERIFY(dialogs_->inputs.isEmpty());
    }

    void deleteKeyInListAsksAndDeletesTheTitleWithItsTracks() {
        const QString countBefore = form()->PanelText(2);
        const int row = form()->ListIndexOfKey("id1");
        SelectListRow(row);

        const MsgBoxCall confirm{"Are you sure you want to delete Blue Harbour?",
                                 vbYesNoCancel + vbQuestion, "Confirm CD delete"};
        for (int answer : {vbNo, vbYes}) {
            dialogs_->answerMsgBox(answer);
            PressKey(form()->ListView1, form()->ListView1, Qt::Key_Delete);
            QCOMPARE(dialogs_->takeBoxes(), Boxes({confirm}));
            QCOMPARE(form()->ListItemCount(), answer == vbNo ? 2 : 1);
            QCOMPARE(RowCount("title"), answer == vbNo ? 2L : 1L);
        }
        QCOMPARE(form()->ListIndexOfKey("id1"), -1);
        QCOMPARE(gCurrentTitleId, 1L);
        QCOMPARE(RowCount("title where idcd = 1") + RowCount("Tracks where idcd = 1"), 0L);
        QCOMPARE(form()->PanelText(2), countBefore);

        // A catalogue that refuses the delete keeps the title and its row.
        gDatabase->Execute(
            "create trigger kept before delete on title begin select raise(abort, 'kept'); end");
        SelectListRow(form()->ListIndexOfKey("id2"));
        dialogs_->answerMsgBox(vbYes);
        PressKey(form()->ListView1, form()->ListView1, Qt::Key_Delete);
        gDatabase->Execute("drop trigger kept");
        QCOMPARE(
            dialogs_->takeBoxes(),
            Boxes({{"Are you sure you want to delete Quiet Fields?", vbYesNoCancel + vbQuestion,
                    "Confirm CD delete"},
                   {"Error occured when trying to delete Quiet Fields", vbCritical, "Velmora"}}));
        QCOMPARE(form()->ListItemCount(), 1);
        QCOMPARE(RowCount("title where idcd = 2"), 1L);
    }

    void renameTitleCancelAndCutToTheColumn() {
        const int row = form()->ListIndexOfKey("id2");
        SelectListRow(row);
        QCOMPARE(gCurrentTitleId, 2L);

        dialogs_->answerInput(QString());
        PressKey(form()->ListView1, form()->ListView1, Qt::Key_F2);
        QCOMPARE(dialogs_->inputs.size(), 1);
        QCOMPARE(TitleName(2), QString("Quiet Fields"));

        const QString longName = QString(160, 'x') + "yz";
        dialogs_->answerInput("  " + longName + "  ");
        form()->mnuRenameCD->trigger();
        QCOMPARE(TitleName(2), longName.left(150));
        QCOMPARE(form()->ListItemText(form()->ListIndexOfKey("id2")), longName.left(150));
        QCOMPARE(TitleName(1), QString("Blue Harbour"));
        QVERIFY(dialogs_->msgBoxes.isEmpty());

        // The title left the catalogue while its row was still listed.
        gDatabase->Execute("delete from title where idcd = 2");
        dialogs_->answerInput("Late");
        form()->mnuRenameCD->trigger();
        QCOMPARE(dialogs_->takeBoxes(),
                 Boxes({{"Error renaming CD-title to Late", vbOKOnly, "Velmora"}}));
    }

    // The list's menu is for the row under the pointer, also when the button comes up while
    // the press is still being handled.
    void rightClickSelectsTheRowUnderThePointer() {
        SelectListRow(0);
        const int other = 1;
        QWidget* viewport = form()->ListView1->viewport();
        const QPoint point = ListRowPoint(other);
        int rowWhileMenuUp = -1;
        long titleWhileMenuUp = 0;
        form()->PopupMenuHook = [&](QMenu*) {
            rowWhileMenuUp = form()->SelectedListIndex();
            titleWhileMenuUp = gCurrentTitleId;
        };
        QCoreApplication::postEvent(
            viewport,
            new QMouseEvent(QEvent::MouseButtonRelease, point, viewport->mapToGlobal(point),
                            Qt::RightButton, Qt::NoButton, Qt::NoModifier));
        QTest::mousePress(viewport, Qt::RightButton, Qt::NoModifier, point);
        QCoreApplication::processEvents();
        form()->PopupMenuHook = {};
        QCOMPARE(rowWhileMenuUp, other);
        QCOMPARE(titleWhileMenuUp, form()->ListItemTag(other).toLong());
    }

    void keyUpCountsOnlyAfterKeyDownInTheSameControl() {
        SelectListRow(form()->ListIndexOfKey("id1"));
        // Down in the tree, up in the list: the list saw no key-down.
        PressKey(form()->TV1, form()->ListView1, Qt::Key_Delete);
        QVERIFY(dialogs_->msgBoxes.isEmpty());

        // A whole key in the tree clears its flag; then down in the list and up in the tree.
        PressKey(form()->TV1, form()->TV1, Qt::Key_Control);
        PressKey(form()->ListView1, form()->TV1, Qt::Key_Delete);
        QVERIFY(dialogs_->msgBoxes.isEmpty());
        QCOMPARE(RowCount("title"), 2L);

        // A key-down in a box, let go over the tree or the list, is no command there.
        testsupport::PressKeyInAnotherWindow(Qt::Key_Delete);
        QTest::keyRelease(form()->TV1, Qt::Key_Delete);
        testsupport::PressKeyInAnotherWindow(Qt::Key_Delete);
        QTest::keyRelease(form()->ListView1, Qt::Key_Delete);
        QVERIFY(dialogs_->msgBoxes.isEmpty());

        // Insert in the tree on a platform adds a type under it.
        dialogs_->answerInput(QString());
        PressKey(form()->TV1, form()->TV1, Qt::Key_Insert);
        QCOMPARE(dialogs_->inputs.size(), 1);
        QCOMPARE(dialogs_->inputs[0].title, QString("Add type"));
    }
};

VELMORA_TEST_MAIN(CommandsTest)
#include "commands_test.moc"
