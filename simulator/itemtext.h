// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"

#include <QStringList>

namespace Simulator {

/** Items as lines of text, for people at the control channel, and changes by such texts. */
namespace ItemText {

/** Subject or name. */
QString title(const ItemPtr &item);
/** "Field<tab>value" of an event or a contact; lines of an occurrence begin with its original start. */
QStringList lines(const ItemPtr &item);

/**
 * Sets a field of an event or a contact by its element's name: "Subject", "StartTime", "FirstName". Times are
 * as on the wire, categories separated by commas. False if there is no such item or field, or the value is
 * none for it.
 */
bool setField(Mailbox &mailbox, const QString &serverId, const QString &field, const QString &value);
/** The same for one occurrence of a series. */
bool setOccurrenceField(
    Mailbox &mailbox, const QString &serverId, const QDate &day, const QString &field, const QString &value);
bool deleteOccurrence(Mailbox &mailbox, const QString &serverId, const QDate &day);

} // namespace ItemText
} // namespace Simulator
