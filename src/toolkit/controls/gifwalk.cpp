#include "toolkit/controls/gifwalk.h"

#include <cmath>
#include <cstring>

namespace {

struct PastTheEnd {};

// One-based, bounds-checked access to the stream.
class Bytes {
  public:
    explicit Bytes(QByteArray& data) : data_(data) {}
    int at(qint64 pos) const {
        if (pos < 1 || pos > data_.size()) throw PastTheEnd{};
        return static_cast<unsigned char>(data_[pos - 1]);
    }
    int word(qint64 pos) const { return at(pos) | (at(pos + 1) << 8); }
    void set(qint64 pos, int value) {
        at(pos);
        data_[pos - 1] = static_cast<char>(value);
    }
    void copyTo(qint64 pos, int length, GifPalette& target) const {
        at(pos);
        at(pos + length - 1);
        std::memcpy(target.data(), data_.constData() + pos - 1, length);
    }
    qint64 size() const { return data_.size(); }

  private:
    QByteArray& data_;
};

int TableBytes(int sizeBits) {
    return 3 * (1 << (sizeBits + 1));
}

// Follows data sub-blocks from the length byte behind pos to the terminator before it.
qint64 SkipSubBlocks(const Bytes& b, qint64 pos) {
    while (b.at(pos + 1) != 0) pos += b.at(pos + 1) + 1;
    return pos;
}

void ReadGraphicControl(const Bytes& b, qint64 pos, GifFrame& frame) {
    const int packed = b.at(pos + 3);
    frame.iDelay = static_cast<qint16>(b.word(pos + 4));
    frame.bTransparentIndex = b.at(pos + 6);
    frame.bDisposal = (packed >> 2) & 7;
    frame.bUserInput = packed & 2;
    frame.bTransparent = packed & 1;
}

// Steps over extensions to the image descriptor; false when the trailer ends the stream first.
bool ScanToDescriptor(const Bytes& b, qint64& pos, GifFrame& frame) {
    for (;;) {
        const int byte = b.at(pos);
        if (byte == 0x2C) return true;
        if (byte == 0x21) {
            switch (b.at(pos + 1)) {
                case 255:
                    pos = SkipSubBlocks(b, pos + 14 + b.at(pos + 14));
                    break;
                case 254:
                    pos = SkipSubBlocks(b, pos + 2 + b.at(pos + 2)) + 1;
                    break;
                case 1:
                    // The 14 is not added here; the byte scan recovers from it.
                    pos = SkipSubBlocks(b, pos + b.at(pos + 14));
                    break;
                case 249:
                    ReadGraphicControl(b, pos, frame);
                    pos += 7;
                    break;
                default:
                    break;
            }
        }
        if (b.at(pos) == 0x3B && pos >= b.size() - 4) return false;
        ++pos;
    }
}

// A palette entry that shares the transparent colour would vanish with it, so the transparent
// entry gets a colour that lies in no entry of the table.
void RepairTransparentColor(GifStream& s, Bytes& b, GifFrame& frame, int& secondLargest) {
    const int tableBytes = TableBytes(frame.bLocalTable ? frame.bLocalSize : s.bGlobalSize);
    const GifPalette& table = frame.abFramePalette;
    const int keyOffset = frame.bTransparentIndex * 3;
    if (keyOffset + 2 >= tableBytes) return;
    auto colorAt = [&](int offset) {
        return table[offset] | (table[offset + 1] << 8) | (table[offset + 2] << 16);
    };
    const int key = colorAt(keyOffset);
    int sharedOffset = -1;
    for (int offset = 0; offset <= tableBytes - 3; offset += 3)
        if (offset != keyOffset && colorAt(offset) == key) sharedOffset = offset;
    if (sharedOffset < 0) return;
    int largest = 0;
    for (int offset = 0; offset <= tableBytes - 3; offset += 3) {
        const int color = colorAt(offset);
        if (color > largest) {
            secondLargest = largest;
            largest = color;
        } else if (color > secondLargest) {
            secondLargest = color;
        }
    }
    const int replacement = static_cast<int>(std::nearbyint(secondLargest / 2.0));
    const int rgb[3] = {replacement & 0xFF, (replacement >> 8) & 0xFF, (replacement >> 16) & 0xFF};
    const int tableStart = frame.bLocalTable ? frame.lPaletteStart : s.lGlobalPaletteStart;
    for (int c = 0; c < 3; ++c) {
        frame.abFramePalette[keyOffset + c] = rgb[c];
        b.set(tableStart + keyOffset + c, rgb[c]);
        if (!frame.bLocalTable) s.abGlobalPalette[keyOffset + c] = rgb[c];
    }
}

void Walk(GifStream& s, Bytes& b, bool repairTransparency) {
    s.iScreenWidth = b.word(7);
    s.iScreenHeight = b.word(9);
    const int packed = b.at(11);
    s.bGlobalTable = packed & 128;
    s.bColorResolution = (packed >> 4) & 7;
    s.bGlobalSorted = packed & 8;
    s.bGlobalSize = packed & 7;
    s.bBackgroundIndex = b.at(12);
    s.bAspect = b.at(13);
    qint64 pos = 13;
    if (s.bGlobalTable) {
        b.copyTo(14, TableBytes(s.bGlobalSize), s.abGlobalPalette);
        s.lGlobalPaletteStart = 14;
        pos += TableBytes(s.bGlobalSize);
    }
    ++pos;
    int secondLargest = 0;
    qint64 frameStart = pos;
    while (pos <= b.size()) {
        GifFrame frame;
        frame.lFrameStart = static_cast<int>(frameStart);
        if (s.bGlobalTable) frame.abFramePalette = s.abGlobalPalette;
        const bool found = ScanToDescriptor(b, pos, frame);
        if (!found) break;
        frame.iLeft = b.word(pos + 1);
        frame.iTop = b.word(pos + 3);
        frame.iWidth = b.word(pos + 5);
        frame.iHeight = b.word(pos + 7);
        const int descriptor = b.at(pos + 9);
        frame.bLocalTable = descriptor & 128;
        frame.bInterlaced = descriptor & 64;
        frame.bSorted = descriptor & 32;
        frame.bLocalSize = descriptor & 7;
        if (frame.bLocalTable) {
            const int tableBytes = TableBytes(frame.bLocalSize);
            b.copyTo(pos + 10, tableBytes, s.abLocalPalette);
            frame.abFramePalette = s.abLocalPalette;
            frame.lPaletteStart = static_cast<int>(pos + 10);
            pos += tableBytes;
        }
        frame.bCodeSize = b.at(pos + 10);
        pos = SkipSubBlocks(b, pos + 10) + 1;
        if (repairTransparency && frame.bTransparent)
            RepairTransparentColor(s, b, frame, secondLargest);
        frame.lFrameEnd = static_cast<int>(pos);
        s.frames.append(frame);
        ++pos;
        frameStart = pos;
        if (pos <= b.size() && b.at(pos) == 0x3B) break;
    }
}

}  // namespace

