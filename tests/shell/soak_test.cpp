// Thousands of random clicks and keys over the main window, the title editor and the search
// window, with every box and modal window answered at random, over as many runs of the program
// as the clicks end: the program must neither crash nor lose its catalogue. The seed makes a
// failing run repeatable.

#include <QAbstractItemView>
#include <csignal>

#include "editor/editortest.h"
#include "export/frmExport.h"
#include "import/frmImport.h"
#include "search/frmFind.h"
#include "shell/terminationsignals.h"
#include "store/catalogue.h"
#include "store/guardedfile.h"
#include "store/passwordcheck.h"
#include "toolkit/vb/guardeddialog.h"

using namespace editortest;

namespace {

const std::array<Qt::Key, 14> kKeys = {
    Qt::Key_Return, Qt::Key_Escape, Qt::Key_Up,     Qt::Key_Down,      Qt::Key_Tab,
    Qt::Key_Space,  Qt::Key_F2,     Qt::Key_Delete, Qt::Key_Home,      Qt::Key_End,
    Qt::Key_A,      Qt::Key_Z,      Qt::Key_1,      Qt::Key_Apostrophe};

// The visible, enabled widgets of a window that a user could click: its controls and the
// viewports of its lists.
QList<QWidget*> Targets(QWidget* window) {
    QList<QWidget*> targets;
    for (QWidget* widget : window->findChildren<QWidget*>())
        if (widget->isVisible() && widget->isEnabled() && !widget->rect().isEmpty())
            targets << widget;
    return targets;
}

// The windows a user could reach now, opening the editor or the search window when missing.
QWidget* ChooseWindow(QRandomGenerator& random) {
    switch (random.bounded(3)) {
        case 0:
            if (!gEditForm) {
                const bool adding = random.bounded(2) == 0;
                OpenEditor(adding, adding ? 0 : Scalar("select min(idcd) from title").toLongLong());
            }
            return gEditForm;
        case 1:
            if (!gFindForm) ShowFindWindow(gMainForm);
            return gFindForm;
        default:
            return gMainForm;
    }
}

void ActOn(QWidget* target, QRandomGenerator& random) {
    const QPoint point(random.bounded(target->width()), random.bounded(target->height()));
    switch (random.bounded(4)) {
        case 0:
            QTest::mouseClick(target, Qt::LeftButton, {}, point);
            break;
        case 1:
            QTest::mouseClick(target, Qt::RightButton, {}, point);
            break;
        case 2:
            QTest::mouseDClick(target, Qt::LeftButton, {}, point);
            break;
        default:
            QTest::keyClick(target, kKeys[random.bounded(int(kKeys.size()))]);
            break;
    }
}

void ChooseFile(const QString& path) {
    SetFileChooser([path](const FileDialogCall&) {
        FileDialogAnswer answer;
        answer.filename = path;
        answer.filenames = {path};
        return answer;
    });
}

// A TAB import or an export of everything to a TAB or HTML file, as the windows' OK runs it.
void RunLongWork(QRandomGenerator& random, const QString& folder) {
    if (random.bounded(2) == 0) {
        QByteArray lines;
        for (int line = 0; line < 60; ++line)
            lines += "Audio\tRock\tAlbum\tSoak band\tSoak " +
                     QByteArray::number(random.generate()) + "\tCD-R\t\t\t\t\t1\t\tOne\t1\r\n";
        WriteBytes(folder + "/soak.txt", lines);
        GuardedDialog<frmImport> window(gMainForm);
        window->Form_Load();
        for (int i = 0; i < 3; ++i) window->Check1[i]->setChecked(i == 2);
        ChooseFile(folder + "/soak.txt");
        window->cmdOK_Click();
    } else {
        GuardedDialog<frmExport> form(gMainForm);
        form->Form_Load();
        const int destination = random.bounded(2) == 0 ? 0 : 2;
        for (int i = 0; i < 5; ++i) form->Check1[i]->setChecked(i == destination);
        form->Option1[2]->setChecked(true);
        form->OpenHtmlAfterExport = false;
        ChooseFile(folder + "/soak.out");
        form->cmdOK_Click();
    }
    SetFileChooser({});
}

}  // namespace

