#include "editor/discsource.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>

#include "disc/audiodisc.h"
#include "disc/datadisc.h"
#include "toolkit/msgbox.h"

namespace {

std::function<QString(DiscChoice)> gChooser;

QString DesktopChooser(DiscChoice choice) {
    QWidget* parent = QApplication::activeWindow();
    switch (choice) {
        case DiscChoice::AudioImage:
            return QFileDialog::getOpenFileName(
                parent, "Read an audio CD image", QDir::homePath(),
                "CD images (*.cue *.toc *.nrg *.bin);;All files (*)");
        case DiscChoice::IsoImage:
            return QFileDialog::getOpenFileName(parent, "Read a data disc image", QDir::homePath(),
                                                "ISO 9660 images (*.iso);;All files (*)");
        case DiscChoice::Folder:
            return QFileDialog::getExistingDirectory(parent, "Read a mounted disc's folder",
                                                     QDir::homePath());
    }
    return {};
}

const QString kNoDrive = "No CD drive was found.";

}  // namespace

QString ChooseDiscSource(DiscChoice choice) {
    return gChooser ? gChooser(choice) : DesktopChooser(choice);
}

void SetDiscSourceChooser(std::function<QString(DiscChoice)> chooser) {
    gChooser = std::move(chooser);
}

bool ReadAudioDiscFromUser(AudioDisc& disc, const QString& boxTitle) {
    QString problem;
    const QString drive = FindDiscDrive();
    if (!drive.isEmpty() && ReadAudioDisc(drive, disc, problem)) return true;
    const QString reason = drive.isEmpty() ? kNoDrive : problem;
    if (MsgBox(reason + "\n\nRead the disc from an image file (cue sheet, toc or nrg) instead?",
               vbYesNo + vbExclamation, boxTitle) != vbYes)
        return false;
    const QString image = ChooseDiscSource(DiscChoice::AudioImage);
    if (image.isEmpty()) return false;
    if (ReadAudioDisc(image, disc, problem)) return true;
    MsgBox(problem, vbExclamation, boxTitle);
    return false;
}

bool ReadDataDiscFromUser(DataDisc& disc, const QString& boxTitle) {
    QString problem;
    DataDisc read;
    const QString drive = FindDiscDrive();
    bool done = !drive.isEmpty() && ListIsoImage(drive, read, problem);
    if (!done) {
        const QString reason = drive.isEmpty() ? kNoDrive : problem;
        const int answer = MsgBox(reason +
                                      "\n\nList an ISO 9660 image file instead (Yes), or the "
                                      "folder of a mounted disc (No)?",
                                  vbYesNoCancel + vbExclamation, boxTitle);
        if (answer != vbYes && answer != vbNo) return false;
        const bool image = answer == vbYes;
        const QString source = ChooseDiscSource(image ? DiscChoice::IsoImage : DiscChoice::Folder);
        if (source.isEmpty()) return false;
        done = image ? ListIsoImage(source, read, problem) : ListDataFolder(source, read, problem);
        if (!done) {
            MsgBox(problem, vbExclamation, boxTitle);
            return false;
        }
    }
    if (!read.unreadableFolders.isEmpty() &&
        MsgBox("These folders could not be read and are left out of the listing:\n" +
                   read.unreadableFolders.join("\n") + "\n\nUse the listing without them?",
               vbYesNo + vbExclamation, boxTitle) != vbYes)
        return false;
    disc = read;
    return true;
}
