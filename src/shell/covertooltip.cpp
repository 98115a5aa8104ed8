#include "shell/covertooltip.h"

#include "store/catalogue.h"
#include "store/shelfrecords.h"
#include "toolkit/vb/vberror.h"

QString CoverToolTip(const QString& tag, const QString& title) {
    bool number = false;
    const long idcd = tag.toLong(&number);
    if (!number || !gDatabase || !gDatabase->IsOpen()) return {};
    QByteArray thumbnail;
    try {
        thumbnail = ReadCoverThumbnail(idcd);
    } catch (const VbError&) {
        // A catalogue without the cover table has no covers to show.
    }
    if (thumbnail.isEmpty()) return {};
    return "<img src=\"data:image/jpeg;base64," + QString::fromLatin1(thumbnail.toBase64()) +
           "\"><br>" + title.toHtmlEscaped();
}
