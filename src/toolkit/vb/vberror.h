#pragma once

#include <QString>
#include <exception>

// The program's error object. A routine that can fail throws it; the trap at the routine's end
// catches it and shows Description (or Number, ": " and Description) in a box.
class VbError : public std::exception {
  public:
    explicit VbError(int number, const QString& description = QString(),
                     const QString& source = QString());

    int Number;
    QString Description;
    QString Source;

    // The text Visual Basic gives an error number when no description was raised with it.
    static QString StandardDescription(int number);
    const char* what() const noexcept override;

  private:
    QByteArray whatText;
};

// One statement of a routine whose errors pass on to the next statement: a failure ends this
// statement alone, and the routine goes on.
template <typename Statement>
void ResumeNext(Statement&& statement) {
    try {
        statement();
    } catch (const VbError&) {
    }
}

// The name under which the program raises its own errors (1309, 1500...).
QString ProgramFileName();
