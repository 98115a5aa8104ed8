#pragma once

// Jet's like: `*` any run, `?` one character, `#` one digit, `[abc]`, `[a-z]` and `[!abc]`,
// compared without regard to case. It replaces SQLite's own like on every connection, so the
// program's statements keep their Jet patterns.

#include <QList>
#include <QString>
#include <vector>

struct sqlite3;

namespace jetlike {

class Pattern {
  public:
    explicit Pattern(const QString& pattern);
    bool Matches(const QString& text) const;
    bool MatchesUtf8(const char* text, int length) const;

  private:
    struct Token {
        enum Kind : unsigned char { Literal, AnyRun, AnyOne, Digit, Set } kind;
        bool negated = false;
        char32_t ch = 0;
        // Inclusive ranges of a set; a single character is a range of one.
        std::vector<std::pair<char32_t, char32_t>> ranges;
        bool Accepts(char32_t folded) const;
    };
    template <typename Text>
    bool MatchText(const Text& text) const;

    std::vector<Token> tokens_;
};

// Installs the two-argument like on the connection.
void Register(sqlite3* db);

}  // namespace jetlike
