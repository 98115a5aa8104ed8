#include "disc/onlinediscids.h"

#include <discid/discid.h>

#include <array>
#include <memory>

namespace {

const int kLeadInFrames = 150;
// An enhanced CD's audio session ends this far before its data session starts: the lead-out
// and lead-in between the two sessions.
const int kSessionGapFrames = 11400;
const int kMaxTracks = 99;

struct DiscIdFree {
    void operator()(DiscId* disc) const { discid_free(disc); }
};
using DiscIdHandle = std::unique_ptr<DiscId, DiscIdFree>;

// libdiscid takes the lead-out in slot 0 and track n's start in slot n.
bool Put(DiscId* disc, const QList<int>& starts, int leadout, QString& problem) {
    std::array<int, kMaxTracks + 1> offsets{};
    offsets[0] = leadout;
    for (int track = 0; track < starts.size(); ++track) offsets[track + 1] = starts[track];
    if (discid_put(disc, 1, static_cast<int>(starts.size()), offsets.data())) return true;
    problem = "The table of contents cannot be used for a look-up: " +
              QString::fromUtf8(discid_get_error_msg(disc));
    return false;
}

}  // namespace

bool ComputeOnlineDiscIds(const TableOfContents& toc, OnlineDiscIds& ids, QString& problem) {
    const qsizetype count = toc.trackStarts.size();
    const qsizetype audioCount = count - toc.trailingDataTracks;
    if (audioCount < 1 || count > kMaxTracks) {
        problem = "The table of contents cannot be used for a look-up: it lists " +
                  QString::number(count) + " tracks.";
        return false;
    }
    QList<int> starts;
    for (qint32 start : toc.trackStarts) starts << start + kLeadInFrames;
    const int leadout = toc.leadout + kLeadInFrames;

    DiscIdHandle disc(discid_new());
    const int audioLeadout = audioCount < count ? starts[audioCount] - kSessionGapFrames : leadout;
    if (!Put(disc.get(), starts.first(audioCount), audioLeadout, problem)) return false;
    OnlineDiscIds computed;
    computed.musicBrainzId = QString::fromLatin1(discid_get_id(disc.get()));
    computed.musicBrainzToc = QString::fromLatin1(discid_get_toc_string(disc.get()));
    computed.submissionUrl = QString::fromLatin1(discid_get_submission_url(disc.get()));
    computed.audioTracks = static_cast<int>(audioCount);

    if (audioCount < count && !Put(disc.get(), starts, leadout, problem)) return false;
    computed.freedbId = QString::fromLatin1(discid_get_freedb_id(disc.get()));
    computed.freedbOffsets = starts;
    computed.freedbSeconds = leadout / 75;
    ids = computed;
    return true;
}
