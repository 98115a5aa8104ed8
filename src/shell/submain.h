#pragma once

// The entry point's work: the splash, then the main window's start-up. Returns the exit code.
int SubMain();
