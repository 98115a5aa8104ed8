#include "disc/discidentity.h"

namespace {

const int kFramesPerSecond = 75;
// The lead-in before the program area: two seconds.
const int kPregapFrames = 2 * kFramesPerSecond;

quint32 PackedMsf(qint32 sector) {
    const quint32 absolute = static_cast<quint32>(sector + kPregapFrames);
    const quint32 minutes = absolute / (60 * kFramesPerSecond);
    const quint32 seconds = absolute / kFramesPerSecond % 60;
    const quint32 frames = absolute % kFramesPerSecond;
    return (minutes << 16) + (seconds << 8) + frames;
}

}  // namespace

quint32 DiscTitleId(const TableOfContents& toc) {
    quint32 id = 0;
    for (qint32 start : toc.trackStarts) id += PackedMsf(start);
    if (toc.trackStarts.size() < 3 && !toc.trackStarts.isEmpty())
        id += static_cast<quint32>(toc.leadout - toc.trackStarts.first());
    return id;
}

QString DiscSectionName(quint32 titleId) {
    return QString::number(titleId, 16).toUpper();
}
