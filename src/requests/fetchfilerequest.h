// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/fetchedoctets.h"
#include "requests/fetchrequest.h"

#include <QByteArray>
#include <QString>

class EasAccount;

/**
 * Fetches one attached file, in ranges of partSize() bytes or, with 0, whole.
 *
 * A range may come in the multipart or in the single form, and with or without the size of the whole file;
 * without it the file ends with the first range that is shorter than asked for. A server that has no range
 * of the file is asked for all of it. Nothing is stored before all of it has arrived; what did arrive
 * survives a pause for provisioning. Owned by the RequestManager or by the request that it works for; a
 * subclass knows whose file it is and where it goes. Progress is in bytes. Main thread only.
 */
class FetchFileRequest : public FetchRequest
{
    Q_OBJECT

public:
    using FetchRequest::FetchRequest;

    uint partSize() const { return mPartSize; }
    void setPartSize(uint bytes) { mPartSize = bytes; }

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;

    /** The server's reference of the file and its size as far as known; false, logged, without one. */
    virtual bool findFile(EasAccount &account, QString *fileReference, int *estimatedSize) = 0;
    virtual bool storeFile(EasAccount &account, const QString &mediaType, const FetchedOctets &octets,
        const QString &fileName) = 0;

protected Q_SLOTS:
    void onCommandFinished(bool success) override;

private Q_SLOTS:
    void onDownloadProgress(qlonglong bytesReceived, qlonglong bytesTotal);

private:
    /** What one reply holds of the file. */
    struct Piece
    {
        QByteArray data;
        QString contentType;
        QString range;
        int total;
    };

    FetchItemCommand *newFileCommand(const QString &fileReference);
    int fileStatus() const;
    bool endsFileOrRanges();
    void fetchWhole();
    bool handleMultiPart();
    void processCommandSuccess() override;
    void takePiece(const Piece &piece);
    bool append(const Piece &piece);
    bool isComplete(const Piece &piece) const;
    void requestNextPart();
    void finish();
    bool store();

    uint mPartSize = 0;
    FetchedOctets mOctets;
    QString mContentType;
    /** What the item says of the file's size; 0 without a word about it. */
    int mAnnouncedSize = 0;
    /** Of the whole file, as far as the server has said; otherwise -1. */
    int mTotal = -1;
};
