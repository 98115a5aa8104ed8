#pragma once

#include <QByteArray>
#include <QList>
#include <array>
#include <optional>

// The walk through a GIF stream that finds its frames without decoding any picture data, and
// the cutting of one frame into a GIF file of its own. Positions are one-based, as the stream
// is patched and cut by them.

using GifPalette = std::array<unsigned char, 768>;

struct GifFrame {
    int lFrameStart = 0;
    int lFrameEnd = 0;
    int iLeft = 0, iTop = 0, iWidth = 0, iHeight = 0;
    bool bLocalTable = false, bInterlaced = false, bSorted = false;
    int bLocalSize = 0;
    int lPaletteStart = 0;
    int bCodeSize = 0;
    int iDelay = 0;
    int bTransparentIndex = 0;
    int bDisposal = 0;
    bool bUserInput = false;
    bool bTransparent = false;
    GifPalette abFramePalette{};
};

struct GifStream {
    QByteArray abData;  // patched in place by the walk and the cutting
    int iScreenWidth = 0, iScreenHeight = 0;
    int bBackgroundIndex = 0, bAspect = 0, bColorResolution = 0;
    bool bGlobalTable = false, bGlobalSorted = false;
    int bGlobalSize = 0;
    int lGlobalPaletteStart = 0;
    GifPalette abGlobalPalette{};
    GifPalette abLocalPalette{};
    QList<GifFrame> frames;
};

enum class GifWalkResult { Walked, NotAGif, Truncated };

// Walks data into stream. With repairTransparency, a transparent colour that another palette
// entry shares is replaced by one that no entry has. A read past the end is a Truncated result.
GifWalkResult WalkGif(const QByteArray& data, bool repairTransparency, GifStream& stream);

// The single-frame GIF file of frame i, ending in the four closing bytes. Patches the shared
// header byte of the stream as the cutting requires.
QByteArray CutGifFrame(GifStream& stream, int i);
