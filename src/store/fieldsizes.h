#pragma once

// Column widths read from the catalogue at each start; every input limit comes from these.
extern int gLenTitle;
extern int gLenLabel;
extern int gLenPlatform;
extern int gLenType;
extern int gLenSpecific;
extern int gLenMediatype;
extern int gLenVendor;
extern int gLenTrackName;

// Reads the eight widths from gDatabase through an empty join.
void ReadFieldSizes();
