#pragma once

// What the list read last and what it is reading, so that a repeated request reads nothing.

#include <QString>

struct ListReadState {
    QString lastKey;
    QString readingKey;
    int nodeIndex = 0;
};

extern ListReadState gListReadState;
