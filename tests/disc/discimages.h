#pragma once

// Disc images made by the tests themselves: a cue sheet over a sparse bin of silence, and an
// ISO 9660 image made with xorriso from a folder.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

namespace discimages {

inline const qint64 kRawSectorSize = 2352;

struct CueTrack {
    QString start;     // mm:ss:ff within the bin
    QByteArray title;  // written as it stands; empty for none
};

// Writes name.cue and name.bin (sparse: silence costs no disk) into folder. The bin runs
// tailFrames past the last track's start. Returns the cue's path.
inline QString MakeCue(const QString& folder, const QString& name, const QByteArray& album,
                       const QByteArray& performer, const QList<CueTrack>& tracks,
                       int tailFrames = 750, bool writeBin = true) {
    QByteArray cue;
    if (!album.isEmpty()) cue += "TITLE \"" + album + "\"\r\n";
    if (!performer.isEmpty()) cue += "PERFORMER \"" + performer + "\"\r\n";
    cue += "FILE \"" + name.toUtf8() + ".bin\" BINARY\r\n";
    int lastStart = 0;
    for (int index = 0; index < tracks.size(); ++index) {
        cue += QString("  TRACK %1 AUDIO\r\n").arg(index + 1, 2, 10, QChar('0')).toUtf8();
        if (!tracks[index].title.isEmpty()) cue += "    TITLE \"" + tracks[index].title + "\"\r\n";
        cue += "    INDEX 01 " + tracks[index].start.toUtf8() + "\r\n";
        const QStringList parts = tracks[index].start.split(':');
        lastStart = (parts[0].toInt() * 60 + parts[1].toInt()) * 75 + parts[2].toInt();
    }
    QFile cueFile(folder + "/" + name + ".cue");
    cueFile.open(QIODevice::WriteOnly);
    cueFile.write(cue);
    if (writeBin) {
        QFile bin(folder + "/" + name + ".bin");
        bin.open(QIODevice::WriteOnly);
        bin.resize((lastStart + tailFrames) * kRawSectorSize);
    }
    return cueFile.fileName();
}

inline QString Xorriso() {
    return QStandardPaths::findExecutable("xorriso");
}

// Makes an ISO image of folder with Rock Ridge and Joliet names; empty on failure.
inline QString MakeIso(const QString& folder, const QString& image) {
    QProcess xorriso;
    xorriso.start(Xorriso(),
                  {"-as", "mkisofs", "-quiet", "-R", "-J", "-V", "TESTDISC", "-o", image, folder});
    if (!xorriso.waitForFinished(60000) || xorriso.exitCode() != 0) return {};
    return image;
}

inline void WriteFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray(size, 'x'));
}

}  // namespace discimages
