// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactdates.h"

#include "protocol/base/protocoltime.h"

#include <QDateTime>

QDate ContactDates::day(const QString &text)
{
    constexpr int noon = 12;
    const QDateTime moment = QDateTime::fromString(text, Qt::ISODate);
    return moment.time().hour() < noon ? moment.date() : moment.date().addDays(1);
}

QString ContactDates::text(const QDate &day)
{
    return day.isValid() ? ProtocolTime::toWire(QDateTime(day, QTime(0, 0), Qt::UTC)) : QString();
}
