// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailfolderfwd.h>
#include <qmailglobal.h>

#include <QDebug>
#include <QList>
#include <QMetaType>
#include <QTextStream>
#include <QVariant>

/** Number of a mail account; the same number as in the account store. 0 is "no id". */
class QMF_EXPORT QMailAccountId
{
public:
    QMailAccountId() = default;
    explicit QMailAccountId(quint64 value);

    bool isValid() const;
    quint64 toULongLong() const;
    operator QVariant() const;

    bool operator==(const QMailAccountId &other) const;
    bool operator!=(const QMailAccountId &other) const;
    bool operator<(const QMailAccountId &other) const;

private:
    quint64 mValue = 0;
};

QMF_EXPORT uint qHash(const QMailAccountId &id);
QMF_EXPORT QDebug &operator<<(QDebug &debug, const QMailAccountId &id);
QMF_EXPORT QTextStream &operator<<(QTextStream &stream, const QMailAccountId &id);
typedef QList<QMailAccountId> QMailAccountIdList;

/** Number of a mail folder. Handed out by the store, never reused while the store lives. 0 is "no id". */
class QMF_EXPORT QMailFolderId
{
public:
    QMailFolderId() = default;
    explicit QMailFolderId(quint64 value);
    QMailFolderId(QMailFolderFwd::PredefinedFolderId value); // NOLINT: converts on purpose

    bool isValid() const;
    quint64 toULongLong() const;
    operator QVariant() const;

    bool operator==(const QMailFolderId &other) const;
    bool operator!=(const QMailFolderId &other) const;
    bool operator<(const QMailFolderId &other) const;

private:
    quint64 mValue = 0;
};

QMF_EXPORT uint qHash(const QMailFolderId &id);
QMF_EXPORT QDebug &operator<<(QDebug &debug, const QMailFolderId &id);
QMF_EXPORT QTextStream &operator<<(QTextStream &stream, const QMailFolderId &id);
typedef QList<QMailFolderId> QMailFolderIdList;

/** Number of a message. Handed out by the store, never reused while the store lives. 0 is "no id". */
class QMF_EXPORT QMailMessageId
{
public:
    QMailMessageId() = default;
    explicit QMailMessageId(quint64 value);

    bool isValid() const;
    quint64 toULongLong() const;
    operator QVariant() const;

    bool operator==(const QMailMessageId &other) const;
    bool operator!=(const QMailMessageId &other) const;
    bool operator<(const QMailMessageId &other) const;

private:
    quint64 mValue = 0;
};

QMF_EXPORT uint qHash(const QMailMessageId &id);
QMF_EXPORT QDebug &operator<<(QDebug &debug, const QMailMessageId &id);
QMF_EXPORT QTextStream &operator<<(QTextStream &stream, const QMailMessageId &id);
typedef QList<QMailMessageId> QMailMessageIdList;

/** Number of a conversation. 0 is "no id". */
class QMF_EXPORT QMailThreadId
{
public:
    QMailThreadId() = default;
    explicit QMailThreadId(quint64 value);

    bool isValid() const;
    quint64 toULongLong() const;
    operator QVariant() const;

    bool operator==(const QMailThreadId &other) const;
    bool operator!=(const QMailThreadId &other) const;
    bool operator<(const QMailThreadId &other) const;

private:
    quint64 mValue = 0;
};

QMF_EXPORT uint qHash(const QMailThreadId &id);
QMF_EXPORT QDebug &operator<<(QDebug &debug, const QMailThreadId &id);
QMF_EXPORT QTextStream &operator<<(QTextStream &stream, const QMailThreadId &id);
typedef QList<QMailThreadId> QMailThreadIdList;

Q_DECLARE_METATYPE(QMailAccountId)
Q_DECLARE_METATYPE(QMailAccountIdList)
Q_DECLARE_METATYPE(QMailFolderId)
Q_DECLARE_METATYPE(QMailFolderIdList)
Q_DECLARE_METATYPE(QMailMessageId)
Q_DECLARE_METATYPE(QMailMessageIdList)
Q_DECLARE_METATYPE(QMailThreadId)
Q_DECLARE_METATYPE(QMailThreadIdList)
