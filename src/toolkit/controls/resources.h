#pragma once

// toolkit/controls: the owner-drawn controls and the pictures they draw, over vb and platform.

// The icons, skins and pictures compiled into the program; called once before any window.
void InitResources();
