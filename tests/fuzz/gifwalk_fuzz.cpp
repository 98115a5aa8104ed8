// Walks any byte string as a GIF stream and cuts every frame it finds.
#include <cstddef>
#include <cstdint>

#include "toolkit/controls/gifwalk.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    GifStream stream;
    if (WalkGif(bytes, true, stream) != GifWalkResult::Walked) return 0;
    for (int i = 0; i < stream.frames.size(); ++i) CutGifFrame(stream, i);
    return 0;
}
