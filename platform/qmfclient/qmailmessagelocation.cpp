// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessagepart.h>

#include <QStringList>

typedef QMailMessagePartContainer::Location Location;

Location::Location(const QString &description)
{
    const int dash = description.indexOf(QLatin1Char('-'));
    if (dash >= 0)
        mMessageId = QMailMessageId(description.left(dash).toULongLong());
    const QStringList texts = description.mid(dash + 1).split(QLatin1Char('.'), Qt::SkipEmptyParts);
    for (const QString &text : texts)
        mIndices.append(text.toUInt());
}

bool Location::isValid(bool extended) const
{
    return !mIndices.isEmpty() && !mIndices.contains(0) && (!extended || mMessageId.isValid());
}

QMailMessageId Location::containingMessageId() const
{
    return mMessageId;
}

void Location::setContainingMessageId(const QMailMessageId &id)
{
    mMessageId = id;
}

QString Location::toString(bool extended) const
{
    QStringList texts;
    for (const uint index : mIndices)
        texts.append(QString::number(index));
    const QString indices = texts.join(QLatin1Char('.'));
    return extended ? QString::number(mMessageId.toULongLong()) + QLatin1Char('-') + indices : indices;
}

bool Location::operator==(const Location &other) const
{
    return mMessageId == other.mMessageId && mIndices == other.mIndices;
}

bool Location::operator!=(const Location &other) const
{
    return !(*this == other);
}
