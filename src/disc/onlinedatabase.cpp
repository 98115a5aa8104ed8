#include "disc/onlinedatabase.h"

#include <QDateTime>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <algorithm>

#include "disc/lookupsettings.h"

namespace {

// "120" or an HTTP date; -1 for anything else.
int RetryAfterSeconds(const QByteArray& header) {
    bool number = false;
    const int seconds = header.trimmed().toInt(&number);
    if (number) return std::max(seconds, 0);
    const QDateTime when =
        QDateTime::fromString(QString::fromLatin1(header.trimmed()), Qt::RFC2822Date);
    if (!when.isValid()) return -1;
    return static_cast<int>(std::max<qint64>(QDateTime::currentDateTimeUtc().secsTo(when), 0));
}

// Why a successful reply's body is not the whole answer; empty when it is. A reply cut off in
// transfer can still carry its status and the bytes that came.
QString Incomplete(const QNetworkReply& reply, const QByteArray& body) {
    // An answer Qt unpacked is measured by its packed size.
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    if (reply.rawHeader("Content-Encoding").isEmpty() && length.isValid() &&
        body.size() < length.toLongLong())
        return QString("the answer broke off after %1 of %2 bytes.")
            .arg(body.size())
            .arg(length.toLongLong());
    if (reply.error() != QNetworkReply::NoError) {
        // Some of Qt's reasons end where their detail is missing: "Decompression failed: ".
        QString why = reply.errorString().trimmed();
        if (why.endsWith(':')) why.chop(1);
        return "the answer could not be read whole (" + why + ").";
    }
    return {};
}

}  // namespace

OnlineDatabase::OnlineDatabase(const QString& name, const QString& server, QObject* parent)
    : QObject(parent), name_(name), server_(server) {
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    manager_.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    delay_.setSingleShot(true);
    // A coarse timer may fire up to 5 % early, and MusicBrainz blocks clients that ask faster
    // than their pace.
    delay_.setTimerType(Qt::PreciseTimer);
    deadline_.setSingleShot(true);
    connect(&delay_, &QTimer::timeout, this, &OnlineDatabase::Send);
    connect(&deadline_, &QTimer::timeout, this, [this] {
        Done("no complete answer came within " + QString::number(RequestTimeoutMs / 1000) +
             " seconds.");
    });
}

OnlineDatabase::~OnlineDatabase() {
    Cancel();
}

void OnlineDatabase::Cancel() {
    delay_.stop();
    deadline_.stop();
    then_ = nullptr;
    if (QNetworkReply* reply = reply_) {
        reply_ = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

void OnlineDatabase::Get(const QString& pathAndQuery, int delayMs, AnswerHandler then) {
    pending_ = pathAndQuery;
    then_ = std::move(then);
    delay_.start(std::max(delayMs, 0));
}

void OnlineDatabase::Send() {
    if (const int wait = WaitBeforeSending(); wait > 0) return delay_.start(wait);
    QNetworkRequest request(QUrl(server_ + pending_));
    request.setHeader(QNetworkRequest::UserAgentHeader, LookupUserAgent());
    request.setRawHeader("Accept", "application/json, text/plain");
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setMaximumRedirectsAllowed(kMaxRedirects);
    Sending();
    reply_ = manager_.get(request);
    deadline_.start(RequestTimeoutMs);
    connect(reply_, &QNetworkReply::downloadProgress, this, [this](qint64 received, qint64 total) {
        if (received > MaxAnswerBytes || total > MaxAnswerBytes)
            Done("the answer is larger than " + QString::number(MaxAnswerBytes >> 20) + " MB.");
    });
    connect(reply_, &QNetworkReply::requestSent, this, [this] { Sending(); });
    connect(reply_, &QNetworkReply::finished, this, [this] { Done(QString()); });
}

void OnlineDatabase::Done(const QString& failure) {
    QNetworkReply* reply = reply_;
    if (!reply) return;
    Answer answer;
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (failure.isEmpty() && status.isValid()) {
        answer.status = status.toInt();
        answer.body = reply->readAll();
        answer.retryAfter = RetryAfterSeconds(reply->rawHeader("Retry-After"));
        // Statuses of 400 and above count as errors too; they are answers in their own right.
        if (answer.status < 300) {
            if (const QString cut = Incomplete(*reply, answer.body); !cut.isEmpty())
                answer = Answer{0, {}, -1, cut};
        }
    } else {
        answer.failure = failure.isEmpty() ? reply->errorString() + "." : failure;
    }
    AnswerHandler then = std::move(then_);
    Cancel();
    if (then) then(answer);
}

void OnlineDatabase::Succeed(const QList<DiscMatch>& matches) {
    Finish(matches, QString());
}

void OnlineDatabase::Fail(const QString& reason) {
    Finish({}, reason);
}

void OnlineDatabase::Finish(QList<DiscMatch> matches, const QString& reason) {
    for (DiscMatch& match : matches) ReplaceControlCharacters(match);
    emit Finished(matches, reason.isEmpty() ? QString()
                                            : name_ + " (" + QUrl(server_).host() + "): " + reason);
}

QString OnlineDatabase::UnexpectedStatus(const Answer& answer) {
    return "the server answered with HTTP status " + QString::number(answer.status) + ".";
}

QString OnlineDatabase::NotAnswered(const Answer& answer) {
    if (answer.status == 0) return answer.failure;
    return answer.status == 200 ? QString() : UnexpectedStatus(answer);
}
