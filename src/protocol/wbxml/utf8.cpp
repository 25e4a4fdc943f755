// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/utf8.h"

#include <QtGlobal>

namespace {

struct Lead
{
    quint8 from;
    quint8 to;
    int continuations;
    quint8 secondFrom; // narrower than 80..BF where that would be overlong, a surrogate or too high
    quint8 secondTo;
};

constexpr Lead leads[] = {
    { 0xC2, 0xDF, 1, 0x80, 0xBF },
    { 0xE0, 0xE0, 2, 0xA0, 0xBF },
    { 0xE1, 0xEC, 2, 0x80, 0xBF },
    { 0xED, 0xED, 2, 0x80, 0x9F },
    { 0xEE, 0xEF, 2, 0x80, 0xBF },
    { 0xF0, 0xF0, 3, 0x90, 0xBF },
    { 0xF1, 0xF3, 3, 0x80, 0xBF },
    { 0xF4, 0xF4, 3, 0x80, 0x8F },
};

/** Length of the well-formed character of several bytes at the start, or 0. */
int characterLength(const char *bytes, int length)
{
    const auto first = static_cast<quint8>(bytes[0]);
    for (const Lead &lead : leads) {
        if (first < lead.from || first > lead.to)
            continue;
        if (length <= lead.continuations)
            return 0;
        const auto second = static_cast<quint8>(bytes[1]);
        if (second < lead.secondFrom || second > lead.secondTo)
            return 0;
        for (int i = 2; i <= lead.continuations; ++i) {
            if (!Utf8::isContinuation(bytes[i]))
                return 0;
        }
        return lead.continuations + 1;
    }
    return 0;
}

} // namespace

bool Utf8::isContinuation(char byte)
{
    return (static_cast<quint8>(byte) & 0xC0U) == 0x80U;
}

int Utf8::firstInvalid(const char *bytes, int length)
{
    int position = 0;
    while (position < length) {
        if (static_cast<quint8>(bytes[position]) < 0x80) {
            ++position;
            continue;
        }
        const int size = characterLength(bytes + position, length - position);
        if (size == 0)
            return position;
        position += size;
    }
    return -1;
}
