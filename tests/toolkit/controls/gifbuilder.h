#pragma once

#include <QByteArray>
#include <QList>

// Writes small GIF streams for the tests: every frame's pixels go through a plain LZW stream
// that clears its table before the code width would grow.
struct TestGifFrame {
    int left = 0, top = 0, width = 1, height = 1;
    QList<unsigned char> pixels;  // width x height colour indices 0..3, row by row
    QByteArray localTable;        // 12 bytes (4 colours) when the frame has its own
    bool transparent = false;
    int transparentIndex = 0;
    int delay = 0;
    int disposal = 0;
};

inline QByteArray LzwPixels(const QList<unsigned char>& pixels) {
    QByteArray out;
    quint32 bits = 0;
    int count = 0;
    auto emitCode = [&](int code) {
        bits |= static_cast<quint32>(code) << count;
        count += 3;
        while (count >= 8) {
            out.append(static_cast<char>(bits & 0xFF));
            bits >>= 8;
            count -= 8;
        }
    };
    for (int i = 0; i < pixels.size(); ++i) {
        if (i % 2 == 0) emitCode(4);
        emitCode(pixels[i]);
    }
    emitCode(5);
    if (count > 0) out.append(static_cast<char>(bits & 0xFF));
    QByteArray blocks;
    blocks.append(char(2));
    for (int at = 0; at < out.size(); at += 255) {
        const QByteArray piece = out.mid(at, 255);
        blocks.append(static_cast<char>(piece.size()));
        blocks.append(piece);
    }
    blocks.append(char(0));
    return blocks;
}

inline void AppendWord(QByteArray& data, int value) {
    data.append(static_cast<char>(value & 0xFF));
    data.append(static_cast<char>((value >> 8) & 0xFF));
}

inline QByteArray BuildGif(int width, int height, const QByteArray& globalTable,
                           const QList<TestGifFrame>& frames, const QByteArray& extra = {}) {
    QByteArray data("GIF89a");
    AppendWord(data, width);
    AppendWord(data, height);
    data.append(static_cast<char>(globalTable.isEmpty() ? 0 : 0x81));
    data.append(char(0));
    data.append(char(0));
    data.append(globalTable);
    data.append(extra);
    for (const TestGifFrame& frame : frames) {
        data.append("\x21\xF9\x04", 3);
        data.append(static_cast<char>((frame.disposal << 2) | (frame.transparent ? 1 : 0)));
        AppendWord(data, frame.delay);
        data.append(static_cast<char>(frame.transparentIndex));
        data.append(char(0));
        data.append(char(0x2C));
        AppendWord(data, frame.left);
        AppendWord(data, frame.top);
        AppendWord(data, frame.width);
        AppendWord(data, frame.height);
        data.append(static_cast<char>(frame.localTable.isEmpty() ? 0 : 0x81));
        data.append(frame.localTable);
        data.append(LzwPixels(frame.pixels));
    }
    data.append(';');
    return data;
}
