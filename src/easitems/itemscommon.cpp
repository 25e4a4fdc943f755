// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/itemscommon.h"

#include "application/base/enumprinter.h"

QDebug operator<<(QDebug debug, ItemsCommon::TBoolean value)
{
    return EnumPrinter::print(debug, value);
}

QDebug operator<<(QDebug debug, ItemsCommon::NativeBodyType value)
{
    return EnumPrinter::print(debug, value);
}

QDebug operator<<(QDebug debug, ItemsCommon::UserResponseType value)
{
    return EnumPrinter::print(debug, value);
}

QDebug operator<<(QDebug debug, ItemsCommon::ItemDataType value)
{
    return EnumPrinter::print(debug, value);
}
