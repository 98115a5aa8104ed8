#include "support/testsupport.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QTimer>
#include <cstdlib>
#include <memory>

#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "toolkit/vb/vbruntime.h"

TempProgramFolder::TempProgramFolder() : previousAppPath_(App.Path) {
    App.Path = dir_.path();
}

TempProgramFolder::~TempProgramFolder() {
    closeCatalogue();
    App.Path = previousAppPath_;
}

QString TempProgramFolder::path() const {
    return dir_.path();
}

QString TempProgramFolder::file(const QString& name) const {
    return dir_.filePath(name);
}

void TempProgramFolder::installTemplate() {
    QFile::remove(file("data.dll"));
    QVERIFY2(QFile::copy(testsupport::TemplatePath(), file("data.dll")), "template not built");
    QFile::setPermissions(file("data.dll"), QFile::ReadOwner | QFile::WriteOwner);
}

void TempProgramFolder::installCatalogue() {
    installTemplate();
    QFile::remove(file("data.gdb"));
    QVERIFY(QFile::copy(file("data.dll"), file("data.gdb")));
    QFile::setPermissions(file("data.gdb"), QFile::ReadOwner | QFile::WriteOwner);
}

void TempProgramFolder::openCatalogue() {
    installCatalogue();
    gDatabasePath = file("data.gdb");
    gDatabasePassword = kDatabasePassword;
    OpenCatalogue();
    // The start-up reads the column widths that every name check relies on.
    ReadFieldSizes();
}

void TempProgramFolder::closeCatalogue() {
    gRecordset.reset();
    if (gDatabase) {
        gDatabase->Close();
        gDatabase.reset();
    }
}

bool TempProgramFolder::startProgramWith(const std::function<void()>& fill) {
    openCatalogue();
    fill();
    closeCatalogue();
    return StartProgram() != nullptr;
}

bool operator==(const MsgBoxCall& a, const MsgBoxCall& b) {
    return a.prompt == b.prompt && a.flags == b.flags && a.title == b.title;
}

bool operator==(const InputBoxCall& a, const InputBoxCall& b) {
    return a.prompt == b.prompt && a.title == b.title && a.defaultText == b.defaultText;
}

char* toString(const MsgBoxCall& box) {
    return QTest::toString(
        QString("{\"%1\", %2, \"%3\"}").arg(box.prompt).arg(box.flags).arg(box.title));
}

char* toString(const InputBoxCall& box) {
    return QTest::toString(
        QString("{\"%1\", \"%2\", \"%3\"}").arg(box.prompt, box.title, box.defaultText));
}

QByteArray ReadBytes(const QString& path, qint64 length) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return length < 0 ? file.readAll() : file.read(length);
}

void WriteBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    file.write(bytes);
}

QString FixturePath(const QString& name) {
    return QStringLiteral(VELMORA_FIXTURES_DIR "/") + name;
}

QString InstallDeluxeDatabase(const QString& winePrefix) {
    const QString database = winePrefix + "/drive_c/Program Files/Plus!/DeluxeCD.mdb";
    QDir().mkpath(QFileInfo(database).path());
    const bool copied = QFile::copy(FixturePath("deluxe/cd_pk.mdb"), database);
    [&] { QVERIFY2(copied, qPrintable(database)); }();
    QFile::setPermissions(database, QFile::ReadOwner | QFile::WriteOwner);
    WriteBytes(winePrefix + "/user.reg",
               "WINE REGISTRY Version 2\n\n[Software\\\\ODBC\\\\ODBC.INI\\\\DeluxeCD] 1\n"
               "\"DBQ\"=\"deluxecd.mdb\"\n\"DefaultDir\"=\"C:\\\\program files\\\\plus!\"\n");
    return database;
}

QVariant Scalar(const QString& sql) {
    auto records = gDatabase->OpenRecordset(sql, dbOpenSnapshot);
    return records->IsEOF() ? QVariant() : records->Fields(0).Value();
}

long RowCount(const QString& from) {
    return Scalar("select count(*) from " + from).toLongLong();
}

long AddTitle(Database& database, const QString& name, int platform, int type, int specific,
              int vendor, int mediatype, int nrcds) {
    database.Execute(QString("INSERT INTO title (nmcd, nrcds, idvendor, idplatform, idtype, "
                             "idspecific, idmediatype) VALUES ('%1', %2, %3, %4, %5, %6, %7)")
                         .arg(name)
                         .arg(nrcds)
                         .arg(vendor)
                         .arg(platform)
                         .arg(type)
                         .arg(specific)
                         .arg(mediatype));
    return database.OpenRecordset("select max(idcd) from title")->Fields(0).Value().toLongLong();
}

