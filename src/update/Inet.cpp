#include "update/Inet.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkRequest>
#include <QUrl>

Inet::Inet(QObject* parent) : QObject(parent) {
    manager_.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

Inet::~Inet() {
    Cancel();
}

void Inet::Execute(const QString& operation, const QString& requestHeaders) {
    Cancel();
    QUrl url(URL);
    if (!UserName.isEmpty()) url.setUserName(UserName);
    if (!Password.isEmpty()) url.setPassword(Password);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    // Byte ranges count the file's own bytes, so the body must come as it is stored.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(RequestTimeoutMs);
    for (const QString& line : requestHeaders.split("\r\n", Qt::SkipEmptyParts)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            request.setRawHeader(line.left(colon).trimmed().toLatin1(),
                                 line.mid(colon + 1).trimmed().toLatin1());
    }
    headersIn_ = false;
    finished_ = false;
    reply_ = manager_.sendCustomRequest(request, operation.toLatin1());
    reply_->setReadBufferSize(0);
    connect(reply_, &QNetworkReply::metaDataChanged, this, [this] { headersIn_ = true; });
    connect(reply_, &QNetworkReply::finished, this, [this] { finished_ = true; });
}

bool Inet::StillExecuting() const {
    return reply_ && !headersIn_ && !finished_;
}

bool Inet::Finished() const {
    return !reply_ || finished_;
}

QString Inet::GetHeader() const {
    if (!reply_) return "\r\n";
    const QVariant status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid()) return "\r\n";
    QString block = "HTTP/1.1 " + QString::number(status.toInt()) + " " +
                    reply_->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString() +
                    "\r\n";
    for (const auto& [name, value] : reply_->rawHeaderPairs())
        block += QString::fromLatin1(name) + ": " + QString::fromLatin1(value) + "\r\n";
    return block + "\r\n";
}

QString Inet::GetHeader(const QString& name) const {
    if (!reply_) return QString();
    return QString::fromLatin1(reply_->rawHeader(name.toLatin1()));
}

QByteArray Inet::GetChunk(int size) {
    while (reply_ && reply_->bytesAvailable() < size && !finished_)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!reply_) return QByteArray();
    return reply_->read(size);
}

void Inet::Cancel() {
    if (!reply_) return;
    QNetworkReply* reply = reply_;
    reply_ = nullptr;
    finished_ = true;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}

QString Inet::RemoteHost() const {
    return QUrl(URL).host();
}
