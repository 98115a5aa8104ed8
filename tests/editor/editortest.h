#pragma once

// What the title editor's tests share: the running program in a folder of its own, the editor
// opened on either road, and a few reads of the catalogue.

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <memory>

#include "app/mGlobals.h"
#include "editor/frmEdit.h"
#include "editor/frmLookup.h"
#include "editor/frmTracksListing.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/mGlobalFunctions.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

namespace editortest {

inline const QString kCrLf = "\r\n";

// The program started as its entry point starts it, and unloaded at the end.
class RunningProgram {
  public:
    RunningProgram() {
        folder.installTemplate();
        StartProgram();
    }
    ~RunningProgram() {
        if (gEditForm) gEditForm->Unload();
        EndProgram();
    }

    TempProgramFolder folder;
};

// Selects the node and reads its list at once.
inline void SelectNode(const QString& key) {
    QTreeWidgetItem* node = NodeWithKey(key);
    QVERIFY2(node, qPrintable("no tree node " + key));
    ForceSelectNode(gMainForm->NodeIndex(node));
}

// The editor as the main window's commands open it, shown rather than run, so that the test
// keeps the control.
inline QPointer<frmEdit> OpenEditor(bool adding, long titleId = 0) {
    gAddingTitle = adding;
    gModifyingTitle = !adding;
    if (!adding) gCurrentTitleId = titleId;
    gEditForm = new frmEdit(gMainForm);
    gEditForm->Form_Load();
    gEditForm->show();
    return gEditForm;
}

inline void ChooseText(QComboBox* combo, const QString& text) {
    const int row = combo->findText(text);
    QVERIFY2(row >= 0, qPrintable("no row " + text + " in " + combo->objectName()));
    combo->setCurrentIndex(row);
}

// Chooses the platform, type and specific item, and the vendor when one is given.
inline void ChooseTitleKind(frmEdit* form, const QString& platform, const QString& type,
                            const QString& specific, const QString& vendor = QString()) {
    ChooseText(form->Combo1[0], platform);
    if (!vendor.isEmpty()) ChooseText(form->Combo1[1], vendor);
    ChooseText(form->Combo1[2], type);
    ChooseText(form->Combo1[3], specific);
}

// Runs work on the next modal window of type Window once ready says it may.
template <typename Window>
void OnModal(
    std::function<void(Window*)> work,
    std::function<bool(Window*)> ready = [](Window*) { return true; }) {
    auto* poll = new QTimer;
    QObject::connect(poll, &QTimer::timeout, [poll, work, ready] {
        auto* window = qobject_cast<Window*>(QApplication::activeModalWidget());
        if (!window || !ready(window)) return;
        poll->stop();
        poll->deleteLater();
        work(window);
    });
    poll->start(10);
}

// Runs work on the look-up window once it shows what it found.
inline void OnLookupChoice(std::function<void(frmLookup*)> work) {
    OnModal<frmLookup>(std::move(work), [](frmLookup* window) { return window->ChoiceIsShown(); });
}

// The look-up window's rows, each its first columns joined by ';'.
inline QStringList MatchRows(const frmLookup* window, int columns) {
    QStringList rows;
    for (int row = 0; row < window->lstMatches->topLevelItemCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < columns; ++column)
            texts << window->lstMatches->topLevelItem(row)->text(column);
        rows << texts.join(";");
    }
    return rows;
}

inline QStringList Texts(const QComboBox* combo) {
    QStringList texts;
    for (int row = 0; row < combo->count(); ++row) texts << combo->itemText(row);
    return texts;
}

// Opens the tracks editor, replaces its text as typed lines, and leaves by OK.
inline void TypeTracks(frmEdit* form, const QStringList& lines) {
    OnModal<frmTracksListing>([lines](frmTracksListing* dialog) {
        dialog->Text1->clear();
        for (int index = 0; index < lines.size(); ++index) {
            if (index > 0) QTest::keyClick(dialog->Text1, Qt::Key_Return);
            QTest::keyClicks(dialog->Text1, lines[index]);
        }
        QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
    });
    QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
}

// Opens the tracks editor and leaves it by OK at once; gives its caption and text, as
// "caption|text".
inline QString ShownInTracksEditor(frmEdit* form) {
    QString shown;
    OnModal<frmTracksListing>([&shown](frmTracksListing* dialog) {
        shown = dialog->windowTitle() + "|" + dialog->Text();
        QTest::mouseClick(dialog->cmdOK, Qt::LeftButton);
    });
    QTest::mouseClick(form->cmdTracks, Qt::LeftButton);
    return shown;
}

// Saves by the OK button and lets a closed editor go.
inline void ClickOK(frmEdit* form) {
    QTest::mouseClick(form->cmdOK, Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

inline long TitleCount() {
    return Scalar("select count(*) from title").toLongLong();
}

// A title written straight to the catalogue, for the edit road.
inline long StoreTitle(const QString& values) {
    gDatabase->Execute(
        "insert into title (nmcd, nrcds, idvendor, idplatform, idtype, idspecific, idmediatype, "
        "label, iddevicetype, rating, created, modified, memo, listing) values (" +
        values + ")");
    return Scalar("select max(idcd) from title").toLongLong();
}

// An audio title stored straight, by name; with mbid, its MusicBrainz release too.
inline long StoreAudioTitle(const QString& name, const QString& mbid = QString()) {
    const long id = StoreTitle(
        "'" + name + "', 1, 1, 1, 4, 10, 1, '', 1, 75, '2024-01-01', '2024-01-01', '', ''");
    if (!mbid.isEmpty())
        gDatabase->Execute("insert into titlerelease (idcd, mbid) values (" + QString::number(id) +
                           ", '" + mbid + "')");
    return id;
}

}  // namespace editortest
