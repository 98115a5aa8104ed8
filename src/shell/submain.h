#pragma once

// The entry point's work: the splash, then the main window's start-up. Returns the exit code.
int SubMain();

// Keeps memory the program frees for its own reuse. Filling the list of a large catalogue
// allocates tens of megabytes and frees them at the next fill; handing them back to the system
// each time makes every fill fault all its pages in again.
void KeepFreedMemoryForReuse();
