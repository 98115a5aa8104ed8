#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

// Positions are logical sector numbers: frame 0 is the start of the program area, which
// players show as 00:02:00.
struct TableOfContents {
    QList<qint32> trackStarts;
    qint32 leadout = 0;
    // Data tracks behind the audio ones (the second session of an enhanced CD).
    int trailingDataTracks = 0;
};

// The number by which the Windows CD players know a disc: the sum over the tracks of each
// start as (minutes << 16) + (seconds << 8) + frames in absolute time, plus the disc's length
// in frames when it has fewer than three tracks.
quint32 DiscTitleId(const TableOfContents& toc);
// The same number as the section name of cdplayer.ini: upper-case hexadecimal.
QString DiscSectionName(quint32 titleId);
