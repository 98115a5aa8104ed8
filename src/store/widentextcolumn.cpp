#include "store/widentextcolumn.h"

#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "toolkit/vbruntime.h"

void WidenTextColumn(const QString& name, int size) {
    if (gSplashForm) gSplashForm->SetStatus("Updating Database to new structure");
    DoEvents();

    const QString width = QString::number(size);
    gDatabase->Execute("ALTER TABLE title ADD COLUMN temp" + name + " TEXT (" + width + ")");
    gDatabase->Execute("UPDATE title SET temp" + name + " = " + name);
    gDatabase->Execute("ALTER TABLE title DROP COLUMN " + name);
    gDatabase->Execute("ALTER TABLE title ADD COLUMN " + name + " TEXT (" + width + ")");
    gDatabase->Execute("UPDATE title SET " + name + " = temp" + name);
    gDatabase->Execute("ALTER TABLE title DROP COLUMN temp" + name);
}
