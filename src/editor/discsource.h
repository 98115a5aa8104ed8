#pragma once

#include <QString>
#include <functional>

struct AudioDisc;
struct DataDisc;

// What the user is asked to pick when the drive cannot serve.
enum class DiscChoice { AudioImage, IsoImage, Folder };

// Picks an image file or a folder; empty when the user cancels. The desktop's dialog unless a
// test stands in its own.
QString ChooseDiscSource(DiscChoice choice);
void SetDiscSourceChooser(std::function<QString(DiscChoice)> chooser);

// Reads the audio CD in the drive; without a drive or a readable disc in it, offers an image
// file instead. Every failure is told in a box; false leaves disc as it was.
bool ReadAudioDiscFromUser(AudioDisc& disc, const QString& boxTitle);
// Lists the data disc in the drive, an ISO image or a mounted folder, as above. Folders that
// cannot be read are named, and the listing without them is used only if the user agrees.
bool ReadDataDiscFromUser(DataDisc& disc, const QString& boxTitle);
