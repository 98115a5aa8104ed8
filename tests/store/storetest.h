#pragma once

// Shared by the store's tests: reading a catalogue through the lists' join.

#include <QString>

#include "store/dao.h"
#include "support/testsupport.h"

// The join every list view rests on.
inline const QString& kJoin = kTitleJoinInListOrder;
