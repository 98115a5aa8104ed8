#pragma once

#include <QString>
#include <QtGlobal>

// String values in a registry of our own. Keys under
// HKEY_CURRENT_USER\Software\ODBC\ODBC.INI\<name> are the user's ODBC data sources, section
// [<name>] of ~/.odbc.ini; every other key is a section, named by its full path, of the
// per-user file velmora/registry.ini in the XDG config folder.

using RegistryHandle = quint32;

constexpr RegistryHandle HKEY_CLASSES_ROOT = 0x80000000;
constexpr RegistryHandle HKEY_CURRENT_USER = 0x80000001;
constexpr RegistryHandle HKEY_LOCAL_MACHINE = 0x80000002;
constexpr RegistryHandle HKEY_USERS = 0x80000003;
constexpr RegistryHandle HKEY_PERFORMANCE_DATA = 0x80000004;
constexpr RegistryHandle HKEY_CURRENT_CONFIG = 0x80000005;
constexpr RegistryHandle HKEY_DYN_DATA = 0x80000006;

constexpr int REG_SZ = 1;
constexpr int REG_EXPAND_SZ = 2;

// The handle of a root key's name, 0 for any other name.
RegistryHandle RootKeyHandle(const QString& rootName);

// Splits "ROOT\sub\key": keyName becomes the sub key (empty without a "\"), rootKey the root's
// handle. A path ending in "\" or not starting with "HKEY_" is reported in a box, and parsing
// goes on.
void ParseKey(QString& keyName, RegistryHandle& rootKey);

// The string value of a key given by its full path, or the text "Error".
QString GetRegistryValue(const QString& keyName, const QString& valueName);

// Creates (or opens) the key of a full path and hands back its handle.
void CreateRegistryKey(RegistryHandle& handle, const QString& keyName);

// Writes a string value under an open key; type is REG_SZ or REG_EXPAND_SZ.
void SetRegistryValue(RegistryHandle handle, const QString& valueName, const QString& data,
                      int type);

// The result of the last registry call: 0 for success, else a Windows error code.
long LastRegistryResult();
// The message text of a registry result code.
QString RegistryErrorText(long code);
