#include "bench/updatescenarios.h"

#include <QElapsedTimer>

#include "toolkit/AnimatedGifCtl.h"
#include "toolkit/vberror.h"

std::vector<double> TimeSpinnerLoad(int runs) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        AnimatedGifCtl gif;
        QElapsedTimer timer;
        timer.start();
        gif.LoadGif(100);
        times.push_back(timer.nsecsElapsed() / 1e6);
        if (!gif.bValidGif() || gif.NumberofFrames() < 1)
            throw VbError(0, "the spinner did not load");
    }
    return times;
}
