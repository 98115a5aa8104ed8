#pragma once

// A timed scenario asks nobody: each box it raises is noted and answered at once, and a
// scenario that raised one reports it instead of a time. The responder goes with the recorder.

#include <QStringList>

#include "toolkit/vb/msgbox.h"

class BoxRecorder {
  public:
    explicit BoxRecorder(int answer) {
        SetMsgBoxResponder([this, answer](const MsgBoxCall& call) {
            prompts << call.prompt;
            return answer;
        });
    }
    ~BoxRecorder() { SetMsgBoxResponder({}); }
    BoxRecorder(const BoxRecorder&) = delete;
    BoxRecorder& operator=(const BoxRecorder&) = delete;

    QStringList prompts;
};
