#pragma once

#include <QHash>
#include <QString>
#include <optional>

// The string values of a Wine registry file (user.reg of a prefix): sections named by their key
// path with doubled backslashes, "name"="value" lines with backslash escapes.
class WineRegistry {
  public:
    // A missing or unreadable file has no keys.
    explicit WineRegistry(const QString& path);

    // The string value under a key path as "Software\ODBC\ODBC.INI\DeluxeCD"; key and value
    // names are matched without regard to case. Values that are not strings are not found.
    std::optional<QString> Value(const QString& keyPath, const QString& valueName) const;

  private:
    // Folded key path -> folded value name -> value.
    QHash<QString, QHash<QString, QString>> keys_;
};
