// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/**
 * Server identifiers of mail come in two forms, which are two types, so that one cannot be taken for the
 * other.
 *
 * The store and the database know a message by its server identifier alone. Some servers number messages in
 * each folder anew, so that one identifier names a message in several folders; the later ones are then kept
 * under an identifier that also holds the folder. MailServerIds finds the kept form of what a reply names.
 * Plain values of any thread.
 */

/** What the server calls a message. With some servers it is unique within its folder only. */
class WireEmailId
{
public:
    explicit WireEmailId(const QString &text)
        : mText(text)
    {
    }

    /** False for one with the character that a kept identifier puts between its parts: it would be cut. */
    bool isValid() const;

    const QString &text() const { return mText; }
    bool operator==(const WireEmailId &other) const { return mText == other.mText; }

private:
    QString mText;
};

/** What store and database call a message: unique in the account, as `server_id` of its row and server uid.
 */
class KeptEmailId
{
public:
    explicit KeptEmailId(const QString &text)
        : mText(text)
    {
    }

    /** The form of a message that is the only one of this name, or the first that came. */
    static KeptEmailId plain(const WireEmailId &wireId);
    /** The form of a message whose plain identifier is taken by a message of another folder. */
    static KeptEmailId qualified(const QString &collectionId, const WireEmailId &wireId);
    static QStringList texts(const QList<KeptEmailId> &ids);

    /** What the server calls the message. */
    WireEmailId onWire() const;

    const QString &text() const { return mText; }
    bool operator==(const KeptEmailId &other) const { return mText == other.mText; }

private:
    QString mText;
};

inline uint qHash(const WireEmailId &id, uint seed = 0)
{
    return qHash(id.text(), seed);
}

inline uint qHash(const KeptEmailId &id, uint seed = 0)
{
    return qHash(id.text(), seed);
}
