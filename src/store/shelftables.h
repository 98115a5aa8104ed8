#pragma once

#include "store/dao.h"

// What a collector files from the shelf lives in tables beside the catalogue's seven, so that
// the seven, their statements, imports and exports stay as they are and a program without these
// tables opens the file as well:
//   titlerelease: the MusicBrainz release a title was named from and the barcode on its case;
//   cover:        the title's front cover as it came (JPEG or PNG, scaled down when too large),
//                 its thumbnail, where it came from and when.
// Both are keyed by the title's idcd and go with their title (the relation cascades).

// Makes the tables a catalogue lacks; the file decides, as with the label's width. Needs
// nothing of the tables already there and leaves them alone.
void MakeShelfTables(Database& database);
