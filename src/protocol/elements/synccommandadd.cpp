// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccommandadd.h"

#include "application/base/logging.h"
#include "easitems/fields/calendarfields.h"
#include "easitems/fields/contactsfields.h"
#include "easitems/fields/emailfields.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QDebug>

using namespace Wbxml;

SyncCommandAdd::SyncCommandAdd(QObject *parent)
    : SyncCommandBase(parent)
{
}

SyncCommandBase::Type SyncCommandAdd::type() const
{
    return AddCommand;
}

void SyncCommandAdd::encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    for (const EasEmailItem &item : mEmailItems) {
        if (openItem(item, ProtocolUtils::ClassEmail, encoder, version)) {
            encodeEmailItem(item, encoder, version);
            encoder.setCurrentNodeToParent();
        }
    }
    for (const EasCalendarItem &item : mCalendarItems) {
        if (openItem(item, ProtocolUtils::ClassCalendar, encoder, version)) {
            encodeCalendarItem(item, encoder, version);
            encoder.setCurrentNodeToParent();
        }
        if (type() == ChangeCommand && version >= ExchangeActiveSync::ProtocolVersion160)
            encodeChangedExceptions(item, encoder, version);
    }
    for (const EasContactsItem &item : mContactsItems) {
        if (openItem(item, ProtocolUtils::ClassContacts, encoder, version)) {
            encodeContactsItem(item, encoder, version);
            encoder.setCurrentNodeToParent();
        }
    }
}

bool SyncCommandAdd::openItem(const EasGeneralItem &item, const QString &itemClass, WbxmlEncoder &encoder,
    ExchangeActiveSync::ProtocolVersion version) const
{
    switch (type()) {
    case ChangeCommand:
        encoder.appendElement(AirSync::Change, true);
        encoder.appendTextElement(AirSync::ServerId, item.serverId());
        return true;
    case AddCommand:
        if (item.localId().isEmpty()) {
            qCWarning(eas()) << "local id shouldn't be empty for Add command";
            return false;
        }
        encoder.appendElement(AirSync::Add, true);
        if (version >= ExchangeActiveSync::ProtocolVersion140) {
            encoder.appendTextElement(AirSync::Class, itemClass);
        }
        encoder.appendTextElement(AirSync::ClientId, item.localId());
        return true;
    default:
        qCWarning(eas()) << "Wrong command type";
        return false;
    }
}

void SyncCommandAdd::encodeEmailItem(
    const EasEmailItem &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    EmailFields::itemFields().sendIn(AirSync::ApplicationData, item, encoder, version);
}

void SyncCommandAdd::encodeContactsItem(
    const EasContactsItem &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    ContactsFields::itemFields().sendIn(AirSync::ApplicationData, item, encoder, version);
}

void SyncCommandAdd::encodeCalendarItem(
    const EasCalendarItem &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    CalendarFields::uploadedFields().sendIn(AirSync::ApplicationData, item, encoder, version);
}

void SyncCommandAdd::encodeChangedExceptions(
    const EasCalendarItem &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    const QList<EasCalendarItem> exceptions = item.exceptions();
    for (const EasCalendarItem &exception : exceptions) {
        if (!exception.itemChanged())
            continue;
        encoder.appendElement(AirSync::Change, true);
        encoder.appendTextElement(AirSync::ServerId, item.serverId());
        encoder.appendTextElement(AirSyncBase::InstanceId, exception.exceptionStartTime());
        encodeCalendarItem(exception, encoder, version);
        encoder.setCurrentNodeToParent();
    }
}