frmMain* StartProgram() {
    // Every start in a test is a new run: nothing of an earlier run's title or password is left.
    App.Title = AppObject{}.Title;
    gDatabasePassword.clear();
    gSearchSQL.clear();
    gSplashForm = new frmSplash();
    gSplashForm->show();
    gMainForm = new frmMain();
    gMainForm->Form_Load();
    return gMainForm;
}

void EndProgram() {
    if (!gMainForm) return;
    gMainForm->SetMousePointer(vbArrow);
    gMainForm->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTreeWidgetItem* NodeWithKey(const QString& key) {
    for (int index = 1; index <= gMainForm->NodeCount(); ++index)
        if (gMainForm->NodeKey(gMainForm->Node(index)) == key) return gMainForm->Node(index);
    return nullptr;
}

void ClickTreeNode(const QString& key) {
    QTreeWidgetItem* node = NodeWithKey(key);
    QVERIFY2(node, qPrintable("no tree node " + key));
    gMainForm->TV1->setCurrentItem(node);
    gMainForm->TV1_NodeClick(node);
}

ScriptedDialogs::ScriptedDialogs() {
    SetMsgBoxResponder([this](const MsgBoxCall& call) {
        msgBoxes.append(call);
        return msgBoxAnswers.isEmpty() ? defaultMsgBoxAnswer : msgBoxAnswers.dequeue();
    });
    SetInputBoxResponder([this](const InputBoxCall& call) {
        inputs.append(call);
        return inputAnswers.isEmpty() ? QString() : inputAnswers.dequeue();
    });
    SetFileChooser([this](const FileDialogCall& call) {
        fileDialogs.append(call);
        FileDialogAnswer answer;
        answer.filename = fileAnswers.isEmpty() ? QString() : fileAnswers.dequeue();
        answer.filenames = {answer.filename};
        answer.filterIndex = call.filterIndex;
        return answer;
    });
}

ScriptedDialogs::~ScriptedDialogs() {
    testsupport::InstallUnscriptedResponders();
}

QStringList ScriptedDialogs::prompts() const {
    QStringList result;
    for (const auto& call : msgBoxes) result << call.prompt;
    return result;
}

namespace testsupport {

void RejectNextModal(std::function<void(QWidget*)> inspect) {
    auto* poll = new QTimer();
    poll->setInterval(10);
    auto attempts = std::make_shared<int>(0);
    QObject::connect(poll, &QTimer::timeout, [poll, attempts, inspect] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog && ++*attempts < 500) return;
        poll->stop();
        poll->deleteLater();
        if (!dialog) return;
        if (inspect) inspect(dialog);
        dialog->reject();
    });
    poll->start();
}

void InstallUnscriptedResponders() {
    // A box nobody scripted must not wait for a user who is not there.
    SetMsgBoxResponder([](const MsgBoxCall& call) {
        qWarning("unscripted message box: %s", qPrintable(call.prompt));
        return int(vbCancel);
    });
    SetInputBoxResponder([](const InputBoxCall& call) {
        qWarning("unscripted input box: %s", qPrintable(call.prompt));
        return QString();
    });
    SetFileChooser([](const FileDialogCall& call) {
        qWarning("unscripted file dialog: %s", qPrintable(call.title));
        return FileDialogAnswer();
    });
}

void PrepareEnvironment() {
    static QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home.path() + "/.local/share").toLocal8Bit());
    qputenv("XDG_CACHE_HOME", (home.path() + "/.cache").toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home.path().toLocal8Bit());
    QDir().mkpath(home.path() + "/.config");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // No test reaches beyond this machine: a look-up, a barcode or a cover that a test (the soak
    // test's random clicks too) sets off without a server of its own meets a closed port.
    for (const char* server :
         {"VELMORA_MUSICBRAINZ_SERVER", "VELMORA_GNUDB_SERVER", "VELMORA_COVERART_SERVER"})
        if (qEnvironmentVariableIsEmpty(server)) qputenv(server, "http://127.0.0.1:9");
}

void PressKeyInAnotherWindow(Qt::Key key) {
    static QWidget* box = new QWidget();
    QTest::keyPress(box, key);
}

QString TemplatePath() {
    return QStringLiteral(VELMORA_TEMPLATE_PATH);
}
QString HelpFolder() {
    return QStringLiteral(VELMORA_HELP_DIR);
}

}  // namespace testsupport
