#include "toolkit/controls/mHelp.h"

#include <QFileInfo>
#include <QUrl>

#include "toolkit/platform/mUtility.h"

int ShowHelpContents(const QString& helpFile) {
    const QFileInfo file(QString(helpFile).replace('\\', '/'));
    if (!file.isFile()) return 0;
    return OpenWithDesktop(QUrl::fromLocalFile(file.absoluteFilePath())) ? 1 : 0;
}
