// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/enumprinter.h"

QDebug EnumPrinter::print(QDebug debug, const QMetaEnum &meta, int value)
{
    const QDebugStateSaver saver(debug);
    const char *key = meta.valueToKey(value);
    if (key == nullptr)
        debug.nospace() << value;
    else
        debug.nospace() << meta.scope() << "::" << key;
    return debug;
}
