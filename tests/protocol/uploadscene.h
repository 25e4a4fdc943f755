// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccommandadd.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "support/wbxmldocument.h"

/** What tests of items on their way to the server share. */
namespace UploadScene {

inline QList<ExchangeActiveSync::ProtocolVersion> versions()
{
    using namespace ExchangeActiveSync;
    return { ProtocolVersion120, ProtocolVersion121, ProtocolVersion140, ProtocolVersion141,
        ProtocolVersion160, ProtocolVersion161 };
}

/** The element Commands with one command in it. */
inline QByteArray encoded(const SyncCommandBase &command, ExchangeActiveSync::ProtocolVersion version)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Wbxml::AirSync::Commands, true);
    command.encode(encoder, version);
    return encoder.encoded();
}

/** The same as an outline; the codec has names of its own for a few elements of events. */
inline QString outlined(const SyncCommandBase &command, ExchangeActiveSync::ProtocolVersion version)
{
    return WbxmlDocument::outline(encoded(command, version))
        .replace(QStringLiteral("Organizer_"), QStringLiteral("Organizer"))
        .replace(QStringLiteral("Exception_"), QStringLiteral("Exception"))
        .remove(QStringLiteral("Attendee_"))
        .remove(QStringLiteral("Recurrence_"));
}

/** The fields of the one item of this identifier that goes up as a change; else the whole outline. */
inline QString uploadedFields(const QString &outline, const QString &serverId)
{
    const QString before = QStringLiteral("Commands(Change(ServerId=%1,ApplicationData(").arg(serverId);
    return outline.startsWith(before) ? outline.mid(before.size(), outline.size() - before.size() - 3)
                                      : outline;
}

} // namespace UploadScene
