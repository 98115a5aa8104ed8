// Turning the guarded catalogue file into the open database, installing it from the template
// when it is missing.

#include <QFile>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "store/guardedfile.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

namespace {

void AskToMakeAccessible(const QString& path) {
    const int answer = MsgBox(
        "Velmora cannot access the database in its current state. Do you want Velmora to make it "
        "accessible?",
        vbYesNoCancel | vbQuestion, "Unable to access database");
    if (answer == vbYes) SetAttr(path, vbArchive);
}

// A catalogue that was kept beside the program until its folder became read-only moves with
// the user, once: starting empty in the user's folder would look as if every title were gone.
void MoveCatalogue(const QString& beside, const QString& path) {
    if (!QFile::copy(beside, path)) {
        QFile::remove(path);
        throw VbError(1310, "The database " + beside + " could not be copied to " + path +
                                ". Please make sure there is room and that you may write there.");
    }
    SetAttr(path, vbArchive);
    MsgBox("Velmora may not write in its own folder " + App.Path + "." + vbCrLf +
               "Your database was copied to " + path +
               " and Velmora uses that copy from now on; the file beside the program is no "
               "longer changed.",
           vbInformation, "Database moved");
}

}  // namespace

bool frmMain::OpenDatabaseStage1() {
    try {
        gDatabasePath = AddBackslash(CatalogueFolder()) + "data.gdb";
        const QString templatePath = AddBackslash(App.Path) + "data.dll";

        if (const QString beside = AddBackslash(App.Path) + "data.gdb";
            gDatabasePath != beside && !FileExists(gDatabasePath) && FileExists(beside)) {
            HideSplash();
            MoveCatalogue(beside, gDatabasePath);
        }
        if (!FileExists(gDatabasePath)) {
            SetSplashStatus("Initializing database");
            if (!FileExists(templatePath))
                throw VbError(1309, "Database could not be installed, because the file " +
                                        templatePath + " is missing.");
            QFile::copy(templatePath, gDatabasePath);
            if (!FileExists(gDatabasePath))
                throw VbError(1310,
                              "The database could not be installed. Please make sure you have all "
                              "privilleges to install files and that the media is not read-only.");
            SetAttr(gDatabasePath, vbArchive);
        }

        const int attributes = FileExists(gDatabasePath) ? GetAttr(gDatabasePath) : 0;
        if ((attributes & vbHidden) || (attributes & vbReadOnly)) {
            HideSplash();
            show();
            AskToMakeAccessible(gDatabasePath);
        }

        if (!FileExists(gDatabasePath))
            throw VbError(
                1312, "Unable to initialize the database. File " + gDatabasePath + " not found.");
        const int finalAttributes = GetAttr(gDatabasePath);
        if (finalAttributes & vbReadOnly)
            throw VbError(
                1313, "Unable to open the database " + gDatabasePath + " since it is read-only.");
        if (finalAttributes & vbHidden)
            throw VbError(1313,
                          "Unable to open the database " + gDatabasePath + " since it is hidden.");
        return true;
    } catch (const VbError& error) {
        HideSplash();
        MsgBox(error.Description, vbCritical, "Unable to initialize Velmora Database.");
        UnloadSplash();
        Unload();
        return false;
    }
}

bool frmMain::OpenDatabaseStage2() {
    try {
        SetSplashStatus("Connecting to database");
        if (GetAttr(gDatabasePath) != vbArchive) SetAttr(gDatabasePath, vbArchive);
        if (FileExists(gDatabasePath)) FlipDatabaseHeader(gDatabasePath, kUnguardHeader);
        SetSplashStatus("Opening database");
        gDatabasePassword = kDatabasePassword;
        OpenCatalogue();
        return true;
    } catch (const VbError& error) {
        ReportUnableToLoad(error);
        return false;
    }
}

void frmMain::ReportUnableToLoad(const VbError& error) {
    HideSplash();
    MsgBox(error.Description);
    MsgBox("Unable to load Velmora!. The database " + gDatabasePath +
               " might be inappropriate for this version or is corrupted." + vbCrLf +
               "Please see the "
               "support-section on " +
               kMakerWebAddress + " for troubleshooting.",
           vbCritical);
    UnloadSplash();
    Unload();
}

void frmMain::WidenTextColumn(const QString& name, int size) {
    SetSplashStatus("Updating Database to new structure");
    const QString width = QString::number(size);
    gDatabase->Execute("ALTER TABLE title ADD COLUMN temp" + name + " TEXT (" + width + ")");
    gDatabase->Execute("UPDATE title SET temp" + name + " = " + name);
    gDatabase->Execute("ALTER TABLE title DROP COLUMN " + name);
    gDatabase->Execute("ALTER TABLE title ADD COLUMN " + name + " TEXT (" + width + ")");
    gDatabase->Execute("UPDATE title SET " + name + " = temp" + name);
    gDatabase->Execute("ALTER TABLE title DROP COLUMN temp" + name);
}
