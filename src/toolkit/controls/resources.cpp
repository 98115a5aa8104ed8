#include "toolkit/controls/resources.h"

#include <QtGlobal>

void InitResources() {
    Q_INIT_RESOURCE(assets);
}
