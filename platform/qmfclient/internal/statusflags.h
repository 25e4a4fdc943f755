// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

#include <string_view>

/** A named bit of the status of messages, folders or accounts. */
struct StatusFlag
{
    std::string_view name;
    quint64 mask;
};

/** The mask of a flag, as something that a reference can be bound to before main(). */
template <std::size_t N> constexpr const quint64 &maskOf(const StatusFlag (&table)[N], std::string_view name)
{
    std::size_t i = 0;
    while (table[i].name != name)
        ++i; // Past the end is a compile error in a constant expression.
    return table[i].mask;
}

inline constexpr StatusFlag messageFlags[] = {
    { "Incoming", 0x1 },
    { "Outgoing", 0x2 },
    { "Sent", 0x4 },
    { "Replied", 0x8 },
    { "RepliedAll", 0x10 },
    { "Forwarded", 0x20 },
    { "ContentAvailable", 0x40 },
    { "Read", 0x80 },
    { "Removed", 0x100 },
    { "ReadElsewhere", 0x200 },
    { "UnloadedData", 0x400 },
    { "New", 0x800 },
    { "ReadReplyRequested", 0x1000 },
    { "Trash", 0x2000 },
    { "PartialContentAvailable", 0x4000 },
    { "HasAttachments", 0x8000 },
    { "HasReferences", 0x10000 },
    { "HasUnresolvedReferences", 0x20000 },
    { "Draft", 0x40000 },
    { "Outbox", 0x80000 },
    { "Junk", 0x100000 },
    { "TransmitFromExternal", 0x200000 },
    { "LocalOnly", 0x400000 },
    { "Temporary", 0x800000 },
    { "ImportantElsewhere", 0x1000000 },
    { "Important", 0x2000000 },
    { "HighPriority", 0x4000000 },
    { "LowPriority", 0x8000000 },
    { "CalendarInvitation", 0x10000000 },
    { "Todo", 0x20000000 },
    { "HasSignature", 0x40000000 },
    { "HasEncryption", 0x80000000 },
    { "NoNotification", 0x100000000 },
    { "CalendarCancellation", 0x200000000 },
};

inline constexpr StatusFlag folderFlags[] = {
    { "SynchronizationEnabled", 0x1 },
    { "Synchronized", 0x2 },
    { "PartialContent", 0x4 },
    { "Removed", 0x8 },
    { "Incoming", 0x10 },
    { "Outgoing", 0x20 },
    { "Sent", 0x40 },
    { "Trash", 0x80 },
    { "Drafts", 0x100 },
    { "Junk", 0x200 },
    { "ChildCreationPermitted", 0x400 },
    { "RenamePermitted", 0x800 },
    { "DeletionPermitted", 0x1000 },
    { "NonMail", 0x2000 },
    { "MessagesPermitted", 0x4000 },
    { "ReadOnly", 0x8000 },
    { "Favourite", 0x10000 },
};

inline constexpr StatusFlag accountFlags[] = {
    { "SynchronizationEnabled", 0x1 },
    { "Synchronized", 0x2 },
    { "AppendSignature", 0x4 },
    { "UserEditable", 0x8 },
    { "UserRemovable", 0x10 },
    { "PreferredSender", 0x20 },
    { "MessageSource", 0x40 },
    { "CanRetrieve", 0x80 },
    { "MessageSink", 0x100 },
    { "CanTransmit", 0x200 },
    { "Enabled", 0x400 },
    { "CanReferenceExternalData", 0x800 },
    { "CanTransmitViaReference", 0x1000 },
    { "CanCreateFolders", 0x2000 },
    { "UseSmartReply", 0x4000 },
    { "CanSearchOnServer", 0x8000 },
    { "HasPersistentConnection", 0x10000 },
};
