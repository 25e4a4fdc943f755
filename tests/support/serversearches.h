// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/galitem.h"

#include <QList>
#include <QObject>

/** Searches on the server through the engine that runs in this process, each to its end. */
class ServerSearches : public QObject
{
    Q_OBJECT

public:
    struct Result
    {
        /** -1000 if the search never ended, -1001 if it ended twice. */
        int status = -1000;
        /** Of messages those behind the last match, of people all. */
        uint count = 0;
        QList<qulonglong> ids;
        QList<GalItem> people;
    };
    struct Mail
    {
        QString text;
        QString folderId = QString();
        QString from = QString();
        QString to = QString();
        qulonglong limit = 100;
    };

    explicit ServerSearches(EasAccountId accountId);

    Result mail(const Mail &search);
    Result people(const QString &text, int most = 100);
    Result find(const QString &text, const QString &folderId = QString(), qulonglong limit = 100);
    Result findPeople(const QString &text);

    /** Begin one, with the identifier of its request. */
    static qulonglong startMail(EasAccountId accountId, const Mail &search);
    static qulonglong startPeople(EasAccountId accountId, const QString &text, int most = 100);
    static qulonglong startFind(EasAccountId accountId, const QString &text, const QString &folderId,
        int kind, qulonglong limit = 100);

private:
    void onEnd(qulonglong requestId, int status, uint count, const QList<qulonglong> &ids);
    Result waitFor(qulonglong requestId);

    const EasAccountId mAccountId;
    QMap<qulonglong, Result> mResults;
    QMap<qulonglong, int> mEnds;
};
