// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/textwidth.h"

#include <QVector>

#include <algorithm>

namespace {

struct Range
{
    uint first;
    uint last;
};

/** The characters that Unicode calls wide or fullwidth, and the pictures that terminals show like them. */
constexpr Range WideRanges[] = { { 0x1100, 0x115F }, { 0x231A, 0x231B }, { 0x2E80, 0x303E },
    { 0x3041, 0x33FF }, { 0x3400, 0x4DBF }, { 0x4E00, 0x9FFF }, { 0xA000, 0xA4CF }, { 0xA960, 0xA97F },
    { 0xAC00, 0xD7A3 }, { 0xF900, 0xFAFF }, { 0xFE30, 0xFE6F }, { 0xFF00, 0xFF60 }, { 0xFFE0, 0xFFE6 },
    { 0x1F300, 0x1F64F }, { 0x1F680, 0x1F6FF }, { 0x1F900, 0x1FAFF }, { 0x20000, 0x3FFFD } };

int widthOf(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        break;
    }
    const bool isWide = std::any_of(std::begin(WideRanges), std::end(WideRanges),
        [character](const Range &range) { return character >= range.first && character <= range.last; });
    return isWide ? 2 : 1;
}

} // namespace

int TextWidth::of(const QString &text)
{
    int width = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        width += widthOf(character);
    return width;
}

QString TextWidth::cut(const QString &text, int width)
{
    if (of(text) <= width)
        return text;
    QVector<uint> kept;
    int used = 1; // of the ellipsis
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        used += widthOf(character);
        if (used > width)
            break;
        kept.append(character);
    }
    return QString::fromUcs4(kept.constData(), kept.size()) + QChar(0x2026);
}

QString TextWidth::padded(const QString &text, int width)
{
    return text + QString(qMax(0, width - of(text)), QLatin1Char(' '));
}
