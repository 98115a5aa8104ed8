#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QString>

// The HTTP transfer the download drives by polling, over Qt Network: one GET at a time with
// extra request headers, the raw response header block, and the body in pieces.
class Inet : public QObject {
    Q_OBJECT

  public:
    explicit Inet(QObject* parent = nullptr);
    ~Inet() override;

    QString URL;
    QString UserName;
    QString Password;
    // A transfer that receives nothing for this long breaks off as a reset connection would.
    int RequestTimeoutMs = 60000;

    // Starts a GET of URL; requestHeaders holds "Name: value" lines ended by CR LF.
    void Execute(const QString& operation, const QString& requestHeaders);
    // True until the response headers are in or the request failed.
    bool StillExecuting() const;
    // Every response header as one text, the status line first, each line ended by CR LF and
    // the block by an empty line. A request that got no answer gives a lone CR LF.
    QString GetHeader() const;
    // One header's value, or an empty text.
    QString GetHeader(const QString& name) const;
    // The next size bytes of the body, fewer only at its end, waiting for them while keeping
    // the interface alive. An empty result means the body is over, complete or broken off.
    QByteArray GetChunk(int size);
    // Drops the transfer; a waiting GetChunk returns what it has.
    void Cancel();
    // The host part of the URL.
    QString RemoteHost() const;

  private:
    bool Finished() const;

    QNetworkAccessManager manager_;
    QPointer<QNetworkReply> reply_;
    bool headersIn_ = false;
    bool finished_ = true;
};
