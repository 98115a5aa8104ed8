#include "disc/musicbrainzlookup.h"

#include <QElapsedTimer>
#include <QUrl>

#include "disc/musicbrainzanswer.h"

namespace {

const int kRequestIntervalMs = 1000;
const QString kBusy = "the server is busy (503); try again later.";
const QString kIncludes = "inc=artist-credits+recordings&cdstubs=no&fmt=json";

// The pace is the program's, whichever look-up sends.
QElapsedTimer& LastRequest() {
    static QElapsedTimer last;
    return last;
}

}  // namespace

MusicBrainzLookup::MusicBrainzLookup(const QString& server, QObject* parent)
    : OnlineDatabase("MusicBrainz", server, parent) {}

void MusicBrainzLookup::Start(const OnlineDiscIds& ids) {
    ids_ = ids;
    withoutTracks_.clear();
    emit Progress("Asking MusicBrainz...");
    Ask("/ws/2/discid/" + QString::fromLatin1(QUrl::toPercentEncoding(ids.musicBrainzId)) + "?" +
            kIncludes,
        [this](const Answer& answer) {
            if (answer.status != 404) return TakeReleases(answer);
            emit Progress("Asking MusicBrainz for similar discs...");
            const QString toc = QString(ids_.musicBrainzToc).replace(' ', '+');
            Ask("/ws/2/discid/-?toc=" + toc + "&" + kIncludes, [this](const Answer& similar) {
                if (similar.status == 404) return Succeed({});
                TakeReleases(similar);
            });
        });
}

void MusicBrainzLookup::Ask(const QString& path, AnswerHandler then) {
    Get(path, 0, [this, path, then](const Answer& answer) {
        if (answer.status != 503) return then(answer);
        const int wait = answer.retryAfter < 0 ? 1 : answer.retryAfter;
        if (wait > kMaxRetryAfterSeconds) return Fail(kBusy);
        emit Progress("MusicBrainz is busy; asking again in " + QString::number(wait) + " s...");
        Get(path, wait * 1000, [this, then](const Answer& again) {
            if (again.status == 503) return Fail(kBusy);
            then(again);
        });
    });
}

int MusicBrainzLookup::WaitBeforeSending() const {
    const QElapsedTimer& last = LastRequest();
    // elapsed() counts whole milliseconds passed, so the interval is never cut short.
    return last.isValid() ? static_cast<int>(kRequestIntervalMs - last.elapsed()) : 0;
}

void MusicBrainzLookup::Sending() {
    LastRequest().start();
}

void MusicBrainzLookup::TakeReleases(const Answer& answer) {
    if (const QString unanswered = NotAnswered(answer); !unanswered.isEmpty())
        return Fail(unanswered);
    QList<DiscMatch> matches, withoutTracks;
    QString problem;
    if (!ReadMusicBrainzAnswer(answer.body, ids_.musicBrainzId, ids_.audioTracks, matches,
                               withoutTracks, problem))
        return Fail(problem);
    for (DiscMatch& release : withoutTracks) ReplaceControlCharacters(release);
    withoutTracks_ = withoutTracks;
    Succeed(matches);
}
