#pragma once

// The catalogue file's guard and the file attributes the opening tests.

#include <QString>

// Attribute bits with their Windows values. Linux has no hidden attribute, so it never shows.
enum FileAttribute { vbReadOnly = 1, vbHidden = 2, vbArchive = 32 };

enum HeaderMode { kGuardHeader = 1, kUnguardHeader = 2 };

// The file's attributes: 32, plus 1 when the owner lacks write permission.
int GetAttr(const QString& path);
// 32 gives the owner read and write permission; 1 added takes write away.
void SetAttr(const QString& path, int attributes);
// A plain existence test of a file (hidden files would count too, if Linux had them).
bool FileExists(const QString& path);

// Writes the engine's 15-character signature at the start of the file, byte by byte:
// mode 1 the guarded "SQLite format F", mode 2 the usable "SQLite format 3".
void FlipDatabaseHeader(const QString& path, int mode);
