// Reads any byte string as a response's header block, as the download judges it.
#include <cstddef>
#include <cstdint>

#include "update/mDownload.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString headers =
        QString::fromLatin1(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    ClassifyResponse(headers);
    FirstHeaderLine(headers);
    return 0;
}
