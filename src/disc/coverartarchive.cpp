#include "disc/coverartarchive.h"

#include <QElapsedTimer>
#include <QUrl>

namespace {

QElapsedTimer& LastRequest() {
    static QElapsedTimer last;
    return last;
}

int WaitBeforeNextRequest() {
    const QElapsedTimer& last = LastRequest();
    return last.isValid() ? static_cast<int>(CoverArtArchive::kRequestIntervalMs - last.elapsed())
                          : 0;
}

}  // namespace

CoverArtArchive::CoverArtArchive(const QString& server, QObject* parent)
    : OnlineDatabase("Cover Art Archive", server, parent), server_(server) {
    MaxAnswerBytes = kMaxImageBytes;
}

void CoverArtArchive::Fetch(const QString& mbid, bool large) {
    pending_ = CoverAnswer();
    pending_.mbid = mbid;
    path_ = "/release/" + QString::fromLatin1(QUrl::toPercentEncoding(mbid)) +
            (large ? "/front-1200" : "/front-500");
    pending_.url = server_ + path_;
    emit Progress("Asking the Cover Art Archive...");
    Get(path_, WaitBeforeNextRequest(), [this](const Answer& answer) { Take(answer, false); });
}

void CoverArtArchive::Sending() {
    LastRequest().start();
}

void CoverArtArchive::Take(const Answer& answer, bool retried) {
    CoverAnswer result = pending_;
    const QString where = Name() + " (" + QUrl(result.url).host() + "): ";
    if (answer.status == 503 && !retried) {
        const int wait = answer.retryAfter < 0 ? 1 : answer.retryAfter;
        if (wait <= kMaxRetryAfterSeconds) {
            emit Progress("The Cover Art Archive is busy; asking again in " +
                          QString::number(wait) + " s...");
            Get(path_, std::max(wait * 1000, WaitBeforeNextRequest()),
                [this](const Answer& again) { Take(again, true); });
            return;
        }
    }
    if (answer.status == 200 && !answer.body.isEmpty()) {
        result.outcome = CoverAnswer::Outcome::Fetched;
        result.image = answer.body;
    } else if (answer.status == 404) {
        result.outcome = CoverAnswer::Outcome::NoCover;
    } else if (answer.status == 0) {
        result.problem = where + answer.failure;
    } else if (answer.status == 503) {
        result.problem = where + "the server is busy (503); try again later.";
    } else {
        result.problem = where + UnexpectedStatus(answer);
    }
    emit Answered(result);
}
