#include "editor/discsource.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>

#include "disc/audiodisc.h"
#include "disc/datadisc.h"
#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/msgbox.h"

namespace {

std::function<QString(DiscChoice)> gChooser;

QString DesktopChooser(DiscChoice choice) {
    GuardedDialog<QFileDialog> dialog(QApplication::activeWindow());
    dialog->setDirectory(QDir::homePath());
    switch (choice) {
        case DiscChoice::AudioImage:
            dialog->setWindowTitle("Read an audio CD image");
            dialog->setFileMode(QFileDialog::ExistingFile);
            dialog->setNameFilter("CD images (*.cue *.toc *.nrg *.bin);;All files (*)");
            break;
        case DiscChoice::IsoImage:
            dialog->setWindowTitle("Read a data disc image");
            dialog->setFileMode(QFileDialog::ExistingFile);
            dialog->setNameFilter("ISO 9660 images (*.iso);;All files (*)");
            break;
        case DiscChoice::Folder:
            dialog->setWindowTitle("Read a mounted disc's folder");
            dialog->setFileMode(QFileDialog::Directory);
            dialog->setOption(QFileDialog::ShowDirsOnly);
            break;
    }
    if (dialog.exec() != QDialog::Accepted || dialog->selectedFiles().isEmpty()) return {};
    return dialog->selectedFiles().first();
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
