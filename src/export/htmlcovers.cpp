#include "export/htmlcovers.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QUrl>

#include "store/shelfrecords.h"
#include "toolkit/vb/vberror.h"

namespace {

const int kPathNotFound = 76;
const int kDeviceIOError = 57;

}  // namespace

HtmlCoverFolder::HtmlCoverFolder(const QString& pagePath) {
    const QFileInfo page(pagePath);
    const QString name = page.completeBaseName() + "_covers";
    folder_ = QDir(page.absoluteDir().filePath(name));
    if (!QDir().mkpath(folder_.path())) throw VbError(kPathNotFound, "Path not found");
    link_ = QString::fromUtf8(QUrl::toPercentEncoding(name));
}

QString HtmlCoverFolder::Cell(long idcd) {
    const QString open = "<td align=\"left\" valign=\"top\">";
    QByteArray thumbnail;
    try {
        thumbnail = ReadCoverThumbnail(idcd);
    } catch (const VbError&) {
        // A catalogue without the cover table: no title has a cover.
    }
    if (thumbnail.isEmpty()) return open + "</td>";
    const QString name = QString::number(idcd) + ".jpg";
    QFile file(folder_.filePath(name));
    // A new file rather than an old one truncated: the file system flushes a truncated and
    // rewritten file at its close, which made an export over an earlier one many times slower.
    file.remove();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(thumbnail) != thumbnail.size() || !file.flush())
        throw VbError(kDeviceIOError, "Device I/O error");
    // The header tells the size; the picture itself need not be decoded.
    QBuffer buffer(&thumbnail);
    buffer.open(QIODevice::ReadOnly);
    const QSize size = QImageReader(&buffer).size();
    return open + "<img src=\"" + link_ + "/" + name + "\" width=\"" +
           QString::number(size.width()) + "\" height=\"" + QString::number(size.height()) +
           "\" alt=\"\"></td>";
}
