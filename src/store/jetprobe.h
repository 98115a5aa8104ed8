#pragma once

#include <QString>

namespace jetfile {

// libmdb trusts what a file says of itself, and a damaged file can make it read anywhere and
// crash. The file is read once through libmdb in a child process first: false when that
// reading killed the child, so the file must not be read in this process.
bool LibmdbReadsSafely(const QString& path);

}  // namespace jetfile
