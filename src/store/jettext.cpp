#include "store/jettext.h"

#include <sqlite3.h>

#include <QList>

namespace jettext {
namespace {

char FoldAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool IsAscii(QStringView text) {
    for (const QChar c : text)
        if (c.unicode() >= 0x80) return false;
    return true;
}

void Append(QString& text, char32_t point) {
    if (QChar::requiresSurrogates(point)) {
        text.append(QChar(QChar::highSurrogate(point)));
        text.append(QChar(QChar::lowSurrogate(point)));
    } else {
        text.append(QChar(static_cast<char16_t>(point)));
    }
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

int CollateUtf8(void*, int lengthA, const void* a, int lengthB, const void* b) {
    return CompareUtf8({static_cast<const char*>(a), static_cast<size_t>(lengthA)},
                       {static_cast<const char*>(b), static_cast<size_t>(lengthB)});
}

}  // namespace

SortKey MakeSortKey(QStringView text) {
    SortKey key;
    if (IsAscii(text)) {
        key.base.resize(text.size());
        for (qsizetype i = 0; i < text.size(); ++i)
            key.base[i] = QChar(FoldAscii(static_cast<char>(text[i].unicode())));
        return key;
    }
    // Decomposed, an accented letter is its base letter followed by its marks.
    const QString decomposed = text.toString().normalized(QString::NormalizationForm_D);
    key.base.reserve(decomposed.size());
    key.accents.reserve(decomposed.size());
    bool marked = false;
    for (const char32_t point : decomposed.toUcs4()) {
        const char32_t folded = QChar::toCaseFolded(point);
        Append(key.accents, folded);
        if (QChar::category(folded) == QChar::Mark_NonSpacing)
            marked = true;
        else
            Append(key.base, folded);
    }
    if (!marked) key.accents.clear();
    return key;
}

int Compare(const SortKey& a, const SortKey& b) {
    const int byBase = a.base.compare(b.base, Qt::CaseSensitive);
    if (byBase != 0) return Sign(byBase);
    return Sign(a.Accented().compare(b.Accented(), Qt::CaseSensitive));
}

int Compare(QStringView a, QStringView b) {
    return Compare(MakeSortKey(a), MakeSortKey(b));
}

int CompareUtf8(std::string_view a, std::string_view b) {
    // Most names are plain ASCII: compare them in place. A common ASCII start decides nothing,
    // since marks only attach to what follows it, so the rest is compared on its own.
    size_t i = 0;
    const size_t common = std::min(a.size(), b.size());
    for (; i < common; ++i) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[i]);
        if ((ca | cb) >= 0x80) break;
        const char fa = FoldAscii(static_cast<char>(ca));
        const char fb = FoldAscii(static_cast<char>(cb));
        if (fa != fb) return fa < fb ? -1 : 1;
    }
    if (i == a.size() && i == b.size()) return 0;
    // A longer text whose rest starts in ASCII has more letters, not just more marks.
    if (i == a.size() && static_cast<unsigned char>(b[i]) < 0x80) return -1;
    if (i == b.size() && static_cast<unsigned char>(a[i]) < 0x80) return 1;
    const QString restA = QString::fromUtf8(a.data() + i, static_cast<qsizetype>(a.size() - i));
    const QString restB = QString::fromUtf8(b.data() + i, static_cast<qsizetype>(b.size() - i));
    return Compare(restA, restB);
}

void Register(sqlite3* db) {
    sqlite3_create_collation_v2(db, kCollation, SQLITE_UTF8, nullptr, CollateUtf8, nullptr);
}

}  // namespace jettext
