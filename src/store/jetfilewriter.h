#pragma once

// The changes made through a Jet database's recordsets, written into its file by the program's
// own Jet writer. Only the code that means to change a Jet file installs it, for as long as it
// needs it; every other opening of a Jet file (the import) stays read-only.

#include "store/jetdatabase.h"

class ScopedJetFileWriter {
  public:
    ScopedJetFileWriter();
    ~ScopedJetFileWriter();
    ScopedJetFileWriter(const ScopedJetFileWriter&) = delete;
    ScopedJetFileWriter& operator=(const ScopedJetFileWriter&) = delete;
};