GifWalkResult WalkGif(const QByteArray& data, bool repairTransparency, GifStream& stream) {
    stream = GifStream{};
    stream.abData = data;
    if (!data.startsWith("GIF8")) return GifWalkResult::NotAGif;
    Bytes bytes(stream.abData);
    try {
        Walk(stream, bytes, repairTransparency);
    } catch (const PastTheEnd&) {
        stream.frames.clear();
        return GifWalkResult::Truncated;
    }
    return GifWalkResult::Walked;
}

QByteArray CutGifFrame(GifStream& s, int i) {
    const GifFrame& frame = s.frames.at(i);
    QByteArray& data = s.abData;
    QByteArray file;
    if (frame.bLocalTable) {
        // The frame's own table becomes the file's global one.
        data[10] = static_cast<char>(frame.bLocalSize | 128);
        file.append(data.left(13));
        file.append(reinterpret_cast<const char*>(frame.abFramePalette.data()),
                    TableBytes(frame.bLocalSize));
        data[frame.lPaletteStart - 2] = static_cast<char>(data[frame.lPaletteStart - 2] & 120);
        file.append(data.mid(frame.lFrameStart - 1, frame.lPaletteStart - frame.lFrameStart));
        const int behindTable = frame.lPaletteStart + TableBytes(frame.bLocalSize);
        file.append(data.mid(behindTable - 1, frame.lFrameEnd - behindTable + 1));
    } else {
        file.append(data.left(s.frames.first().lFrameStart - 1));
        file.append(data.mid(frame.lFrameStart - 1, frame.lFrameEnd - frame.lFrameStart));
    }
    file.append('\0');
    file.append("\x21\xF9", 2);
    file.append(';');
    return file;
}
