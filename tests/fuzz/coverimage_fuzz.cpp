// Reads any byte string as a front cover from outside: the size check, the decoding under the
// memory limit, the scaling and the thumbnail.
#include <QGuiApplication>
#include <cstddef>
#include <cstdint>

#include "disc/coverimage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The image plugins (JPEG, GIF) load with an application object.
    static int argc = 1;
    static char name[] = "coverimage_fuzz";
    static char* argv[] = {name, nullptr};
    static QGuiApplication application(argc, argv);
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    PreparedCover cover;
    QString problem;
    PrepareCover(bytes, cover, problem);
    return 0;
}
