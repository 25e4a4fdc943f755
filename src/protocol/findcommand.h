// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/serversearchcommand.h"

#include <QString>

class WbxmlEncoder;

/**
 * One Find in the mailbox or in the global address list, from protocol 16.1 on. The identifier tells one
 * search of a device from its others; a repetition or the next range of the same search bears the same. Main
 * thread only.
 */
class FindCommand : public ServerSearchCommand
{
    Q_OBJECT

public:
    struct Query
    {
        Type kind = Mailbox;
        QString freeText;
        /** Of the items; for the mailbox alone, as is the folder. */
        QString itemClass = QStringLiteral("Email");
        /** Empty for the whole mailbox. */
        QString collectionId;
    };
    struct Options
    {
        /** The first and the last match that is wanted, counted from 0; -1 leaves it to the server. */
        int lowRange = -1;
        int highRange = -1;
        bool deepTraversal = false;
        /** Bytes of a picture, and number of pictures; below 0 asks for none. */
        int maxSize = -1;
        int maxPictures = -1;

        /** "low-high"; empty, logged unless both are unset, for one that asks for nothing. */
        QString getRange() const;
    };

    FindCommand(EasAccountId accountId, QObject *parent, const QString &searchId, const Query &query,
        const Options &options);

    QString searchId() const { return mSearchId; }
    Query query() const { return mQuery; }
    Options options() const { return mOptions; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    void encodeCriterion(WbxmlEncoder &encoder) const;
    void encodeOptions(WbxmlEncoder &encoder) const;

    QString mSearchId;
    Query mQuery;
    Options mOptions;
};
