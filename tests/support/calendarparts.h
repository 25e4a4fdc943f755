// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>
#include <qmailmessage.h>

/** The texts of the calendar parts of a message, wherever they stand. */
inline QStringList calendarTexts(const QMailMessagePartContainer &container)
{
    QStringList texts;
    if (container.contentType().matches("text", "calendar"))
        texts.append(container.body().data());
    for (uint i = 0; i < container.partCount(); ++i)
        texts += calendarTexts(container.partAt(i));
    return texts;
}