class SoakTest : public QObject {
    Q_OBJECT
  private slots:
    void randomUseKeepsTheProgramAndItsCatalogue() {
        const quint32 seed = qEnvironmentVariableIntValue("VELMORA_SOAK_SEED") ?: 20261123;
        QRandomGenerator random(seed);
        const std::array<int, 5> answers = {vbYes, vbNo, vbCancel, vbOK, vbRetry};
        SetMsgBoxResponder([&](const MsgBoxCall&) { return answers[random.bounded(5)]; });
        SetInputBoxResponder([&](const InputBoxCall& call) {
            return random.bounded(2) ? QString() : call.defaultText + "x";
        });
        // Any modal window that opens (menus, the tracks editor, compaction) is closed again.
        QTimer closer;
        connect(&closer, &QTimer::timeout, [] {
            if (QWidget* modal = QApplication::activeModalWidget())
                if (auto* dialog = qobject_cast<QDialog*>(modal)) dialog->reject();
            if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
        });
        closer.start(5);

        // While long work runs, the user presses Quit, the desktop sends SIGTERM, or clicks go
        // on in the main window; the program ends only once the work has returned.
        TerminationSignals terminationSignals;
        const int interrupter = AddProgressListener([&](const QString&, qint64, qint64 total) {
            if (total <= 0 || !gMainForm || random.bounded(40) != 0) return;
            switch (random.bounded(3)) {
                case 0:
                    gMainForm->Unload();
                    break;
                case 1:
                    ::raise(SIGTERM);
                    break;
                default:
                    if (const QList<QWidget*> targets = Targets(gMainForm); !targets.isEmpty())
                        ActOn(targets[random.bounded(int(targets.size()))], random);
            }
        });

        RunningProgram program;
        for (int title = 1; title <= 12; ++title)
            StoreTitle("'Title " + QString::number(title) + "', 1, 1, " +
                       QString::number(1 + title % 3) + ", 1, 1, 1, 'L', 1, 50, '2024-01-01', " +
                       "'2024-01-01', 'memo', 'listing'");
        SelectNode("root");

        // When a random click ends the program, its catalogue must be on disk, guarded and
        // whole, and the next start goes on with it.
        const QString catalogue = program.folder.file("data.gdb");
        const int steps = qEnvironmentVariableIntValue("VELMORA_SOAK_STEPS") ?: 3000;
        int runs = 1;
        for (int step = 0; step < steps; ++step) {
            if (!gMainForm) {
                QCOMPARE(ReadBytes(catalogue, 15), QByteArray("SQLite format F"));
                StartProgram();
                QVERIFY2(gDatabase, "the next start found no catalogue");
                ++runs;
            }
            if (random.bounded(100) == 0) {
                RunLongWork(random, program.folder.path());
                QTest::qWait(5);
                continue;
            }
            QPointer<QWidget> window = ChooseWindow(random);
            if (!window) continue;
            const QList<QWidget*> targets = Targets(window);
            if (targets.isEmpty()) continue;
            QPointer<QWidget> target = targets[random.bounded(int(targets.size()))];
            if (target && target->isVisible()) ActOn(target, random);
            if (step % 50 == 0) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        closer.stop();
        RemoveProgressListener(interrupter);
        qInfo("%d steps over %d runs of the program", steps, runs);

        if (gMainForm) {
            if (gEditForm) gEditForm->Unload();
            if (gFindForm) gFindForm->close();
            QVERIFY2(gDatabase, "the program lost its catalogue");
            EndProgram();
        }
        QVERIFY(!gDatabase);
        QCOMPARE(ReadBytes(catalogue, 15), QByteArray("SQLite format F"));
        // Opened as the next start opens it.
        FlipDatabaseHeader(catalogue, kUnguardHeader);
        gDatabasePath = catalogue;
        gDatabasePassword = kDatabasePassword;
        OpenCatalogue();
        QVERIFY(Scalar("select count(*) from platform").toLongLong() >= 5);
        program.folder.closeCatalogue();
        testsupport::InstallUnscriptedResponders();
    }
};

VELMORA_TEST_MAIN(SoakTest)
#include "soak_test.moc"
