// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/base64lines.h"

QByteArray Base64Lines::encode(const QByteArray &octets)
{
    const QByteArray letters = octets.toBase64();
    QByteArray lines;
    lines.reserve(letters.size() + letters.size() / lettersInLine * 2 + 2);
    for (int start = 0; start < letters.size(); start += lettersInLine) {
        if (start > 0)
            lines += "\r\n";
        lines.append(letters.constData() + start, qMin(lettersInLine, letters.size() - start));
    }
    return lines;
}
