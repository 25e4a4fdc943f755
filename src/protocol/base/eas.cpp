// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/base/eas.h"

#include "application/base/enumprinter.h"

QDebug operator<<(QDebug debug, Eas::CommonStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::SyncStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::MeetingResponseStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::MoveItemsStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::FolderSyncStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::ItemOperationsStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::ProvisionStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::SettingsStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::SearchStatus status)
{
    return EnumPrinter::print(debug, status);
}

QDebug operator<<(QDebug debug, Eas::PingResponseStatus status)
{
    return EnumPrinter::print(debug, status);
}
