#pragma once

// What every test needs: a temporary program folder with its own template and catalogue,
// scripted answers for the program's boxes, and a main that keeps tests away from $HOME.

#include <QApplication>
#include <QList>
#include <QQueue>
#include <QTemporaryDir>
#include <QtTest>
#include <QtWidgets>
#include <functional>
#include <utility>

#include "jet/jet.h"
#include "toolkit/controls/resources.h"
#include "toolkit/vb/GCommonDialog.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"

// Boxes compare whole, word for word: prompt, buttons and icon, and title.
bool operator==(const MsgBoxCall& a, const MsgBoxCall& b);
bool operator==(const InputBoxCall& a, const InputBoxCall& b);
char* toString(const MsgBoxCall& box);
char* toString(const InputBoxCall& box);
using Boxes = QList<MsgBoxCall>;

// A program folder of its own: App.Path points at it while the object lives.
class TempProgramFolder {
  public:
    TempProgramFolder();
    ~TempProgramFolder();

    QString path() const;
    QString file(const QString& name) const;
    // Copies the built template in as data.dll.
    void installTemplate();
    // Copies the template in as data.dll and as a usable data.gdb.
    void installCatalogue();
    // installCatalogue, then opens it into gDatabase with the program's password.
    void openCatalogue();
    // Closes gRecordset and gDatabase if open.
    void closeCatalogue();
    // openCatalogue, fill, closeCatalogue, then StartProgram; true when the program runs.
    bool startProgramWith(const std::function<void()>& fill);

  private:
    QTemporaryDir dir_;
    QString previousAppPath_;
};

// Answers MsgBox, InputBox and the file dialogs from queues and records every question asked.
class ScriptedDialogs {
  public:
    ScriptedDialogs();
    ~ScriptedDialogs();

    void answerMsgBox(int result) { msgBoxAnswers.enqueue(result); }
    void answerInput(const QString& text) { inputAnswers.enqueue(text); }
    // An empty path answers the file dialog with a cancel.
    void answerFile(const QString& path) { fileAnswers.enqueue(path); }

    QList<MsgBoxCall> msgBoxes;
    QList<InputBoxCall> inputs;
    QQueue<int> msgBoxAnswers;
    QQueue<QString> inputAnswers;
    QList<FileDialogCall> fileDialogs;
    QQueue<QString> fileAnswers;
    // Used when the queue is empty; an unscripted box is recorded like any other.
    int defaultMsgBoxAnswer = vbCancel;

    QStringList prompts() const;
    // The boxes asked since the last take; the record starts again empty.
    Boxes takeBoxes() { return std::exchange(msgBoxes, {}); }
};

class frmMain;
class QTreeWidgetItem;

// Starts the program in App.Path as its entry point does (splash, main window, start-up), and
// returns the main window, or null when the start-up ended the program.
frmMain* StartProgram();
// The first column of the first row the open catalogue gives for sql; invalid when none.
QVariant Scalar(const QString& sql);
// The open catalogue's count of rows from a table or join and its condition ("title where ...").
long RowCount(const QString& from);
class Database;
// Files a title in database under the given lookups (by default the template's audio platform,
// type Pop, Album, Various artists and CD-ROM) and returns its idcd.
long AddTitle(Database& database, const QString& name, int platform = 1, int type = 1,
              int specific = 1, int vendor = 1, int mediatype = 1, int nrcds = 1);
// The first length bytes of a file, all of it when length is negative; empty when unreadable.
QByteArray ReadBytes(const QString& path, qint64 length = -1);
// Replaces the file's content with bytes.
void WriteBytes(const QString& path, const QByteArray& bytes);
// A file of the checked-in fixtures, by its path below the fixtures folder.
QString FixturePath(const QString& name);
// The Deluxe CD player's database installed in the Wine prefix, where its ODBC entry says it is;
// returns its path.
QString InstallDeluxeDatabase(const QString& winePrefix);

// The number of the VbError that work raises, 0 when it raises none.
template <typename Work>
int ErrorNumber(Work&& work) {
    try {
        work();
    } catch (const VbError& error) {
        return error.Number;
    } catch (const jet::WriteError& error) {
        return error.Number;
    }
    return 0;
}

// The number and description of the VbError that work raises, empty when it raises none.
template <typename Work>
QString Refusal(Work&& work) {
    try {
        work();
    } catch (const VbError& error) {
        return QString::number(error.Number) + " " + error.Description;
    } catch (const jet::WriteError& error) {
        return QString::number(error.Number) + " " + error.Description;
    }
    return {};
}

// The join of a title with its lookups that every list and export reads, unordered and in the
// order of the lists.
inline const QString kTitleJoin =
    "Select * from title,vendor,platform,type,specific,mediatype where title.idvendor = "
    "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = type.idtype "
    "and title.idspecific = specific.idspecific and title.idmediatype = mediatype.idmediatype";
inline const QString kTitleJoinInListOrder =
    kTitleJoin + " order by platform.nmplatform, title.nmcd";

// Ends a running program through its exit, as Quit does.
void EndProgram();
// The running main window's tree node with key, or null.
QTreeWidgetItem* NodeWithKey(const QString& key);
// Selects the running main window's tree node with key as a click on it does.
void ClickTreeNode(const QString& key);

namespace testsupport {
// Points HOME and the XDG folders at a private temporary folder and selects the offscreen
// platform, before the application object exists.
void PrepareEnvironment();
// Closes the next modal window as soon as it is up, after handing it to inspect: a command
// that opens one modally then returns in a test.
void RejectNextModal(std::function<void(QWidget*)> inspect = {});
// Boxes asked outside a ScriptedDialogs are answered Cancel (or empty) with a warning.
void InstallUnscriptedResponders();
QString TemplatePath();
// A key-down that goes to another window, as to a message box that is up: the key-up the test
// then sends to a control of the program finds no key-down of its own.
void PressKeyInAnotherWindow(Qt::Key key);
QString HelpFolder();
}  // namespace testsupport

#define VELMORA_TEST_MAIN(TestClass)             \
    int main(int argc, char** argv) {            \
        testsupport::PrepareEnvironment();       \
        QApplication app(argc, argv);            \
        app.setAttribute(Qt::AA_Use96Dpi, true); \
        InitResources();                         \
        TestClass test;                          \
        return QTest::qExec(&test, argc, argv);  \
    }
