// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"

class FolderCommandResponseParser;
class WbxmlEncoder;

/**
 * What FolderCreate, FolderDelete and FolderUpdate share: they change one folder on the server under the
 * hierarchy's key, and are answered with the next one.
 *
 * Needs the present key. After a reply syncKey() is the server's new key, or still the one that was sent if
 * the reply holds none.
 */
class FolderCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    using BaseProtocolCommand::BaseProtocolCommand;

    QString syncKey() const { return mSyncKey; }
    void setSyncKey(const QString &syncKey) { mSyncKey = syncKey; }

protected:
    struct ReplyTexts
    {
        const char *parsed;
        const char *failed;
    };

    bool encodeBody(EasAccount &account, QByteArray *body) override;
    /** The root and the fields below it, with the key in second place. */
    virtual void encodeFolder(WbxmlEncoder &encoder) const = 0;
    /** Null, or why there is nothing to send. */
    virtual const char *refusal() const = 0;

    /** Takes over what all replies hold; false if the body could not be read. */
    bool readReply(FolderCommandResponseParser &parser, const QByteArray &body, const ReplyTexts &texts);

private:
    QString mSyncKey;
};
