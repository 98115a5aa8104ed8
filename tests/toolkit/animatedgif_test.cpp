#include <QDir>

#include "support/testsupport.h"
#include "toolkit/AnimatedGifCtl.h"
#include "toolkit/gifbuilder.h"

namespace {

// Black, red, green, blue.
const QByteArray kGlobalTable("\x00\x00\x00\xFF\x00\x00\x00\xFF\x00\x00\x00\xFF", 12);
// White, yellow, cyan, and red again, so the transparent red shares its colour.
const QByteArray kLocalTable("\xFF\xFF\xFF\xFF\xFF\x00\x00\xFF\xFF\xFF\x00\x00", 12);

TestGifFrame Filled(int left, int top, int width, int height, unsigned char index) {
    TestGifFrame frame;
    frame.left = left;
    frame.top = top;
    frame.width = width;
    frame.height = height;
    frame.pixels = QList<unsigned char>(width * height, index);
    return frame;
}

QStringList TempFrameFiles() {
    return QDir(QDir::tempPath()).entryList({"*.CUSTOM"}, QDir::Files);
}

}  // namespace

class AnimatedGifTest : public QObject {
    Q_OBJECT

  private slots:
    void framesOfDifferentSizesAndTablesAreCutAndDrawn() {
        ScriptedDialogs dialogs;
        TestGifFrame first = Filled(0, 0, 4, 3, 1);
        first.delay = 7;
        TestGifFrame wide = Filled(2, 1, 40, 2, 2);
        wide.localTable = kLocalTable;
        wide.disposal = 2;
        AnimatedGifCtl gif;
        gif.SetUserDelay(500);
        gif.LoadGifData(BuildGif(8, 4, kGlobalTable, {first, wide}));
        QVERIFY(gif.bValidGif());
        QCOMPARE(gif.NumberofFrames(), 1);
        QCOMPARE(gif.UserDelay(), 1);
        QVERIFY(TempFrameFiles().isEmpty());
        const GifStream& s = gif.Stream();
        QCOMPARE(s.frames[0].iDelay, 7);
        QVERIFY(s.frames[1].bLocalTable);
        QCOMPARE(s.frames[1].iWidth, 40);
        // The wide frame widens the canvas, rounded up to 32 pixels.
        QCOMPARE(gif.Canvas().size(), QSize(64, 4));
        QCOMPARE(gif.FramePicture(0).pixel(0, 0), qRgb(255, 0, 0));
        QCOMPARE(gif.FramePicture(1).size(), QSize(40, 2));
        QCOMPARE(gif.FramePicture(1).pixel(0, 0), qRgb(0, 255, 255));
        QCOMPARE(gif.Canvas().pixel(3, 2), qRgb(255, 0, 0));
        // The second frame clears the canvas first, then lands at its own place.
        gif.RenderGif(1);
        QCOMPARE(gif.Canvas().pixel(0, 0), gif.BackColor().rgb());
        QCOMPARE(gif.Canvas().pixel(2, 1), qRgb(0, 255, 255));
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void transparencyMasksTheKeyAndRepairsASharedColour() {
        TestGifFrame base = Filled(0, 0, 2, 2, 3);
        TestGifFrame overlay = Filled(0, 0, 2, 2, 3);
        overlay.pixels = {3, 1, 1, 3};
        // White, red, cyan, and red again at the transparent entry.
        overlay.localTable = QByteArray("\xFF\xFF\xFF\xFF\x00\x00\x00\xFF\xFF\xFF\x00\x00", 12);
        overlay.transparent = true;
        overlay.transparentIndex = 3;
        AnimatedGifCtl gif;
        gif.LoadGifData(BuildGif(2, 2, kGlobalTable, {base, overlay}));
        QVERIFY(gif.bValidGif());
        // The key got a colour of its own, half the second-largest colour value of the table.
        const GifPalette& palette = gif.Stream().frames[1].abFramePalette;
        const int largestButOne = 0xFFFF00;  // cyan, red in the low byte
        const int repaired = qRound(largestButOne / 2.0);
        QCOMPARE(palette[9] | (palette[10] << 8) | (palette[11] << 16), repaired);
        gif.RenderGif(1);
        QCOMPARE(gif.Canvas().pixel(0, 0), qRgb(0, 0, 255));
        QCOMPARE(gif.Canvas().pixel(1, 0), qRgb(255, 0, 0));
        QCOMPARE(gif.Canvas().pixel(1, 1), qRgb(0, 0, 255));

        gif.ChangeTransparentColor = false;
        gif.LoadGifData(BuildGif(2, 2, kGlobalTable, {base, overlay}));
        QCOMPARE(gif.Stream().frames[1].abFramePalette[9], static_cast<unsigned char>(0xFF));
    }

    void timerPlaysEveryFrameWithItsDelay() {
        TestGifFrame slow = Filled(0, 0, 1, 1, 1);
        slow.delay = 20;
        TestGifFrame instant = Filled(0, 0, 1, 1, 2);
        AnimatedGifCtl gif;
        gif.LoadGifData(BuildGif(1, 1, kGlobalTable, {slow, instant}));
        QVERIFY(!gif.TimerRunning());
        gif.StartTimer();
        QCOMPARE(gif.TimerInterval(), 250);
        QTRY_COMPARE(gif.CurrentFrame(), 1);
        QCOMPARE(gif.TimerInterval(), 201);
        QTRY_COMPARE(gif.CurrentFrame(), 0);
        // A delay of 0 plays at the user delay alone.
        QCOMPARE(gif.TimerInterval(), 1);
        gif.StopTimer();
        QVERIFY(!gif.TimerRunning());
        gif.SetUserDelay("fast");
        QCOMPARE(gif.UserDelay(), 10);
        gif.SetUserDelay(5000);
        QCOMPARE(gif.UserDelay(), 1000);
    }

    void badStreamsFailCleanly() {
        ScriptedDialogs dialogs;
        AnimatedGifCtl gif;
        gif.LoadGifData("PNG not a picture at all");
        QVERIFY(!gif.bValidGif());
        QCOMPARE(
            dialogs.takeBoxes(),
            Boxes(
                {{"Sorry, not an Animated Gif file", vbOKOnly, "Not a Valid Animated Gif File!"},
                 {"Sorry, you must first load a valid Animated Gif file.", vbOKOnly, "Velmora"}}));
        gif.StartTimer();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"Sorry, you must first load an Animated Gif file", vbOKOnly, "Velmora"}}));

        const QByteArray whole = BuildGif(4, 4, kGlobalTable, {Filled(0, 0, 4, 4, 1)});
        for (int cut : {5, 20, 30, static_cast<int>(whole.size()) - 3}) {
            gif.LoadGifData(whole.left(cut));
            QVERIFY2(!gif.bValidGif(), qPrintable(QString::number(cut)));
            QVERIFY(dialogs.msgBoxes.isEmpty());
        }
        // "GIF8" and anything after it passes the signature test.
        gif.LoadGifData("GIF8" + whole.mid(4));
        QVERIFY(gif.bValidGif());
    }

    void theSpinnerResourcePlays() {
        AnimatedGifCtl gif;
        gif.LoadGif(100);
        QVERIFY(gif.bValidGif());
        QVERIFY(gif.NumberofFrames() >= 7);
        for (int frame = 0; frame <= gif.NumberofFrames(); ++frame)
            QVERIFY(!gif.FramePicture(frame).isNull());
        QVERIFY(TempFrameFiles().isEmpty());
    }
};

VELMORA_TEST_MAIN(AnimatedGifTest)
#include "animatedgif_test.moc"
