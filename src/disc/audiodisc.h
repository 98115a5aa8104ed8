#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "disc/discidentity.h"

// What an audio CD tells about itself: its table of contents, its identity and the CD-Text
// where it has any (empty texts otherwise).
struct AudioDisc {
    TableOfContents toc;
    quint32 titleId = 0;
    QString album;
    QString performer;
    // One entry a track, empty where the disc names none.
    QStringList trackTitles;
};

// Reads the audio CD in a drive (a device such as /dev/cdrom) or in an image (cue sheet with
// its bin, cdrdao toc, Nero nrg). On failure disc is left as it was and problem says why in
// words for the user.
bool ReadAudioDisc(const QString& source, AudioDisc& disc, QString& problem);

// The drive to read: /dev/cdrom when it exists, else the first drive the system knows, else
// empty. Tests stand in their own answer.
QString FindDiscDrive();
void SetDiscDriveLocator(std::function<QString()> locator);
