#include "store/jetlike.h"

#include <sqlite3.h>

#include <QList>
#include <memory>
#include <string_view>

namespace jetlike {
namespace {

char32_t Fold(char32_t c) {
    if (c < 0x80) return (c >= 'A' && c <= 'Z') ? c + ('a' - 'A') : c;
    return QChar::toCaseFolded(c);
}

// Text as the matcher walks it: folded code points by index.
struct AsciiText {
    std::string_view bytes;
    size_t size() const { return bytes.size(); }
    char32_t at(size_t i) const { return Fold(static_cast<unsigned char>(bytes[i])); }
};
struct WideText {
    QList<uint> points;
    size_t size() const { return points.size(); }
    char32_t at(size_t i) const { return Fold(points[i]); }
};

bool IsAscii(const char* text, int length) {
    for (int i = 0; i < length; ++i)
        if (static_cast<unsigned char>(text[i]) >= 0x80) return false;
    return true;
}

void DeletePattern(void* pattern) {
    delete static_cast<Pattern*>(pattern);
}

void JetLike(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    // The pattern is usually a constant of the statement: compile it once and keep it with the
    // statement for every row.
    const Pattern* pattern = static_cast<const Pattern*>(sqlite3_get_auxdata(context, 0));
    std::unique_ptr<Pattern> local;
    if (!pattern) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
        const QString source = QString::fromUtf8(text, sqlite3_value_bytes(argv[0]));
        sqlite3_set_auxdata(context, 0, new Pattern(source), DeletePattern);
        pattern = static_cast<const Pattern*>(sqlite3_get_auxdata(context, 0));
        if (!pattern) {
            local = std::make_unique<Pattern>(source);
            pattern = local.get();
        }
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    sqlite3_result_int(context, pattern->MatchesUtf8(text, sqlite3_value_bytes(argv[1])) ? 1 : 0);
}

}  // namespace

Pattern::Pattern(const QString& pattern) {
    const QList<uint> points = pattern.toUcs4();
    for (qsizetype i = 0; i < points.size(); ++i) {
        const char32_t c = points[i];
        Token token{Token::Literal, false, 0, {}};
        if (c == '*') {
            // Consecutive stars are one run.
            if (!tokens_.empty() && tokens_.back().kind == Token::AnyRun) continue;
            token.kind = Token::AnyRun;
        } else if (c == '?') {
            token.kind = Token::AnyOne;
        } else if (c == '#') {
            token.kind = Token::Digit;
        } else if (c == '[' && points.indexOf(']', i + 2) > 0) {
            // A set runs to the next ']' after its first member, so "[]]" holds ']'.
            const qsizetype end = points.indexOf(']', i + 2);
            qsizetype j = i + 1;
            token.kind = Token::Set;
            if (points[j] == '!' && j + 1 < end) {
                token.negated = true;
                ++j;
            }
            for (; j < end; ++j) {
                if (j + 2 < end && points[j + 1] == '-') {
                    token.ranges.emplace_back(Fold(points[j]), Fold(points[j + 2]));
                    j += 2;
                } else {
                    token.ranges.emplace_back(Fold(points[j]), Fold(points[j]));
                }
            }
            i = end;
        } else {
            token.ch = Fold(c);
        }
        tokens_.push_back(std::move(token));
    }
}

bool Pattern::Token::Accepts(char32_t folded) const {
    switch (kind) {
        case Literal:
            return folded == ch;
        case AnyOne:
            return true;
        case Digit:
            return folded >= '0' && folded <= '9';
        case Set:
            for (const auto& [low, high] : ranges)
                if (folded >= low && folded <= high) return !negated;
            return negated;
        case AnyRun:
            break;
    }
    return false;
}

template <typename Text>
bool Pattern::MatchText(const Text& text) const {
    // Every token but the run takes exactly one character, so backtracking to the last run is
    // enough: the classic two-pointer wildcard walk.
    const size_t npos = static_cast<size_t>(-1);
    size_t t = 0, p = 0, runToken = npos, runText = 0;
    const size_t length = text.size();
    while (t < length) {
        if (p < tokens_.size() && tokens_[p].kind == Token::AnyRun) {
            runToken = p++;
            runText = t;
        } else if (p < tokens_.size() && tokens_[p].Accepts(text.at(t))) {
            ++p;
            ++t;
        } else if (runToken != npos) {
            p = runToken + 1;
            t = ++runText;
        } else {
            return false;
        }
    }
    while (p < tokens_.size() && tokens_[p].kind == Token::AnyRun) ++p;
    return p == tokens_.size();
}

bool Pattern::Matches(const QString& text) const {
    return MatchText(WideText{text.toUcs4()});
}

bool Pattern::MatchesUtf8(const char* text, int length) const {
    if (IsAscii(text, length)) return MatchText(AsciiText{std::string_view(text, length)});
    return MatchText(WideText{QString::fromUtf8(text, length).toUcs4()});
}

void Register(sqlite3* db) {
    sqlite3_create_function_v2(db, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, JetLike,
                               nullptr, nullptr, nullptr);
}

}  // namespace jetlike
