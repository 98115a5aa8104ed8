#pragma once

#include <QString>

// Jet statements that SQLite cannot run as the program writes them, and their working forms.
// Every such adaptation lives in adaptedsql.cpp and is applied before a statement is prepared.
QString AdaptStatement(const QString& jetStatement);
