// Lending and taking back as a user does it: the list's context menu, the lend window, the
// "Lent out" folder with its overdue rows, and the count in the status bar.

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>

#include "app/mGlobals.h"
#include "editor/editortest.h"
#include "loans/borrowerspanel.h"
#include "loans/frmLend.h"
#include "loans/lentoutfolder.h"
#include "loans/loanhistorypanel.h"
#include "loans/loanstore.h"
#include "lookups/frmDatabase.h"
#include "search/frmFind.h"
#include "shell/frmMain.h"
#include "shell/listtree_support.h"
#include "shell/mGlobalFunctions.h"
#include "shell/titlelistmodel.h"
#include "store/catalogue.h"

namespace {

frmMain* form() {
    return gMainForm;
}

QPoint RowPoint(int row) {
    return form()->ListView1->visualRect(form()->ListModel()->index(row, 0)).center();
}

void SelectRows(const QList<int>& rows) {
    form()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(form()));
    QTest::mouseClick(form()->ListView1->viewport(), Qt::LeftButton, Qt::NoModifier,
                      RowPoint(rows.first()));
    for (const int row : rows.mid(1))
        QTest::mouseClick(form()->ListView1->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          RowPoint(row));
    QCOMPARE(form()->SelectedListRows(), rows);
}

// Right-clicks row and reports which loan items the menu offered; picks choose when given.
QStringList RightClickRow(int row, QAction* choose = nullptr) {
    QStringList offered;
    form()->PopupMenuHook = [&](QMenu*) {
        for (QAction* item : {form()->mnuLendCD, form()->mnuReturnedCD})
            if (item->isEnabled()) offered << item->objectName();
        if (choose) choose->trigger();
    };
    QTest::mousePress(form()->ListView1->viewport(), Qt::RightButton, {}, RowPoint(row));
    QTest::mouseRelease(form()->ListView1->viewport(), Qt::RightButton, {}, RowPoint(row));
    form()->PopupMenuHook = {};
    return offered;
}

// Runs work on the lend window that the next command opens.
void OnLendWindow(std::function<void(frmLend*)> work) {
    editortest::OnModal<frmLend>(std::move(work));
}

// The pixels of exactly colour inside rect of the list's drawing.
int PixelsOf(const QImage& image, const QRect& rect, const QColor& colour) {
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            if (image.pixelColor(x, y) == colour) ++count;
    return count;
}

}  // namespace

class LendingTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        dialogs_ = std::make_unique<ScriptedDialogs>();
        QVERIFY(folder_->startProgramWith([] {
            for (const char* name : {"Alpha", "Bravo", "Charlie", "Delta"})
                AddTitle(*gDatabase, name);
        }));
        QVERIFY(QTest::qWaitForWindowExposed(form()));
        QCOMPARE(form()->ListItemCount(), 4);
    }

    void cleanup() {
        EndProgram();
        dialogs_.reset();
        folder_.reset();
    }

    void lendSeveralThenSeeThemOutAndTakeThemBack() {
        const QDate today = QDate::currentDate();
        QVERIFY(!NodeWithKey(loans::kLentOutKey));
        QCOMPARE(form()->PanelText(1), QString());

        SelectRows({0, 2});
        OnLendWindow([today](frmLend* window) {
            QCOMPARE(window->lblTitles->text(), QString("Alpha\nCharlie"));
            window->cboBorrower->setEditText("Anna");
            window->dtpLent->setDate(today.addDays(-40));
            window->chkDue->setChecked(true);
            window->dtpDue->setDate(today.addDays(-10));
            window->txtNote->setText("birthday party");
            QTest::mouseClick(window->cmdOK, Qt::LeftButton);
        });
        QCOMPARE(RightClickRow(0, form()->mnuLendCD), QStringList({"mnuLendCD"}));
        QCOMPARE(RowCount("loan where returned is null and note = 'birthday party'"), 2L);
        QCOMPARE(form()->PanelText(1), QString("2 discs lent out, 2 overdue"));

        // One more, not overdue; a selection of in and out titles offers both commands.
        SelectRows({1});
        OnLendWindow([today](frmLend* window) {
            // The window proposes the known borrowers and the period of its last loan.
            QCOMPARE(window->cboBorrower->itemText(0), QString("Anna"));
            QCOMPARE(window->dtpDue->date(), today.addDays(30));
            window->cboBorrower->setEditText("Bert");
            QTest::mouseClick(window->cmdOK, Qt::LeftButton);
        });
        RightClickRow(1, form()->mnuLendCD);
        SelectRows({0, 3});
        QCOMPARE(RightClickRow(3), QStringList({"mnuLendCD", "mnuReturnedCD"}));
        QCOMPARE(form()->PanelText(1), QString("3 discs lent out, 2 overdue"));

        // The folder: before "search results", rows by due date, who and until when.
        QTreeWidgetItem* lentOut = NodeWithKey(loans::kLentOutKey);
        QVERIFY(lentOut && lentOut->parent() == form()->Node(1));
        QCOMPARE(form()->NodeKey(form()->Node(form()->NodeCount())), QString("search"));
        listtree::ClickNode(NodeWithKey(loans::kLentOutKey));
        TitleListModel* model = form()->ListModel();
        QCOMPARE(form()->ListItemCount(), 3);
        const QString overdue = loans::DateText(today.addDays(-10)) + " (overdue)";
        QCOMPARE(form()->ListItemText(0) + ";" + form()->ListItemSubItems(0)[2] + ";" +
                     form()->ListItemSubItems(0)[3] + ";" + form()->ListItemText(1) + ";" +
                     form()->ListItemText(2) + ";" + form()->ListItemSubItems(2)[3],
                 "Alpha;Anna;" + overdue + ";Charlie;Bravo;" + loans::DateText(today.addDays(30)));

        // Overdue rows read in red on the list and stand on red when selected; the others
        // keep the list's colours.
        const QPalette palette = form()->ListView1->palette();
        const QColor textRed = loans::OverdueColour(palette.color(QPalette::Base));
        const QColor selectedRed = loans::OverdueColour(palette.color(QPalette::HighlightedText));
        form()->SelectListIndex(0);
        const QImage drawn = form()->ListView1->viewport()->grab().toImage();
        auto rowRect = [&](int row) {
            return form()
                ->ListView1->visualRect(model->index(row, 0))
                .united(form()->ListView1->visualRect(model->index(row, 5)));
        };
        QVERIFY(PixelsOf(drawn, rowRect(0), selectedRed) > rowRect(0).width() * 4);
        QVERIFY(PixelsOf(drawn, rowRect(1), textRed) > 10);
        QCOMPARE(PixelsOf(drawn, rowRect(2), textRed), 0);

        // Going back to a platform gives the design's headers and sorting again.
        listtree::ClickNode(NodeWithKey("key1"));
        QCOMPARE(model->headerData(3, Qt::Horizontal).toString(), QString("Kind"));
        QVERIFY(model->Sorted());

        // Taking back from the folder: the day asked, the rows go.
        listtree::ClickNode(NodeWithKey(loans::kLentOutKey));
        SelectRows({0, 1});
        dialogs_->answerInput("yesterday");
        dialogs_->answerMsgBox(vbOK);
        dialogs_->answerInput(loans::DateText(today));
        QCOMPARE(RightClickRow(0, form()->mnuReturnedCD), QStringList({"mnuReturnedCD"}));
        QCOMPARE(dialogs_->inputs.first().defaultText, loans::DateText(today));
        QCOMPARE(dialogs_->msgBoxes.size(), 1);
        QCOMPARE(form()->ListItemCount(), 1);
        QCOMPARE(form()->ListItemText(0), QString("Bravo"));
        QCOMPARE(form()->PanelText(1), QString("1 disc lent out"));

        // The last one back: the folder goes and the list shows a folder of the catalogue.
        dialogs_->answerInput(loans::DateText(today));
        RightClickRow(0, form()->mnuReturnedCD);
        QVERIFY(!NodeWithKey(loans::kLentOutKey));
        QVERIFY(gSelectedKey != loans::kLentOutKey);
        QCOMPARE(RowCount("loan where returned is null"), 0L);
    }

    void lendWindowRefusesWhatTheCatalogueWouldNot() {
        SelectRows({0, 1});
        // Lent meanwhile (another window): the catalogue refuses the whole run.
        loans::LendTitles(*gDatabase, {form()->ListItemTag(1).toLong()},
                          {"Carl", QDate::currentDate(), {}, {}});
        OnLendWindow([](frmLend* window) {
            QTest::mouseClick(window->cmdOK, Qt::LeftButton);
            QVERIFY(window->isVisible());
            window->cboBorrower->setEditText("Dora");
            window->chkDue->setChecked(true);
            window->dtpDue->setDate(window->dtpLent->date().addDays(-1));
            QTest::mouseClick(window->cmdOK, Qt::LeftButton);
            QVERIFY(window->isVisible());
            QTest::mouseClick(window->cmdCancel, Qt::LeftButton);
        });
        // The menu offers only the title that is in.
        form()->mnuLendCD->trigger();
        QCOMPARE(dialogs_->prompts(),
                 QStringList({"Please enter the name of the borrower.",
                              "The due date cannot lie before the day the title is lent."}));
        QCOMPARE(RowCount("loan"), 1L);
        QCOMPARE(RowCount("borrower where nmborrower = 'Dora'"), 0L);

        OnLendWindow([](frmLend* window) {
            // Between opening and OK the title went out: nothing is written, the window stays.
            loans::LendTitles(*gDatabase, {form()->ListItemTag(0).toLong()},
                              {"Carl", QDate::currentDate(), {}, {}});
            window->cboBorrower->setEditText("Dora");
            QTest::mouseClick(window->cmdOK, Qt::LeftButton);
            QVERIFY(window->isVisible());
            QTest::mouseClick(window->cmdCancel, Qt::LeftButton);
        });
        dialogs_->msgBoxes.clear();
        form()->mnuLendCD->trigger();
        QCOMPARE(dialogs_->msgBoxes.size(), 1);
        QCOMPARE(dialogs_->msgBoxes.first().title, QString("Unable to lend"));
        QCOMPARE(RowCount("borrower where nmborrower = 'Dora'"), 0L);

        // Deleting a lent title through the list takes its loans along.
        form()->LoansChanged();
        listtree::ClickNode(NodeWithKey(loans::kLentOutKey));
        QCOMPARE(form()->ListItemCount(), 2);
        SelectRows({0});
        dialogs_->answerMsgBox(vbYes);
        form()->mnuDeleteCD->trigger();
        QCOMPARE(RowCount("loan"), 1L);
        QCOMPARE(RowCount("title"), 3L);
        QCOMPARE(form()->PanelText(1), QString("1 disc lent out"));
        SelectRows({0});
        dialogs_->answerMsgBox(vbYes);
        form()->mnuDeleteCD->trigger();
        QVERIFY(!NodeWithKey(loans::kLentOutKey));
    }

    void editorShowsTheHistoryAndLendsAndTakesBack() {
        const QDate today = QDate::currentDate();
        const long alpha = form()->ListItemTag(0).toLong();
        loans::LendTitles(*gDatabase, {alpha}, {"Anna", today.addDays(-9), today, "first"});
        loans::ReturnTitles(*gDatabase, {alpha}, today.addDays(-2));

        gAddingTitle = false;
        gModifyingTitle = true;
        gCurrentTitleId = alpha;
        auto* editor = new frmEdit(gMainForm);
        editor->Form_Load();
        editor->show();
        LoanHistoryPanel* panel = editor->fraLoans;
        QCOMPARE(panel->lstLoans->topLevelItemCount(), 1);
        QVERIFY(panel->cmdLend->isEnabled() && !panel->cmdReturned->isEnabled());

        OnLendWindow([](frmLend* window) {
            QCOMPARE(window->lblTitles->text(), QString("Alpha"));
            window->cboBorrower->setEditText("Bert");
            window->chkDue->setChecked(false);
            QTest::mouseClick(window->cmdOK, Qt::LeftButton);
        });
        QTest::mouseClick(panel->cmdLend, Qt::LeftButton);
        QCOMPARE(panel->lstLoans->topLevelItemCount(), 2);
        const QTreeWidgetItem* oldest = panel->lstLoans->topLevelItem(1);
        QCOMPARE(QStringList({oldest->text(0), oldest->text(2), oldest->text(3), oldest->text(4)}),
                 QStringList({"Anna", loans::DateText(today), loans::DateText(today.addDays(-2)),
                              "first"}));
        QVERIFY(!panel->cmdLend->isEnabled() && panel->cmdReturned->isEnabled());
        // The main window follows at once: the folder and the count.
        QVERIFY(NodeWithKey(loans::kLentOutKey));
        QCOMPARE(form()->PanelText(1), QString("1 disc lent out"));

        dialogs_->answerInput(loans::DateText(today));
        QTest::mouseClick(panel->cmdReturned, Qt::LeftButton);
        QCOMPARE(panel->lstLoans->topLevelItem(0)->text(3), loans::DateText(today));
        QVERIFY(!NodeWithKey(loans::kLentOutKey));
        editor->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

        // A title not yet stored cannot be lent.
        gAddingTitle = true;
        gModifyingTitle = false;
        editor = new frmEdit(gMainForm);
        editor->Form_Load();
        QVERIFY(!editor->fraLoans->cmdLend->isEnabled());
        QCOMPARE(editor->fraLoans->lstLoans->topLevelItemCount(), 0);
        editor->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void maintenanceWindowKeepsTheBorrowers() {
        loans::LendTitles(*gDatabase, {form()->ListItemTag(0).toLong()},
                          {"Anna", QDate::currentDate(), {}, {}});
        auto* window = new frmDatabase(gMainForm);
        window->Form_Load();
        window->show();
        BorrowersPanel* panel = window->fraBorrowers;
        QCOMPARE(panel->lstBorrower->count(), 1);

        // Anna has a loan and stays, with the reason; Zoë has none and goes.
        dialogs_->answerInput("Zoe");
        QTest::keyClick(panel->lstBorrower, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(panel->lstBorrower->currentItem()->text(), QString("Zoe"));
        dialogs_->answerInput("Zoë");
        QTest::keyClick(panel->lstBorrower, Qt::Key_F2);
        QCOMPARE(panel->lstBorrower->currentItem()->text(), QString("Zoë"));
        panel->lstBorrower->setCurrentRow(0);
        dialogs_->answerMsgBox(vbYes);
        dialogs_->answerMsgBox(vbOK);
        QTest::keyClick(panel->lstBorrower, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(dialogs_->msgBoxes.last().title, QString("Unable to delete borrower"));
        QCOMPARE(RowCount("borrower"), 2L);
        panel->lstBorrower->setCurrentRow(1);
        dialogs_->answerMsgBox(vbYes);
        QTest::keyClick(panel->lstBorrower, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(RowCount("borrower"), 1L);
        QCOMPARE(panel->lstBorrower->count(), 1);

        gListDirty = false;
        gTreeDirty = false;
        window->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void searchFindsTitlesByBorrowerAndOverdue() {
        const QDate today = QDate::currentDate();
        auto id = [](int row) { return form()->ListItemTag(row).toLong(); };
        loans::LendTitles(*gDatabase, {id(0)},
                          {"Anna O'Hara", today.addDays(-5), today.addDays(-1), {}});
        loans::LendTitles(*gDatabase, {id(1)}, {"Annabel", today, today.addDays(5), {}});
        loans::LendTitles(*gDatabase, {id(2)}, {"Bert", today.addDays(-9), today.addDays(-3), {}});
        loans::ReturnTitles(*gDatabase, {id(2)}, today);
        loans::LendTitles(*gDatabase, {id(2)}, {"Carl", today, {}, {}});
        form()->LoansChanged();

        ShowFindWindow(gMainForm);
        QVERIFY(gFindForm);
        auto found = [] {
            gFindForm->cmdSearch_Click();
            QStringList names;
            for (int row = 0; row < form()->ListItemCount(); ++row)
                names << form()->ListItemText(row);
            return names;
        };
        gFindForm->Option1[2]->setChecked(true);
        gFindForm->txtLentTo->setText("ann");
        QCOMPARE(found(), QStringList({"Alpha", "Bravo"}));
        gFindForm->txtLentTo->setText("O'H");
        QCOMPARE(found(), QStringList({"Alpha"}));
        // Returned loans are history, not "lent to".
        gFindForm->txtLentTo->setText("bert");
        QCOMPARE(found(), QStringList());
        gFindForm->txtLentTo->clear();
        gFindForm->chkOverdue->setChecked(true);
        QCOMPARE(found(), QStringList({"Alpha"}));

        // From the "Lent out" folder the current view is the titles out.
        gFindForm->chkOverdue->setChecked(false);
        listtree::ClickNode(NodeWithKey(loans::kLentOutKey));
        gFindForm->Option1[0]->setChecked(true);
        gFindForm->Text1[0]->setText("a");
        QCOMPARE(found(), QStringList({"Alpha", "Bravo", "Charlie"}));
        gFindForm->close();
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
    std::unique_ptr<ScriptedDialogs> dialogs_;
};

VELMORA_TEST_MAIN(LendingTest)
#include "lending_test.moc"
