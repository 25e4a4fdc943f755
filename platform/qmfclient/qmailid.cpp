// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailid.h>

QMailAccountId::QMailAccountId(quint64 value)
    : mValue(value)
{
}

bool QMailAccountId::isValid() const
{
    return mValue != 0;
}

quint64 QMailAccountId::toULongLong() const
{
    return mValue;
}

QMailAccountId::operator QVariant() const
{
    return QVariant::fromValue(*this);
}

bool QMailAccountId::operator==(const QMailAccountId &other) const
{
    return mValue == other.mValue;
}

bool QMailAccountId::operator!=(const QMailAccountId &other) const
{
    return mValue != other.mValue;
}

bool QMailAccountId::operator<(const QMailAccountId &other) const
{
    return mValue < other.mValue;
}

uint qHash(const QMailAccountId &id)
{
    return ::qHash(id.toULongLong());
}

QDebug &operator<<(QDebug &debug, const QMailAccountId &id)
{
    return debug << id.toULongLong();
}

QTextStream &operator<<(QTextStream &stream, const QMailAccountId &id)
{
    return stream << id.toULongLong();
}

QMailFolderId::QMailFolderId(quint64 value)
    : mValue(value)
{
}

QMailFolderId::QMailFolderId(QMailFolderFwd::PredefinedFolderId value)
    : mValue(value)
{
}

bool QMailFolderId::isValid() const
{
    return mValue != 0;
}

quint64 QMailFolderId::toULongLong() const
{
    return mValue;
}

QMailFolderId::operator QVariant() const
{
    return QVariant::fromValue(*this);
}

bool QMailFolderId::operator==(const QMailFolderId &other) const
{
    return mValue == other.mValue;
}

bool QMailFolderId::operator!=(const QMailFolderId &other) const
{
    return mValue != other.mValue;
}

bool QMailFolderId::operator<(const QMailFolderId &other) const
{
    return mValue < other.mValue;
}

uint qHash(const QMailFolderId &id)
{
    return ::qHash(id.toULongLong());
}

QDebug &operator<<(QDebug &debug, const QMailFolderId &id)
{
    return debug << id.toULongLong();
}

QTextStream &operator<<(QTextStream &stream, const QMailFolderId &id)
{
    return stream << id.toULongLong();
}

QMailMessageId::QMailMessageId(quint64 value)
    : mValue(value)
{
}

bool QMailMessageId::isValid() const
{
    return mValue != 0;
}

quint64 QMailMessageId::toULongLong() const
{
    return mValue;
}

QMailMessageId::operator QVariant() const
{
    return QVariant::fromValue(*this);
}

bool QMailMessageId::operator==(const QMailMessageId &other) const
{
    return mValue == other.mValue;
}

bool QMailMessageId::operator!=(const QMailMessageId &other) const
{
    return mValue != other.mValue;
}

bool QMailMessageId::operator<(const QMailMessageId &other) const
{
    return mValue < other.mValue;
}

uint qHash(const QMailMessageId &id)
{
    return ::qHash(id.toULongLong());
}

QDebug &operator<<(QDebug &debug, const QMailMessageId &id)
{
    return debug << id.toULongLong();
}

QTextStream &operator<<(QTextStream &stream, const QMailMessageId &id)
{
    return stream << id.toULongLong();
}

QMailThreadId::QMailThreadId(quint64 value)
    : mValue(value)
{
}

bool QMailThreadId::isValid() const
{
    return mValue != 0;
}

quint64 QMailThreadId::toULongLong() const
{
    return mValue;
}

QMailThreadId::operator QVariant() const
{
    return QVariant::fromValue(*this);
}

bool QMailThreadId::operator==(const QMailThreadId &other) const
{
    return mValue == other.mValue;
}

bool QMailThreadId::operator!=(const QMailThreadId &other) const
{
    return mValue != other.mValue;
}

bool QMailThreadId::operator<(const QMailThreadId &other) const
{
    return mValue < other.mValue;
}

uint qHash(const QMailThreadId &id)
{
    return ::qHash(id.toULongLong());
}

QDebug &operator<<(QDebug &debug, const QMailThreadId &id)
{
    return debug << id.toULongLong();
}

QTextStream &operator<<(QTextStream &stream, const QMailThreadId &id)
{
    return stream << id.toULongLong();
}
