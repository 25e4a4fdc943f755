// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include "easitems/eastimezone.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    const QByteArray bytes = FuzzSupport::bytes(data, size);
    EasTimeZone zone;
    if (zone.parse(bytes)) {
        // Times of the item come from the same server, so they are as odd.
        const QString time = QString::fromLatin1(bytes.right(16));
        for (const QString &start : { QStringLiteral("20240701T100000Z"), time }) {
            if (!zone.timeZone(start, QStringLiteral("20240701T110000Z")).isValid())
                qFatal("a block without a zone");
        }
    }
    return 0;
}
