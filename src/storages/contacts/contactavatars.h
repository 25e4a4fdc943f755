// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QUrl>

/**
 * The pictures of an account's contacts: files in a folder of the account's, which contacts name by URL and
 * the user alone can open.
 *
 * A picture that comes from outside is decoded only within limits, and its file is named here alone.
 */
class ContactAvatars
{
public:
    /** Characters of Base64 that servers take. */
    static constexpr int MaxUploadSize = 49152;

    explicit ContactAvatars(EasAccountId accountId);

    /** Stores a picture that came from the server as a new file; an empty URL if the bytes are no picture. */
    QUrl saveAvatar(const QByteArray &base64) const;

    /** Whether the file holds this picture. */
    static bool holds(const QUrl &url, const QByteArray &base64);
    /** Whether this picture is the file's, as it is or as it went up. */
    static bool isPictureOf(const QUrl &url, const QByteArray &base64);

    /** The picture as it goes to the server: as it is if that is small enough, otherwise compressed. */
    static QString upload(const QUrl &url);

    static bool compressAvatar(const QString &path, QByteArray &out);

    /** Removes the files as far as they are the account's. */
    void removeAvatars(const QList<QUrl> &urls) const;
    /** Removes what no contact names: left by a run that was interrupted. False, logged, if some stay. */
    bool removeOrphans(const QSet<QString> &usedPaths) const;
    /** Removes all of the account's; false, logged, if some stay. */
    bool removeAll() const;

    bool isOwn(const QUrl &url) const;

private:
    static QString avatarsDirInHome(EasAccountId accountId);
    bool makeFolder() const;

    const EasAccountId mAccountId;
};
