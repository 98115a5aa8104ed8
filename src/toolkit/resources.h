#pragma once

// The icons, skins and pictures compiled into the program; called once before any window.
void InitResources();
